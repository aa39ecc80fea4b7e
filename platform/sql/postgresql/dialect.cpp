#include "platform/sql/postgresql/dialect.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"
#include "platform/sql/schema.h"
#include "platform/sql/tokens.h"

#include <QSet>

namespace platform::sql::postgresql {

namespace {

constexpr int longestName = 63;  // bytes

QString inQuotes(const QString& name) {
  return u'"' + QString(name).replace(u"\""_qs, u"\"\""_qs) + u'"';
}

/// Words that are none of a table's or column's name unless they stand in brackets.
bool isReserved(const QString& word) {
  static const QSet<QString> words{u"select"_qs,  u"distinct"_qs, u"all"_qs,     u"top"_qs,      u"from"_qs,
                                   u"where"_qs,   u"order"_qs,    u"group"_qs,   u"by"_qs,       u"having"_qs,
                                   u"union"_qs,   u"insert"_qs,   u"into"_qs,    u"values"_qs,   u"update"_qs,
                                   u"set"_qs,     u"delete"_qs,   u"default"_qs, u"and"_qs,      u"or"_qs,
                                   u"not"_qs,     u"in"_qs,       u"is"_qs,      u"null"_qs,     u"like"_qs,
                                   u"between"_qs, u"exists"_qs,   u"as"_qs,      u"join"_qs,     u"inner"_qs,
                                   u"left"_qs,    u"right"_qs,    u"outer"_qs,   u"full"_qs,     u"cross"_qs,
                                   u"on"_qs,      u"asc"_qs,      u"desc"_qs,    u"case"_qs,     u"when"_qs,
                                   u"then"_qs,    u"else"_qs,     u"end"_qs,     u"true"_qs,     u"false"_qs,
                                   u"cast"_qs,    u"limit"_qs,    u"offset"_qs,  u"returning"_qs};
  return words.contains(word.toLower());
}

/// Walks over a statement and writes the server's form of it.
class Translator {
 public:
  Translator(const QString& sql, const Catalogue& catalogue, qint64 lastIdentity)
      : tokens_(tokensOf(sql)), catalogue_(catalogue), lastIdentity_(lastIdentity) {
    findTables();
    if (isWord(next(-1), u"insert")) readInsert();
  }

  Translation run() {
    Translation translation;
    const qsizetype first = next(-1);
    translation.writes = isWord(first, u"insert") || isWord(first, u"update");
    for (at_ = 0; at_ < tokens_.size(); ++at_) write();
    translation.sql = out_;
    if (!target_ || !target_->counter() || target_->isView || returning_) return translation;
    while (!out_.isEmpty() && (out_.back().isSpace() || out_.back() == u';')) out_.chop(1);
    translation.sql = out_ + u" RETURNING "_qs + inQuotes(target_->counter()->name);
    translation.counted = target_;
    translation.givesCounter = insertColumns_.contains(target_->counter());
    return translation;
  }

 private:
  using Kind = Token::Kind;

  qsizetype next(qsizetype at) const { return tokens_.next(at); }
  qsizetype previous(qsizetype at) const { return tokens_.previous(at); }
  bool is(qsizetype at, Kind kind) const { return tokens_.is(at, kind); }
  bool isWord(qsizetype at, QStringView word) const { return tokens_.isWord(at, word); }
  bool isMark(qsizetype at, QChar mark) const { return tokens_.isMark(at, mark); }
  bool isName(qsizetype at) const {
    return is(at, Kind::Name) || (is(at, Kind::Word) && !isReserved(tokens_[at].text));
  }

  void findTables() {
    for (qsizetype at = 0; at < tokens_.size(); ++at) {
      returning_ = returning_ || isWord(at, u"returning");
      if (!isName(at)) continue;
      const CatalogueTable* table = catalogue_.table(tokens_[at].text);
      if (table && !tables_.contains(table)) tables_.append(table);
    }
  }

  const Column* columnNamed(const QString& name) const {
    for (const CatalogueTable* table : tables_)
      if (const Column* column = table->column(name)) return column;
    return nullptr;
  }

  // ---- insert into table (columns) values (...), (...)

  void readInsert() {
    qsizetype at = next(next(next(-1)));  // behind "insert into"
    if (!isName(at)) return;
    target_ = catalogue_.table(tokens_[at].text);
    if (!target_) return;
    at = next(at);
    if (isMark(at, u'(')) {
      for (at = next(at); isName(at) || isMark(at, u','); at = next(at))
        if (!isMark(at, u',')) insertColumns_.append(target_->column(tokens_[at].text));
      at = next(at);
    } else if (isWord(at, u"values")) {
      for (const CatalogueTable::Entry& entry : target_->entries) insertColumns_.append(&entry.column);
    }
    if (!isWord(at, u"values")) return;
    for (at = next(at); isMark(at, u'('); at = next(at)) {
      at = readRow(at);
      if (isMark(next(at), u',')) at = next(at);
    }
  }

  /// The Yes/No values of one row; gives its closing bracket.
  qsizetype readRow(qsizetype open) {
    int depth = 0, column = 0;
    qsizetype start = next(open), at = open;
    for (; at < tokens_.size(); ++at) {
      if (isMark(at, u'(')) ++depth;
      const bool closes = isMark(at, u')') && --depth == 0;
      if (!closes && !(depth == 1 && isMark(at, u','))) continue;
      const Column* held = insertColumns_.value(column++, nullptr);
      if (held && held->type == Type::Boolean) takeYesNo(start, at);
      start = next(at);
      if (closes) break;
    }
    return at;
  }

  /// -1, 0 or Null between two places becomes what the server has for it.
  void takeYesNo(qsizetype start, qsizetype end) {
    const qsizetype value = isMark(start, u'-') ? next(start) : start;
    if (next(value) != end) return;
    if (is(value, Kind::Number))
      yesNo_.insert(start, {value, tokens_[value].text.toDouble() != 0});
    else if (value == start && isWord(value, u"null"))
      yesNo_.insert(start, {value, false});
  }

  // ---- one token

  void write() {
    const Token& token = tokens_[at_];
    if (const auto found = yesNo_.constFind(at_); found != yesNo_.cend()) {
      out_ += found->second ? u"TRUE"_qs : u"FALSE"_qs;
      at_ = found->first;
      return;
    }
    switch (token.kind) {
      case Kind::Text:
        out_ += quotedText(token.text);
        return;
      case Kind::Date:
        out_ += u"timestamp "_qs + quotedText(isoText(dateOfLiteral(token.text)));
        return;
      case Kind::Parameter:
        out_ += u'$' + QString::number(++parameters_);
        return;
      case Kind::Name:
        writeName();
        return;
      case Kind::Word:
        writeWord();
        return;
      case Kind::Mark:
        out_ += token.text == u'&' ? u"||"_qs : token.text;
        return;
      case Kind::Blank:
      case Kind::Number:
        break;
    }
    out_ += token.text;
  }

  void writeWord() {
    const QString& word = tokens_[at_].text;
    if (word.compare(u"@@identity", Qt::CaseInsensitive) == 0) {
      out_ += QString::number(lastIdentity_);
    } else if (isWord(at_, u"like")) {
      // the order of texts that columns have cannot match patterns
      out_ += u"COLLATE \"und-x-icu\" ILIKE"_qs;
    } else if (isWord(at_, u"not") && isWord(next(at_), u"like")) {
      out_ += u"COLLATE \"und-x-icu\" NOT ILIKE"_qs;
      at_ = next(at_);
    } else if (isReserved(word)) {
      out_ += word;
    } else {
      writeName();
    }
  }

  void writeName() {
    const Token& token = tokens_[at_];
    const qsizetype before = previous(at_);
    const bool qualified = isMark(before, u'.');
    const bool bracketed = token.kind == Kind::Name;
    if (!qualified) {
      if (const CatalogueTable* table = catalogue_.table(token.text)) {
        out_ += inQuotes(table->name);
        return;
      }
    }
    const Column* column = nullptr;
    if (qualified && isName(previous(before)))
      if (const CatalogueTable* table = catalogue_.table(tokens_[previous(before)].text))
        column = table->column(token.text);
    if (!column && (bracketed || !isMark(next(at_), u'('))) column = columnNamed(token.text);
    if (!column) {
      // not folded by this driver: an alias must stay equal to itself wherever it stands
      out_ += bracketed ? inQuotes(token.text) : token.text;
      return;
    }
    out_ += inQuotes(column->name);
    if (column->type == Type::Boolean) writeComparison();
  }

  /// Behind a Yes/No column: "= -1", "<> 0", also as an update sets it.
  void writeComparison() {
    qsizetype at = next(at_);
    const bool unequal = isMark(at, u'<') && isMark(at + 1, u'>');
    if (!unequal && !isMark(at, u'=')) return;
    if (unequal) ++at;
    qsizetype value = next(at);
    if (isMark(value, u'-')) value = next(value);
    if (!is(value, Kind::Number)) return;
    out_ += unequal ? u" <> "_qs : u" = "_qs;
    out_ += tokens_[value].text.toDouble() != 0 ? u"TRUE"_qs : u"FALSE"_qs;
    at_ = value;
  }

  const Tokens tokens_;
  const Catalogue& catalogue_;
  const qint64 lastIdentity_;
  QList<const CatalogueTable*> tables_;  // that the statement names
  const CatalogueTable* target_ = nullptr;
  QList<const Column*> insertColumns_;
  QHash<qsizetype, std::pair<qsizetype, bool>> yesNo_;  // where it begins, where it ends, what it means
  bool returning_ = false;
  qsizetype at_ = 0;
  int parameters_ = 0;
  QString out_;
};

}  // namespace

Translation fromAccess(const QString& sql, const Catalogue& catalogue, qint64 lastIdentity) {
  QString statement = withoutDeleteStar(sql);
  const auto top = takeTop(statement);
  Translation translation = Translator(statement, catalogue, lastIdentity).run();
  if (top) translation.sql += u" LIMIT "_qs + *top;
  return translation;
}

QString withNumberedParameters(const QString& sql) {
  QString out;
  bool inText = false;
  int count = 0;
  for (const QChar c : sql) {
    if (c == u'\'') inText = !inText;
    if (c == u'?' && !inText)
      out += u'$' + QString::number(++count);
    else
      out += c;
  }
  return out;
}

QString quotedName(const QString& name) {
  schema::requireName(name, name.toUtf8().size() <= longestName);
  return inQuotes(name);
}

QString quotedText(const QString& text) {
  return u'\'' + wholeText(text).replace(u"'"_qs, u"''"_qs) + u'\'';
}

}  // namespace platform::sql::postgresql
