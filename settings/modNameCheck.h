#pragma once
#include <QString>
#include <QStringList>

namespace hourbook {

enum class NameProblem {
  None,
  Empty,      // or of blanks alone: nothing could be chosen by it
  Unprinted,  // a line break, tab or other sign without a picture, or half a surrogate pair
  Blank,      // at the beginning or end: readers trim it away
  Semicolon,  // ends a value in the personal settings
  Separator,  // the machine's list separator ends a value in `Categories`
  Colon,      // ends the name of a list in the personal settings
  TooLong,    // for its column
  Double,     // equal to another regardless of case: one of the two would be dropped
};

/// Longest name, in UTF-16 units: what the database's columns hold.
inline constexpr qsizetype longestName = 255;

/// What keeps the name of a value or of a list from being stored and read back, the first of the list above
/// that is found. One rule for both, since a user should not have to know where which of them is stored.
/// `others` are the names of the same list without this one.
NameProblem fncFindNameProblem(const QString& name, const QStringList& others = {});
/// The same as a text for the user; empty: the name is fine.
QString fncNameProblem(const QString& name, const QStringList& others = {});
/// The text for a problem; empty for `None`.
QString fncNameProblemText(NameProblem problem);

}  // namespace hourbook
