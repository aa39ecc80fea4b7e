#pragma once
#include "platform/basic/value.h"

#include <QStringList>

namespace platform::basic {

/// Pieces between the separators; an empty text gives no piece at all (upper bound -1), not one empty piece.
QStringList Split(const QString& text, const QString& separator);
/// Blanks (U+0020) only, at both ends.
QString Trim(const QString& text);
/// Below, equal, above as -1, 0, 1, without regard to case, by the system's collation.
int compareText(const QString& a, const QString& b);
/// The key under which a dictionary with text comparison files a text.
QString foldedKey(const QString& text);

/// Formats a value. Dates: "ddd", "dddd", "yyyy-mm-dd" (any case), "00" for a day or month number, "Short
/// Date", "General Date". Numbers: "0.##", "0", "00", "General Number". A text that is no date comes back as
/// it stands from a date format, as the language's own Format does; so does Empty as "". Rounds halves
/// away from zero, by the 15 digits that are shown; the conversions round them to even. Format signs outside
/// of these (sections, quarters, AM/PM, ...) fail with Failure 5.
QString Format(const Value& v, const QString& format);

inline const QString vbCrLf = QStringLiteral("\r\n");
inline const QString vbTab = QStringLiteral("\t");

}  // namespace platform::basic
