#pragma once
#include <QList>
#include <QString>

namespace platform::locale {

/// A date pattern cut into its pieces: runs of one of the letters d, M, y, and everything else as it stands
/// (text in quotes without the quotes).
struct PatternPiece {
  QChar letter;  // 'd', 'M', 'y', or null for literal text
  int length = 0;
  QString literal;
};

QList<PatternPiece> cutPattern(const QString& pattern);

/// The order in which the pattern names year, month and day, as "yMd", "dMy", "Mdy". A part that the pattern
/// does not name is missing.
QString orderOfParts(const QString& pattern);

/// A pattern of Qt's own data as Windows would have it: no direction marks, years in four digits.
QString fromQtPattern(QString pattern);

}  // namespace platform::locale
