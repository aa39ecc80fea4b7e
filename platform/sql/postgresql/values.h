#pragma once
#include "platform/sql/driver.h"
#include "platform/sql/postgresql/connection.h"

namespace platform::sql::postgresql {

// How values stand in the database:
//   Yes/No      boolean
//   currency    numeric(19,4), exact in its whole range
//   dates       timestamp without time zone: the wall clock
//   texts       varchar(n) and text in the order of texts of `generalOrder`; half of a surrogate pair and the
//               NUL character become the replacement character U+FFFD

/// The collation of text columns: without regard to case, in all letters.
inline constexpr QLatin1String generalOrder("general_ci");

/// A value as the server takes it for a parameter of this type; `writes` in a statement that stores it, where
/// Null means No for a Yes/No column.
Parameter parameterOf(const basic::Value& value, unsigned type, bool writes);

/// Failure 3421 for what is none of the type; a text in a date column that is no date stays text.
basic::Value valueOfText(const QByteArray& text, Type type);

/// Type and size of a column by the engine's number for its type and the modifier beside it. A number of any
/// size without a modifier counts as Double.
Column columnOfType(unsigned type, int modifier);

/// For a computed number of any size: Currency if all values have at most four decimals and fit.
bool fitsCurrency(const QByteArray& text);
bool isUnboundNumber(unsigned type, int modifier);

/// What a column is declared with.
QString declaredType(const Column& column);

}  // namespace platform::sql::postgresql
