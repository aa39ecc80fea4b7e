#include "journey.h"

#include <QTest>

namespace tests {
namespace {

using namespace Qt::StringLiterals;

// In a week of which the sample knows one marked appointment alone: the series of Wednesday, 10 July at
// 15:00.
const QDate july8(2024, 7, 8), july14(2024, 7, 14);

const QString fields =
    u"strSubject, numHours, curCost, strMonthName, strWeekdayName, dtmDate, intMeta1ID, intMeta2ID, intMeta3ID, strBody"_s;

void addThreeInJuly(Journey& j) {
  j.add(u"angebot"_s, {u"Größe & Maß: Angebot"_s,
                       u"20240709T081500"_s,
                       90,
                       {u"Kappa Τρόφιμα"_s, u"Website"_s, u"Development"_s},
                       u"Überblick, Preise; Ähnliches\nzweite Zeile: ñ ç ø 週次"_s});
  j.add(u"kort"_s,
        {u"Kort möte"_s, u"20240711T160000"_s, 20, {u"Blåbär och Söner"_s, u"Training"_s, u"Meeting"_s}});
  j.add(u"halv"_s, {u"Half marked"_s, u"20240712T100000"_s, 60, {u"Acme AB"_s, u"Website"_s}});
}

/// The sample's appointments of a span of days that stand alone, are marked wholly, public and not reported,
/// as another program reads them.
QStringList markedSubjects(const QList<outside::Event>& events, const QString& from, const QString& to) {
  QMap<QString, QString> byStart;
  for (const outside::Event& e : events)
    if (e.start.left(8) >= from && e.start.left(8) <= to && e.categories.count(u'|') == 2 &&
        e.repeats.isEmpty() && e.recurrenceId.isEmpty() && e.stamp.isEmpty() &&
        e.classification != u"PRIVATE" && e.start.contains(u'T'))
      byStart.insert(e.start + e.summary, e.summary);
  return byStart.values();
}

TEST(ReportJourney, ShowsTodaysMarkedAppointmentsAtTheStart) {
  Journey j;
  j.start();
  EXPECT_EQ(
      j.rows(),
      (QStringList{
          u"Sprint planning|Internal|ERP roll-out|Consulting|Wed 5/15/2024|1|Not Posted"_s,
          u"Kundengespräch, Angebot und nächste Schritte|Fjord Shipping AS|Website|Meeting|Wed 5/15/2024|1.5|"
          "Not Posted"_s,
          u"Data migration, second try|Müller Maschinenbau|Website|Development|Wed 5/15/2024|0.75|Not Posted"_s,
          u"Design review: order form|Acme AB|ERP roll-out|Consulting|Wed 5/15/2024|2|Not Posted"_s,
          u"Pair programming|Blåbär och Söner|Support contract|Travel|Wed 5/15/2024|2.5|Not Posted"_s,
          u"Projekt-Jour-fixe|Müller Maschinenbau|ERP roll-out|Meeting|Wed 5/15/2024|1.5|Not Posted"_s}));
}

TEST(ReportJourney, ShowsTheUnmarkedOnesOfADayAndAll) {
  Journey j;
  j.start();
  j.fetch(may(8), may(8));
  EXPECT_EQ(j.subjects(), (QStringList{u"Toplantı: ışıklandırma ve güç"_s, u"Вопросы по отчёту"_s,
                                       u"Projekt-Jour-fixe"_s}));
  j.chooseFilter(1);
  const QStringList unmarked{u"Felsökning på plats"_s, u"Daily stand-up (later, with the customer)"_s,
                             u"Write-up of the workshop"_s, u"Συνάντηση προόδου"_s};
  EXPECT_EQ(j.subjects(), unmarked);
  j.chooseFilter(2);
  EXPECT_EQ(j.subjects().size(), 7);
  j.chooseFilter(0);
  EXPECT_EQ(j.subjects().size(), 3);
}

TEST(ReportJourney, FetchesAndReportsByTheKeyboardAlone) {
  Journey j;
  addThreeInJuly(j);
  j.start();
  j.pick("dtpStartDate", july8);
  j.pick("dtpEndDate", july14);
  QWidget* fetch = j.control("cmdGetValues");
  fetch->setFocus();
  QTest::keyClick(fetch, Qt::Key_Space);
  ASSERT_EQ(j.subjects(), (QStringList{u"Größe & Maß: Angebot"_s, u"Projekt-Jour-fixe"_s, u"Kort möte"_s}));
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(anotherPeriod, platform::dialogs::vbYes);
  QWidget* field = j.control("dtpEndDate");
  field->setFocus();
  QTest::keyClick(field, Qt::Key_Return);  // presses the window's default button
  EXPECT_EQ(j.newReports().size(), 3);
}

TEST(ReportJourney, StoresARowForEachMarkedAppointment) {
  Journey j;
  addThreeInJuly(j);
  j.start();
  j.fetch(july8, july14);
  j.reportAndStay();
  EXPECT_EQ(
      j.sql(u"select "_s + fields + u" from tblReports where dtmDate >= '2024-07' order by intReportID"_s),
      (QStringList{u"Größe & Maß: Angebot|1.5|1185.375|July|Tuesday|2024-07-09T00:00:00|5|5|2|"
                   "Überblick, Preise; Ähnliches\\nzweite Zeile: ñ ç ø 週次"_s,
                   u"Projekt-Jour-fixe|1.5|1530|July|Wednesday|2024-07-10T00:00:00|6|1|4|"
                   "Stand, Risiken, nächste Schritte"_s,
                   // 20 minutes are shown, and reported, as 0.33 hours
                   u"Kort möte|0.33|290.565|July|Thursday|2024-07-11T00:00:00|2|4|4| "_s}));
  EXPECT_EQ(j.sql(u"select distinct p.strPersonName, r.dteReported from tblReports r join tblPersons p on "
                  "p.intPersonID = r.intPersonID where r.dtmDate >= '2024-07'"_s),
            QStringList{u"Kim Lind|2024-05-15T10:00:00"_s});
  EXPECT_EQ(j.sql(u"select count(*) from tblPersons"_s), QStringList{u"1"_s});
  EXPECT_EQ(j.statuses(), (QStringList{u"OK"_s, u"OK"_s, u"OK"_s}));
}

TEST(ReportJourney, ReportsTheSamplesOwnFortnight) {
  Journey j;
  QStringList expected = markedSubjects(j.events(), u"20240502"_s, u"20240515"_s);
  ASSERT_GT(expected.size(), 10);
  expected += {u"Projekt-Jour-fixe"_s, u"Projekt-Jour-fixe"_s};  // 8 and 15 May
  expected.sort();
  j.start();
  j.fetch(may(2), may(15));
  QStringList listed = j.subjects();
  listed.sort();
  EXPECT_EQ(listed, expected);
  j.reportAndStay();
  QStringList stored = j.newReports();
  stored.sort();
  EXPECT_EQ(stored, expected);
  EXPECT_EQ(j.sql(u"select count(*) from tblReports r join tblMeta1 m on m.intMeta1ID = r.intMeta1ID "
                  "where abs(r.curCost - m.curRate * r.numHours) < 0.0001"_s),
            j.sql(u"select count(*) from tblReports"_s));
  EXPECT_EQ(markedSubjects(j.events(), u"20240502"_s, u"20240515"_s), QStringList{}) << "not stamped";
}

TEST(ReportJourney, StampsTheReportedAppointmentsAndNoOtherFile) {
  Journey j;
  addThreeInJuly(j);
  const auto before = outside::files(j.calendar());
  j.start();
  j.fetch(july8, july14);
  EXPECT_EQ(outside::changed(before, outside::files(j.calendar())), QStringList{}) << "by looking at it";
  j.reportAndStay();
  EXPECT_EQ(outside::changed(before, outside::files(j.calendar())),
            (QStringList{u"angebot.ics"_s, u"kort.ics"_s, u"sample-1-0222.ics"_s}));
  EXPECT_EQ(j.event(u"angebot"_s).stamp, u"5/15/2024 10:00:00 AM"_s);
  EXPECT_EQ(j.event(u"kort"_s).stamp, u"5/15/2024 10:00:00 AM"_s);
  EXPECT_EQ(j.event(u"halv"_s).stamp, QString());
}

TEST(ReportJourney, ChangesNothingButTheStampInAnAppointmentsFile) {
  Journey j;
  addThreeInJuly(j);
  const QByteArray before = outside::content(j.calendar() + u"/angebot.ics"_s);
  j.start();
  j.fetch(july8, july14);
  j.reportAndStay();
  QByteArray now = outside::content(j.calendar() + u"/angebot.ics"_s);
  const QByteArray stamp = "X-HOURBOOK-BILLINGINFORMATION:5/15/2024 10:00:00 AM\r\n";
  EXPECT_EQ(now.count(stamp), 1) << now.constData();
  now.replace(stamp, "");
  // the time of the last revision belongs to every change
  EXPECT_EQ(now, QByteArray(before).replace("DTSTAMP:20240401T000000Z", "DTSTAMP:20240515T080000Z"));
}

TEST(ReportJourney, StampsOneOccurrenceOfASeries) {
  Journey j;
  const QString series = u"sample-1-0222@hourbook.invalid"_s, file = j.calendar() + u"/sample-1-0222.ics"_s;
  const QByteArray before = outside::content(file);
  const outside::Event master = j.event(series);
  ASSERT_EQ(master.repeats, u"yes"_s);
  j.start();
  j.fetch(may(8), may(8));
  j.reportAndStay();
  const outside::Event changed = j.event(series, u"20240508T150000"_s);
  EXPECT_EQ(changed.stamp, u"5/15/2024 10:00:00 AM"_s);
  EXPECT_EQ(changed.summary, master.summary);
  EXPECT_EQ(changed.start, u"20240508T150000"_s);
  EXPECT_EQ(changed.minutes, u"90"_s);
  EXPECT_EQ(changed.categories, master.categories);
  EXPECT_EQ(changed.description, master.description);
  EXPECT_EQ(j.event(series).stamp, QString()) << "the series";
  // the override stands between the series and its other exceptions, and both are as they were
  const QByteArray now = outside::content(file);
  const qsizetype end = before.indexOf("END:VEVENT\r\n") + qsizetype(strlen("END:VEVENT\r\n"));
  EXPECT_TRUE(now.startsWith(before.left(end))) << now.constData();
  EXPECT_TRUE(now.endsWith(before.mid(end))) << now.constData();
  // the week before and the week after are still to be reported
  j.fetch(may(15), may(15));
  EXPECT_TRUE(j.rows().filter(u"Projekt-Jour-fixe"_s).value(0).endsWith(u"Not Posted"_s));
  j.fetch(may(8), may(8));
  EXPECT_TRUE(j.rows().filter(u"Projekt-Jour-fixe"_s).value(0).endsWith(u"2024-05-15"_s));
}

TEST(ReportJourney, StampsSeveralOccurrencesOfASeriesInOneReport) {
  Journey j;
  j.start();
  j.fetch(QDate(2024, 6, 30), QDate(2024, 7, 14));  // both Wednesdays, and nothing else that is marked
  ASSERT_EQ(j.subjects(), (QStringList{u"Projekt-Jour-fixe"_s, u"Projekt-Jour-fixe"_s}));
  j.reportAndStay();
  QStringList stamped;
  for (const outside::Event& event : j.events())
    if (event.start >= u"20240630" && !event.stamp.isEmpty()) stamped.append(event.recurrenceId);
  stamped.sort();  // each override is put in behind the series, so the later one comes first
  EXPECT_EQ(stamped, (QStringList{u"20240703T150000"_s, u"20240710T150000"_s}));
  j.start();
  j.fetch(QDate(2024, 6, 30), QDate(2024, 7, 14));
  EXPECT_EQ(j.statuses(), (QStringList{u"2024-05-15"_s, u"2024-05-15"_s}));
}

TEST(ReportJourney, LeavesWhatOtherCalendarProgramsShowAsItWas) {
  Journey j;
  addThreeInJuly(j);
  const QStringList before =
      outside::khalList(j.calendar(), j.scratch() + u"/1"_s, u"2024-05-01"_s, u"2024-07-15"_s);
  ASSERT_TRUE(
      before.contains(u"2024-07-09 08:15 2024-07-09 09:45 Größe & Maß: Angebot [Kappa Τρόφιμα,Website,"
                      "Development]"_s));
  const QList<outside::Event> events = j.events();
  j.start();
  j.fetch(july8, july14);
  j.reportAndStay();
  j.fetch(may(6), may(15));
  j.reportAndStay();
  EXPECT_EQ(outside::khalList(j.calendar(), j.scratch() + u"/2"_s, u"2024-05-01"_s, u"2024-07-15"_s), before);
  QHash<QString, outside::Event> now;
  for (const outside::Event& event : j.events()) now.insert(event.uid + event.recurrenceId, event);
  for (const outside::Event& event : events) {
    const outside::Event& same = now[event.uid + event.recurrenceId];
    EXPECT_EQ(same.categories, event.categories) << qPrintable(event.uid);
    EXPECT_EQ(same.summary, event.summary) << qPrintable(event.uid);
    EXPECT_EQ(same.description, event.description) << qPrintable(event.uid);
    EXPECT_EQ(same.classification, event.classification) << qPrintable(event.uid);
  }
}

TEST(ReportJourney, ReportsNothingTwice) {
  Journey j;
  addThreeInJuly(j);
  j.start();
  j.fetch(july8, july14);
  j.reportAndStay();
  const auto calendar = outside::files(j.calendar());
  j.pressOK();  // the rows stand there still, and none of them is to be reported
  j.fetch(july8, july14);
  EXPECT_EQ(j.statuses(), (QStringList{u"2024-05-15"_s, u"2024-05-15"_s, u"2024-05-15"_s}));
  j.pressOK();
  j.start();
  j.fetch(july8, july14);
  EXPECT_EQ(j.statuses(), (QStringList{u"2024-05-15"_s, u"2024-05-15"_s, u"2024-05-15"_s}));
  j.pressOK();
  EXPECT_EQ(j.newReports().size(), 3);
  EXPECT_EQ(outside::changed(calendar, outside::files(j.calendar())), QStringList{});
}

TEST(ReportJourney, AsksNothingWhereTheListIsEmpty) {
  Journey j;
  j.start();
  j.fetch(july8.addDays(100), july14.addDays(100));
  j.click("cmdOK");
  EXPECT_TRUE(j.world.dialogs.shown.isEmpty());
}

TEST(ReportJourney, ReportsNothingWhenTheUserIsNotSure) {
  Journey j;
  const auto calendar = outside::files(j.calendar());
  const QByteArray database = outside::content(j.database());
  j.start();
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbNo);
  j.click("cmdOK");
  EXPECT_EQ(j.newReports(), QStringList{});
  EXPECT_EQ(outside::content(j.database()), database);
  EXPECT_EQ(outside::changed(calendar, outside::files(j.calendar())), QStringList{});
}

TEST(ReportJourney, ReportsTheMarkedRowsWhateverIsShown) {
  Journey j;
  addThreeInJuly(j);
  j.start();
  j.fetch(july8, july14);
  j.chooseFilter(1);
  EXPECT_EQ(j.subjects(), (QStringList{u"Vendor sync"_s, u"Half marked"_s}));
  j.reportAndStay();
  EXPECT_EQ(j.newReports(), (QStringList{u"Größe & Maß: Angebot"_s, u"Projekt-Jour-fixe"_s, u"Kort möte"_s}));
}

TEST(ReportJourney, GoesOnWithAnotherPeriod) {
  Journey j;
  addThreeInJuly(j);
  j.start();
  j.fetch(july8, july14);
  j.reportAndStay();
  ASSERT_TRUE(j.hasWindow());
  j.fetch(may(15), may(15));
  j.reportAndStay();
  EXPECT_EQ(j.newReports().size(), 3 + 6);
}

TEST(ReportJourney, EndsWithoutAnotherPeriod) {
  Journey j;
  j.start();
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(anotherPeriod, platform::dialogs::vbNo);
  const QByteArray settings = outside::content(j.configuration() + u"/registry.ini"_s);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
  EXPECT_EQ(j.newReports().size(), 6);
  EXPECT_EQ(outside::content(j.configuration() + u"/registry.ini"_s), settings);
}

TEST(ReportJourney, EndsWhenTheWindowIsClosed) {
  Journey j;
  const auto calendar = outside::files(j.calendar());
  j.start();
  EXPECT_ENDS_PROCESS(j.window()->close());
  EXPECT_EQ(outside::changed(calendar, outside::files(j.calendar())), QStringList{});
  j.start();
  EXPECT_ENDS_PROCESS(j.click("cmdCancel"));
}

TEST(ReportJourney, LeavesAnAppointmentOutWhoseValueIsInNoListAnyMore) {
  Journey j;
  addThreeInJuly(j);
  // removed from the common list by another user after the marking; the personal list still has it
  outside::run(u"sqlite3"_s, {j.database(),
                              u"update tblReports set intMeta3ID = 1 where intMeta3ID = 2; "
                              "delete from tblMeta3 where strName = 'Development'"_s});
  j.start();
  j.fetch(july8, july14);
  j.pressOK();  // and no word of another period, since a row is left
  EXPECT_EQ(j.statuses(), (QStringList{u"Missing value"_s, u"OK"_s, u"OK"_s}));
  EXPECT_EQ(j.newReports(), (QStringList{u"Projekt-Jour-fixe"_s, u"Kort möte"_s}));
  EXPECT_EQ(j.event(u"angebot"_s).stamp, QString());
}

}  // namespace
}  // namespace tests
