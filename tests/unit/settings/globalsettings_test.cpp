#include "platform/basic/convert.h"
#include "settings/cGlobalSettings.h"
#include "shell/modErrorReport.h"
#include "tests/unit/database/databaseworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::basic::Currency;
using platform::sql::FaultPlan;

class GlobalSettings : public testing::Test {
 protected:
  void run(const QString& sql) { db.other()->execute(sql); }
  bool read(cGlobalSettings& settings, qint32 target = 2) {
    return settings.ReadGlobalSettings(target, db.folder.path());
  }
  int captionRows() { return db.rows(u"select * from tblMetaLists"_s); }

  ::tests::DatabaseWorld db;
  Shared<SettingsValues>::Scope settingsScope;
};

TEST_F(GlobalSettings, ANewObjectReportsToAnAccessDatabaseInTheProgramsFolder) {
  const cGlobalSettings settings;
  EXPECT_EQ(settings.ReportTo, 2);
  EXPECT_EQ(settings.ReportToValue, db.world.programFolder());
  EXPECT_EQ(settings.CostCarrier, 0);
  EXPECT_EQ(settings.MetaDataLists.Count(), 0);
  ASSERT_TRUE(settings.OtherSettings);
}

TEST_F(GlobalSettings, TheTargetOfTheConnectionIsTheirsWhileTheyLive) {
  EXPECT_EQ(databaseValues().target, nullptr);
  {
    cGlobalSettings settings;
    EXPECT_EQ(&reportTarget(), &settings);
  }
  EXPECT_EQ(databaseValues().target, nullptr);
}

TEST_F(GlobalSettings, ANewObjectInPlaceOfAnOldOneLeavesNoDeadTarget) {
  auto settings = std::make_shared<cGlobalSettings>();
  settings = std::make_shared<cGlobalSettings>();
  EXPECT_EQ(databaseValues().target, settings.get());
  settings.reset();
  EXPECT_EQ(databaseValues().target, nullptr);
}

TEST_F(GlobalSettings, AMissingDatabaseGivesFalseWithoutAWord) {
  cGlobalSettings settings;
  EXPECT_FALSE(read(settings));
  EXPECT_EQ(settings.MetaDataLists.Count(), 0);
}

TEST_F(GlobalSettings, ANewDatabaseGetsTheRowsOfTheDefaultCaptions) {
  db.createCurrent();
  cGlobalSettings settings;
  settings.CostCarrier = 3;
  EXPECT_TRUE(read(settings));
  EXPECT_EQ(settings.CostCarrier, 0);
  EXPECT_EQ(settings.ReportTo, 2);
  EXPECT_EQ(settings.ReportToValue, db.shownPath());
  ASSERT_EQ(settings.MetaDataLists.Count(), 3);
  EXPECT_EQ(settings.MetaDataLists.Item(u"Meta1"_s)->Caption, u"Customer"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(u"Meta2"_s)->Caption, u"Task"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(u"Meta3"_s)->Caption, QString());
  EXPECT_EQ(settings.MetaDataLists.Item(3)->Index, 3);
  EXPECT_EQ(captionRows(), 3);
}

TEST_F(GlobalSettings, ASecondReadFindsThoseRowsAndAddsNone) {
  db.createCurrent();
  cGlobalSettings settings;
  EXPECT_TRUE(read(settings));
  EXPECT_TRUE(read(settings));
  EXPECT_EQ(captionRows(), 3);
  EXPECT_EQ(settings.MetaDataLists.Count(), 3);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->Caption, u"Task"_s);
}

TEST_F(GlobalSettings, EverythingIsReadFromItsTable) {
  db.createCurrent();
  run(u"insert into tblSettings (intCostCarrier, intReportTo, strReportToValue) values (3, 4, 'elsewhere')"_s);
  run(u"insert into tblMetaLists (strMetaListCaption, strMetaListCategoryCaption, "
      u"strMetaListSuperCategoryCaption)"
      " values ('Client', 'Branch', null)"_s);
  run(u"insert into tblMetaLists (strMetaListCaption) values ('Job')"_s);
  run(u"insert into tblMeta1 (strName, strCategory, curRate, blnEnabled) values ('Zeta', 'Big', 12.5, -1)"_s);
  run(u"insert into tblMeta1 (strName, blnEnabled) values ('Acme', 0)"_s);
  run(u"insert into tblOtherSettings (strPropName, strPropValue) values ('ADDepartment', '1')"_s);
  cGlobalSettings settings;
  EXPECT_TRUE(read(settings));
  EXPECT_EQ(settings.CostCarrier, 3);
  EXPECT_EQ(settings.ReportTo, 4);
  EXPECT_EQ(settings.ReportToValue, u"elsewhere"_s);
  const cMetaDictionary& first = *settings.MetaDataLists.Item(1);
  EXPECT_EQ(first.Caption, u"Client"_s);
  EXPECT_EQ(first.CategoryCaption, u"Branch"_s);
  EXPECT_EQ(first.SuperCategoryCaption, QString());
  EXPECT_EQ(first.MetaDic->Keys(), (QStringList{u"Acme"_s, u"Zeta"_s}));
  EXPECT_EQ(first.MetaDic->Item(u"Zeta"_s)->HourlyRate, Currency::fromDouble(12.5));
  EXPECT_TRUE(first.MetaDic->Item(u"Zeta"_s)->Enabled);
  EXPECT_FALSE(first.MetaDic->Item(u"Acme"_s)->Enabled);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->Caption, u"Job"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(3)->Caption, QString());
  EXPECT_EQ(captionRows(), 3);
  EXPECT_EQ(platform::basic::CInt(settings.OtherSettings->GetValue(u"ADDepartment"_s, 2)), 1);
}

TEST_F(GlobalSettings, TheConnectionIsLetGoAfterReading) {
  db.createCurrent();
  cGlobalSettings settings;
  read(settings);
  EXPECT_EQ(databaseValues().gConnection, nullptr);
}

TEST_F(GlobalSettings, CaptionsThatCannotBeWrittenAreTakenAllTheSame) {
  db.createCurrent();
  db.plan->failContaining(u"insert"_s, platform::Failure(-2147467259, u"read-only"_s));
  cGlobalSettings settings;
  EXPECT_TRUE(read(settings));
  EXPECT_EQ(settings.MetaDataLists.Item(1)->Caption, u"Customer"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->Caption, u"Task"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(3)->Caption, QString());
  EXPECT_EQ(captionRows(), 0);
}

TEST_F(GlobalSettings, AnAspTargetFailsWithAClearText) {
  cGlobalSettings settings;
  db.expectFailure(u"subSetupDBObjects"_s,
                   u"This version of the program cannot read common settings from an ASP page: "
                   "http://example.org/hours\r\n"_s,
                   [&] { settings.ReadGlobalSettings(1, u"http://example.org/hours\\"_s); });
  EXPECT_EQ(settings.ReportTo, 1);
  EXPECT_TRUE(db.plan->statements.isEmpty());
}

/// The copies beside an ASP page, each a recordset without a connection.
class CommonSettingsCopies : public GlobalSettings {
 protected:
  using Rows = QList<QList<platform::basic::Value>>;

  CommonSettingsCopies() {
    put(u"HBSettings.xml"_s,
        {u"intSettingsID"_s, u"intCostCarrier"_s, u"intReportTo"_s, u"strReportToValue"_s},
        {{qint32(1), qint32(3), qint32(1), u"http://elsewhere"_s}});
    put(u"HBMetaLists.xml"_s,
        {u"intMetaListID"_s, u"strMetaListCaption"_s, u"strMetaListCategoryCaption"_s,
         u"strMetaListSuperCategoryCaption"_s},
        {{qint32(1), u"Kunde"_s, u"Branche"_s, u"Land"_s}});
    put(u"HBMeta1.xml"_s, {u"strName"_s}, {{u"Zeta"_s}, {u"Acme"_s}});
    put(u"HBMeta2.xml"_s, {u"strName"_s}, {{u"Support"_s}});
    put(u"HBMeta3.xml"_s, {u"strName"_s}, {});
    settingsScope->fncXMLFileToRS = [this](const QString& address) {
      asked << address;
      return copies.value(address.section(u'/', -1));
    };
  }
  void put(const QString& file, const QStringList& columns, const Rows& rows) {
    auto copy = std::make_shared<platform::ado::Recordset>();
    for (const QString& column : columns)
      copy->Fields().Append(
          column, column.startsWith(u"int"_s) ? platform::ado::adInteger : platform::ado::adVarWChar, 255);
    copy->Open();
    for (const auto& row : rows) {
      copy->AddNew();
      for (int i = 0; i < columns.size(); ++i) copy->Fields().Item(i).setValue(row[i]);
      copy->Update();
    }
    if (!rows.isEmpty()) copy->MoveFirst();
    copies[file] = copy;
  }

  const QString address = u"http://example.org/hours"_s;
  QHash<QString, std::shared_ptr<platform::ado::Recordset>> copies;
  QStringList asked;
};

TEST_F(CommonSettingsCopies, AreReadInPlaceOfTheDatabase) {
  cGlobalSettings settings;
  db.database->gReportValue = address;
  EXPECT_TRUE(settings.ReadGlobalSettings(1, address + u'\\'));
  EXPECT_EQ(asked, (QStringList{address + u"/HBSettings.xml"_s, address + u"/HBMetaLists.xml"_s,
                                address + u"/HBMeta1.xml"_s, address + u"/HBMeta2.xml"_s,
                                address + u"/HBMeta3.xml"_s}));
  EXPECT_EQ(settings.CostCarrier, 3);
  EXPECT_EQ(settings.ReportTo, 1);
  EXPECT_EQ(settings.ReportToValue, u"http://elsewhere"_s);
  const cMetaDictionary& first = *settings.MetaDataLists.Item(1);
  EXPECT_EQ(first.MetaDic->Keys(), (QStringList{u"Zeta"_s, u"Acme"_s}));
  EXPECT_TRUE(first.MetaDic->Item(u"Acme"_s)->Enabled);
  EXPECT_EQ(first.MetaDic->Item(u"Acme"_s)->ID, 2);
  EXPECT_EQ(first.Caption, u"Kunde"_s);
  EXPECT_EQ(first.CategoryCaption, u"Branche"_s);
  EXPECT_EQ(first.SuperCategoryCaption, u"Land"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->Caption, u"Task"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(3)->Index, 3);
  EXPECT_EQ(settings.OtherSettings->dicValues->Count(), 0);
  EXPECT_TRUE(db.plan->statements.isEmpty());
}

TEST_F(CommonSettingsCopies, ASlashAtTheEndOfTheAddressStays) {
  cGlobalSettings settings;
  settings.ReadGlobalSettings(1, address + u'/');
  EXPECT_EQ(asked.first(), address + u"//HBSettings.xml"_s);
}

TEST_F(CommonSettingsCopies, WithoutTheSettingsThereIsNothing) {
  copies.remove(u"HBSettings.xml"_s);
  cGlobalSettings settings;
  EXPECT_FALSE(settings.ReadGlobalSettings(1, address));
  EXPECT_EQ(asked.size(), 1);
}

TEST_F(CommonSettingsCopies, AnEmptyAnswerCountsAsNone) {
  copies[u"HBSettings.xml"_s] = std::make_shared<platform::ado::Recordset>();
  cGlobalSettings settings;
  EXPECT_FALSE(settings.ReadGlobalSettings(1, address));
}

TEST_F(CommonSettingsCopies, AListThatCannotBeFetchedIsEmpty) {
  copies.remove(u"HBMeta1.xml"_s);
  copies[u"HBMeta2.xml"_s] = std::make_shared<platform::ado::Recordset>();
  cGlobalSettings settings;
  EXPECT_TRUE(settings.ReadGlobalSettings(1, address));
  EXPECT_EQ(settings.MetaDataLists.Count(), 3);
  EXPECT_EQ(settings.MetaDataLists.Item(1)->MetaDic->Count(), 0);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->MetaDic->Count(), 0);
}

TEST_F(CommonSettingsCopies, CaptionsThatCannotBeFetchedAreReported) {
  copies.remove(u"HBMetaLists.xml"_s);
  cGlobalSettings settings;
  db.expectFailure(u"subSetupDBObjects"_s, u"#91\r\n"_s, [&] { settings.ReadGlobalSettings(1, address); });
}

TEST_F(GlobalSettings, AListThatCannotBeReadIsReported) {
  db.createCurrent();
  run(u"insert into tblMetaLists (strMetaListCategoryCaption) values ('a caption is missing')"_s);
  cGlobalSettings settings;
  db.expectFailure(u"subSetupDBObjects"_s, u"#94\r\n"_s, [&] { read(settings); });
}

TEST_F(GlobalSettings, AreFilledOutOnlyWithEverythingThatReportingNeeds) {
  cGlobalSettings settings;
  EXPECT_FALSE(settings.fncCheckFilledOut());
  for (int n = 1; n <= 3; ++n) settings.MetaDataLists.Add(std::make_shared<cMetaDictionary>());
  settings.CostCarrier = 1;
  settings.MetaDataLists.Item(2)->AddMeta(u"a"_s);
  settings.MetaDataLists.Item(3)->AddMeta(u"a"_s);
  EXPECT_FALSE(settings.fncCheckFilledOut());
  settings.MetaDataLists.Item(1)->AddMeta(u"a"_s);
  EXPECT_TRUE(settings.fncCheckFilledOut());
  settings.CostCarrier = 0;
  EXPECT_FALSE(settings.fncCheckFilledOut());
  settings.CostCarrier = 1;
  settings.ReportTo = 0;
  EXPECT_FALSE(settings.fncCheckFilledOut());
  settings.ReportTo = 2;
  settings.ReportToValue.clear();
  EXPECT_FALSE(settings.fncCheckFilledOut());
}

TEST_F(GlobalSettings, TheDefaultCaptionsAreThePhrasesOfTheLanguage) {
  db.createCurrent();
  db.shell->LNGCUSTOMER = u"Kund"_s;
  db.shell->LNGTASK = u"Uppgift"_s;
  cGlobalSettings settings;
  EXPECT_TRUE(read(settings));
  EXPECT_EQ(settings.MetaDataLists.Item(1)->Caption, u"Kund"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->Caption, u"Uppgift"_s);
}

TEST_F(GlobalSettings, ACountOfRowsThatFailsIsPassedOver) {
  class Uncounted : public platform::ado::Recordset {
   public:
    int RecordCount() const override { throw platform::Failure(3251, u"not counted"_s); }
  };
  db.createCurrent();
  run(u"insert into tblSettings (intCostCarrier, intReportTo, strReportToValue) values (3, 4, 'elsewhere')"_s);
  db.world.components.add<platform::ado::Recordset>(u"ADODB.Recordset"_s,
                                                    [] { return std::make_shared<Uncounted>(); });
  cGlobalSettings settings;
  EXPECT_TRUE(read(settings));
  EXPECT_EQ(settings.CostCarrier, 3);
}

TEST_F(GlobalSettings, AConnectionThatCannotBeClosedIsLetGoAllTheSame) {
  const auto drivers = std::make_shared<platform::sql::Drivers>();
  databaseValues().gConnection = std::make_shared<platform::ado::Connection>(drivers);
  EXPECT_THROW(databaseValues().gConnection->Close(), platform::Failure);
  cGlobalSettings settings;
  EXPECT_NO_THROW(settings.subCloseDBObjects());
  EXPECT_EQ(databaseValues().gConnection, nullptr);
}

TEST_F(GlobalSettings, AValueWhoseEnabledFlagIsUnknownIsReported) {
  db.createCurrent();
  // The database's own column knows no Null; one that another program has added may.
  run(u"alter table tblMeta1 drop column blnEnabled"_s);
  run(u"alter table tblMeta1 add column blnEnabled bit null"_s);
  run(u"insert into tblMeta1 (strName, blnEnabled) values ('Acme', null)"_s);
  cGlobalSettings settings;
  db.expectFailure(u"subSetupDBObjects"_s, u"#13\r\n"_s, [&] { read(settings); });
}

}  // namespace hourbook::tests
