#pragma once
#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTimeZone>

namespace sampledata {

/// What the calendar is made from. Equal plans give equal calendars, byte for byte.
struct Plan {
  quint32 seed = 1;
  QDate today;
  QTimeZone zone;
  QString listSeparator;  // joins the values of a marking
};

/// One file of the calendar folder.
struct CalendarFile {
  QString name;
  QByteArray content;
};

/// An appointment that counts as reported already: its row stands in the database too.
struct PostedRow {
  QString subject, body;
  QDateTime start;  // on the wall clock
  double hours = 0;
  QStringList values;  // one of each list
  QDateTime reported;
};

struct SampleCalendar {
  QList<CalendarFile> files;
  QList<PostedRow> posted;
};

/// About three months round today: meetings in several languages, series with exceptions, all-day, private
/// and overlapping ones, marked wholly, partly and not at all, some reported already.
SampleCalendar makeCalendar(const Plan& plan);

}  // namespace sampledata
