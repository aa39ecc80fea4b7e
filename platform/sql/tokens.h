#pragma once
#include <QList>
#include <QString>

namespace platform::sql {

/// A piece of a statement. Put together again, the texts of Blank, Word, Number and Mark are what stood
/// there; a Text, Date and Name is without its quotes, number signs and brackets.
struct Token {
  enum class Kind { Blank, Word, Number, Name, Text, Date, Parameter, Mark };
  Kind kind = Kind::Blank;
  QString text;
};

/// What a number sign begins that stands before no digit.
enum class NumberSign {
  Date,  // nothing: it has to be a date
  Name   // the name of a temporary table
};

/// Comments are blanks. Failure 3075 for what is opened and not closed.
QList<Token> tokensOf(const QString& sql, NumberSign sign = NumberSign::Date);

/// What stands around a token of a statement; blanks are passed over.
class Tokens {
 public:
  using Kind = Token::Kind;
  explicit Tokens(QList<Token> tokens) : tokens_(std::move(tokens)) {}
  qsizetype size() const { return tokens_.size(); }
  const Token& operator[](qsizetype at) const { return tokens_[at]; }
  qsizetype next(qsizetype at) const;      // the size at the end
  qsizetype previous(qsizetype at) const;  // -1 at the beginning
  bool is(qsizetype at, Kind kind) const;
  bool isWord(qsizetype at, QStringView word) const;  // without regard to case
  bool isMark(qsizetype at, QChar mark) const;

 private:
  QList<Token> tokens_;
};

}  // namespace platform::sql
