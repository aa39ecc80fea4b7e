#include "tests/unit/companions/common/formcheck.h"
#include "tests/unit/companions/common/pageworld.h"

#include <QCheckBox>

namespace hourbook::tests {

using platform::Failure;
namespace errors = platform::sql::errors;

class CommonPage : public PageWorld {
 protected:
  QString applyFailure() {
    try {
      page->apply();
    } catch (const Failure& failure) {
      return failure.description();
    }
    return u"none"_s;
  }
};

// ---- what is shown

TEST_F(CommonPage, ShowsWhatTheDatabaseHolds) {
  open();
  EXPECT_EQ(page->title(), u"Common settings"_s);
  EXPECT_TRUE(shows(u"All users of %1 share these settings."_s.arg(db.folder.path())));
  EXPECT_EQ(control<QComboBox>(u"cmbCostCarrier"_s)->currentText(), u"the rate of list 1 (Customer)"_s);
  EXPECT_EQ(control<QComboBox>(u"cmbReportTo"_s)->currentText(), u"an Access database"_s);
  EXPECT_EQ(control<QLineEdit>(u"txtReportToValue"_s)->text(), u"there"_s);
  EXPECT_EQ(tabs()->tabText(List1), u"List 1: Customer"_s);
  EXPECT_EQ(tabs()->tabText(List3), u"List 3"_s);
  leafTo(List1);
  EXPECT_EQ(names(), (QStringList{u"Acme"_s, u"Zeta"_s}));
  EXPECT_EQ(cell(0, 3), u"450.50"_s);
  EXPECT_EQ(table()->model()->headerData(1, Qt::Horizontal).toString(), u"Branch"_s);
  EXPECT_TRUE(shows(u"2 values"_s));
  EXPECT_FALSE(page->isChanged());
  EXPECT_EQ(page->problem(), QString());
}

TEST_F(CommonPage, ShowsRatesInTheFormatOfTheSystem) {
  db.world.setLocale(u"sv_SE"_s);
  open();
  leafTo(List1);
  EXPECT_EQ(cell(0, 3), u"450,50"_s);
}

TEST_F(CommonPage, GivesTheListsInUseToTheOtherPages) {
  open();
  EXPECT_EQ(page->commonLists(),
            (QList<NamedList>{{u"Customer"_s, {u"Acme"_s, u"Zeta"_s}}, {u"Task"_s, {u"Support"_s}}}));
}

TEST_F(CommonPage, CallsACaptionsAmpersandByItself) {
  run(u"update tblMetaLists set strMetaListCaption = 'R&D' where intMetaListID = 1"_s);
  open();
  EXPECT_EQ(tabs()->tabText(List1), u"List 1: R&&D"_s);
}

// ---- nothing is written before OK

TEST_F(CommonPage, ThatIsThrownAwayHasChangedNothing) {
  const QByteArray before = db.read(u"Hourbook3.mdb"_s);
  open();
  leafTo(List1);
  tabTo(u"txtNewValue"_s);
  type(u"Beta"_s);
  press(Qt::Key_Return);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Delete);
  leafTo(Other);
  tabTo(u"chkDepartment"_s);
  press(Qt::Key_Space);
  EXPECT_TRUE(page->isChanged());
  page.reset();
  EXPECT_EQ(db.read(u"Hourbook3.mdb"_s), before);
  EXPECT_TRUE(asked.isEmpty());
}

TEST_F(CommonPage, MayBeThrownAwayInTheMiddleOfTyping) {
  const QString before = everything();
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_F2);
  type(u"x"_s);
  page.reset();
  EXPECT_EQ(everything(), before);
}

TEST_F(CommonPage, AppliesNothingWhenNothingIsChanged) {
  open();
  db.plan->statements.clear();
  page->apply();
  EXPECT_TRUE(db.plan->statements.isEmpty());
}

TEST_F(CommonPage, SavesWhatWasTypedAndShowsItAsStored) {
  open();
  leafTo(Other);
  tabTo(u"chkDepartment"_s);
  press(Qt::Key_Space);
  EXPECT_TRUE(page->isChanged());
  EXPECT_GT(changes, 0);
  EXPECT_EQ(page->problem(), QString());
  page->apply();
  EXPECT_FALSE(page->isChanged());
  EXPECT_EQ(column(u"select strPropValue from tblOtherSettings"_s), u"1"_s);
}

// ---- a database that cannot be reached

TEST_F(CommonPage, SaysThatThereIsNoDatabaseAndCanReadAgain) {
  const QTemporaryDir empty;
  QString folder = empty.path() + u'\\';
  openAt([&] { return ReportPlace{2, folder}; });
  EXPECT_TRUE(shows(u"The common settings cannot be read: there is no database in %1."_s.arg(empty.path())));
  EXPECT_FALSE(tabs()->isVisible());
  EXPECT_FALSE(page->isChanged());
  EXPECT_EQ(page->problem(), QString());
  EXPECT_TRUE(page->commonLists().isEmpty());
  folder = db.folder.path() + u'\\';
  tabTo(u"cmdReadAgain"_s);
  press(Qt::Key_Space);
  EXPECT_TRUE(tabs()->isVisible());
  EXPECT_EQ(page->commonLists().size(), 2);
}

TEST_F(CommonPage, FollowsTheOtherPageToAnotherDatabase) {
  const QTemporaryDir empty;
  QString folder = empty.path() + u'\\';
  openAt([&] { return ReportPlace{2, folder}; });
  folder = db.folder.path() + u'\\';
  page->aboutToShow();
  EXPECT_TRUE(tabs()->isVisible());
  db.plan->statements.clear();
  page->aboutToShow();
  EXPECT_TRUE(db.plan->statements.isEmpty()) << "the same place is not read again";
}

TEST_F(CommonPage, KeepsWhatWasTypedWhenAnotherPageChoosesAnotherDatabase) {
  ReportPlace where = place();
  openAt([&] { return where; });
  leafTo(Other);
  tabTo(u"chkDepartment"_s);
  press(Qt::Key_Space);
  where.value = u"elsewhere\\"_s;
  page->aboutToShow();
  EXPECT_TRUE(page->isChanged());
  const QString text =
      u"Reports are to go elsewhere now, but these are still the common settings of %1. Use \"Read again\" "
      u"to "
      "see those of the new place; what you changed here is lost then."_s.arg(db.folder.path());
  EXPECT_TRUE(shows(text));
  EXPECT_EQ(page->problem(), text) << "neither database gets what was meant for the other";
  EXPECT_EQ(focused(), u"cmdReadAgain"_s);
  where = place();
  EXPECT_EQ(page->problem(), QString());
}

TEST_F(CommonPage, TakesWhatWasTypedAlongToAnotherPlaceOfANewDatabase) {
  ReportPlace where{2, u"one\\"_s, true};
  openAt([&] { return where; });
  leafTo(List1);
  tabTo(u"txtNewValue"_s);
  type(u"Acme"_s);
  press(Qt::Key_Return);
  where.value = u"two\\"_s;
  page->aboutToShow();
  EXPECT_EQ(names(), QStringList{u"Acme"_s});
  leafTo(Cost);
  EXPECT_EQ(control<QLineEdit>(u"txtReportToValue"_s)->text(), u"two\\Hourbook3.mdb"_s);
}

TEST_F(CommonPage, OffersADatabaseThatIsYetToBeMadeWithItsFirstCaptions) {
  const QTemporaryDir empty;
  openAt([&] { return ReportPlace{2, empty.path() + u'\\', true}; });
  EXPECT_TRUE(shows(
      u"All users of the new database will share these settings. It is made when everything is saved."_s));
  EXPECT_EQ(tabs()->tabText(List1), u"List 1: Customer"_s);
  EXPECT_FALSE(page->isChanged());
}

TEST_F(CommonPage, LetsThoseLookWhoMayNotWrite) {
  db.plan->failContaining(u"update tblSettings"_s, Failure(errors::noPermission, u"You may not write."_s));
  open();
  EXPECT_TRUE(shows(u"You can look at the common settings but not change them: You may not write."_s));
  EXPECT_FALSE(control<QComboBox>(u"cmbCostCarrier"_s)->isEnabled());
  EXPECT_TRUE(control<QLineEdit>(u"txtReportToValue"_s)->isReadOnly());
  leafTo(List1);
  EXPECT_FALSE(control<QPushButton>(u"cmdRemove"_s)->isEnabled());
  tabTo(u"tblValues"_s);
  press(Qt::Key_Delete);
  press(Qt::Key_F2);
  type(u"x"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(names(), (QStringList{u"Acme"_s, u"Zeta"_s}));
  EXPECT_FALSE(page->isChanged());
  EXPECT_EQ(::tests::formFaults(*page), QStringList());
}

// ---- somebody else

TEST_F(CommonPage, SaysThatSomebodyElseChangedTheSettingsAndKeepsWhatWasTyped) {
  open();
  leafTo(Other);
  tabTo(u"chkDepartment"_s);
  press(Qt::Key_Space);
  run(u"update tblMeta1 set curRate = 9 where strName = 'Zeta'"_s);
  EXPECT_TRUE(applyFailure().startsWith(
      u"Somebody else has changed the common settings since they were read (list 1)."_s));
  EXPECT_TRUE(page->isChanged());
  EXPECT_EQ(focused(), u"cmdReadAgain"_s);
  db.world.dialogs.expect(u"What you changed on this page is lost."_s, platform::dialogs::vbNo);
  press(Qt::Key_Space);
  EXPECT_TRUE(page->isChanged());
  db.world.dialogs.expect(u"What you changed on this page is lost."_s, platform::dialogs::vbYes);
  press(Qt::Key_Space);
  EXPECT_FALSE(page->isChanged());
  leafTo(List1);
  EXPECT_EQ(cell(1, 3), u"9"_s);
}

TEST_F(CommonPage, ShowsWhyASaveFailedAndKeepsWhatWasTyped) {
  open();
  leafTo(Other);
  tabTo(u"chkDepartment"_s);
  press(Qt::Key_Space);
  const QString before = everything();
  db.plan->failContaining(u"insert into [tblOtherSettings]"_s, Failure(errors::diskFull, u"It is full."_s));
  EXPECT_EQ(applyFailure(), u"The common settings have not been saved: It is full."_s);
  EXPECT_TRUE(shows(u"The common settings have not been saved: It is full."_s));
  EXPECT_TRUE(page->isChanged());
  db.plan->clear();
  EXPECT_EQ(everything(), before);
}

// ---- problems at their fields

TEST_F(CommonPage, LeadsToTheFirstFieldThatIsWrong) {
  open();
  leafTo(List2);
  tabTo(u"txtCaption"_s);
  press(Qt::Key_A, Qt::ControlModifier);
  type(u"customer"_s);
  EXPECT_TRUE(shows(u"List 1 has this name already."_s));
  leafTo(Billing);
  EXPECT_EQ(page->problem(), u"List 1 has this name already."_s);
  EXPECT_EQ(tabs()->currentIndex(), List2);
  EXPECT_EQ(focused(), u"txtCaption"_s);
  EXPECT_EQ(QApplication::focusWidget()->accessibleDescription(), u"List 1 has this name already."_s);
}

TEST_F(CommonPage, TellsAboutAValueThatWasTypedAndNotAdded) {
  open();
  leafTo(List1);
  tabTo(u"txtNewValue"_s);
  type(u"Beta"_s);
  leafTo(Cost);
  EXPECT_TRUE(page->isChanged());
  EXPECT_EQ(page->problem(),
            u"\"Beta\" has been typed as a new value but not added. Add it or clear the field."_s);
  EXPECT_EQ(focused(), u"txtNewValue"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(page->problem(), QString());
}

TEST_F(CommonPage, TellsAboutACellThatCouldNotBeTaken) {
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  for (int i = 0; i < 3; ++i) press(Qt::Key_Right);
  press(Qt::Key_F2);
  press(Qt::Key_A, Qt::ControlModifier);
  type(u"much"_s);
  control<QLineEdit>(u"txtFilter"_s)->setFocus();  // as a click elsewhere does
  EXPECT_EQ(page->problem(), u"\"much\": A rate is a number such as 450.50."_s);
  EXPECT_EQ(cell(0, 3), u"450.50"_s);
  EXPECT_EQ(page->problem(), u"\"much\": A rate is a number such as 450.50."_s);
  EXPECT_EQ(focused(), u"tblValues"_s);
  press(Qt::Key_Tab);
  EXPECT_EQ(page->problem(), QString()) << "the user has seen it, and the old rate stands";
}

// ---- removed values

TEST_F(CommonPage, AsksAboutTheReportsOfARemovedValueBeforeItSaves) {
  addReport(1);
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Delete);
  onAsked = [&](frmResolveRemovedItem& form) {
    EXPECT_EQ(form.lblConflict.Caption(),
              u"A value which previously was in the list is no longer available."_s);
    EXPECT_EQ(form.cmbMoveChoice.ListCount(), 1);
    EXPECT_NO_THROW(run(u"update tblPersons set strPersonName = 'Bo'"_s)) << "others can go on";
    form.cmbMoveChoice.setText(u"Zeta"_s);
    form.cmdOK.click();
  };
  page->apply();
  EXPECT_EQ(asked, QStringList{u"Acme"_s});
  EXPECT_EQ(column(u"select intMeta1ID from tblReports"_s), u"2"_s);
  EXPECT_EQ(names(), QStringList{u"Zeta"_s});
}

TEST_F(CommonPage, OffersTheNewNameForTheReportsOfARenamedValue) {
  addReport(1);
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_F2);
  press(Qt::Key_A, Qt::ControlModifier);
  type(u"Acme Ltd"_s);
  press(Qt::Key_Return);
  EXPECT_TRUE(shows(
      u"Appointments that are marked with \"Acme\" keep that name. When saving you are asked where its reports go."_s));
  onAsked = [](frmResolveRemovedItem& form) { form.cmdOK.click(); };
  page->apply();
  EXPECT_EQ(offered, u"Acme Ltd"_s);
  EXPECT_EQ(
      column(u"select m.strName from tblReports r inner join tblMeta1 m on m.intMeta1ID = r.intMeta1ID"_s),
      u"Acme Ltd"_s);
}

TEST_F(CommonPage, ShowsAValueAgainWhoseReportsNothingWasChosenFor) {
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Delete);
  onAsked = [](frmResolveRemovedItem& form) { form.cmdCancel.click(); };
  page->apply();
  EXPECT_EQ(names(), (QStringList{u"Acme"_s, u"Zeta"_s}));
  EXPECT_TRUE(
      shows(u"These removed values stay in their lists, as nothing was chosen for their reports: Acme"_s));
}

TEST_F(CommonPage, SavesNothingWhenNobodyCanAsk) {
  settings->showResolveRemovedItem = nullptr;
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Delete);
  const QString before = everything();
  EXPECT_TRUE(applyFailure().startsWith(u"The common settings have not been saved: The value \"Acme\""_s));
  EXPECT_EQ(everything(), before);
}

// ---- billing

TEST_F(CommonPage, SaysWhyNothingCanBeDownloaded) {
  open();
  leafTo(Billing);
  EXPECT_FALSE(control<QPushButton>(u"cmdDownload"_s)->isEnabled());
  EXPECT_TRUE(shows(
      u"This version of the program cannot download customers and items from the billing system. The lists are kept here."_s));
}

TEST_F(CommonPage, DownloadsThroughWhoeverCanOnceEverythingIsSaved) {
  struct Download : BillingDownload {
    QString unable(const QString& serverName) const override {
      return serverName == u"2"_s ? u"Not remotely."_s : QString();
    }
    QString run() override {
      ++runs;
      return u"Download Completed."_s;
    }
    int runs = 0;
  };
  const auto download = std::make_shared<Download>();
  openAt([this] { return place(); }, download);
  leafTo(Billing);
  EXPECT_TRUE(control<QPushButton>(u"cmdDownload"_s)->isEnabled());
  tabTo(u"cmbRoad"_s);
  press(Qt::Key_Down);
  EXPECT_TRUE(shows(u"Save the changes before you download."_s));
  press(Qt::Key_Down);
  EXPECT_TRUE(shows(u"Not remotely."_s));
  press(Qt::Key_Up);
  page->apply();
  EXPECT_EQ(column(u"select ServerName from tblWFData"_s), u"1"_s);
  run(u"insert into tblMeta2 (strName, blnEnabled) values ('Fetched', -1)"_s);
  tabTo(u"cmdDownload"_s);
  press(Qt::Key_Space);
  EXPECT_EQ(download->runs, 1);
  EXPECT_TRUE(shows(u"Download Completed."_s));
  EXPECT_EQ(page->commonLists()[1].values.size(), 2);
}

TEST_F(CommonPage, CallsTheBillingFieldsByTheirRoad) {
  open();
  leafTo(Billing);
  EXPECT_EQ(control<QLineEdit>(u"txtLocation"_s)->accessibleName(), u"Address of the portal"_s);
  EXPECT_EQ(control<QLineEdit>(u"txtPassword"_s)->echoMode(), QLineEdit::Password);
  tabTo(u"cmbRoad"_s);
  press(Qt::Key_Down);
  EXPECT_EQ(control<QLineEdit>(u"txtLocation"_s)->accessibleName(), u"Company file"_s);
  EXPECT_EQ(control<QLineEdit>(u"txtUser"_s)->accessibleName(), u"Full name of the employee"_s);
  EXPECT_FALSE(page->findChild<QLineEdit*>(u"txtPassword"_s)->isVisible());
}

TEST_F(CommonPage, KeepsABillingRoadThatItDoesNotKnow) {
  run(u"create table tblWFData (ReportTo integer primary key autoincrement, SHLocation varchar(100), "
      "ServerName varchar(20), UserId varchar(20), Password varchar(20), LastSyncDate datetime)"_s);
  run(u"insert into tblWFData (ServerName) values ('7')"_s);
  open();
  leafTo(Billing);
  EXPECT_EQ(control<QComboBox>(u"cmbRoad"_s)->currentText(), u"another one (7)"_s);
  EXPECT_FALSE(page->isChanged());
}

// ---- the form itself

TEST_F(CommonPage, NamesEveryControlAndReachesItByTabInEachSection) {
  open();
  for (int section = Cost; section <= Billing; ++section) {
    leafTo(section);
    EXPECT_EQ(::tests::formFaults(*page), QStringList()) << "section " << section;
  }
}

TEST_F(CommonPage, FindsTheFaultsOfAFormThatHasSome) {
  QWidget form;
  QLineEdit nameless(&form);
  QPushButton one(u"&Add"_s, &form);
  QPushButton other(u"&All"_s, &form);
  other.setFocusPolicy(Qt::ClickFocus);
  form.show();
  EXPECT_EQ(::tests::formFaults(form).size(), 3);
}

TEST_F(CommonPage, ShowsFiveThousandValuesByThoseInSightAlone) {
  const auto session = db.other();
  session->begin();
  for (int i = 0; i < 5000; ++i)
    session->execute(
        u"insert into tblMeta1 (strName, strCategory, curRate, blnEnabled) values (?, ?, 1, -1)"_s,
        {u"Value %1"_s.arg(i), u"Category %1"_s.arg(i % 7)});
  session->commit();
  open();
  leafTo(List1);
  EXPECT_TRUE(shows(u"5002 values"_s));
  EXPECT_TRUE(table()->findChildren<QLineEdit*>().isEmpty()) << "no control stands in a cell";
  tabTo(u"txtFilter"_s);
  type(u"value 4999"_s);
  EXPECT_EQ(names(), QStringList{u"Value 4999"_s});
  EXPECT_TRUE(shows(u"1 of 5002 values"_s));
  tabTo(u"tblValues"_s);
  press(Qt::Key_Delete);
  tabTo(u"txtNewValue"_s);
  type(u"Value X"_s);
  press(Qt::Key_Return);
  EXPECT_TRUE(shows(u"5002 values"_s));
  EXPECT_EQ(page->problem(), QString());
}

}  // namespace hourbook::tests
