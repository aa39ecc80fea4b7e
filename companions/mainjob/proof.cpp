#include "companions/mainjob/proof.h"

#include "companions/console/consoledialogs.h"
#include "platform/basic/convert.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/sql/sqlite/session.h"
#include "shell/ShellValues.h"

namespace companions {

using namespace Qt::StringLiterals;
using platform::basic::CStr;
using platform::basic::Value;

namespace {

QString column(const Value& value) {
  return platform::basic::IsNull(value) ? QString() : CStr(value);
}

/// Everything that the database holds, newest report last.
QList<QList<Value>> storedRows(const QString& file) {
  platform::sql::sqlite::SqliteDriver driver;
  const auto session = driver.connect(
      platform::sql::ConnectionString(u"Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source="_s + file));
  return session
      ->execute(
          u"select r.intReportID, r.dtmDate, r.strSubject, r.numHours, r.curCost, a.strName, b.strName, "
          u"c.strName "
          "from tblReports r left join tblMeta1 a on a.intMeta1ID = r.intMeta1ID "
          "left join tblMeta2 b on b.intMeta2ID = r.intMeta2ID "
          "left join tblMeta3 c on c.intMeta3ID = r.intMeta3ID order by r.intReportID"_s)
      .rows;
}

QList<platform::calendar::Item> itemsOf(const QList<ListedRow>& rows,
                                        const hourbook::Configuration& configuration) {
  QList<platform::calendar::IcalendarFolder> folders;
  for (const auto& entry : configuration.calendars)
    folders.append({entry.id, entry.name, configuration.mailboxName, entry.path, true});
  platform::calendar::IcalendarStore store(folders);
  platform::calendar::Query query;
  query.expandSeries = true;
  query.startFrom = rows.first().start.addDays(-1);
  query.startTo = rows.first().start.addDays(1);
  for (const ListedRow& row : rows) {
    query.startFrom = qMin(query.startFrom, row.start.addDays(-1));
    query.startTo = qMax(query.startTo, row.start.addDays(1));
  }
  return store.items(configuration.openCalendar, query);
}

bool isStamped(const ListedRow& row, const QList<platform::calendar::Item>& items) {
  for (const auto& item : items)
    if (item.key.uid == row.key.uid && item.start == row.start) return !item.billingInformation.isEmpty();
  return false;
}

void print(const QList<Value>& row, bool stamped) {
  say(u"%1  %2  %3 h  cost %4  %5 / %6 / %7  %8"_s.arg(column(row[1]), -20)
          .arg(column(row[2]), -40)
          .arg(column(row[3]), 5)
          .arg(column(row[4]), 9)
          .arg(column(row[5]), column(row[6]), column(row[7]), stamped ? u"stamped"_s : u"NOT STAMPED"_s));
}

}  // namespace

bool proveReported(const QList<ListedRow>& listed, const hourbook::Configuration& configuration,
                   const QString& databaseFile) {
  QList<ListedRow> expected;
  for (const ListedRow& row : listed)
    if (row.status == hourbook::phrases().LNGNOTPOSTED) expected.append(row);
  if (expected.isEmpty()) {
    say(u"There was nothing to report."_s);
    return false;
  }
  const auto stored = storedRows(databaseFile);
  const auto items = itemsOf(expected, configuration);
  const qsizetype first = stored.size() - expected.size();
  int right = 0;
  for (qsizetype i = 0; i < expected.size(); ++i) {
    const bool stamped = isStamped(expected[i], items);
    const bool there = first >= 0 && column(stored[first + i][2]) == expected[i].subject;
    if (there) print(stored[first + i], stamped);
    if (!there) say(u"NOT STORED: "_s + expected[i].subject);
    right += there && stamped;
  }
  say(u"%1 of %2 rows stored and stamped."_s.arg(right).arg(expected.size()));
  say(u"The rows stand in %1 (table tblReports), the stamps in %2"_s.arg(
      databaseFile, configuration.calendars.isEmpty() ? QString() : configuration.calendars.first().path));
  return right == expected.size();
}

}  // namespace companions
