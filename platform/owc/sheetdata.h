#pragma once
#include "platform/owc/formulas.h"
#include "platform/owc/spreadsheet.h"
#include "platform/owc/undo.h"

namespace platform::owc {

inline const QString sheetComponent = QStringLiteral("Spreadsheet");

/// The engine behind a sheet.
struct Spreadsheet::Data {
  explicit Data(Spreadsheet& sheet) : window(sheet, display), plainScreen(sheet) {}
  CellStore cells;
  FormulaBook formulas{cells};
  UndoStep undo;
  CellRect viewable{1, 1, maxRows, maxColumns};
  CellRect selection, active;
  bool autoCalculate = true;                 // of generation 9
  int calculation = xlCalculationAutomatic;  // of generations 10 and 11
  bool calculationWaits = false;
  bool screenUpdating = true;
  int moveDown = 1, moveRight = 0;  // where Enter goes
  FrozenAt frozen;
  SheetDisplay display;
  Window window;
  PlainScreen plainScreen;
  const SheetScreen* screen = nullptr;
};

}  // namespace platform::owc
