#pragma once
#include "platform/basic/value.h"

#include <QString>

#include <optional>

// What statements of the Access kind have in common for all drivers, whatever their engine's own language.
namespace platform::sql {

/// Is this the first word of the statement, in whatever case?
bool beginsWith(const QString& sql, QLatin1String word);

/// Select, insert, update and delete. All else is the engine's own language and passes as it stands.
bool isAccessStatement(const QString& sql);

/// A select, which changes nothing (but for one into a new table).
bool isSelectStatement(const QString& sql);

/// Takes the "top n" out of a select, together with blanks and ";" at its end; nothing, and the statement
/// untouched, when it has none. Failure 3075 for a percentage.
std::optional<QString> takeTop(QString& sql);

/// Takes the star out of "delete * from".
QString withoutDeleteStar(const QString& sql);

/// Part of a name or number that stands without brackets.
bool isWordSign(QChar c);

/// What stands between "#" and "#": 2/5/2024 (month first, in every language) or 2024-02-05, with a time or
/// without. Failure 3075 when it is none.
basic::Date dateOfLiteral(const QString& inner);

[[noreturn]] void unreadableStatement(const QString& what, const QString& where);  // Failure 3075

/// YYYY-MM-DDTHH:MM:SS, and back: with a blank or T, with or without time, fractions and offset, which are
/// left out. Nothing when the text is no date.
QString isoText(const basic::Date& date);
std::optional<basic::Date> dateOfIsoText(const QString& text);

/// Whole characters: half of a surrogate pair and the NUL character, at which other programs stop reading,
/// become the replacement character U+FFFD. Never a null text.
QString wholeText(const QString& text);

}  // namespace platform::sql
