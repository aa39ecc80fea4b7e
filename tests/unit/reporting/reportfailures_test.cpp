// Nothing is ever stamped that is not stored, whatever fails.
#include "reportingworld.h"

using namespace hourbook;
using platform::Failure;
using platform::basic::Value;
using FailingCalendar = platform::calendar::FailingStore;

namespace {
const Failure full(platform::sql::errors::diskFull, QStringLiteral("Not enough space on disk."));
}

class ReportFailures : public testing::Test {
 protected:
  ReportFailures() {
    for (const QString& subject : {u"a"_qs, u"b"_qs, u"c"_qs}) w.addComplete(subject);
    // the person is there already, so that the rows of the plan are rows of reports
    w.other()->execute(u"insert into tblPersons (strPersonName) values ('Jane Doe')"_qs);
  }
  QList<bool> stamped() const {
    QList<bool> flags;
    for (int row = 1; row < w.lastRow; ++row) flags.append(!w.stamp(row).isEmpty());
    return flags;
  }
  tests::ReportingWorld w;
};

TEST_F(ReportFailures, AFullDiskInTheMiddleKeepsTheRowsStoredSoFarAndStampsThem) {
  w.plan->failAfterRows(1, full);
  w.expectFailure(u"fncReportToAccess"_qs, u"Not enough space on disk."_qs, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 1);
  EXPECT_EQ(stamped(), QList<bool>({true, false, false}));
  EXPECT_EQ(w.statuses(), QStringList({u"OK"_qs, w.shell->LNGNOTPOSTED, w.shell->LNGNOTPOSTED}));
  EXPECT_FALSE(w.database->gConnection) << "the connection is closed before the failure is told";
  EXPECT_TRUE(w.plan->statements.filter(u"compact "_qs).isEmpty());
}

TEST_F(ReportFailures, AfterAFailureTheRestCanBeReported) {
  w.plan->failAfterRows(1, full);
  w.expectFailure(u"fncReportToAccess"_qs, u"Not enough space on disk."_qs, [&] { w.report(); });
  w.plan->clear();
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 3);
  EXPECT_EQ(stamped(), QList<bool>({true, true, true}));
}

TEST_F(ReportFailures, AFailureOfTheFirstRowStampsNothing) {
  w.plan->failContaining(u"insert into [tblReports]"_qs, full);
  w.expectFailure(u"fncReportToAccess"_qs, u"Not enough space on disk."_qs, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_EQ(stamped(), QList<bool>({false, false, false}));
}

TEST_F(ReportFailures, ALostAnswerStampsNothingThatMayNotBeStored) {
  w.plan->rules.append({u"insert into [tblReports]"_qs, 1, 1, true, full, {}});
  w.expectFailure(u"fncReportToAccess"_qs, u"Not enough space on disk."_qs, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 2);
  EXPECT_EQ(stamped(), QList<bool>({true, false, false}));
}

TEST_F(ReportFailures, ADatabaseInUseReportsNothing) {
  const auto other = w.other();
  other->execute(u"BEGIN EXCLUSIVE"_qs);
  w.expectFailure(u"subCheckUpgrade"_qs, u"is in use by another program"_qs, [&] { w.report(); });
  other->execute(u"ROLLBACK"_qs);
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_EQ(stamped(), QList<bool>({false, false, false}));
}

TEST_F(ReportFailures, ADatabaseThatIsLockedInTheMiddleKeepsWhatWasStored) {
  std::unique_ptr<platform::sql::Session> other;
  w.plan->rules.append({u"insert into [tblReports]"_qs, 1, 1, false, std::nullopt, [&] {
                          other = w.other();
                          other->execute(u"BEGIN IMMEDIATE"_qs);
                        }});
  w.expectFailure(u"fncReportToAccess"_qs, u"is in use by another program"_qs, [&] { w.report(); });
  other.reset();
  EXPECT_EQ(w.storedRows(), 1);
  EXPECT_EQ(stamped(), QList<bool>({true, false, false}));
}

TEST_F(ReportFailures, WithoutADatabaseTheFirstUseFails) {
  ASSERT_TRUE(QFile::remove(w.path()));
  w.expectFailure(u"fncReportToAccess"_qs, u"Object variable or With block variable not set"_qs,
                  [&] { w.report(); });
  EXPECT_EQ(w.statuses().first(), w.shell->LNGNOTPOSTED);
  EXPECT_EQ(stamped(), QList<bool>({false, false, false}));
}

TEST_F(ReportFailures, ARealAccessFileStampsNothing) {
  w.write(u"Hourbook3.mdb"_qs, QByteArray("\0\1\0\0Standard ACE DB\0", 20) + QByteArray(4096, '\0'));
  w.expectFailure(u"subCheckUpgrade"_qs, u"is a Microsoft Access database"_qs, [&] { w.report(); });
  EXPECT_EQ(stamped(), QList<bool>({false, false, false}));
}

TEST_F(ReportFailures, APersonThatCannotBeAddedIsSaidInEveryRow) {
  w.outlook->gCurrentUser = u"John Roe"_qs;
  w.plan->failContaining(u"insert into [tblPersons]"_qs, full);
  w.expectFailure(u"fncGetPersonID"_qs, u"Not enough space on disk."_qs, [&] { w.report(); });
  EXPECT_EQ(w.statuses(),
            QStringList({u"Failed add person!"_qs, u"Failed add person!"_qs, u"Failed add person!"_qs}));
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_EQ(stamped(), QList<bool>({false, false, false}));
}

TEST_F(ReportFailures, ANameWithAnApostropheFailsAndGivesResultFive) {
  w.outlook->gCurrentUser = u"Pat O'Hara"_qs;
  w.expectFailure(u"fncGetPersonID"_qs, u"(strPersonName = 'Pat O'Hara')"_qs, [&] { w.report(); });
  EXPECT_EQ(w.statuses().first(), u"Failed add person!"_qs);
}

TEST_F(ReportFailures, ANameWithAnApostropheFailsEveryTimeEvenWhereNobodyIsKnownYet) {
  w.other()->execute(u"delete from tblPersons"_qs);
  w.outlook->gCurrentUser = u"Pat O'Hara"_qs;
  for (int report = 0; report < 2; ++report) {
    for (int row = 2; row <= w.lastRow; ++row) w.sheet.Cell(row, 7).setValue(w.shell->LNGNOTPOSTED);
    w.expectFailure(u"fncGetPersonID"_qs, u"(strPersonName = 'Pat O'Hara')"_qs, [&] { w.report(); });
    EXPECT_EQ(w.statuses(), QStringList(3, u"Failed add person!"_qs));
  }
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 0);
}

TEST_F(ReportFailures, AKeyThatIsTooLargeForThePersonFailsAndGivesResultFive) {
  w.other()->execute(u"update tblPersons set intPersonID = 32768"_qs);
  w.expectFailure(u"fncGetPersonID"_qs, u"Overflow"_qs, [&] { w.report(); });
  EXPECT_EQ(w.statuses(), QStringList(3, u"Failed add person!"_qs));
  EXPECT_EQ(w.storedRows(), 0);
}

TEST_F(ReportFailures, WhenTheResultsCannotBeTakenEitherTheDatabasesFailureIsToldFirst) {
  w.plan->failAfterRows(1, full);
  w.calendar->failSubject(u"a"_qs,
                          Failure(platform::calendar::errAccessDenied, u"The file cannot be written."_qs));
  w.expectFailure(u"fncReportToAccess"_qs,
                  u"Not enough space on disk.\r\nThe results could not all be taken into the list either: "
                  u"The file cannot be written."_qs,
                  [&] { w.report(); });
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(u"#3026"));
}

TEST_F(ReportFailures, AMissingValueOverwritesThePersonsFailure) {
  w.outlook->gCurrentUser = u"Pat O'Hara"_qs;
  w.sheet.Cell(3, 2).setValue(u"Gone"_qs);
  w.expectFailure(u"fncGetPersonID"_qs, QString(), [&] { w.report(); });
  EXPECT_EQ(w.statuses(),
            QStringList({u"Failed add person!"_qs, u"Missing value"_qs, u"Failed add person!"_qs}));
}

TEST_F(ReportFailures, ReportedToNobodyAFailureEndsTheProcessAfterTheExit) {
  cReportRows rows;
  rows.ReportsRange = w.sheet.Range(u"a2:g4"_qs);
  rows.ReadReportsFromRange();
  const auto rs = rows.ToRecordset();
  w.plan->failAfterRows(2, full);
  w.expectFailure(u"fncReportToAccess"_qs, u"Not enough space on disk."_qs,
                  [&] { fncReportToAccess(rs, true); });
  EXPECT_FALSE(w.database->gConnection);
  rs->MoveFirst();
  EXPECT_TRUE((*rs)[u"intResult"_qs].Value() == Value(qint64{1}));
}

TEST_F(ReportFailures, AFailureIsHandedToWhoCanWait) {
  cReportRows rows;
  rows.ReportsRange = w.sheet.Range(u"a2:g4"_qs);
  rows.ReadReportsFromRange();
  w.plan->failAfterRows(2, full);
  std::optional<PendingError> pending;
  const auto output = fncReportToAccess(rows.ToRecordset(), false, &pending);
  ASSERT_TRUE(pending);
  EXPECT_EQ(pending->procedure, u"fncReportToAccess"_qs);
  EXPECT_EQ(pending->failure.number(), platform::sql::errors::diskFull);
  EXPECT_EQ(output->RecordCount(), 2) << "as far as it got";
}

TEST_F(ReportFailures, AnAppointmentThatCannotBeStampedIsReportedAndTheOnesBeforeItKeepTheirStamps) {
  w.calendar->failSubject(u"b"_qs,
                          Failure(platform::calendar::errAccessDenied, u"The file cannot be written."_qs));
  w.expectFailure(u"Report"_qs, u"The file cannot be written."_qs, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 3) << "what a target has stored is not taken back";
  EXPECT_EQ(stamped(), QList<bool>({true, false, false}));
}

TEST_F(ReportFailures, AFailingCompactionMakesNoCubeAndAsksNothing) {
  int cubes = 0;
  w.reporting->subUpdateCommonCube = [&] { ++cubes; };
  w.plan->failContaining(u"compact "_qs, full);
  w.expectFailure(u"subCompactDatabase"_qs, u"Not enough space on disk."_qs, [&] { w.report(); });
  EXPECT_EQ(cubes, 0);
  EXPECT_EQ(w.world.dialogs.shown.size(), 1);
}

TEST_F(ReportFailures, AFailingCompactionComesAfterTheStamps) {
  w.plan->failContaining(u"compact "_qs, full);
  w.expectFailure(u"subCompactDatabase"_qs, u"Not enough space on disk."_qs, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 3);
  EXPECT_EQ(stamped(), QList<bool>({true, true, true}));
}

TEST_F(ReportFailures, NoStampIsWrittenBeforeTheLastRowIsStored) {
  int stampsBefore = -1;
  w.plan->rules.append({u"insert into [tblReports]"_qs, 2, 1, true, std::nullopt,
                        [&] { stampsBefore = w.calendar->calls(FailingCalendar::Operation::Save); }});
  w.expectDone();
  w.report();
  EXPECT_EQ(stampsBefore, 0);
  EXPECT_EQ(w.calendar->calls(FailingCalendar::Operation::Save), 3);
}
