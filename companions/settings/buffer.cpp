#include "companions/settings/buffer.h"

#include "companions/settings/places.h"
#include "companions/settings/texts.h"
#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/basic/text.h"
#include "settings/modNameCheck.h"

#include <QDir>

#include <optional>

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::basic;

namespace {

inline constexpr double usualWholeDay = 8, usualLunch = 0.75;
inline constexpr double longestDay = 24, longestLunch = 7;
/// The copy in the calendar is read back as a whole number of 16 bits.
inline constexpr double highestRate = 32767;

std::optional<double> numberIn(const QString& text) {
  const QString trimmed = text.trimmed();
  if (trimmed.isEmpty() || !IsNumeric(trimmed)) return std::nullopt;
  try {
    return CDbl(trimmed);
  } catch (const platform::Failure&) {
    return std::nullopt;
  }
}

QString notANumber(const QString& text, double example) {
  return texts::notANumber.arg(text, shownNumber(example));
}

bool holdsControl(const QString& text) {
  for (const QChar sign : text)
    if (sign.category() == QChar::Other_Control) return true;
  return false;
}

QString pathProblem(const QList<CalendarEntry>& calendars, qsizetype index, const QString& folder) {
  const auto absolute = [&](const CalendarEntry& entry) {
    return QDir::cleanPath(QDir(folder).absoluteFilePath(entry.path));
  };
  const CalendarEntry& entry = calendars[index];
  if (entry.path.isEmpty()) return texts::pathMissing;
  if (holdsControl(entry.path)) return texts::controlSign;
  for (qsizetype i = 0; i < index; ++i)
    if (absolute(calendars[i]) == absolute(entry)) return texts::pathTwice.arg(calendars[i].name);
  return lookAtCalendar(absolute(entry), entry.readOnly).problem;
}

QString calendarNameProblem(const QString& name) {
  if (name.trimmed().isEmpty()) return fncNameProblemText(NameProblem::Empty);
  return holdsControl(name) ? texts::controlSign : QString();
}

void add(QList<FieldText>& problems, Field field, const QString& text, qsizetype index = 0) {
  if (!text.isEmpty()) problems.append({field, text, index});
}

QStringList without(QStringList texts, qsizetype index) {
  texts.removeAt(index);
  return texts;
}

}  // namespace

QString shownNumber(double value) {
  return CStr(value);
}

SettingsBuffer defaultSettings() {
  SettingsBuffer buffer;
  buffer.convert24Hours = shownNumber(usualWholeDay);
  buffer.removeLunchHours = shownNumber(usualLunch);
  buffer.personalRate = shownNumber(0);
  return buffer;
}

QString personNameProblem(const QString& name) {
  if (name.trimmed().isEmpty()) return texts::noPersonName;
  if (holdsControl(name)) return texts::controlSign;
  return fncFindNameProblem(name) == NameProblem::TooLong ? fncNameProblemText(NameProblem::TooLong)
                                                          : QString();
}

QString wholeDayProblem(const QString& hours) {
  const auto number = numberIn(hours);
  if (!number) return notANumber(hours, 7.5);
  return *number > 0 && *number <= longestDay ? QString() : texts::wholeDayRange;
}

QString lunchProblem(const QString& hours) {
  const auto number = numberIn(hours);
  if (!number) return notANumber(hours, usualLunch);
  return *number >= 0 && *number <= longestLunch ? QString() : texts::lunchRange;
}

QString rateProblem(const QString& rate) {
  const auto number = numberIn(rate);
  if (!number) return notANumber(rate, 450.5);
  if (*number < 0 || *number > highestRate) return texts::rateRange.arg(shownNumber(highestRate));
  const double units = *number * 10000;
  constexpr double tolerance = 1e-6;
  return std::abs(units - roundHalfEven(units)) < tolerance ? QString() : texts::rateDecimals;
}

QString serverTextProblem(const QString& text) {
  if (holdsControl(text)) return texts::controlSign;
  for (const QChar sign : QStringLiteral(";=\"'"))
    if (text.contains(sign)) return texts::connectionSign;
  return {};
}

QString listNameProblem(const QList<NamedList>& lists, qsizetype index) {
  QStringList names;
  for (const NamedList& list : lists) names.append(list.name);
  return fncNameProblem(lists[index].name, without(names, index));
}

QString valueProblem(const NamedList& list, const QString& value) {
  return fncNameProblem(value, list.values);
}

QList<FieldText> calendarProblems(const SettingsBuffer& buffer, const QString& folder) {
  QList<FieldText> problems;
  add(problems, Field::PersonName, personNameProblem(buffer.personName));
  if (buffer.calendars.isEmpty()) add(problems, Field::Calendars, texts::noCalendar);
  bool open = false;
  for (qsizetype i = 0; i < buffer.calendars.size(); ++i) {
    add(problems, Field::CalendarName, calendarNameProblem(buffer.calendars[i].name), i);
    add(problems, Field::CalendarPath, pathProblem(buffer.calendars, i, folder), i);
    open = open || buffer.calendars[i].id == buffer.openCalendar;
  }
  if (!open && !buffer.calendars.isEmpty()) add(problems, Field::Calendars, texts::noOpenCalendar);
  return problems;
}

QString noDriverText(const QString& provider) {
  return provider.compare(sqlServerProvider, Qt::CaseInsensitive) == 0 ? texts::noServerDriver
                                                                       : texts::noDriverFor.arg(provider);
}

QString connectionText(const SettingsBuffer& buffer) {
  return buffer.serverByText ? buffer.serverText.trimmed()
                             : withLogin(buffer.storedServerText, buffer.sqlServer);
}

void takeServerText(SettingsBuffer& buffer, const QString& text) {
  buffer.serverByText = !fieldsShow(text);
  if (buffer.serverByText) {
    buffer.serverText = text.trimmed();
  } else {
    buffer.storedServerText = text;
    buffer.sqlServer = loginOf(text);
  }
}

namespace {

/// A login as it was read is left alone, whatever a login typed here may not hold.
QList<FieldText> loginProblems(const SettingsBuffer& buffer) {
  QList<FieldText> problems;
  const SqlServerLogin& login = buffer.sqlServer;
  if (!buffer.storedServerText.isEmpty() && login == loginOf(buffer.storedServerText)) return problems;
  const auto needed = [&](Field field, const QString& text, const QString& missing) {
    add(problems, field, text.trimmed().isEmpty() ? missing : serverTextProblem(text));
  };
  needed(Field::Server, login.server, texts::serverMissing);
  needed(Field::ServerDatabase, login.database, texts::serverDatabaseMissing);
  if (login.trusted) return problems;
  needed(Field::User, login.user, texts::userMissing);
  add(problems, Field::Password, serverTextProblem(login.password));
  return problems;
}

}  // namespace

QList<FieldText> targetProblems(const SettingsBuffer& buffer, bool hasServerDriver) {
  QList<FieldText> problems;
  if (buffer.reportChoice == reportToAccess)
    add(problems, Field::DatabaseFolder,
        holdsControl(buffer.databaseFolder)
            ? texts::controlSign
            : lookAtDatabase(buffer.databaseFolder, buffer.makeDatabase).problem);
  if (buffer.reportChoice != reportToSqlServer) return problems;
  const QString text = connectionText(buffer);
  if (buffer.serverByText) {
    add(problems, Field::ConnectionText, connectionTextProblem(text));
    if (!problems.isEmpty()) return problems;  // whose driver it asks for is not known yet
  }
  if (!hasServerDriver) add(problems, Field::ReportChoice, noDriverText(providerOf(text)));
  return buffer.serverByText ? problems : problems + loginProblems(buffer);
}

QList<FieldText> listProblems(const QList<NamedList>& lists) {
  QList<FieldText> problems;
  if (lists.isEmpty()) add(problems, Field::Lists, texts::noLists);
  if (lists.size() > mostLists) add(problems, Field::Lists, texts::tooManyLists);
  for (qsizetype i = 0; i < lists.size(); ++i) {
    add(problems, Field::ListName, listNameProblem(lists, i), i);
    if (lists[i].values.isEmpty()) add(problems, Field::ListValues, texts::noValues, i);
    for (qsizetype v = 0; v < lists[i].values.size(); ++v)
      add(problems, Field::ListValues, fncNameProblem(lists[i].values[v], without(lists[i].values, v)), i);
  }
  return problems;
}

QList<FieldText> problemsOf(const SettingsBuffer& buffer, const QString& folder, bool hasServerDriver) {
  QList<FieldText> problems = calendarProblems(buffer, folder);
  problems += targetProblems(buffer, hasServerDriver);
  // also of a rule that is off: the report program reads them all
  add(problems, Field::Convert24Hours, wholeDayProblem(buffer.convert24Hours));
  add(problems, Field::RemoveLunchHours, lunchProblem(buffer.removeLunchHours));
  add(problems, Field::PersonalRate, rateProblem(buffer.personalRate));
  return problems + listProblems(buffer.lists);
}

QStringList listNotes(const QList<NamedList>& lists, const QList<NamedList>& common) {
  QStringList notes;
  for (qsizetype i = 0; i < lists.size(); ++i) {
    QString note;
    if (i < common.size()) {
      QStringList missing;
      for (const QString& value : lists[i].values)
        if (!common[i].values.contains(value, Qt::CaseInsensitive)) missing.append(value);
      if (!missing.isEmpty()) note = texts::notCommon.arg(missing.join(u", "_s));
      if (common[i].name.compare(lists[i].name, Qt::CaseInsensitive) != 0 && !common[i].name.isEmpty())
        note = QStringList{texts::otherListName.arg(common[i].name), note}.join(u' ').trimmed();
    }
    notes.append(note);
  }
  return notes;
}

}  // namespace hourbook
