#pragma once
#include <QByteArray>
#include <QDate>
#include <QString>

namespace bench {

/// A calendar as real ones are: single events over twelve years, half a percent of series (daily, weekly,
/// monthly; COUNT, UNTIL, unbounded; exceptions and overrides), several zones, all-day and multi-day,
/// categories, descriptions up to 2 kB, non-ASCII. Equal arguments give equal bytes.
struct CalendarSize {
  int items = 1000;
  quint32 seed = 1;
  QDate middle = QDate(2024, 6, 12);
};

/// One file with every item.
QByteArray bigFile(const CalendarSize& size);
/// One file an item, into `folder` (made when missing).
void folderOfFiles(const CalendarSize& size, const QString& folder);
/// `count` marked items in the week of `middle`, in the form of one file.
QByteArray markedWeek(int count, const QDate& monday, const QString& separator);

}  // namespace bench
