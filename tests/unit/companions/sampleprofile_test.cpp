#include "companions/sampledata/sampleprofile.h"

#include "app/components.h"
#include "companions/sampledata/samplelists.h"
#include "platform/basic/convert.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/sql/sqlite/session.h"
#include "shell/modLanguage.h"
#include "shell/start/ProgramValues.h"
#include "tests/support/quickfolder.h"
#include "tests/support/testworld.h"

#include <QDir>
#include <QFile>

namespace sampledata {
namespace {

using namespace Qt::StringLiterals;
using platform::calendar::Item;
using platform::calendar::Kind;

Plan plan(quint32 seed = 1) {
  return {.seed = seed,
          .today = QDate(2024, 5, 15),
          .zone = QTimeZone("Europe/Stockholm"),
          .listSeparator = u","_s};
}

QMap<QString, QByteArray> contents(const SampleCalendar& calendar) {
  QMap<QString, QByteArray> all;
  for (const CalendarFile& file : calendar.files) all.insert(file.name, file.content);
  return all;
}

QByteArray content(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
  return file.readAll();
}

TEST(SampleCalendar, IsTheSameForTheSameSeed) {
  EXPECT_EQ(contents(makeCalendar(plan())), contents(makeCalendar(plan())));
}

TEST(SampleCalendar, IsAnotherForAnotherSeed) {
  const auto one = contents(makeCalendar(plan(1))), two = contents(makeCalendar(plan(2)));
  EXPECT_NE(one.values(), two.values());
  QStringList subjects[2];
  for (const auto* each : {&one, &two})
    for (const QByteArray& text : *each)
      subjects[each == &two].append(QString::fromUtf8(text).section(u"SUMMARY:"_s, 1).section(u'\r', 0, 0));
  EXPECT_NE(subjects[0], subjects[1]) << "not in the names alone";
}

TEST(SampleCalendar, HasAFileOfItsOwnForEachAppointment) {
  const SampleCalendar calendar = makeCalendar(plan());
  EXPECT_EQ(contents(calendar).size(), calendar.files.size());
  for (const CalendarFile& file : calendar.files) {
    EXPECT_TRUE(file.name.endsWith(u".ics"_s));
    EXPECT_TRUE(file.content.endsWith("END:VCALENDAR\r\n"));
    EXPECT_EQ(file.content.count('\n'), file.content.count("\r\n")) << qPrintable(file.name);
    for (const QByteArray& line : file.content.split('\n')) EXPECT_LE(line.size(), 76) << line.constData();
  }
}

TEST(SampleCalendar, JoinsMarkingsWithTheListSeparatorOfThePlace) {
  Plan german = plan();
  german.listSeparator = u";"_s;
  QByteArray all;
  for (const QByteArray& text : contents(makeCalendar(german))) all += text;
  EXPECT_TRUE(all.contains("X-HOURBOOK-CATEGORIES:\\;Müller Maschinenbau\\;ERP roll-out\\;Meeting\r\n"));
  EXPECT_TRUE(all.contains("CATEGORIES:Müller Maschinenbau,ERP roll-out,Meeting\r\n"));
}

TEST(SampleLists, HoldNoNameThatWouldSpoilTheStoredForms) {
  for (const MetaList& list : metaLists())
    for (const ListValue& value : list.values)
      for (const QChar c : {u':', u';', u',', u'|'})
        EXPECT_FALSE(value.name.contains(c)) << qPrintable(value.name);
}

TEST(SampleLists, OfferTheValuesInUseAlone) {
  const QStringList lines = metaLines().split(u"\r\n"_s);
  ASSERT_EQ(lines.size(), 4);
  EXPECT_TRUE(lines[0].startsWith(u"Customer:Acme AB;"_s));
  EXPECT_FALSE(lines[0].contains(u"Old Mill Paper"_s));
  EXPECT_EQ(lines[3], QString());
}

/// A profile on the disk, looked at through the platform.
class SampleProfile : public testing::Test {
 protected:
  void make(quint32 seed = 1) {
    hourbook::registerComponents(world.components, {});
    hourbook::LoadLanguages(hourbook::fncGetlocalLanguage());
    makeProfile(folder, plan(seed));
  }

  QList<Item> items(bool expandSeries) {
    platform::calendar::IcalendarStore store(
        {{u"c"_s, u"Calendar"_s, u"Mailbox"_s, folder + u"/calendar"_s, true}});
    platform::calendar::Query query;
    query.zone = plan().zone;
    query.expandSeries = expandSeries;
    query.startFrom = QDateTime(QDate(2024, 3, 1), QTime(0, 0), plan().zone);
    query.startTo = QDateTime(QDate(2024, 7, 31), QTime(0, 0), plan().zone);
    const QList<Item> found = store.items(u"c"_s, query);
    for (const auto& problem : store.problems(u"c"_s))
      ADD_FAILURE() << qPrintable(problem.place + problem.text);
    return found;
  }

  QStringList sql(const QString& query) {
    platform::sql::sqlite::SqliteDriver driver;
    const auto session = driver.connect(platform::sql::ConnectionString(
        u"Provider=Microsoft.Jet.OLEDB.4.0;Mode=Read;Data Source=%1/database/Hourbook3.mdb"_s.arg(folder)));
    QStringList rows;
    for (const auto& row : session->execute(query).rows) {
      QStringList cells;
      for (const auto& value : row)
        cells.append(platform::basic::IsNull(value) ? u"NULL"_s : platform::basic::CStr(value));
      rows.append(cells.join(u'|'));
    }
    return rows;
  }

  tests::TestWorld world;
  hourbook::ProgramValues values;
  QTemporaryDir home{tests::quickFolder(u"sample"_s)};
  QString folder = home.filePath(u"profile"_s);
};

TEST_F(SampleProfile, HoldsAppointmentsOfEveryKind) {
  make();
  QMap<QString, int> kinds;
  QSet<QString> languages;
  for (const Item& item : items(false)) {
    ++kinds[item.kind == Kind::Master ? u"series"_s : u"single"_s];
    if (item.allDay) ++kinds[u"all-day"_s];
    if (item.sensitivity == platform::calendar::Sensitivity::Private) ++kinds[u"private"_s];
    if (item.allDay || item.kind != Kind::Single) continue;
    ++kinds[u"%1 values"_s.arg(item.categories.size())];
    if (!item.billingInformation.isEmpty()) ++kinds[u"reported"_s];
    for (const QChar c : item.subject) {
      if (c.script() == QChar::Script_Greek) languages.insert(u"Greek"_s);
      if (c.script() == QChar::Script_Cyrillic) languages.insert(u"Cyrillic"_s);
    }
  }
  EXPECT_EQ(kinds[u"series"_s], 3);
  EXPECT_EQ(kinds[u"all-day"_s], 3);
  EXPECT_GT(kinds[u"single"_s], 150);
  EXPECT_GT(kinds[u"private"_s], 2);
  EXPECT_GT(kinds[u"0 values"_s], 20);
  EXPECT_GT(kinds[u"2 values"_s], 10);
  EXPECT_GT(kinds[u"3 values"_s], 80);
  EXPECT_GT(kinds[u"reported"_s], 20);
  EXPECT_EQ(languages, (QSet<QString>{u"Greek"_s, u"Cyrillic"_s}));
}

TEST_F(SampleProfile, LiesAboutThreeMonthsRoundToday) {
  make();
  const QList<Item> all = items(true);
  EXPECT_LE(all.first().start.date(), QDate(2024, 4, 2));
  EXPECT_GE(all.last().start.date(), QDate(2024, 6, 27));
}

TEST_F(SampleProfile, HoldsSeriesWithExceptions) {
  make();
  QMap<QString, QList<QDate>> days;
  QStringList moved;
  for (const Item& item : items(true)) {
    if (item.kind != Kind::Single) days[item.subject].append(item.start.date());
    if (item.kind == Kind::Exception) moved.append(item.start.toString(u"MM-dd hh:mm"_s));
  }
  EXPECT_FALSE(days[u"Daily stand-up"_s].contains(QDate(2024, 4, 23))) << "left out";
  EXPECT_FALSE(days[u"Daily stand-up"_s].contains(QDate(2024, 5, 8))) << "moved";
  EXPECT_TRUE(moved.contains(u"05-08 11:00"_s));
  EXPECT_TRUE(days[u"Projekt-Jour-fixe"_s].contains(QDate(2024, 5, 15)));
  EXPECT_EQ(days[u"Vendor sync"_s].size(), 8);
}

TEST_F(SampleProfile, HoldsAppointmentsThatOverlap) {
  make();
  const QList<Item> all = items(false);
  int overlaps = 0;
  for (qsizetype i = 1; i < all.size(); ++i)
    overlaps += !all[i].allDay && !all[i - 1].allDay && all[i].start < all[i - 1].end;
  EXPECT_GT(overlaps, 5);
}

TEST_F(SampleProfile, HasMarkedAppointmentsTodayOnAnyWeekday) {
  for (int day = 13; day <= 19; ++day) {
    Plan any = plan();
    any.today = QDate(2024, 5, day);
    int marked = 0;
    for (const QByteArray& text : contents(makeCalendar(any)))
      marked +=
          text.contains("DTSTART;TZID=Europe/Stockholm:202405" + QByteArray::number(day)) &&
          QString::fromUtf8(text).section(u"\r\nCATEGORIES:"_s, 1).section(u'\r', 0, 0).count(u',') == 2;
    EXPECT_GE(marked, 5) << day;
  }
}

TEST_F(SampleProfile, StoresARowForEachAppointmentThatCountsAsReported) {
  make();
  QStringList stamped;
  for (const Item& item : items(true)) {
    if (item.billingInformation.isEmpty()) continue;
    EXPECT_EQ(item.categories.size(), 3) << qPrintable(item.subject);
    EXPECT_LT(item.start.date(), QDate(2024, 5, 15));
    stamped.append(item.start.toString(u"yyyy-MM-dd"_s) + u'|' + item.subject);
  }
  QStringList stored = sql(u"select substr(dtmDate, 1, 10), strSubject from tblReports"_s);
  stamped.sort();
  stored.sort();
  EXPECT_EQ(stored, stamped);
  EXPECT_EQ(sql(u"select count(*) from tblReports where dtmDate not like '%T00:00:00'"_s),
            QStringList{u"0"_s})
      << "reports know the day alone";
  EXPECT_EQ(sql(u"select count(*) from tblReports r join tblMeta1 m on m.intMeta1ID = r.intMeta1ID "
                "where abs(r.curCost - r.numHours * m.curRate) > 0.0001 or r.intMeta2ID is null or "
                "r.intMeta3ID is null or r.intPersonID is null"_s),
            QStringList{u"0"_s});
}

TEST_F(SampleProfile, HoldsTheListsTheCostRuleAndThePerson) {
  make();
  EXPECT_EQ(
      sql(u"select strName, blnEnabled from tblMeta1 where strName >= 'M' order by intMeta1ID"_s).size(), 2);
  EXPECT_EQ(sql(u"select curRate from tblMeta1 where strName = 'Kappa Τρόφιμα'"_s), QStringList{u"790.25"_s});
  EXPECT_EQ(sql(u"select strMetaListCaption from tblMetaLists"_s),
            (QStringList{u"Customer"_s, u"Project"_s, u"Task"_s}));
  EXPECT_EQ(sql(u"select intCostCarrier, intReportTo from tblSettings"_s), QStringList{u"2|2"_s});
  EXPECT_EQ(sql(u"select strPersonName from tblPersons"_s), QStringList{u"Kim Lind"_s});
}

TEST_F(SampleProfile, IsTheSameForTheSameSeed) {
  make();
  const QString everything = u"select * from tblReports order by intReportID"_s;
  const QStringList reports = sql(everything);
  QMap<QString, QByteArray> files;
  for (const QString& name : QDir(folder + u"/calendar"_s).entryList(QDir::Files))
    files.insert(name, content(folder + u"/calendar/"_s + name));
  EXPECT_EQ(files, contents(makeCalendar(plan())));
  ASSERT_TRUE(QDir(folder).removeRecursively());
  makeProfile(folder, plan());
  for (auto it = files.cbegin(); it != files.cend(); ++it)
    EXPECT_EQ(content(folder + u"/calendar/"_s + it.key()), it.value());
  EXPECT_EQ(sql(everything), reports);
}

TEST_F(SampleProfile, IsMadeInAnEmptyFolderThatIsThere) {
  ASSERT_TRUE(QDir().mkpath(folder));
  make();
  EXPECT_TRUE(QFile::exists(folder + u"/config/platform.ini"_s));
}

TEST_F(SampleProfile, IsRefusedInAFolderThatHoldsSomething) {
  ASSERT_TRUE(QDir().mkpath(folder + u"/mine"_s));
  try {
    make();
    ADD_FAILURE() << "It was made.";
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.description(),
              u"The folder %1 is not empty. A sample profile is only made in an empty one."_s.arg(folder));
  }
  EXPECT_EQ(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"mine"_s});
}

TEST_F(SampleProfile, NamesItsCalendarInTheConfiguration) {
  make();
  const auto configuration = hourbook::Configuration::read(folder + u"/config"_s);
  ASSERT_EQ(configuration.calendars.size(), 1);
  EXPECT_EQ(configuration.calendars.first().path, folder + u"/calendar"_s);
  EXPECT_FALSE(configuration.calendars.first().readOnly);
  EXPECT_EQ(configuration.openCalendar, configuration.calendars.first().id);
  EXPECT_EQ(configuration.mailboxName, u"Mailbox - Kim Lind"_s);
}

}  // namespace
}  // namespace sampledata
