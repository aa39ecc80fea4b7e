#include "platform/sql/odbc/dialect.h"

#include "platform/sql/literals.h"
#include "platform/sql/tokens.h"

#include <QHash>

#include <optional>

namespace platform::sql::odbc {

namespace {

/// One row, behind whatever the statement itself gives. Triggers change neither number.
const QString counts = QStringLiteral("\nSELECT @@ROWCOUNT, CAST(SCOPE_IDENTITY() AS bigint)");

bool isAscii(const QString& text) {
  return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; });
}

QString quoted(const QString& text) {
  return u'\'' + QString(text).replace(u"'"_qs, u"''"_qs) + u'\'';
}

bool isNothing(const basic::Value& value) {
  return basic::IsNull(value) || basic::IsEmpty(value);
}

/// A number that is neither 0 nor 1, which a bit is never equal to.
bool isForeignToBits(const basic::Value& value) {
  return std::visit(
      [](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, bool>)
          return false;
        else if constexpr (std::is_arithmetic_v<Held>)
          return held != Held{0} && held != Held{1};
        else
          return false;
      },
      value);
}

/// Walks over a statement and writes the server's form of it.
class Translator {
 public:
  Translator(const QString& sql, const QList<basic::Value>& parameters, const YesNoColumns& yesNoColumns)
      : tokens_(tokensOf(sql, NumberSign::Name)), given_(parameters), yesNoColumns_(yesNoColumns) {
    for (qsizetype at = 0; at < tokens_.size(); ++at)
      if (tokens_.is(at, Kind::Parameter)) numbers_.insert(at, static_cast<int>(numbers_.size()));
    if (tokens_.isWord(tokens_.next(-1), u"insert")) readInsert();
  }

  Translation run() {
    Translation translation;
    translation.writes = !tokens_.isWord(tokens_.next(-1), u"select");
    for (at_ = 0; at_ < tokens_.size(); ++at_) write();
    while (!out_.isEmpty() && (out_.back().isSpace() || out_.back() == u';')) out_.chop(1);
    // what is given beyond the parameters is for the server to refuse
    translation.parameters = kept_ + given_.mid(numbers_.size());
    translation.sql = translation.writes ? out_ + counts : out_;
    return translation;
  }

 private:
  using Kind = Token::Kind;

  bool isName(qsizetype at) const { return tokens_.is(at, Kind::Name) || tokens_.is(at, Kind::Word); }
  bool isNull(qsizetype at) const {
    if (tokens_.isWord(at, u"null")) return true;
    return tokens_.is(at, Kind::Parameter) && isNothing(given_.value(numbers_.value(at), false));
  }

  // ---- insert into table (columns) values (...), (...)

  void readInsert() {
    qsizetype at = tokens_.next(tokens_.next(-1));
    if (tokens_.isWord(at, u"into")) at = tokens_.next(at);
    if (!isName(at)) return;
    const QString table = tokens_[at].text;
    at = tokens_.next(at);
    QStringList columns;
    if (!tokens_.isMark(at, u'(')) return;
    for (at = tokens_.next(at); isName(at) || tokens_.isMark(at, u','); at = tokens_.next(at))
      if (!tokens_.isMark(at, u',')) columns.append(tokens_[at].text);
    at = tokens_.next(at);
    if (!tokens_.isWord(at, u"values")) return;
    for (at = tokens_.next(at); tokens_.isMark(at, u'('); at = tokens_.next(at)) {
      at = readRow(at, table, columns);
      if (tokens_.isMark(tokens_.next(at), u',')) at = tokens_.next(at);
    }
  }

  /// Looks for Nulls that their columns do not take; gives the row's closing bracket.
  qsizetype readRow(qsizetype open, const QString& table, const QStringList& columns) {
    int depth = 0, column = 0;
    qsizetype start = tokens_.next(open), at = open;
    for (; at < tokens_.size(); ++at) {
      if (tokens_.isMark(at, u'(')) ++depth;
      const bool closes = tokens_.isMark(at, u')') && --depth == 0;
      if (!closes && !(depth == 1 && tokens_.isMark(at, u','))) continue;
      const QString name = columns.value(column++);
      if (isNull(start) && tokens_.next(start) == at && refusesNull(table, name)) defaults_.append(start);
      start = tokens_.next(at);
      if (closes) break;
    }
    return at;
  }

  bool refusesNull(const QString& table, const QString& name) {
    for (const YesNoColumn& column : yesNoColumns(table))
      if (column.name.compare(name, Qt::CaseInsensitive) == 0) return !column.takesNull;
    return false;
  }

  // ---- Yes/No columns

  const QList<YesNoColumn>& yesNoColumns(const QString& table) {
    auto found = known_.find(table);
    if (found == known_.end()) found = known_.insert(table, yesNoColumns_(table));
    return *found;
  }

  /// Of any table that the statement reads or changes.
  bool isYesNo(const QString& name) {
    for (qsizetype at = 0; at < tokens_.size(); ++at) {
      const bool before = tokens_.isWord(at, u"from") || tokens_.isWord(at, u"join") ||
                          tokens_.isWord(at, u"update") || tokens_.isWord(at, u"into");
      const qsizetype table = tokens_.next(at);
      if (!before || !isName(table)) continue;
      for (const YesNoColumn& column : yesNoColumns(tokens_[table].text))
        if (column.name.compare(name, Qt::CaseInsensitive) == 0) return true;
    }
    return false;
  }

  /// Where the value ends that begins here, when it is a number that no bit is equal to.
  std::optional<qsizetype> foreignNumber(qsizetype at) const {
    if (tokens_.is(at, Kind::Parameter)) {
      if (!isForeignToBits(given_.value(numbers_.value(at), false))) return std::nullopt;
      return at;
    }
    const bool negative = tokens_.isMark(at, u'-');
    const qsizetype digits = negative ? tokens_.next(at) : at;
    if (!tokens_.is(digits, Kind::Number)) return std::nullopt;
    const double number = tokens_[digits].text.toDouble();
    if (number == 0 || (number == 1 && !negative)) return std::nullopt;
    return digits;
  }

  /// "= -1" or "<> -1" behind a name; gives whether it was one of a Yes/No column and is written.
  bool writeComparison() {
    qsizetype value = tokens_.next(at_);
    const bool unequal = tokens_.isMark(value, u'<') && tokens_.isMark(value + 1, u'>');
    if (!unequal && !tokens_.isMark(value, u'=')) return false;
    value = tokens_.next(unequal ? value + 1 : value);
    const auto end = foreignNumber(value);
    if (!end || !isYesNo(tokens_[at_].text)) return false;
    writeName();
    out_ += unequal ? u" <> CAST("_qs : u" = CAST("_qs;
    for (at_ = value; at_ <= *end; ++at_) write();
    out_ += u" AS bit)"_qs;
    at_ = *end;
    return true;
  }

  // ---- one token

  void write() {
    const Token& token = tokens_[at_];
    if (defaults_.contains(at_)) {
      out_ += u"DEFAULT"_qs;
      return;
    }
    switch (token.kind) {
      case Kind::Text:
        out_ += isAscii(token.text) ? quoted(token.text) : nationalText(token.text);
        return;
      case Kind::Date:
        // style 126: in this form no language turns day and month round
        out_ += u"CONVERT(datetime, '"_qs + isoText(dateOfLiteral(token.text)) + u"', 126)"_qs;
        return;
      case Kind::Parameter:
        writeParameter();
        return;
      case Kind::Name:
        if (!writeComparison()) writeName();
        return;
      case Kind::Word:
        writeWord();
        return;
      case Kind::Mark:
        out_ += token.text == u'&' ? u"+"_qs : token.text;
        return;
      case Kind::Blank:
      case Kind::Number:
        break;
    }
    out_ += token.text;
  }

  void writeName() {
    const Token& token = tokens_[at_];
    out_ += token.kind == Kind::Name ? u'[' + token.text + u']' : token.text;
  }

  void writeWord() {
    if (tokens_.isWord(at_, u"true"))
      out_ += u"CAST(1 AS bit)"_qs;
    else if (tokens_.isWord(at_, u"false"))
      out_ += u"CAST(0 AS bit)"_qs;
    else if (!writeComparison())
      writeName();
  }

  void writeParameter() {
    const int number = numbers_.value(at_);
    if (number < given_.size() && isNothing(given_[number])) {
      out_ += u"NULL"_qs;
      return;
    }
    if (number < given_.size()) kept_.append(given_[number]);
    out_ += u'?';
  }

  const Tokens tokens_;
  const QList<basic::Value>& given_;
  const YesNoColumns& yesNoColumns_;
  QHash<qsizetype, int> numbers_;  // of the parameters, by their places
  QHash<QString, QList<YesNoColumn>> known_;
  QList<qsizetype> defaults_;  // the places of Nulls that stand for a default
  QList<basic::Value> kept_;
  qsizetype at_ = 0;
  QString out_;
};

}  // namespace

Translation fromAccess(const QString& sql, const QList<basic::Value>& parameters,
                       const YesNoColumns& yesNoColumns) {
  return Translator(withoutDeleteStar(sql), parameters, yesNoColumns).run();
}

QString shapeOf(const QList<basic::Value>& parameters) {
  QString shape;
  for (const basic::Value& value : parameters)
    shape += isNothing(value) ? u'n' : isForeignToBits(value) ? u'f' : u'v';
  return shape;
}

QList<basic::Value> sentOf(const QList<basic::Value>& parameters) {
  QList<basic::Value> sent;
  for (const basic::Value& value : parameters)
    if (!isNothing(value)) sent.append(value);
  return sent;
}

QString nationalText(const QString& text) {
  return u'N' + quoted(wholeText(text));
}

}  // namespace platform::sql::odbc
