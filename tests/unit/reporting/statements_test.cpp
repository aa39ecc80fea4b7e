// What is sent to read and save the common settings and to report, statement by statement, on each kind of
// database.
#include "reporting/cDatabaseTarget.h"
#include "reporting/modReportToAccess.h"
#include "reportingworld.h"
#include "settings/frmResolveRemovedItem.h"
#include "tests/unit/database/golden.h"
#include "tests/unit/database/recordingdriver.h"
#ifndef HOURBOOK_ON_POSTGRESQL
#include "tests/unit/database/sqlserverroad.h"
#endif

using namespace hourbook;

namespace {

#ifdef HOURBOOK_ON_POSTGRESQL
const QStringList roads{QStringLiteral("postgresql")};
void take(const QString&) {}
void leave() {}
#else
const QStringList roads{QStringLiteral("file"), QStringLiteral("sqlserver")};
void take(const QString& road) {
  if (road == u"sqlserver")
    tests::DatabaseRoad::maker() = [] { return std::make_unique<tests::SqlServerRoad>(); };
}
void leave() {
  tests::DatabaseRoad::maker() = nullptr;
}
#endif

class Statements : public testing::TestWithParam<QString> {
 protected:
  Statements() {
    take(GetParam());
    w = std::make_unique<tests::ReportingWorld>();
    using namespace platform::sql;
    const auto inner = w->road ? w->road->driver() : std::make_shared<sqlite::SqliteDriver>(0, tests::noWait);
    w->drivers->add(w->road ? w->road->provider() : u"Microsoft.Jet.OLEDB.4.0"_qs,
                    std::make_shared<tests::RecordingDriver>(inner, sent));
  }
  ~Statements() override {
    w.reset();
    leave();
  }
  void expectGolden(const QString& name) {
    QStringList lines = *sent;
    for (QString& line : lines) {
      if (w->road) line.replace(w->road->connectionText(), u"<connection>"_qs);
      line.replace(w->folder.path(), u"<folder>"_qs);
    }
    tests::expectGolden(GetParam() + u'/' + name, lines);
  }
  tests::RecordingDriver::Record sent = std::make_shared<QStringList>();
  std::unique_ptr<tests::ReportingWorld> w;
};

}  // namespace

TEST_P(Statements, OfReadingTheCommonSettings) {
  w->common().ReadGlobalSettings(2, w->folder.path());
  expectGolden(u"settings-read.txt"_qs);
}

TEST_P(Statements, OfSavingTheCommonSettings) {
  w->settings->showResolveRemovedItem = [](frmResolveRemovedItem& form) {
    form.cmbMoveChoice.setListIndex(0);
    form.cmdOK.click();
  };
  cMetaDictionary& first = *w->common().MetaDataLists.Item(1);
  const auto acme = first.MetaDic->Item(u"Acme"_qs);
  first.MetaDic->RemoveAll();  // Beta goes
  first.MetaDic->Add(u"Acme"_qs, acme);
  first.AddMeta(u"O'Brien & [Söhne] Ελλάς"_qs, u"Big"_qs, platform::basic::Currency::fromDouble(12.5), 0, {},
                false);
  w->common().MetaDataLists.Item(2)->MetaDic->Item(u"A"_qs)->HourlyRate = {};
  w->common().MetaDataLists.Item(3)->Caption = u"Art"_qs;
  w->common().CostCarrier = 3;
  w->common().OtherSettings->SetValue(u"ADDepartment"_qs, u"1"_qs);
  sent->clear();
  EXPECT_TRUE(w->common().SaveGlobalSettings());
  expectGolden(u"settings-save.txt"_qs);
}

TEST_P(Statements, OfReporting) {
  w->setOtherSetting(u"ADDepartment"_qs, u"1"_qs);
  w->world.dialogs.expectInput(w->shell->LNGWHICHDEPARTMENT, u"Försäljning"_qs);
  w->add({u"It's [done] Ж"_qs, {u"Acme"_qs, u"A"_qs, u"Design"_qs}, u"2.5"_qs, u"line 1\r\nline 2"_qs});
  w->add({u"refused"_qs, {u"Gone"_qs, u"A"_qs, u"Design"_qs}});
  w->add({u"without a text"_qs, {u"acme"_qs, u"Website"_qs, u"Design"_qs}, u"0.25"_qs});
  cReportRows rows;
  rows.ReportsRange = w->sheet.Range(u"a2:g%1"_qs.arg(w->lastRow));
  rows.ReadReportsFromRange();
  fncReportToAccess(rows.ToRecordset(), true);
  expectGolden(u"reporting.txt"_qs);
}

TEST_P(Statements, OfTheFirstSettingsOfANewDatabase) {
  for (const char* table : {"tblSettings", "tblMetaLists"})
    w->other()->execute(u"delete from %1"_qs.arg(QLatin1String(table)));
  sent->clear();
  w->common().ReadGlobalSettings(2, w->folder.path());
  w->common().CostCarrier = 1;
  EXPECT_TRUE(w->common().SaveGlobalSettings());
  expectGolden(u"settings-first.txt"_qs);
}

TEST_P(Statements, OfRemovingTheReportsOfAValue) {
  w->settings->showResolveRemovedItem = [](frmResolveRemovedItem& form) {
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
  };
  cMetaDictionary& first = *w->common().MetaDataLists.Item(1);
  const auto acme = first.MetaDic->Item(u"Acme"_qs);
  first.MetaDic->RemoveAll();  // Beta goes
  first.MetaDic->Add(u"Acme"_qs, acme);
  sent->clear();
  EXPECT_TRUE(w->common().SaveGlobalSettings());
  EXPECT_EQ(sent->filter(u"Delete from tblReports where intMeta1ID = "_qs).size(), 1);
  expectGolden(u"settings-remove.txt"_qs);
}

TEST_P(Statements, OfAskingAKnownPersonForTheDepartment) {
  w->setOtherSetting(u"ADDepartment"_qs, u"1"_qs);
  w->other()->execute(u"insert into tblPersons (strPersonName) values ('Jane Doe')"_qs);
  w->world.dialogs.expectInput(w->shell->LNGWHICHDEPARTMENT, u"Försäljning"_qs);
  sent->clear();
  fncGetPersonID();
  expectGolden(u"department.txt"_qs);
}

TEST_P(Statements, OfAskingForTheLinesOfAnInterruptedReport) {
  sent->clear();
  cDatabaseTarget target(1);
  ReportRun run;
  run.mark = target.Mark();
  run.rows.append(ReportedRow());
  target.Stored(run);
  target.StoredAgain(run);
  target.MarkOfAll(u"Ann O'Brien"_qs);
  expectGolden(u"interrupted-report.txt"_qs);
}

INSTANTIATE_TEST_SUITE_P(, Statements, testing::ValuesIn(roads),
                         [](const auto& info) { return info.param.toStdString(); });
