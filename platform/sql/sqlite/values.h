#pragma once
#include "platform/sql/driver.h"

#include <QVariant>

namespace platform::sql::sqlite {

// How values stand in the file, so that other programs read them without knowing this one:
//   Yes/No      -1 and 0
//   dates       YYYY-MM-DDTHH:MM:SS, which sorts and compares as text
//   currency    a number with up to four decimals; an amount that a double cannot carry exactly is refused
//   single      the shortest decimal number that reads back as the same single (7.1, not 7.0999999)

QString storedDate(const basic::Date& date);

QVariant toStored(const basic::Value& value);
/// A stored value as the column's type has it; Null for no value. A text in a date column that is no date
/// stays text.
basic::Value fromStored(const QVariant& stored, Type type);

/// The type name that a column is declared with, and back. An unknown name counts as Text of no set size.
QString declaredType(const Column& column);
Column typeOfDeclaration(const QString& declaration);
/// For a column that is computed: by the first value that it holds.
Type typeOfValue(const QVariant& stored);

}  // namespace platform::sql::sqlite
