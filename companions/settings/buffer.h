#pragma once
#include "app/ConfigurationText.h"
#include "companions/settings/namedlist.h"
#include "companions/settings/servertext.h"

#include <QMap>

namespace hourbook {

// What the user can set here. The numbers are the stored ones.
inline constexpr qint32 reportToAsp = 1;
inline constexpr qint32 reportToAccess = 2;
inline constexpr qint32 reportToSqlServer = 3;
inline constexpr qint32 reportToBilling = 4;
inline constexpr qsizetype mostLists = 3;

/// Everything that the personal part of the settings holds, as the user types it: decimals are texts in the
/// system's form, paths the system's own. Nothing here is stored before SettingsStore::save.
struct SettingsBuffer {
  QString personName;
  QList<CalendarEntry> calendars;  // paths as stored; a relative one is taken from the configuration's folder
  QString openCalendar;            // id
  bool keepInCalendar = true;      // a copy on the settings appointment of the open calendar

  qint32 reportChoice = reportToAccess;
  QString databaseFolder;     // of Hourbook3.mdb, without a separator at its end
  bool makeDatabase = false;  // it is to be made there
  SqlServerLogin sqlServer;
  QString storedServerText;   // that the login was read from: what else stands in it is kept
  bool serverByText = false;  // the text below counts, and not the login
  QString serverText;
  QString otherTarget;  // the stored text of a target that this version only keeps

  bool filterPrivate = false, filterRecurring = false, filterEvents = false;
  bool convert24 = false;
  QString convert24Hours;
  bool removeLunch = false;
  QString removeLunchHours;
  bool startGrid = false;
  bool createLocalCube = false, writeSubject = false;  // kept as they are

  QString personalRate;
  QList<NamedList> lists;

  bool operator==(const SettingsBuffer&) const = default;
};

enum class Field {
  PersonName,
  Calendars,
  CalendarName,
  CalendarPath,
  KeepInCalendar,
  ReportChoice,
  DatabaseFolder,
  Server,
  ServerDatabase,
  User,
  Password,
  ConnectionText,
  Filters,
  Convert24Hours,
  RemoveLunchHours,
  StartGrid,
  PersonalRate,
  Lists,
  ListName,
  ListValues,
};

/// What is wrong with a field, or worth knowing about it.
struct FieldText {
  Field field;
  QString text;
  qsizetype index = 0;  // of the calendar or list
  bool operator==(const FieldText&) const = default;
};

/// The settings of someone who has none.
SettingsBuffer defaultSettings();

/// The whole connection text for the server.
QString connectionText(const SettingsBuffer& buffer);
/// Puts a connection text into the buffer: into the fields where they can show it.
void takeServerText(SettingsBuffer& buffer, const QString& text);

/// What keeps the buffer from being saved, in the order of the pages; empty: it may be. `folder` is the
/// configuration's; `hasServerDriver`: there is a driver for the provider of its connection text. Looks at
/// the disk, for the calendars and the database.
QList<FieldText> problemsOf(const SettingsBuffer& buffer, const QString& folder, bool hasServerDriver);

// The same by field: empty texts mean that all is well.
QString personNameProblem(const QString& name);
QString wholeDayProblem(const QString& hours);
QString lunchProblem(const QString& hours);
QString rateProblem(const QString& rate);
QString listNameProblem(const QList<NamedList>& lists, qsizetype index);
QString valueProblem(const NamedList& list, const QString& value);
QString serverTextProblem(const QString& text);
/// That there is no driver for the provider.
QString noDriverText(const QString& provider);
QList<FieldText> targetProblems(const SettingsBuffer& buffer, bool hasServerDriver);
QList<FieldText> listProblems(const QList<NamedList>& lists);
QList<FieldText> calendarProblems(const SettingsBuffer& buffer, const QString& folder);

/// What a personal list lacks in the common ones; not a problem, since those may be changed elsewhere.
QStringList listNotes(const QList<NamedList>& lists, const QList<NamedList>& common);

/// A number as the system shows it, and as the stored text of one ("450,5" is "450,5" again).
QString shownNumber(double value);

}  // namespace hourbook
