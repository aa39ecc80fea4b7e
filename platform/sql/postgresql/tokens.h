#pragma once
#include <QList>
#include <QString>

namespace platform::sql::postgresql {

/// A piece of a statement. Put together again, the texts of Blank, Word, Number and Mark are what stood
/// there; a Text, Date and Name is without its quotes, number signs and brackets.
struct Token {
  enum class Kind { Blank, Word, Number, Name, Text, Date, Parameter, Mark };
  Kind kind = Kind::Blank;
  QString text;
};

/// Failure 3075 for what is opened and not closed.
QList<Token> tokensOf(const QString& sql);

}  // namespace platform::sql::postgresql
