#include "platform/basic/convert.h"
#include "settings/cGlobalSettings.h"
#include "settings/frmResolveRemovedItem.h"
#include "shell/modErrorReport.h"
#include "tests/unit/database/databaseworld.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::Failure;
using platform::basic::CLng;
using platform::basic::Currency;
using platform::basic::Value;

/// A database with values and reports, read into common settings that a test changes and saves.
class SaveGlobalSettings : public testing::Test {
 protected:
  struct Asked {
    QString value, conflict;
    QStringList choices;
    bool operator==(const Asked&) const = default;
  };

  SaveGlobalSettings() {
    // made once and copied: a new database takes longer than all the rest of a test
    static const QByteArray content = newContent();
    db.write(u"Hourbook3.mdb"_s, content);
    settingsScope->showResolveRemovedItem = [this](frmResolveRemovedItem& form) {
      Asked question{form.lblValueToBeResolved.Caption(), form.lblConflict.Caption(), {}};
      for (int i = 0; i < form.cmbMoveChoice.ListCount(); ++i) question.choices << form.cmbMoveChoice.List(i);
      asked.append(question);
      if (answer) answer(form);
    };
  }

  QByteArray newContent() {
    db.createCurrent();
    const auto session = db.other();
    session->begin();
    for (const QString& sql :
         {u"insert into tblMeta1 (strName, strCategory, strSuperCategory, curRate, blnEnabled)"
          u" values ('Acme', 'Big', 'North', 100, -1)"_s,
          u"insert into tblMeta1 (strName, blnEnabled) values ('Bolt', 0)"_s,
          u"insert into tblMeta1 (strName, blnEnabled) values ('Coil', 0)"_s,
          u"insert into tblMeta2 (strName, blnEnabled) values ('Support', -1)"_s,
          u"insert into tblSettings (intCostCarrier, intReportTo, strReportToValue) values (1, 2, 'x')"_s,
          u"insert into tblPersons (strPersonName) values ('Jane')"_s,
          u"insert into tblReports (strSubject, intPersonID, intMeta1ID) values ('r', 1, 1)"_s,
          u"insert into tblReports (strSubject, intPersonID, intMeta1ID) values ('r', 1, 2)"_s,
          u"insert into tblReports (strSubject, intPersonID, intMeta1ID) values ('r', 1, 2)"_s})
      session->execute(sql);
    session->commit();
    return db.read(u"Hourbook3.mdb"_s);
  }
  void run(const QString& sql) { db.other()->execute(sql); }
  std::unique_ptr<cGlobalSettings> readSettings() {
    auto settings = std::make_unique<cGlobalSettings>();
    EXPECT_TRUE(settings->ReadGlobalSettings(2, db.folder.path()));
    return settings;
  }
  /// The list with these values alone, each as it was read.
  static void keepOnly(cMetaDictionary& list, const QStringList& names) {
    const auto before = list.MetaDic->Items();
    list.MetaDic->RemoveAll();
    for (const auto& meta : before)
      if (names.contains(meta->MetaName)) list.MetaDic->Add(meta->MetaName, meta);
  }
  /// One line for each row, its columns joined by "|".
  QStringList table(const QString& sql) {
    QStringList lines;
    for (const auto& row : db.other()->execute(sql).rows) {
      QStringList cells;
      for (const Value& cell : row)
        cells << (platform::basic::IsNull(cell) ? u"Null"_s : platform::basic::CStr(cell));
      lines << cells.join(u'|');
    }
    return lines;
  }
  QStringList customers() { return table(u"select intMeta1ID, strName from tblMeta1 order by intMeta1ID"_s); }
  QStringList reportedCustomers() { return table(u"select intMeta1ID from tblReports order by intReportID"_s); }
  QStringList statements(const QString& beginning) const {
    return db.plan->statements.filter(QRegularExpression(u'^' + beginning));
  }

  ::tests::DatabaseWorld db;
  Shared<SettingsValues>::Scope settingsScope;
  QList<Asked> asked;
  std::function<void(frmResolveRemovedItem&)> answer;  // none: the window is closed by its frame
};

TEST_F(SaveGlobalSettings, WhatIsNotFilledOutIsToldAndNothingIsWritten) {
  auto settings = readSettings();
  settings->CostCarrier = 0;
  db.plan->clear();
  db.world.dialogs.expect(u"All mandatory values are not filled out!\r\nFailed to save settings"_s,
                          platform::dialogs::vbOK);
  EXPECT_FALSE(settings->SaveGlobalSettings());
  EXPECT_EQ(db.world.dialogs.shown.last().title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_TRUE(db.plan->statements.isEmpty());
}

TEST_F(SaveGlobalSettings, EverythingThatWasSavedReadsBack) {
  auto settings = readSettings();
  settings->CostCarrier = 4;
  settings->ReportTo = 4;
  settings->ReportToValue = u"elsewhere"_s;
  cMetaDictionary& first = *settings->MetaDataLists.Item(1);
  first.Caption = u"Kunde"_s;
  first.CategoryCaption = u"Branche"_s;
  first.SuperCategoryCaption = u"Land"_s;
  first.MetaDic->Item(u"Acme"_s)->Category = u"Small"_s;
  first.MetaDic->Item(u"Acme"_s)->SuperCategory = u"South"_s;
  first.MetaDic->Item(u"Acme"_s)->HourlyRate = Currency::fromDouble(99.1234);
  first.MetaDic->Item(u"Acme"_s)->Enabled = false;
  settings->MetaDataLists.Item(3)->Caption = u"Art"_s;
  settings->MetaDataLists.Item(3)->AddMeta(u"O'Neill's"_s, u"c"_s, Currency::fromDouble(1.5), 0, u"s"_s,
                                           true);
  settings->OtherSettings->SetValue(u"ADDepartment"_s, u"1"_s);
  EXPECT_TRUE(settings->SaveGlobalSettings());

  const auto again = readSettings();
  EXPECT_EQ(again->CostCarrier, 4);
  EXPECT_EQ(again->ReportTo, 4);
  EXPECT_EQ(again->ReportToValue, u"elsewhere"_s);
  const cMetaDictionary& list = *again->MetaDataLists.Item(1);
  EXPECT_EQ(list.Caption, u"Kunde"_s);
  EXPECT_EQ(list.CategoryCaption, u"Branche"_s);
  EXPECT_EQ(list.SuperCategoryCaption, u"Land"_s);
  EXPECT_EQ(list.MetaDic->Item(u"Acme"_s)->Category, u"Small"_s);
  EXPECT_EQ(list.MetaDic->Item(u"Acme"_s)->SuperCategory, u"South"_s);
  EXPECT_EQ(list.MetaDic->Item(u"Acme"_s)->HourlyRate, Currency::fromDouble(99.1234));
  EXPECT_FALSE(list.MetaDic->Item(u"Acme"_s)->Enabled);
  EXPECT_EQ(again->MetaDataLists.Item(3)->Caption, u"Art"_s);
  const auto& added = *again->MetaDataLists.Item(3)->MetaDic->Item(u"O'Neill's"_s);
  EXPECT_TRUE(added.Enabled);
  EXPECT_EQ(added.HourlyRate, Currency::fromDouble(1.5));
  EXPECT_EQ(added.SuperCategory, u"s"_s);
  EXPECT_EQ(platform::basic::CInt(again->OtherSettings->GetValue(u"ADDepartment"_s, 2)), 1);
  EXPECT_TRUE(asked.isEmpty());
}

TEST_F(SaveGlobalSettings, AValueFoundByNameKeepsItsKeyAndANewOneLearnsIt) {
  auto settings = readSettings();
  cMetaDictionary& list = *settings->MetaDataLists.Item(1);
  list.AddMeta(u"Dyne"_s);
  list.MetaDic->Item(u"Acme"_s)->HourlyRate = Currency::fromDouble(5);
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(customers(), (QStringList{u"1|Acme"_s, u"2|Bolt"_s, u"3|Coil"_s, u"4|Dyne"_s}));
  EXPECT_EQ(list.MetaDic->Item(u"Dyne"_s)->ID, 4);
  EXPECT_EQ(list.MetaDic->Item(u"Coil"_s)->ID, 3);
}

TEST_F(SaveGlobalSettings, TheKeyOfAValueMadeElsewhereIsReadBack) {
  auto settings = readSettings();
  cMetaDictionary& list = *settings->MetaDataLists.Item(1);
  keepOnly(list, {u"Acme"_s, u"Bolt"_s});
  list.AddMeta(u"Coil"_s);
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(list.MetaDic->Item(u"Coil"_s)->ID, 3);
}

TEST_F(SaveGlobalSettings, ANameIsFoundExactlySoAnotherCaseMakesASecondRowAndTheFirstStays) {
  auto settings = readSettings();
  cMetaDictionary& list = *settings->MetaDataLists.Item(1);
  keepOnly(list, {u"Bolt"_s, u"Coil"_s});
  list.AddMeta(u"ACME"_s);
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(customers(), (QStringList{u"1|Acme"_s, u"2|Bolt"_s, u"3|Coil"_s, u"4|ACME"_s}));
  EXPECT_TRUE(asked.isEmpty());
}

TEST_F(SaveGlobalSettings, OfTwoRowsOfOneNameTheFirstIsTheValues) {
  run(u"insert into tblMeta1 (strName, blnEnabled) values ('Acme', 0)"_s);
  auto settings = readSettings();
  settings->MetaDataLists.Item(1)->MetaDic->Item(u"Acme"_s)->Category = u"New"_s;
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(table(u"select intMeta1ID, strCategory from tblMeta1 where strName = 'Acme' order by intMeta1ID"_s),
            (QStringList{u"1|New"_s, u"4|Null"_s}));
  EXPECT_EQ(settings->MetaDataLists.Item(1)->MetaDic->Item(u"Acme"_s)->ID, 1);
}

TEST_F(SaveGlobalSettings, ValuesThatHaveNotChangedAreNotWrittenAgain) {
  auto settings = readSettings();
  EXPECT_TRUE(settings->SaveGlobalSettings());
  db.plan->clear();
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(statements(u"(insert|delete)"_s), QStringList());
  EXPECT_EQ(statements(u"update \\[tblMeta\\d\\]"_s), QStringList());
}

TEST_F(SaveGlobalSettings, ARemovedValueIsAskedAboutWithTheListAsChoices) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Acme"_s, u"Coil"_s});
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(asked, (QList<Asked>{{u"Bolt"_s,
                                  u"A value which previously was in the list is no longer available."_s,
                                  {u"Acme"_s, u"Coil"_s}}}));
}

TEST_F(SaveGlobalSettings, ItsReportsCanBeRemovedWithIt) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Acme"_s, u"Coil"_s});
  answer = [](frmResolveRemovedItem& form) {
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
  };
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(customers(), (QStringList{u"1|Acme"_s, u"3|Coil"_s}));
  EXPECT_EQ(reportedCustomers(), QStringList{u"1"_s});
  EXPECT_EQ(statements(u"Delete from tblReports"_s),
            QStringList{u"Delete from tblReports where intMeta1ID = 2"_s});
}

TEST_F(SaveGlobalSettings, ItsReportsCanBeMovedToAnotherValue) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Acme"_s, u"Coil"_s});
  answer = [](frmResolveRemovedItem& form) {
    form.cmbMoveChoice.setListIndex(1);
    form.cmdOK.click();
  };
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(customers(), (QStringList{u"1|Acme"_s, u"3|Coil"_s}));
  EXPECT_EQ(reportedCustomers(), (QStringList{u"1"_s, u"3"_s, u"3"_s}));
  EXPECT_EQ(statements(u"Update tblReports"_s),
            QStringList{u"Update tblReports set intMeta1ID = 3 where intMeta1ID = 2"_s});
}

TEST_F(SaveGlobalSettings, ReportsOfARenamedValueMoveToTheNewKey) {
  auto settings = readSettings();
  cMetaDictionary& list = *settings->MetaDataLists.Item(1);
  keepOnly(list, {u"Acme"_s, u"Coil"_s});
  list.AddMeta(u"Bolts"_s);
  answer = [](frmResolveRemovedItem& form) {
    form.cmbMoveChoice.setText(u"Bolts"_s);
    form.cmdOK.click();
  };
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(customers(), (QStringList{u"1|Acme"_s, u"3|Coil"_s, u"4|Bolts"_s}));
  EXPECT_EQ(reportedCustomers(), (QStringList{u"1"_s, u"4"_s, u"4"_s}));
}

TEST_F(SaveGlobalSettings, ACancelledQuestionLeavesTheValueAndAsksAboutTheNext) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Coil"_s});
  answer = [](frmResolveRemovedItem& form) { form.cmdCancel.click(); };
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(asked.size(), 2);
  EXPECT_EQ(customers().size(), 3);
  EXPECT_EQ(reportedCustomers().size(), 3);
}

TEST_F(SaveGlobalSettings, SeveralRemovedValuesAreResolvedOneByOne) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Coil"_s});
  answer = [](frmResolveRemovedItem& form) {
    form.optRemoveReports.setValue(form.lblValueToBeResolved.Caption() == u"Acme"_s);
    form.cmbMoveChoice.setListIndex(0);
    form.cmdOK.click();
  };
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(customers(), QStringList{u"3|Coil"_s});
  EXPECT_EQ(reportedCustomers(), (QStringList{u"3"_s, u"3"_s}));
}

TEST_F(SaveGlobalSettings, EachListHasItsOwnKeyColumn) {
  run(u"update tblReports set intMeta2ID = 1"_s);
  auto settings = readSettings();
  settings->MetaDataLists.Item(2)->MetaDic->RemoveAll();
  answer = [](frmResolveRemovedItem& form) {
    EXPECT_EQ(form.cmbMoveChoice.ListCount(), 0);
    form.cmdOK.click();
    EXPECT_TRUE(form.Visible());
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
  };
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(table(u"select strName from tblMeta2"_s), QStringList());
  EXPECT_TRUE(db.plan->statements.contains(u"Delete from tblReports where intMeta2ID = 1"_s));
  EXPECT_EQ(customers().size(), 3);
}

TEST_F(SaveGlobalSettings, ARowWithoutANameCountsAsRemoved) {
  run(u"insert into tblMeta1 (strName, blnEnabled) values (null, 0)"_s);
  auto settings = readSettings();
  EXPECT_EQ(settings->MetaDataLists.Item(1)->MetaDic->Count(), 3);
  answer = [](frmResolveRemovedItem& form) {
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
  };
  EXPECT_TRUE(settings->SaveGlobalSettings());
  ASSERT_EQ(asked.size(), 1);
  EXPECT_EQ(asked.first().value, QString());
  EXPECT_EQ(customers(), (QStringList{u"1|Acme"_s, u"2|Bolt"_s, u"3|Coil"_s}));
}

TEST_F(SaveGlobalSettings, AListThatIsSavedTwiceIsAskedAboutAgainOnlyWhileARowIsLeft) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Acme"_s, u"Coil"_s});
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(asked.size(), 2);
  answer = [](frmResolveRemovedItem& form) {
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
  };
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(asked.size(), 3);
}

TEST_F(SaveGlobalSettings, AValueIsSavedUnderItsOwnNameNotUnderItsKey) {
  auto settings = readSettings();
  cMetaDictionary& list = *settings->MetaDataLists.Item(1);
  const auto acme = list.MetaDic->Item(u"Acme"_s);
  keepOnly(list, {u"Bolt"_s, u"Coil"_s});
  acme->Category = u"New"_s;
  list.MetaDic->Add(u"Other key"_s, acme);
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(customers(), (QStringList{u"1|Acme"_s, u"2|Bolt"_s, u"3|Coil"_s}));
  EXPECT_EQ(acme->ID, 1);
  // a row is told to be removed by the keys
  ASSERT_EQ(asked.size(), 1);
  EXPECT_EQ(asked.first().value, u"Acme"_s);
}

TEST_F(SaveGlobalSettings, WithoutADialogARemovedValueFailsWithAClearText) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Acme"_s, u"Coil"_s});
  settingsScope->showResolveRemovedItem = nullptr;
  db.expectFailure(
      u"fncSaveGlobalSettings"_s,
      u"The value \"Bolt\" is no longer in its list, and this version of the program has no dialog "
      "that asks what becomes of its reports.\r\n#445\r\n"_s,
      [&] { settings->SaveGlobalSettings(); });
  EXPECT_EQ(customers().size(), 3);
}

TEST_F(SaveGlobalSettings, TheSettingsRowIsMadeWhenThereIsNoneAndChangedWhenThereIs) {
  run(u"delete from tblSettings"_s);
  auto settings = readSettings();
  settings->CostCarrier = 2;
  EXPECT_TRUE(settings->SaveGlobalSettings());
  settings->CostCarrier = 3;
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(table(u"select intCostCarrier, intReportTo, strReportToValue from tblSettings"_s),
            QStringList{u"3|2|"_s + db.shownPath()});
}

TEST_F(SaveGlobalSettings, AListWithoutACaptionLosesItsRow) {
  auto settings = readSettings();
  EXPECT_EQ(db.rows(u"select * from tblMetaLists"_s), 3);
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(table(u"select strMetaListCaption, strMetaListCategoryCaption from tblMetaLists"_s),
            (QStringList{u"Customer|"_s, u"Task|"_s}));
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(db.rows(u"select * from tblMetaLists"_s), 2);
}

TEST_F(SaveGlobalSettings, TheCaptionsBehindAListWithoutOneMoveUp) {
  auto settings = readSettings();
  settings->MetaDataLists.Item(2)->Caption.clear();
  settings->MetaDataLists.Item(3)->Caption = u"Third"_s;
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(table(u"select strMetaListCaption from tblMetaLists"_s),
            (QStringList{u"Customer"_s, u"Third"_s}));
}

TEST_F(SaveGlobalSettings, RowsOfCaptionsAreAddedWhereTheyLack) {
  auto settings = readSettings();
  run(u"delete from tblMetaLists"_s);
  settings->MetaDataLists.Item(3)->Caption = u"Third"_s;
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(table(u"select strMetaListCaption from tblMetaLists"_s),
            (QStringList{u"Customer"_s, u"Task"_s, u"Third"_s}));
}

TEST_F(SaveGlobalSettings, OtherSettingsAreSavedAndThoseOfOtherNamesStay) {
  auto settings = readSettings();
  run(u"insert into tblOtherSettings (strPropName, strPropValue) values ('Foreign', 'x')"_s);
  settings->OtherSettings->SetValue(u"ADDepartment"_s, QString());
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(table(u"select strPropName, strPropValue from tblOtherSettings"_s),
            (QStringList{u"Foreign|x"_s, u"ADDepartment| "_s}));
}

TEST_F(SaveGlobalSettings, TheConnectionIsLetGoAfterwards) {
  auto settings = readSettings();
  EXPECT_TRUE(settings->SaveGlobalSettings());
  EXPECT_EQ(databaseValues().gConnection, nullptr);
}

TEST_F(SaveGlobalSettings, ADatabaseThatIsGoneIsReportedUnderItsName) {
  auto settings = readSettings();
  QFile::remove(db.path());
  db.expectFailure(u"fncSaveGlobalSettings"_s, u"#91\r\n"_s, [&] { settings->SaveGlobalSettings(); });
  EXPECT_FALSE(db.exists());
}

TEST_F(SaveGlobalSettings, ADatabaseThatCannotBeWrittenKeepsWhatItHeld) {
  auto settings = readSettings();
  settings->MetaDataLists.Item(1)->AddMeta(u"Dyne"_s);
  db.plan->failContaining(u"insert"_s, Failure(-2147467259, u"no rights"_s));
  db.expectFailure(u"fncSaveGlobalSettings"_s, u"no rights\r\n"_s, [&] { settings->SaveGlobalSettings(); });
  EXPECT_EQ(customers().size(), 3);
}

TEST_F(SaveGlobalSettings, ADatabaseThatAnotherHasLockedKeepsWhatItHeld) {
  auto settings = readSettings();
  settings->MetaDataLists.Item(1)->AddMeta(u"Dyne"_s);
  {
    const auto another = db.other();
    another->begin();
    another->execute(u"update tblMeta1 set strCategory = 'theirs'"_s);
    db.expectFailure(u"fncSaveGlobalSettings"_s, u"is in use by another program.\r\n"_s,
                     [&] { settings->SaveGlobalSettings(); });
    another->rollback();
  }
  EXPECT_EQ(customers().size(), 3);
}

TEST_F(SaveGlobalSettings, ADatabaseThatVanishesInTheMiddleIsToldAndNotMadeAnew) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Acme"_s, u"Coil"_s});
  answer = [this](frmResolveRemovedItem& form) {
    QFile::remove(db.path());
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
  };
  db.expectFailure(u"fncSaveGlobalSettings"_s, u"Hourbook3.mdb"_s, [&] { settings->SaveGlobalSettings(); });
  EXPECT_FALSE(db.exists());
}

TEST_F(SaveGlobalSettings, ReportsThatCannotBeRemovedKeepTheirValue) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Acme"_s, u"Coil"_s});
  answer = [](frmResolveRemovedItem& form) {
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
  };
  db.plan->failContaining(u"Delete from tblReports"_s, Failure(-2147467259, u"locked"_s));
  db.expectFailure(u"fncSaveGlobalSettings"_s, u"locked\r\n"_s, [&] { settings->SaveGlobalSettings(); });
  EXPECT_EQ(customers().size(), 3);
  EXPECT_EQ(reportedCustomers().size(), 3);
}

TEST_F(SaveGlobalSettings, WhatWasRemovedStaysRemovedWhenALaterStepFails) {
  auto settings = readSettings();
  keepOnly(*settings->MetaDataLists.Item(1), {u"Acme"_s, u"Coil"_s});
  answer = [](frmResolveRemovedItem& form) {
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
  };
  db.plan->failContaining(u"update [tblSettings]"_s, Failure(-2147467259, u"vanished"_s));
  db.expectFailure(u"fncSaveGlobalSettings"_s, u"vanished\r\n"_s, [&] { settings->SaveGlobalSettings(); });
  EXPECT_EQ(customers().size(), 2);
  EXPECT_EQ(reportedCustomers(), QStringList{u"1"_s});
  EXPECT_FALSE(db.plan->statements.contains(u"begin"_s));
}

// ---- the copies for an ASP page

TEST_F(SaveGlobalSettings, AnAspTargetWithoutCopiesFailsBeforeAnythingIsWritten) {
  auto settings = readSettings();
  settings->ReportTo = 1;
  settings->MetaDataLists.Item(1)->AddMeta(u"Dyne"_s);
  db.plan->clear();
  db.expectFailure(
      u"fncSaveGlobalSettings"_s,
      u"This version of the program cannot save the common settings for an ASP page.\r\n#445\r\n"_s,
      [&] { settings->SaveGlobalSettings(); });
  EXPECT_TRUE(db.plan->statements.isEmpty());
}

TEST_F(SaveGlobalSettings, AnAspTargetGetsItsCopiesIntoTheProgramsFolder) {
  auto settings = readSettings();
  settings->ReportTo = 1;
  settings->ReportToValue = u"http://example.org/hours"_s;
  QStringList saved;
  settingsScope->subSaveADRToXML = [&](platform::ado::Recordset& rs, const QString& path) {
    saved << path.section(u'/', -1) + u' ' + rs.Source() + u' ' + QString::number(rs.Fields().Count()) +
                 u' ' + QString::number(rs.RecordCount());
  };
  db.shell->gLogToFile = true;
  EXPECT_TRUE(settings->SaveGlobalSettings());
  const QString folder = db.world.programFolder().section(u'/', -1) + u'\\';
  EXPECT_EQ(saved, (QStringList{folder + u"HBMeta1.xml Select strName from tblMeta1 1 3"_s,
                                folder + u"HBMeta2.xml Select strName from tblMeta2 1 1"_s,
                                folder + u"HBMeta3.xml Select strName from tblMeta3 1 0"_s,
                                folder + u"HBSettings.xml tblSettings 4 1"_s,
                                folder + u"HBMetaLists.xml tblMetaLists 4 2"_s}));
  EXPECT_TRUE(db.log().contains(u"Saving the current Common Settings to xml in the path "_s +
                                db.world.programFolder() + u'\\'));
  EXPECT_EQ(databaseValues().gConnection, nullptr);
}

TEST_F(SaveGlobalSettings, OtherTargetsGetNoCopies) {
  auto settings = readSettings();
  settingsScope->subSaveADRToXML = [](platform::ado::Recordset&, const QString& path) {
    ADD_FAILURE() << qPrintable(path);
  };
  EXPECT_TRUE(settings->SaveGlobalSettings());
}

TEST_F(SaveGlobalSettings, ACopyThatCannotBeWrittenIsReported) {
  auto settings = readSettings();
  settings->ReportTo = 1;
  settingsScope->subSaveADRToXML = [](platform::ado::Recordset&, const QString&) {
    throw Failure(70, u"Permission denied"_s);
  };
  db.expectFailure(u"fncSaveGlobalSettings"_s, u"Permission denied\r\n#70\r\n"_s,
                   [&] { settings->SaveGlobalSettings(); });
}

}  // namespace hourbook::tests
