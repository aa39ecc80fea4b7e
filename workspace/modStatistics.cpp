#include "workspace/modStatistics.h"

#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/locale/locale.h"
#include "shell/modErrorReport.h"
#include "shell/modScriptingDic.h"
#include "workspace/modChart.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <cmath>
#include <utility>

namespace hourbook {

using platform::basic::Date;
using platform::basic::Format;
using platform::basic::Value;
using HoursByGroup = platform::scripting::Dictionary<double>;

namespace {

inline constexpr int firstCountedRow = 2;
inline constexpr int lastCountedRow = 199;
inline constexpr int weekdayColumn = 5;
inline constexpr int hoursColumn = 6;

/// Tab 0 groups by weekday, the others by the meta list of their number.
int columnOfTab(int tab) {
  return tab <= 0 ? weekdayColumn : tab + 1;
}

/// A decimal number: the list writes hours with "." in every language, a user as the system's format has
/// them. A cell that was emptied holds no hours.
double hoursOf(const Value& cell) {
  if (const auto* text = std::get_if<QString>(&cell)) {
    if (text->isEmpty()) return 0;
    bool plain = false;
    const double hours = text->trimmed().toDouble(&plain);
    if (plain && std::isfinite(hours)) return hours;
  }
  return platform::basic::CDbl(cell);
}

double count(ReportForm& form, HoursByGroup& hoursByGroup) {
  const int column = columnOfTab(form.tbsViews.Index());
  double total = 0;
  subLog(QStringLiteral("Looping through values to build graph"));
  for (int row = lastCountedRow; row >= firstCountedRow; --row) {
    if (form.exsThisWeek.Cell(row, weekdayColumn).Text().isEmpty()) continue;
    const QString key = form.exsThisWeek.Cell(row, column).Text();
    const double hours = hoursOf(form.exsThisWeek.Cell(row, hoursColumn).Value());
    total += hours;
    if (hoursByGroup.Exists(key))
      hoursByGroup.Item(key) += hours;
    else
      hoursByGroup.Add(key, hours);
  }
  return total;
}

struct Entry {
  QString key;
  double item;
  QString compared;
};

QString weekdayText(const Date& date) {
  return Format(Value(date), QStringLiteral("ddd")) + u' ' +
         Format(Value(date), QStringLiteral("Short Date"));
}

/// What stands behind a short weekday name of the system and one blank; empty when the text begins with none.
/// The names have any length: one letter in Hungarian, five and a point in Polish.
QString withoutWeekday(const QString& text) {
  QString rest;
  qsizetype longest = 0;
  for (int day = 1; day <= 7; ++day) {
    const QString name = platform::locale::current().weekdayName(day, true) + u' ';
    if (name.size() <= longest || !text.startsWith(name)) continue;
    longest = name.size();
    rest = text.mid(longest);
  }
  return rest;
}

QList<Entry> entriesOf(const HoursByGroup& dictionary, SortField sortField, bool keysAreWeekdays) {
  QList<Entry> entries;
  const QStringList keys = dictionary.Keys();
  for (const QString& key : keys) {
    Entry entry{key, dictionary.Item(key), key};
    if (keysAreWeekdays) {
      const Date date = fncDateOfWeekdayText(key);
      entry.key = weekdayText(date);
      entry.compared = platform::basic::CStr(Value(date));
    }
    if (sortField == SortField::Item) entry.compared = platform::basic::CStr(Value(entry.item));
    entries.append(std::move(entry));
  }
  return entries;
}

}  // namespace

void subCountSpreadSheet() try {
  ReportForm& form = reportForm();
  const auto hoursByGroup = fncCreateDic<double>();
  const double total = count(form, *hoursByGroup);
  if (hoursByGroup->Count() > 1) fncSortDictionary(*hoursByGroup, SortField::Key, form.tbsViews.Index() == 0);
  LoadChartWithLiteral(form.excThisWeek, *hoursByGroup);
  form.lblHours.setCaption(platform::basic::CStr(Value(total)));
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subCountSpreadSheet"));
}

Date fncDateOfWeekdayText(const QString& text) {
  QString rest = withoutWeekday(text);
  if (rest.isEmpty()) {
    // kept: three letters and a point, as the weekdays of most languages are shortened
    rest = text.mid(3);
    if (rest.startsWith(u'.')) rest.remove(0, 1);
  }
  return platform::basic::CDate(Value(platform::basic::Trim(rest)));
}

HoursByGroup& fncSortDictionary(HoursByGroup& dictionary, SortField sortField, bool keysAreWeekdays) try {
  subLog(QStringLiteral("Sorting a Dictionary object"));
  if (dictionary.Count() < 2) return dictionary;
  QList<Entry> entries = entriesOf(dictionary, sortField, keysAreWeekdays);
  for (qsizetype i = 0; i < entries.size(); ++i)
    for (qsizetype j = i; j < entries.size(); ++j)
      if (platform::basic::compareText(entries[i].compared, entries[j].compared) > 0)
        std::swap(entries[i], entries[j]);
  dictionary.RemoveAll();
  for (const Entry& entry : entries) dictionary.Add(entry.key, entry.item);
  return dictionary;
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("fncSortDictionary"));
}

}  // namespace hourbook
