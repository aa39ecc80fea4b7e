#pragma once
#include <QString>
#include <QStringList>

namespace hourbook {

/// What a name is for: each stands in other stored forms, which other signs would break.
enum class NameKind {
  Value,  // of a meta list: in `Categories` between list separators, in the personal settings before ";"
  List,   // a meta list itself: in the personal settings before ":"
};

enum class NameProblem {
  None,
  Empty,      // or of blanks alone: nothing could be chosen by it
  Unprinted,  // a line break, tab or other sign without a picture, or half a surrogate pair
  Blank,      // at the beginning or end: readers trim it away
  Separator,  // the machine's list separator: `Categories` could not be read back
  Semicolon,  // the personal settings could not be read back
  Colon,      // likewise, of a list
  TooLong,    // for its column
  Double,     // equal to another regardless of case: one of the two would be dropped
};

/// Longest name, in UTF-16 units: what the database's columns hold.
inline constexpr qsizetype longestName = 255;

/// What keeps a name from being stored and read back, the first of the list above that is found. `others` are
/// the names of the same list without this one.
NameProblem fncFindNameProblem(const QString& name, const QStringList& others = {},
                               NameKind kind = NameKind::Value);
/// The same as a text for the user; empty: the name is fine.
QString fncNameProblem(const QString& name, const QStringList& others = {}, NameKind kind = NameKind::Value);
inline QString fncNameProblem(const QString& name, NameKind kind) {
  return fncNameProblem(name, {}, kind);
}
/// The text for a problem; empty for `None`.
QString fncNameProblemText(NameProblem problem);

}  // namespace hourbook
