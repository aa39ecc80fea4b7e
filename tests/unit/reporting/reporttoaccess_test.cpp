// Storing the rows in tblReports.
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/locale/locale.h"
#include "reportingworld.h"
#include "tests/unit/platform/sql/scopedtimezone.h"

#include <QProcess>

using namespace hourbook;
using platform::basic::Currency;
using platform::basic::Date;
using platform::basic::IsNull;
using platform::basic::Value;

namespace {
Currency money(double amount) {
  return Currency::fromDouble(amount);
}
}  // namespace

class ReportToAccess : public testing::Test {
 protected:
  std::shared_ptr<platform::ado::Recordset> recordset() {
    rows.ReportsRange = w.sheet.Range(u"a2:g%1"_qs.arg(w.lastRow));
    rows.ReadReportsFromRange();
    return rows.ToRecordset();
  }
  /// Stores the list and gives one column of the one row stored.
  Value storedAfterReport(const QString& column) {
    fncReportToAccess(recordset(), true);
    const auto values = w.stored(column);
    return values.size() == 1 ? values.first() : Value();
  }
  void addRow(const QString& hours, const QStringList& metas = {u"Acme"_qs, u"Website"_qs, u"Design"_qs}) {
    w.add({u"row"_qs, metas, hours});
  }
  void expectEveryColumn() {
    w.add({u"Meeting"_qs, {u"Acme"_qs, u"A"_qs, u"Design"_qs}, u"7.25"_qs, u"line 1\r\nline 2\r\n"_qs});
    fncReportToAccess(recordset(), true);
    const auto value = [&](const QString& column) { return w.stored(column).value(0); };
    EXPECT_TRUE(value(u"numHours"_qs) == Value(7.25F));
    EXPECT_TRUE(value(u"strSubject"_qs) == Value(u"Meeting"_qs));
    EXPECT_TRUE(value(u"strMonthName"_qs) == Value(u"May"_qs));
    EXPECT_TRUE(value(u"strWeekdayName"_qs) == Value(u"Monday"_qs));
    EXPECT_TRUE(value(u"dtmDate"_qs) == Value(Date::of(2024, 5, 13)));
    EXPECT_TRUE(value(u"dteReported"_qs) == Value(platform::basic::Now()));
    EXPECT_TRUE(value(u"intPersonID"_qs) == Value(qint32{1}));
    EXPECT_TRUE(value(u"intMeta1ID"_qs) == Value(qint32{1}));
    EXPECT_TRUE(value(u"intMeta2ID"_qs) == Value(qint32{2}));
    EXPECT_TRUE(value(u"intMeta3ID"_qs) == Value(qint32{1}));
    EXPECT_TRUE(value(u"strBody"_qs) == Value(u"line 1\r\nline 2"_qs));
  }
  tests::ReportingWorld w;
  cReportRows rows;
};

TEST_F(ReportToAccess, TheInputIsReturnedWithItsResults) {
  addRow(u"1"_qs);
  const auto rs = recordset();
  EXPECT_EQ(fncReportToAccess(rs, true), rs);
  rs->MoveFirst();
  EXPECT_TRUE((*rs)[u"intResult"_qs].Value() == Value(qint64{1}));
}

TEST_F(ReportToAccess, EveryColumnIsFilled) {
  expectEveryColumn();
}

TEST_F(ReportToAccess, EveryColumnIsFilledInAnHourThatTheMachinesClockLeavesOut) {
  const tests::ScopedTimeZone zone(tests::noTenOClockOnMay15);  // when it is reported
  expectEveryColumn();
}

TEST_F(ReportToAccess, AnEmojiAtTheEndOfASubjectIsReadableByOtherPrograms) {
  const QString wave = QString::fromUcs4(U"\U0001F44B");
  const QStringList metas{u"Acme"_qs, u"Website"_qs, u"Design"_qs};
  w.add({QString(254, u'x') + wave, metas});
  w.add({QString(253, u'x') + wave, metas});
  fncReportToAccess(recordset(), true);
  QProcess shell;
  shell.start(u"sqlite3"_qs, {w.path(), u"select strSubject from tblReports order by intReportID"_qs});
  ASSERT_TRUE(shell.waitForFinished()) << qPrintable(shell.errorString());
  EXPECT_EQ(shell.readAllStandardOutput(),
            QByteArray(254, 'x') + '\n' + QByteArray(253, 'x') + wave.toUtf8() + '\n');
}

TEST_F(ReportToAccess, MonthAndWeekdayAreInTheMachinesLanguage) {
  w.world.setLocale(u"de_DE"_qs);
  w.add({u"a"_qs,
         {u"Acme"_qs, u"A"_qs, u"Design"_qs},
         u"1"_qs,
         {},
         QDateTime(QDate(2024, 3, 10), QTime(9, 0), QTimeZone("Europe/Stockholm"))});
  fncReportToAccess(recordset(), true);
  EXPECT_TRUE(w.stored(u"strMonthName"_qs).value(0) == Value(u"März"_qs));
  EXPECT_TRUE(w.stored(u"strWeekdayName"_qs).value(0) == Value(u"Sonntag"_qs))
      << "Monday is the first day, in both";
}

TEST_F(ReportToAccess, TheCarrierSaysWhoseRateCounts) {
  w.common().CostCarrier = 3;
  addRow(u"2.5"_qs, {u"Acme"_qs, u"A"_qs, u"Design"_qs});
  EXPECT_TRUE(storedAfterReport(u"curCost"_qs) == Value(money(250)));
}

TEST_F(ReportToAccess, CarrierOneTakesThePersonsRate) {
  w.common().CostCarrier = 1;
  w.personal().PersonalRate = money(12.5);
  addRow(u"3"_qs);
  EXPECT_TRUE(storedAfterReport(u"curCost"_qs) == Value(money(37.5)));
}

TEST_F(ReportToAccess, APersonsRateOfZeroGivesACostOfZero) {
  w.common().CostCarrier = 1;
  addRow(u"3"_qs);
  EXPECT_TRUE(storedAfterReport(u"curCost"_qs) == Value(Currency()));
}

TEST_F(ReportToAccess, TheCostIsExactToFourDecimalsHalvesToEven) {
  w.common().CostCarrier = 4;
  addRow(u"1.33"_qs);  // 1.33 x 33.3333 = 44.333289
  EXPECT_TRUE(storedAfterReport(u"curCost"_qs) == Value(Currency::fromTenThousandths(443333)));
}

TEST_F(ReportToAccess, ATieGoesToTheEvenNeighbour) {
  w.common().CostCarrier = 1;
  w.personal().PersonalRate = Currency::fromTenThousandths(5);
  addRow(u"0.5"_qs);  // 0.00025
  EXPECT_TRUE(storedAfterReport(u"curCost"_qs) == Value(Currency::fromTenThousandths(2)));
}

TEST_F(ReportToAccess, WithoutACarrierThereIsNoCost) {
  w.common().CostCarrier = 0;
  addRow(u"3"_qs);
  EXPECT_TRUE(IsNull(storedAfterReport(u"curCost"_qs)));
}

TEST_F(ReportToAccess, ACarrierListThatIsNotInUseGivesNoCost) {
  w.personal().subPopulateMetadataList(u"Customer:Acme;\r\n"_qs);
  w.common().CostCarrier = 3;
  addRow(u"3"_qs, {u"Acme"_qs});
  EXPECT_TRUE(IsNull(storedAfterReport(u"curCost"_qs)));
  EXPECT_TRUE(IsNull(w.stored(u"intMeta2ID"_qs).value(0)));
}

TEST_F(ReportToAccess, ValuesAreLookedUpWithoutRegardToCase) {
  addRow(u"1"_qs, {u"ACME"_qs, u"website"_qs, u"design"_qs});
  EXPECT_TRUE(storedAfterReport(u"intMeta1ID"_qs) == Value(qint32{1}));
}

TEST_F(ReportToAccess, AnEmptyBodyIsStoredAsABlank) {
  addRow(u"1"_qs);
  EXPECT_TRUE(storedAfterReport(u"strBody"_qs) == Value(u" "_qs));
}

TEST_F(ReportToAccess, ADatabaseWithoutTheBodyStillTakesReports) {
  addRow(u"1"_qs);
  const auto rs = recordset();
  subSetupConnection();  // the upgrade has run by now; the column goes behind its back
  w.other()->execute(u"alter table tblReports drop column strBody"_qs);
  fncReportToAccess(rs, true);
  EXPECT_EQ(w.storedRows(), 1);
}

TEST_F(ReportToAccess, ARefusedRowLeavesNoLineAndTheNextOneIsStored) {
  addRow(u"1"_qs, {u"Gone"_qs, u"Website"_qs, u"Design"_qs});
  addRow(u"2"_qs);
  addRow(u"3"_qs, {u"Acme"_qs, u"None"_qs, u"None"_qs});
  const auto rs = recordset();
  fncReportToAccess(rs, true);
  EXPECT_EQ(w.storedRows(), 1);
  EXPECT_TRUE(w.stored(u"numHours"_qs).value(0) == Value(2.0F));
  rs->MoveFirst();
  EXPECT_TRUE((*rs)[u"intResult"_qs].Value() == Value(qint64{6}));
  rs->MoveNext();
  EXPECT_TRUE((*rs)[u"intResult"_qs].Value() == Value(qint64{1}));
  rs->MoveNext();
  EXPECT_TRUE((*rs)[u"intResult"_qs].Value() == Value(qint64{6}));
}

TEST_F(ReportToAccess, AReturnRecordsetLeavesTheInputAsItWas) {
  addRow(u"1"_qs);
  addRow(u"2"_qs, {u"Gone"_qs, u"Website"_qs, u"Design"_qs});
  const auto rs = recordset();
  const auto output = fncReportToAccess(rs, false);
  ASSERT_NE(output, rs);
  ASSERT_EQ(output->RecordCount(), 2);
  output->MoveFirst();
  EXPECT_TRUE((*output)[u"intRowCounter"_qs].Value() == Value(qint64{1}));
  EXPECT_TRUE((*output)[u"intResult"_qs].Value() == Value(qint64{1}));
  output->MoveNext();
  EXPECT_TRUE((*output)[u"intRowCounter"_qs].Value() == Value(qint64{2}));
  EXPECT_TRUE((*output)[u"intResult"_qs].Value() == Value(qint64{6}));
  rs->MoveFirst();
  EXPECT_TRUE(IsNull((*rs)[u"intResult"_qs].Value()));
}

TEST_F(ReportToAccess, TheReturnRecordsetHasTwoColumns) {
  const auto rs = fncSetupReturRS();
  ASSERT_EQ(rs->Fields().Count(), 2);
  EXPECT_EQ(rs->Fields().Item(0).Name(), u"intRowCounter"_qs);
  EXPECT_EQ(rs->Fields().Item(0).Type(), 20);
  EXPECT_EQ(rs->Fields().Item(1).Name(), u"intResult"_qs);
  EXPECT_EQ(rs->Fields().Item(1).Type(), 20);
  EXPECT_EQ(rs->State(), platform::ado::adStateOpen);
  EXPECT_EQ(w.shell->gLastLogText, u"Creating a new offline return recordset"_qs);
}

TEST_F(ReportToAccess, TheConnectionIsClosedAfterwards) {
  addRow(u"1"_qs);
  const auto rs = recordset();
  subSetupConnection();
  const auto connection = w.database->gConnection;
  fncReportToAccess(rs, true);
  EXPECT_FALSE(w.database->gConnection);
  EXPECT_EQ(connection->State(), platform::ado::adStateClosed);
}

TEST_F(ReportToAccess, TheSameAppointmentReportedTwiceIsTwoRows) {
  addRow(u"1"_qs);
  fncReportToAccess(recordset(), true);
  cReportRows again;
  again.ReportsRange = w.sheet.Range(u"a2:g2"_qs);
  again.ReadReportsFromRange();
  fncReportToAccess(again.ToRecordset(), true);
  EXPECT_EQ(w.storedRows(), 2);
}

// ---- the person

TEST_F(ReportToAccess, AKnownPersonIsFoundWithoutRegardToCase) {
  w.other()->execute(u"insert into tblPersons (strPersonName) values ('Someone Else')"_qs);
  w.other()->execute(u"insert into tblPersons (strPersonName) values ('JANE DOE')"_qs);
  EXPECT_EQ(fncGetPersonID(), 2);
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 2);
}

TEST_F(ReportToAccess, ANewPersonIsAddedWithoutACategory) {
  w.other()->execute(u"insert into tblPersons (strPersonName) values ('Someone Else')"_qs);
  EXPECT_EQ(fncGetPersonID(), 2);
  const auto result = w.other()->execute(u"select strPersonName, strPersonCategory from tblPersons"_qs);
  ASSERT_EQ(result.rows.size(), 2);
  EXPECT_TRUE(result.rows[1][0] == Value(u"Jane Doe"_qs));
  EXPECT_TRUE(IsNull(result.rows[1][1]));
}

TEST_F(ReportToAccess, TheFirstPersonOfANewDatabaseIsAdded) {
  EXPECT_EQ(fncGetPersonID(), 1);
  EXPECT_EQ(w.shell->gLastLogText, u"Reading the value of the Other Setting ADDepartment"_qs);
}

TEST_F(ReportToAccess, ANewPersonIsAskedForTheDepartmentUntilThereIsAnAnswer) {
  w.setOtherSetting(u"ADDepartment"_qs, u"1"_qs);
  w.world.dialogs.expectInput(w.shell->LNGWHICHDEPARTMENT, QString());
  w.world.dialogs.expectInput(w.shell->LNGWHICHDEPARTMENT, u"Sales"_qs);
  fncGetPersonID();
  EXPECT_EQ(w.rows(u"select * from tblPersons where strPersonCategory = 'Sales'"_qs), 1);
  EXPECT_EQ(w.world.dialogs.shown.last().title, u"Hourbook for Outlook Reporting"_qs);
  EXPECT_EQ(w.world.dialogs.shown.last().text, u"Please state which department you belong to"_qs);
}

TEST_F(ReportToAccess, AKnownPersonWithoutADepartmentIsAskedOnce) {
  w.setOtherSetting(u"ADDepartment"_qs, u"1"_qs);
  w.other()->execute(u"insert into tblPersons (strPersonName, strPersonCategory) values ('Jane Doe', '')"_qs);
  w.world.dialogs.expectInput(w.shell->LNGWHICHDEPARTMENT, u"Sales"_qs);
  EXPECT_EQ(fncGetPersonID(), 1);
  EXPECT_EQ(fncGetPersonID(), 1);
  EXPECT_EQ(w.rows(u"select * from tblPersons where strPersonCategory = 'Sales'"_qs), 1);
}

TEST_F(ReportToAccess, AKnownPersonWhoseDepartmentIsNullIsAsked) {
  w.setOtherSetting(u"ADDepartment"_qs, u"1"_qs);
  w.other()->execute(u"insert into tblPersons (strPersonName) values ('Jane Doe')"_qs);
  w.world.dialogs.expectInput(w.shell->LNGWHICHDEPARTMENT, u"Sales"_qs);
  EXPECT_EQ(fncGetPersonID(), 1);
  EXPECT_EQ(w.rows(u"select * from tblPersons where strPersonCategory = 'Sales'"_qs), 1);
}

TEST_F(ReportToAccess, NobodyIsAskedWhenTheSettingIsNotOne) {
  w.setOtherSetting(u"ADDepartment"_qs, u"2"_qs);
  fncGetPersonID();
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}
