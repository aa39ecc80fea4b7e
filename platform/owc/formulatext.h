#pragma once
#include "platform/owc/address.h"

#include <QByteArray>
#include <QList>
#include <QSet>

namespace platform::owc {

/// The texts that a cell shows instead of a result.
inline const QString errorName = QStringLiteral("#NAME?");
inline const QString errorReference = QStringLiteral("#REF!");
inline const QString errorValue = QStringLiteral("#VALUE!");
inline const QString errorDivision = QStringLiteral("#DIV/0!");

/// A range that must be written out cell by cell, since the calculation takes it otherwise for what it is
/// not: MIN and MAX read no ranges and AVERAGE counts what is empty.
struct SpreadRange {
  qsizetype at = 0;  // where in the expression its cells belong
  CellRect rect;
  QByteArray none;  // stands there when it holds no number
};

/// A formula taken apart: what it reads and how the calculation writes it. In English form: "." in numbers,
/// "," between arguments.
struct FormulaText {
  bool wellFormed = false;  // brackets and quotes in pairs, operands and operators in turn
  QString error;            // known without calculating: a name, or a reference outside of the sheet
  QList<CellRect> references;
  QSet<QString> functions;  // in capitals
  QByteArray expression;    // without "="; whole columns and rows written as cells
  QList<SpreadRange> spread;
  QList<QByteArray> literals;  // texts that the expression reads from the cells of the row below the sheet
  bool countsTexts() const { return functions.contains(QStringLiteral("COUNTA")); }

  static FormulaText read(const QString& formula);
};

/// "B7", or "B7:C9", as a formula writes it.
QByteArray cellsInFormula(const CellRect& rect);
/// The formula as it reads so many rows and columns further: references without "$" move along, and one that
/// leaves the sheet becomes "#REF!".
QString shiftedFormula(const QString& formula, int rows, int columns);

}  // namespace platform::owc
