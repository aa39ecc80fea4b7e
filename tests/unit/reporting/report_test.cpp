// From the list to the target, and the results back.
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "reportingworld.h"

using namespace hourbook;
using platform::basic::CStr;
using platform::basic::Value;
namespace dialogs = platform::dialogs;
using FailingCalendar = platform::calendar::FailingStore;

class Reporting : public testing::Test {
 protected:
  tests::ReportingWorld w;
};

TEST_F(Reporting, AcceptedRowsAreStoredMarkedAndStamped) {
  w.addComplete(u"a"_qs);
  w.addComplete(u"b"_qs);
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 2);
  EXPECT_EQ(w.statuses(), QStringList({u"OK"_qs, u"OK"_qs}));
  EXPECT_EQ(w.stamp(1), CStr(platform::basic::Now()));
  EXPECT_EQ(w.stamp(2), CStr(platform::basic::Now()));
}

TEST_F(Reporting, ASecondReportOffersNothing) {
  w.addComplete(u"a"_qs);
  w.expectDone();
  w.report();
  w.report();
  EXPECT_EQ(w.rowsOfReport->Reports.Count(), 0);
  EXPECT_EQ(w.storedRows(), 1);
}

TEST_F(Reporting, TheRightAppointmentIsStamped) {
  w.add({u"half"_qs, {u"Acme"_qs}});
  w.addComplete(u"whole"_qs);
  w.add({u"other half"_qs, {u"Acme"_qs}});
  w.expectDone();
  w.report();
  EXPECT_EQ(w.stamp(1), QString());
  EXPECT_NE(w.stamp(2), QString());
  EXPECT_EQ(w.stamp(3), QString());
  EXPECT_EQ(w.statuses(), QStringList({w.shell->LNGNOTPOSTED, u"OK"_qs, w.shell->LNGNOTPOSTED}))
      << "done is said though incompletely marked rows are left";
}

TEST_F(Reporting, TheQuestionAfterwardsIsOneForYesAndNo) {
  w.addComplete(u"a"_qs);
  w.expectDone();
  w.report();
  const dialogs::Shown& question = w.world.dialogs.shown.last();
  EXPECT_EQ(question.text,
            u"Reporting for this period done!\r\nWould you like to report for another period?"_qs);
  EXPECT_EQ(question.title, u"Hourbook for Outlook Reporting"_qs);
  EXPECT_EQ(question.options, 36);
}

TEST_F(Reporting, NoEndsTheProgramWithoutSavingWhatHasNotChanged) {
  w.addComplete(u"a"_qs);
  w.personal().StartGrid = true;
  w.gridTicked = true;
  w.expectDone(dialogs::vbNo);
  EXPECT_ENDS_PROCESS(w.report());
  EXPECT_EQ(w.personal().DateLastReport.serial(), 0);
}

TEST_F(Reporting, NoSavesAChangedTickOfTheGrid) {
  w.addComplete(u"a"_qs);
  w.personal().StartGrid = false;
  w.gridTicked = true;
  w.expectDone(dialogs::vbNo);
  EXPECT_ENDS_PROCESS(w.report());
  EXPECT_TRUE(w.personal().StartGrid);
  EXPECT_TRUE(w.personal().DateLastReport == platform::basic::Now());
  cPersonalSettings read;
  read.GetValuesFromSettings();
  EXPECT_TRUE(read.StartGrid);
}

TEST_F(Reporting, AMissingValueIsSaidInTheRowAndNothingIsStamped) {
  w.add({u"a"_qs, {u"Gone"_qs, u"Website"_qs, u"Design"_qs}});
  w.addComplete(u"b"_qs);
  w.report();
  EXPECT_EQ(w.statuses(), QStringList({u"Missing value"_qs, u"OK"_qs}));
  EXPECT_EQ(w.storedRows(), 1) << "a refused row leaves no line";
  EXPECT_EQ(w.stamp(1), QString());
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty()) << "a run that left rows says nothing";
  w.report();
  EXPECT_EQ(w.rowsOfReport->Reports.Count(), 0) << "the failure text stands in place of Not Posted";
}

TEST_F(Reporting, AllRowsPostedAlreadyDoNothing) {
  w.add({u"a"_qs, {u"Acme"_qs}, u"1"_qs, {}, QDateTime(QDate(2024, 5, 14), QTime(9, 0)), true});
  w.report();
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
  EXPECT_TRUE(w.plan->statements.isEmpty());
}

TEST_F(Reporting, WithoutACompleteRowTheFailurePathIsTaken) {
  w.add({u"half"_qs, {u"Acme"_qs}});
  w.expectFailure(u"Report"_qs, u"Either BOF or EOF is True"_qs, [&] { w.report(); });
  EXPECT_EQ(w.statuses(), QStringList{w.shell->LNGNOTPOSTED});
}

TEST_F(Reporting, AnUnknownTargetDoesNothing) {
  w.addComplete(u"a"_qs);
  w.report(5);
  EXPECT_EQ(w.statuses(), QStringList{w.shell->LNGNOTPOSTED});
  EXPECT_EQ(w.stamp(1), QString());
  EXPECT_EQ(w.storedRows(), 0);
}

TEST_F(Reporting, TheAspPageAndTheBillingSystemAreRefusedBeforeAnythingIsStamped) {
  w.addComplete(u"a"_qs);
  const auto failureLine = [&] { return w.world.dialogs.shown.last().text.section(u"\r\n"_qs, 7, 8); };
  w.expectFailure(u"Report"_qs, QString(), [&] { w.report(1); });
  EXPECT_EQ(failureLine(),
            u"This version cannot report to an ASP page yet. Nothing was reported.\r\n#445"_qs);
  w.expectFailure(u"Report"_qs, QString(), [&] { w.report(4); });
  EXPECT_EQ(failureLine(),
            u"This version cannot report to a billing system yet. Nothing was reported.\r\n#445"_qs);
  EXPECT_EQ(w.statuses(), QStringList{w.shell->LNGNOTPOSTED});
  EXPECT_EQ(w.stamp(1), QString());
}

TEST_F(Reporting, EachResultHasItsText) {
  for (int i = 1; i <= 7; ++i) w.addComplete(u"row %1"_qs.arg(i));
  w.reporting->subSendXMLReport = [](platform::ado::Recordset& rs) {
    const QList<Value> results{
        qint64{1}, qint64{4}, qint64{5}, qint64{6}, qint64{3}, qint64{0}, platform::basic::Null{}};
    rs.MoveFirst();
    for (const Value& result : results) {
      rs[u"intResult"_qs].setValue(result);
      rs.Update();
      rs.MoveNext();
    }
  };
  w.report(1);
  const QString not_ = w.shell->LNGNOTPOSTED;
  EXPECT_EQ(w.statuses(), QStringList({u"OK"_qs, u"Error!"_qs, u"Failed add person!"_qs, u"Missing value"_qs,
                                       not_, not_, not_}));
  EXPECT_NE(w.stamp(1), QString());
  for (int row = 2; row <= 7; ++row) EXPECT_EQ(w.stamp(row), QString()) << row;
}

TEST_F(Reporting, AResultBeyondAllKnownOnesIsLeftAlone) {
  w.addComplete(u"a"_qs);
  w.addComplete(u"b"_qs);
  w.reporting->subSendXMLReport = [](platform::ado::Recordset& rs) {
    rs.MoveFirst();
    rs[u"intResult"_qs].setValue(qint64{4294967297});  // its lower half reads as 1
    rs.MoveNext();
    rs[u"intResult"_qs].setValue(qint64{1});
    rs.Update();
  };
  w.report(1);
  EXPECT_EQ(w.statuses(), QStringList({w.shell->LNGNOTPOSTED, u"OK"_qs}));
}

TEST_F(Reporting, AfterAnAccessReportTheDatabaseIsCompactedAndTheCubeMade) {
  w.addComplete(u"a"_qs);
  int cubes = 0;
  bool compactedFirst = false;
  w.reporting->subUpdateCommonCube = [&] {
    ++cubes;
    compactedFirst = !w.plan->statements.filter(u"compact "_qs).isEmpty();
  };
  w.expectDone();
  w.report(2);
  EXPECT_EQ(cubes, 1);
  EXPECT_TRUE(compactedFirst);
  EXPECT_EQ(w.storedRows(), 1);
}

TEST_F(Reporting, TheCubeProgramRunsAfterAServerReportForWhoKeepsALocalCube) {
  int runs = 0;
  w.reporting->subRunCubeProgram = [&] { ++runs; };
  w.personal().CreateLocalCube = false;
  w.addComplete(u"a"_qs);
  w.expectDone();
  w.report(3);
  EXPECT_EQ(runs, 0);
  w.personal().CreateLocalCube = true;
  w.addComplete(u"b"_qs);
  w.expectDone();
  w.report(3);
  EXPECT_EQ(runs, 1);
  EXPECT_TRUE(w.plan->statements.filter(u"compact "_qs).isEmpty()) << "only an Access database is compacted";
}

TEST_F(Reporting, AReadOnlyCalendarIsSaidBeforeAnythingIsStored) {
  w.addComplete(u"a"_qs);
  w.setReadOnlyCalendar();
  w.world.dialogs.expect(u"read-only"_qs, dialogs::vbOK);
  w.report();
  const dialogs::Shown& box = w.world.dialogs.shown.last();
  EXPECT_EQ(
      box.text,
      u"The calendar \"Team\" is read-only: reported appointments could not be stamped. Nothing was reported."_qs);
  EXPECT_EQ(box.title, u"Hourbook for Outlook Reporting"_qs);
  EXPECT_EQ(box.options, dialogs::vbCritical);
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_EQ(w.statuses(), QStringList{w.shell->LNGNOTPOSTED});
}

TEST_F(Reporting, TheStepsAreLogged) {
  w.addComplete(u"a"_qs);
  w.expectFailure(u"Report"_qs, u"Reading the value of the Other Setting ADDepartment"_qs,
                  [&] { w.report(1); });
}

TEST_F(Reporting, EveryStepOfAReportIsLogged) {
  w.addComplete(u"a"_qs);
  w.expectDone();
  w.shell->gLogToFile = true;
  w.report();
  const QString recordset = u"Creating a new ADOB.Recordset. If this fails, please try re-installing MDAC"_qs;
  const QString connection = u"Checking if the ADO connection is up or not"_qs;
  const QString department = u"Reading the value of the Other Setting ADDepartment"_qs;
  QStringList log = w.log();
  EXPECT_EQ(log.takeFirst(), u"Reading values to report from range"_qs);
  log.removeAll(u"Finding Temp folder path"_qs);  // of the appointments' texts
  EXPECT_EQ(
      log,
      QStringList({u"Reporting values to 2"_qs, u"Creating a recordset from current appointments"_qs,
                   department, connection, u"Checking if database .mdb file exists"_qs,
                   u"Attempting to upgrade Access database in path "_qs + w.shownPath(), connection,
                   recordset, u"Attempting to open a recordset from select top 1 strBody from tblReports"_qs,
                   u"Trying to open a connection to the database with the connection string "
                   u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source="_qs +
                       w.shownPath(),
                   recordset,
                   u"Attempting to open a recordset from Select* from tblReports where intReportID = 0"_qs,
                   u"Trying to find user Jane Doe"_qs, connection, recordset,
                   u"Attempting to open a recordset from tblPersons"_qs, u"Adding user Jane Doe"_qs,
                   department, u"Attempting to compact the database at "_qs + w.folder.path()}));
}
