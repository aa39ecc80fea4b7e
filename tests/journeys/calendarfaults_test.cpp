#include "journey.h"
#include "unprivileged.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace tests {
namespace {

using namespace Qt::StringLiterals;

const QDate july8(2024, 7, 8), july14(2024, 7, 14);
const QString notStamped =
    u"The calendar \"Calendar\" is read-only: reported appointments could not be stamped. Nothing was reported."_s;
const QStringList marking{u"Acme AB"_s, u"Website"_s, u"Travel"_s};

/// Three appointments, the only marked ones of their week but for the series of Wednesday.
void addThree(Journey& j) {
  j.add(u"first"_s, {u"First"_s, u"20240708T090000"_s, 60, marking});
  j.add(u"second"_s, {u"Second"_s, u"20240709T090000"_s, 60, marking});
  j.add(u"third"_s, {u"Third"_s, u"20240711T090000"_s, 60, marking});
}
const QStringList weekInJuly{u"First"_s, u"Second"_s, u"Projekt-Jour-fixe"_s, u"Third"_s};

/// What was changed before is fetched before the question is asked.
void whileTheUserIsAsked(Journey& j, const std::function<void()>& happens) {
  j.world.dialogs.whileOpen = [happens](const platform::dialogs::Shown& box) {
    if (box.text.startsWith(sureQuestion)) happens();
  };
}

void expectNothingReported(Journey& j) {
  const auto calendar = outside::files(j.calendar());
  const int reports = j.reportsStored();
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(notStamped, platform::dialogs::vbOK);
  j.click("cmdOK");
  EXPECT_TRUE(j.hasWindow());
  EXPECT_EQ(j.reportsStored(), reports);
  EXPECT_EQ(outside::changed(calendar, outside::files(j.calendar())), QStringList{});
  EXPECT_EQ(j.statuses().count(u"Not Posted"_s), j.rows().size());
}

TEST(CalendarFaultJourney, ACalendarSetUpAsReadOnlyIsListedAndNotReported) {
  Journey j;
  const QString file = j.configuration() + u"/platform.ini"_s;
  outside::write(file, outside::content(file).replace("readonly=false", "readonly=true"));
  j.start();
  EXPECT_EQ(j.rows().size(), 6);
  expectNothingReported(j);
}

TEST(CalendarFaultJourney, ACalendarThatTheUserMayNotWriteIsListedAndNotReported) {
  Journey j;
  const Unprivileged user(j.home());
  protect(j.calendar());
  j.start();
  EXPECT_EQ(j.rows().size(), 6);
  expectNothingReported(j);
  unprotect(j.calendar());
}

TEST(CalendarFaultJourney, AnAppointmentThatCannotBeStampedIsToldAndTheStampsBeforeItStay) {
  Journey j;
  addThree(j);
  const Unprivileged user(j.home());
  protect(j.calendar() + u"/second.ics"_s);
  j.start();
  j.fetch(july8, july14);
  ASSERT_EQ(j.subjects(), weekInJuly);
  const auto calendar = outside::files(j.calendar());
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
  EXPECT_TRUE(j.world.dialogs.shown.last().text.contains(u"second.ics"_s))
      << qPrintable(j.world.dialogs.shown.last().text);
  EXPECT_EQ(outside::changed(calendar, outside::files(j.calendar())), QStringList{u"first.ics"_s});
}

TEST(CalendarFaultJourney, AnAppointmentThatSomebodyElseHasChangedMeanwhileIsNotOverwritten) {
  Journey j;
  addThree(j);
  j.start();
  j.fetch(july8, july14);
  ASSERT_EQ(j.subjects(), weekInJuly);
  const QString second = j.calendar() + u"/second.ics"_s;
  const QByteArray changed =
      outside::content(second).replace("SUMMARY:Second", "SUMMARY:Second, at the customer's");
  whileTheUserIsAsked(j, [&] { outside::write(second, changed); });
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
  EXPECT_EQ(outside::content(second), changed);
  // kept: the rows are stored before the stamps are set, and nothing that is stored is taken back. So the
  // appointments from the failing one on stand in the database; the next start stamps them.
  EXPECT_EQ(j.newReports(), weekInJuly);
  EXPECT_EQ(j.event(u"first"_s).stamp, u"5/15/2024 10:00:00 AM"_s);
  EXPECT_EQ(j.event(u"third"_s).stamp, QString());
  j.world.dialogs.expect(u"These appointments have been changed since they were reported"_s,
                         platform::dialogs::vbOK);
  j.start();
  EXPECT_TRUE(j.world.dialogs.shown.last().text.endsWith(u"\"Second\" (2024-07-09)"_s))
      << qPrintable(j.world.dialogs.shown.last().text);
  j.fetch(july8, july14);
  EXPECT_EQ(j.subjects().value(1), u"Second, at the customer's"_s);
  EXPECT_EQ(j.statuses(), QStringList(4, u"2024-05-15"_s));
  j.pressOK();
  EXPECT_EQ(j.newReports(), weekInJuly) << "none of them twice";
}

TEST(CalendarFaultJourney, AChangeElsewhereInTheCalendarMeanwhileIsKept) {
  Journey j;
  addThree(j);
  j.start();
  j.fetch(july8, july14);
  j.add(u"new"_s, {u"Somebody else's"_s, u"20240710T090000"_s});
  const QByteArray added = outside::content(j.calendar() + u"/new.ics"_s);
  j.reportAndStay();
  EXPECT_EQ(j.newReports(), weekInJuly);
  EXPECT_EQ(outside::content(j.calendar() + u"/new.ics"_s), added);
}

TEST(CalendarFaultJourney, AnAppointmentDeletedMeanwhileDoesNotComeBack) {
  Journey j;
  addThree(j);
  j.start();
  j.fetch(july8, july14);
  whileTheUserIsAsked(j, [&] { ASSERT_TRUE(QFile::remove(j.calendar() + u"/second.ics"_s)); });
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
  EXPECT_FALSE(QFile::exists(j.calendar() + u"/second.ics"_s));
  EXPECT_EQ(j.event(u"first"_s).stamp, u"5/15/2024 10:00:00 AM"_s);
}

TEST(CalendarFaultJourney, ACalendarThatVanishesMeanwhileIsNotReported) {
  Journey j;
  j.start();
  const int reports = j.reportsStored();
  ASSERT_TRUE(QFile::rename(j.calendar(), j.calendar() + u"-away"_s));
  j.click("cmdGetValues");
  EXPECT_EQ(j.rows(), QStringList{u"No appointments found!||||||"_s});
  j.click("cmdOK");
  EXPECT_EQ(j.reportsStored(), reports);
  ASSERT_TRUE(QFile::rename(j.calendar() + u"-away"_s, j.calendar()));
  j.click("cmdGetValues");
  EXPECT_EQ(j.rows().size(), 6);
}

TEST(CalendarFaultJourney, BrokenFilesHideNoGoodOnes) {
  Journey j;
  addThree(j);
  const QString folder = j.calendar();
  outside::write(folder + u"/aaa.ics"_s, "this is no calendar\r\n");
  outside::write(folder + u"/empty.ics"_s, "");
  outside::write(folder + u"/zeros.ics"_s, QByteArray(5000, '\0'));
  outside::write(folder + u"/half.ics"_s, outside::content(folder + u"/first.ics"_s).left(120));
  outside::write(folder + u"/notes.txt"_s, "not an appointment");
  ASSERT_TRUE(QDir().mkpath(folder + u"/folder.ics"_s));
  ASSERT_EQ(::mkfifo(QFile::encodeName(folder + u"/pipe.ics"_s).constData(), 0600), 0);
  j.start();
  j.fetch(july8, july14);
  EXPECT_EQ(j.subjects(), weekInJuly);
  j.reportAndStay();
  EXPECT_EQ(j.newReports(), weekInJuly);
  EXPECT_EQ(outside::content(folder + u"/aaa.ics"_s), "this is no calendar\r\n");
  EXPECT_EQ(outside::content(folder + u"/zeros.ics"_s), QByteArray(5000, '\0'));
  EXPECT_TRUE(QFile::remove(folder + u"/pipe.ics"_s));
}

TEST(CalendarFaultJourney, ACalendarOfOneFileIsReportedLikeAFolder) {
  Journey j;
  QByteArray all = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another maker//Calendar 7//SV\r\n";
  for (const char* day : {"08", "09", "10"})
    all += QByteArray("BEGIN:VEVENT\r\nUID:day-") + day + "\r\nDTSTAMP:20240401T000000Z\r\nSUMMARY:Day " +
           day + "\r\nDTSTART:202407" + day + "T100000Z\r\nDURATION:PT30M\r\n" +
           (day == QByteArray("09") ? "" : "CATEGORIES:Acme AB,Website,Travel\r\n") + "END:VEVENT\r\n";
  all += "END:VCALENDAR\r\n";
  const QString file = j.folder() + u"/all.ics"_s;
  outside::write(file, all);
  const QString ini = j.configuration() + u"/platform.ini"_s;
  outside::write(ini, outside::content(ini).replace(j.calendar().toUtf8(), file.toUtf8()));
  j.start();
  j.fetch(july8, july14);
  EXPECT_EQ(j.subjects(), (QStringList{u"Day 08"_s, u"Day 10"_s}));
  j.reportAndStay();
  QStringList stamped;
  for (const outside::Event& event : outside::events(file))
    if (!event.stamp.isEmpty()) stamped.append(event.summary);
  EXPECT_EQ(stamped, (QStringList{u"Day 08"_s, u"Day 10"_s}));
}

}  // namespace
}  // namespace tests
