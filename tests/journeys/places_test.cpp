#include "journey.h"
#include "shell/ShellValues.h"

namespace tests {
namespace {

using namespace Qt::StringLiterals;

/// All that a report stores but for the names that follow the language.
const QString plainFields =
    u"select intReportID, strSubject, numHours, curCost, dtmDate, dteReported, intPersonID, intMeta1ID, "
    u"intMeta2ID, "
    "intMeta3ID, strBody from tblReports order by intReportID"_s;

struct Told {
  QStringList rows, names, stamps, listed;
};

Told reportAFortnight(const Place& place) {
  Journey j(place);
  j.add(u"jour"_s, {u"Jour fixe; Größe, Maß"_s,
                    u"20240510T233000"_s,
                    75,
                    {u"Müller Maschinenbau"_s, u"Website"_s, u"Travel"_s},
                    u"Über; alles, 週次"_s});
  j.start();
  j.fetch(may(2), may(15));
  Told told;
  told.listed = j.rows();
  j.reportAndStay();
  told.rows = j.sql(plainFields);
  told.names = j.sql(
      u"select distinct strMonthName, strWeekdayName from tblReports where dtmDate like '2024-05-1%' "
      "order by strftime('%w', dtmDate)"_s);
  for (const outside::Event& event : j.events())
    if (event.start.startsWith(u"202405") && !event.stamp.isEmpty()) told.stamps.append(event.stamp);
  told.stamps.removeDuplicates();
  j.fetch(may(2), may(15));
  EXPECT_EQ(j.rows().filter(hourbook::phrases().LNGNOTPOSTED), QStringList{})
      << "a stamp that is not understood again";
  return told;
}

TEST(PlacesJourney, StoreTheSameRowsApartFromNames) {
  const Told home = reportAFortnight({});
  ASSERT_GT(home.rows.size(), 31 + 10);
  for (const Place& place : {Place{u"de_DE"_s, "Europe/Berlin"}, Place{u"en_US"_s, "America/New_York"},
                             Place{u"sv_SE"_s, "Australia/Adelaide"}})
    EXPECT_EQ(reportAFortnight(place).rows, home.rows)
        << qPrintable(place.locale) << ' ' << place.zone.constData();
}

TEST(PlacesJourney, NameMonthsAndDaysInTheUsersLanguage) {
  const Told told = reportAFortnight({u"de_DE"_s, "Europe/Berlin"});
  EXPECT_EQ(told.names,
            (QStringList{u"Mai|Montag"_s, u"Mai|Dienstag"_s, u"Mai|Mittwoch"_s, u"Mai|Freitag"_s}));
}

TEST(PlacesJourney, SpeakTheSystemsLanguage) {
  Journey j({u"de_DE"_s, "Europe/Berlin"});
  j.start();
  EXPECT_EQ(j.statuses().first(), u"Nicht gemeldet"_s);
  j.world.dialogs.expect(
      u"Sobald Sie Ihre gemeldeten Zeiten an die Datenbank übertragen haben, können Sie sie "
      "nicht mehr ändern!\r\nMöchten Sie wirklich fortfahren?"_s,
      platform::dialogs::vbYes);
  j.world.dialogs.expect(
      u"Die Zeiten dieses Zeitraums sind gemeldet!\r\n"
      "Möchten Sie Zeiten für einen weiteren Zeitraum melden?"_s,
      platform::dialogs::vbYes);
  j.click("cmdOK");
  EXPECT_EQ(j.statuses().first(), u"OK"_s);
  EXPECT_GT(j.newReports().size(), 0);
}

TEST(PlacesJourney, StampInTheUsersDateForm) {
  EXPECT_EQ(reportAFortnight({u"de_DE"_s, "Europe/Berlin"}).stamps, QStringList{u"15.05.2024 10:00:00"_s});
  EXPECT_EQ(reportAFortnight({u"en_US"_s, "America/New_York"}).stamps,
            QStringList{u"5/15/2024 10:00:00 AM"_s});
}

TEST(PlacesJourney, ShowHoursWithAPointWhateverTheDecimalSign) {
  const QStringList listed = reportAFortnight({u"de_DE"_s, "Europe/Berlin"}).listed;
  EXPECT_TRUE(listed.contains(
      u"Jour fixe; Größe, Maß|Müller Maschinenbau|Website|Travel|Fr 10.05.2024|1.25|Nicht gemeldet"_s))
      << qPrintable(listed.join(u'\n'));
}

TEST(PlacesJourney, PutAnAppointmentOfAnotherZoneOnTheUsersOwnDay) {
  Journey j({u"en_US"_s, "America/New_York"});
  j.add(u"late"_s,
        {u"Monday in Stockholm"_s, u"20240707T233000Z"_s, 60, {u"Acme AB"_s, u"Website"_s, u"Travel"_s}});
  j.start();
  j.fetch(QDate(2024, 7, 7), QDate(2024, 7, 7));
  EXPECT_EQ(j.rows(), QStringList{u"Monday in Stockholm|Acme AB|Website|Travel|Sun 7/7/2024|1|Not Posted"_s});
  j.reportAndStay();
  EXPECT_EQ(j.sql(u"select strSubject, dtmDate, strWeekdayName from tblReports where dtmDate > '2024-07'"_s),
            QStringList{u"Monday in Stockholm|2024-07-07T00:00:00|Sunday"_s});
  EXPECT_EQ(j.event(u"late"_s).start, u"20240707T233000"_s);
}

TEST(PlacesJourney, KeepAPostedStampWhoeverReadsIt) {
  // a stamp written under one locale is not reported again under another
  Journey j({u"de_DE"_s, "Europe/Berlin"});
  j.start();
  j.reportAndStay();
  const QStringList reports = j.newReports();
  j.world.setLocale(u"en_US"_s);
  j.start();
  EXPECT_EQ(j.rows().filter(u"Not Posted"_s), QStringList{});
  EXPECT_EQ(j.newReports(), reports);
}

}  // namespace
}  // namespace tests
