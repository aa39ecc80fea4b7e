#pragma once
#include "platform/sql/driver.h"

#include <QVariant>

namespace platform::sql::sqlite {

// How values stand in the file, so that other programs read them without knowing this one:
//   Yes/No      -1 and 0
//   dates       YYYY-MM-DDTHH:MM:SS, which sorts and compares as text
//   currency    a number with up to four decimals; an amount that a double cannot carry exactly is refused
//   single      the shortest decimal number that reads back as the same single (7.1, not 7.0999999)
//   texts       whole characters: half of a surrogate pair and the NUL character, at which other programs
//   stop
//               reading, become the replacement character U+FFFD

QString storedDate(const basic::Date& date);

QString storedText(const QString& text);

QVariant toStored(const basic::Value& value);
/// A stored value as the column's type has it; Null for no value. A text in a date column that is no date
/// stays text; any other value that is none of the type is Failure 3421.
basic::Value fromStored(const QVariant& stored, Type type);

/// The type name that a column is declared with, and back. An unknown name counts as Text of no set size.
QString declaredType(const Column& column);
Column typeOfDeclaration(const QString& declaration);
/// For a column that is computed: by the values that it holds.
Type typeOfValues(const QVariantList& stored);

}  // namespace platform::sql::sqlite
