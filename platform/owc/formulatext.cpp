#include "platform/owc/formulatext.h"

#include <QRegularExpression>

#include <utility>

namespace platform::owc {

namespace {

using namespace Qt::StringLiterals;

enum class Kind { Text, Reference, Lost, Function, Name, Number, Blank, Sign };

struct Token {
  Kind kind;
  QString text;
};

/// In the order in which they are tried; "LOG10(" is a function and no reference, as what follows tells.
const QRegularExpression& tokenPattern() {
  static const QRegularExpression pattern(
      uR"x((?<text>"(?:[^"]|"")*")|(?<lost>#REF!))x"
      uR"x(|(?<reference>\$?[A-Za-z]{1,3}\$?\d{1,7}(?::\$?[A-Za-z]{1,3}\$?\d{1,7})?(?![A-Za-z0-9_(.!]))x"
      uR"x(|\$?[A-Za-z]{1,3}:\$?[A-Za-z]{1,3}(?![A-Za-z0-9_(.!])|\$?\d{1,7}:\$?\d{1,7}(?![\d.])))x"
      uR"x(|(?<function>[A-Za-z_][A-Za-z0-9_.]*(?=\s*\())|(?<name>[A-Za-z_$][A-Za-z0-9_.$!]*))x"
      uR"x(|(?<number>(?:\d+(?:\.\d*)?|\.\d+)(?:[eE][+-]?\d+)?%?)|(?<blank>\s+)|(?<sign><=|>=|<>|.))x"_s,
      QRegularExpression::DotMatchesEverythingOption);
  return pattern;
}

QList<Token> tokensOf(const QString& formula) {
  static const QList<std::pair<QString, Kind>> groups{
      {u"text"_s, Kind::Text},         {u"lost"_s, Kind::Lost}, {u"reference"_s, Kind::Reference},
      {u"function"_s, Kind::Function}, {u"name"_s, Kind::Name}, {u"number"_s, Kind::Number},
      {u"blank"_s, Kind::Blank},       {u"sign"_s, Kind::Sign}};
  QList<Token> tokens;
  for (auto at = tokenPattern().globalMatch(formula); at.hasNext();) {
    const QRegularExpressionMatch match = at.next();
    for (const auto& [name, kind] : groups)
      if (match.hasCaptured(name)) tokens.append({kind, match.captured(name)});
  }
  return tokens;
}

/// Operands and operators in turn, brackets in pairs.
class Grammar {
 public:
  void take(const Token& token) {
    if (token.kind == Kind::Blank) return;
    const bool afterFunction = std::exchange(afterFunction_, false);
    const bool opened = std::exchange(opened_, false);
    if (token.kind == Kind::Sign)
      good_ = good_ && takeSign(token.text, afterFunction, opened);
    else if (!wantsOperand_)
      good_ = false;
    else if (token.kind == Kind::Function)
      afterFunction_ = true;
    else
      wantsOperand_ = false;
  }
  bool good() const { return good_ && !wantsOperand_ && brackets_.isEmpty(); }

 private:
  bool takeSign(const QString& sign, bool afterFunction, bool opened) {
    static const QStringList operators{u"+"_s, u"-"_s, u"*"_s, u"/"_s,  u"^"_s,  u"&"_s,
                                       u"="_s, u"<"_s, u">"_s, u"<="_s, u">="_s, u"<>"_s};
    if (sign == u"("_s && wantsOperand_) {
      brackets_.append(afterFunction);
      opened_ = afterFunction;
      return true;
    }
    if (sign == u")"_s && !brackets_.isEmpty() && (!wantsOperand_ || opened)) {
      brackets_.removeLast();
      wantsOperand_ = false;
      return true;
    }
    if (sign == u","_s && !wantsOperand_ && !brackets_.isEmpty() && brackets_.last()) {
      wantsOperand_ = true;
      return true;
    }
    if (wantsOperand_) return sign == u"+"_s || sign == u"-"_s;
    wantsOperand_ = true;
    return operators.contains(sign);
  }

  bool good_ = true, wantsOperand_ = true, afterFunction_ = false, opened_ = false;
  QList<bool> brackets_;  // whether they are a function's
};

QByteArray plainNumber(QString text) {
  const bool percent = text.endsWith(u'%');
  if (percent) text.chop(1);
  if (!percent && !text.contains(u'e', Qt::CaseInsensitive)) return text.toLatin1();
  return QByteArray::number(text.toDouble() / (percent ? 100 : 1), 'f', 15);
}

/// One corner of a reference so much further; nullopt when it leaves the sheet.
std::optional<QString> shiftedCorner(const QString& corner, int rows, int columns) {
  static const QRegularExpression pattern(uR"((\$?)([A-Za-z]*)(\$?)(\d*))"_s);
  const QRegularExpressionMatch match = pattern.match(corner);
  QString letters = match.captured(2), digits = match.captured(4);
  const bool rowStands = !match.captured(letters.isEmpty() ? 1 : 3).isEmpty();
  if (!letters.isEmpty() && match.captured(1).isEmpty()) {
    const std::optional<CellRect> column = parseAddress(letters + u':' + letters);
    const int number = column ? column->column + columns : 0;
    if (number < 1 || number > maxColumns) return {};
    letters = columnLetters(number);
  }
  if (!digits.isEmpty() && !rowStands) {
    const int number = digits.toInt() + rows;
    if (number < 1 || number > maxRows) return {};
    digits = QString::number(number);
  }
  return match.captured(1) + letters + match.captured(3) + digits;
}

QString shiftedReference(const QString& reference, int rows, int columns) {
  QStringList corners;
  for (const QString& corner : reference.split(u':')) {
    const std::optional<QString> shifted = shiftedCorner(corner, rows, columns);
    if (!shifted) return errorReference;
    corners.append(*shifted);
  }
  return corners.join(u':');
}

}  // namespace

QByteArray cellsInFormula(const CellRect& rect) {
  const QString first = columnLetters(rect.column) + QString::number(rect.row);
  const QString last = columnLetters(rect.lastColumn()) + QString::number(rect.lastRow());
  return (first == last ? first : first + u':' + last).toLatin1();
}

namespace {

class Reader {
 public:
  FormulaText read(const QString& formula) {
    Grammar grammar;
    for (const Token& token : tokensOf(formula.startsWith(u'=') ? formula.mid(1) : formula)) {
      grammar.take(token);
      take(token);
    }
    read_.wellFormed = grammar.good() && read_.literals.size() <= maxColumns;
    if (!read_.wellFormed) fail(errorName);
    return read_;
  }

 private:
  void take(const Token& token) {
    switch (token.kind) {
      case Kind::Text:
        read_.literals.append(token.text.mid(1, token.text.size() - 2).replace(u"\"\""_s, u"\""_s).toUtf8());
        read_.expression += cellsInFormula({maxRows + 1, static_cast<int>(read_.literals.size()), 1, 1});
        break;
      case Kind::Reference:
        takeReference(parseAddress(token.text));
        break;
      case Kind::Lost:
        fail(errorReference);
        break;
      case Kind::Function:
        function_ = token.text.toUpper();
        read_.functions.insert(function_);
        read_.expression += function_.toLatin1();
        if (function_ == u"WAIT"_s) fail(errorName);  // it would hold up the program
        break;
      case Kind::Name:
        takeName(token.text);
        break;
      case Kind::Number:
        read_.expression += plainNumber(token.text);
        break;
      case Kind::Blank:
        break;
      case Kind::Sign:
        if (token.text == u"("_s)
          around_.append(std::exchange(function_, QString()));
        else if (token.text == u")"_s && !around_.isEmpty())
          around_.removeLast();
        read_.expression += token.text.toUtf8();
        break;
    }
  }

  void takeReference(const std::optional<CellRect>& rect) {
    if (!rect) {
      fail(errorReference);
      return;
    }
    read_.references.append(*rect);
    const QString within = around_.isEmpty() ? QString() : around_.last();
    const bool average = within == u"AVERAGE"_s;
    if (average || within == u"MIN"_s || within == u"MAX"_s)
      read_.spread.append({read_.expression.size(), *rect, average ? "(1/0)" : "0"});
    else
      read_.expression += cellsInFormula(*rect);
  }

  void takeName(const QString& name) {
    if (name.compare(u"TRUE"_s, Qt::CaseInsensitive) == 0)
      read_.expression += '1';
    else if (name.compare(u"FALSE"_s, Qt::CaseInsensitive) == 0)
      read_.expression += '0';
    else
      fail(errorName);
  }

  void fail(const QString& error) {
    if (read_.error.isEmpty()) read_.error = error;
  }

  FormulaText read_;
  QString function_;    // the last one, until its bracket opens
  QStringList around_;  // functions around this place; "" for a plain bracket
};

}  // namespace

FormulaText FormulaText::read(const QString& formula) {
  return Reader().read(formula);
}

QString shiftedFormula(const QString& formula, int rows, int columns) {
  QString shifted;
  for (const Token& token : tokensOf(formula))
    shifted += token.kind == Kind::Reference ? shiftedReference(token.text, rows, columns) : token.text;
  return shifted;
}

}  // namespace platform::owc
