#include "outlook/modOutlookSession.h"
#include "shell/modErrorReport.h"
#include "tests/unit/outlook/outlookworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::Failure;
using platform::dialogs::vbCritical;
using platform::dialogs::vbOK;
using platform::outlook::Application;
using platform::outlook::RPC_E_SERVERFAULT;

class OutlookSession : public OutlookWorld {
 protected:
  void runOutlook() {
    world.components.addRunning<Application>(u"Outlook.Application"_s, [this] {
      asked.append(u"running"_s);
      return makeOutlook();
    });
  }
  /// `answering` is the only name under which Outlook can be made.
  void installOutlook(const QString& answering, int fromAttempt = 1) {
    for (const QString& version : {u""_s, u".9"_s, u".10"_s, u".11"_s, u".12"_s}) {
      const QString progId = u"Outlook.Application"_s + version;
      world.components.add<Application>(
          progId, [this, progId, answering, fromAttempt]() -> std::shared_ptr<Application> {
            asked.append(progId);
            return progId == answering && asked.count(progId) >= fromAttempt ? makeOutlook() : nullptr;
          });
    }
  }
  QStringList asked;
};

TEST_F(OutlookSession, ARunningOutlookIsTaken) {
  runOutlook();
  installOutlook(u"Outlook.Application"_s);
  fncConnectOutlook(9);
  EXPECT_TRUE(outlook.gOutlookApp);
  EXPECT_TRUE(outlook.gNameSpace);
  EXPECT_EQ(asked, QStringList{u"running"_s});
  EXPECT_EQ(fncLastLogText(), u"Attempting to start MS Outlook 2000 or later"_s);
}

TEST_F(OutlookSession, WithoutARunningOneOutlookIsStarted) {
  installOutlook(u"Outlook.Application"_s);
  fncConnectOutlook(9);
  EXPECT_TRUE(outlook.gOutlookApp);
  EXPECT_EQ(asked, QStringList{u"Outlook.Application"_s});
}

TEST_F(OutlookSession, TheNewestVersionIsTriedFirstAndTheNameWithoutAVersionLast) {
  installOutlook(u"Outlook.Application"_s, 2);
  fncConnectOutlook(9);
  EXPECT_TRUE(outlook.gOutlookApp);
  EXPECT_EQ(asked,
            (QStringList{u"Outlook.Application"_s, u"Outlook.Application.12"_s, u"Outlook.Application.11"_s,
                         u"Outlook.Application.10"_s, u"Outlook.Application.9"_s, u"Outlook.Application"_s}));
}

TEST_F(OutlookSession, TheSearchStopsAtTheFirstThatAnswers) {
  installOutlook(u"Outlook.Application.11"_s);
  fncConnectOutlook(9);
  EXPECT_EQ(asked, (QStringList{u"Outlook.Application"_s, u"Outlook.Application.12"_s,
                                u"Outlook.Application.11"_s}));
}

TEST_F(OutlookSession, WithoutOutlookTheUserIsAskedToStartItAndTheProgramEnds) {
  world.dialogs.expect(u"Please start Outlook manually before you execute this application!"_s, vbOK);
  EXPECT_ENDS_PROCESS(fncConnectOutlook(9));
  EXPECT_EQ(world.dialogs.shown.first().title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_EQ(world.dialogs.shown.first().options, platform::dialogs::vbOKOnly);  // and no icon
}

TEST_F(OutlookSession, AnOutlookOlderThan2000IsRefusedWithItsVersion) {
  profile.version = u"8.5.0.1234"_s;
  values.LNGO2KNEEDED = u"You need Outlook 2000 or later to run this application."_s;
  runOutlook();
  world.dialogs.expect(u"You need Outlook 2000 or later to run this application.\r\n8"_s, vbOK);
  EXPECT_ENDS_PROCESS(fncConnectOutlook(9));
  EXPECT_EQ(world.dialogs.shown.first().options, vbCritical);
  EXPECT_FALSE(outlook.gNameSpace);
}

TEST_F(OutlookSession, BeforeThePhrasesAreReadTheRefusalShowsItsTechnicalLineOnly) {
  profile.version = u"8.5"_s;
  runOutlook();
  world.dialogs.expect({}, vbOK);
  EXPECT_ENDS_PROCESS(fncConnectOutlook(9));
  EXPECT_EQ(world.dialogs.shown.first().text, u"\r\n8"_s);
}

TEST_F(OutlookSession, AVersionThatCannotBeReadIsRefusedAsZero) {
  profile.version = u"unknown"_s;
  runOutlook();
  world.dialogs.expect({}, vbOK);
  EXPECT_ENDS_PROCESS(fncConnectOutlook(9));
  EXPECT_EQ(world.dialogs.shown.first().text, u"\r\n0"_s);
}

TEST_F(OutlookSession, Outlook2000ItselfIsAccepted) {
  profile.version = u"9.0.0.2711"_s;
  runOutlook();
  fncConnectOutlook(9);
  EXPECT_TRUE(outlook.gNameSpace);
}

TEST_F(OutlookSession, WithAWindowOpenNoNewOneAppears) {
  runOutlook();
  fncConnectOutlook(9);
  EXPECT_EQ(outlook.gOutlookApp->Explorers().Count(), 1);
}

TEST_F(OutlookSession, WithoutAWindowTheDefaultFolderOfTheTypeIsOpened) {
  profile.openFolder.clear();
  memory->addFolder({u"inbox"_s, u"Inbox"_s, u"Mailbox"_s, false, false});
  memory->addFolder(folderInfo);
  runOutlook();
  fncConnectOutlook(9);
  ASSERT_TRUE(outlook.gOutlookApp->ActiveExplorer());
  EXPECT_EQ(outlook.gOutlookApp->ActiveExplorer()->CurrentFolder()->Id(), u"calendar"_s);
}

TEST_F(OutlookSession, AConnectionInPassingOpensTheInbox) {
  profile.openFolder.clear();
  memory->addFolder({u"inbox"_s, u"Inbox"_s, u"Mailbox"_s, false, false});
  memory->addFolder(folderInfo);
  runOutlook();
  EXPECT_EQ(fncGetOutlookVersion(), 11);
  ASSERT_TRUE(outlook.gOutlookApp->ActiveExplorer());
  EXPECT_EQ(outlook.gOutlookApp->ActiveExplorer()->CurrentFolder()->Id(), u"inbox"_s);
}

TEST_F(OutlookSession, AHiddenWindowIsActivatedAndNoOtherIsOpened) {
  auto hidden = makeOutlook();
  hidden->Explorers().Item(1)->active = false;
  world.components.addRunning<Application>(u"Outlook.Application"_s, [hidden] { return hidden; });
  fncConnectOutlook(9);
  EXPECT_EQ(hidden->Explorers().Count(), 1);
  EXPECT_TRUE(hidden->Explorers().Item(1)->active);
}

TEST_F(OutlookSession, AWindowThatCannotBeOpenedIsPassedOver) {
  profile.openFolder.clear();
  runOutlook();
  store->failAlways(platform::calendar::FailingStore::Operation::Folders, Failure(5, u"broken"_s));
  EXPECT_NO_THROW(fncConnectOutlook(9));
  EXPECT_TRUE(outlook.gOutlookApp);
}

TEST_F(OutlookSession, AWindowThatCannotBeAskedForCountsAsNone) {
  class Windowless : public Application {
   public:
    using Application::Application;
    std::shared_ptr<platform::outlook::Explorer> ActiveExplorer() const override {
      throw Failure(5, u"broken"_s);
    }
  };
  profile.openFolder.clear();
  memory->addFolder(folderInfo);
  world.components.addRunning<Application>(u"Outlook.Application"_s,
                                           [this] { return std::make_shared<Windowless>(profile); });
  fncConnectOutlook(9);
  ASSERT_EQ(outlook.gOutlookApp->Explorers().Count(), 1);
  EXPECT_TRUE(outlook.gOutlookApp->Explorers().Item(1)->active);
}

TEST_F(OutlookSession, ASecondConnectionDoesNothing) {
  runOutlook();
  fncConnectOutlook(9);
  const auto first = outlook.gOutlookApp;
  subLog(u"between"_s);
  fncConnectOutlook(6);
  EXPECT_EQ(fncLastLogText(), u"Attempting to start MS Outlook 2000 or later"_s);
  EXPECT_EQ(outlook.gOutlookApp, first);
  EXPECT_EQ(asked.size(), 1);
}

TEST_F(OutlookSession, TheVersionIsReadOnce) {
  connect();
  EXPECT_EQ(fncGetOutlookVersion(), 11);
  profile.version = u"14.0.1"_s;
  outlook.gOutlookApp = makeOutlook();
  EXPECT_EQ(fncGetOutlookVersion(), 11);
}

TEST_F(OutlookSession, TheVersionIsReadOnceAlsoWhenItHasToConnectFirst) {
  class Counting : public Application {
   public:
    using Application::Application;
    QString Version() const override {
      ++reads;
      return Application::Version();
    }
    mutable int reads = 0;
  };
  makeOutlook();
  const auto application = std::make_shared<Counting>(profile);
  world.components.addRunning<Application>(u"Outlook.Application"_s, [application] { return application; });
  EXPECT_EQ(fncGetOutlookVersion(), 11);
  EXPECT_EQ(fncGetOutlookVersion(), 11);
  EXPECT_EQ(application->reads, 1);
}

TEST_F(OutlookSession, TheNamespaceOutlivesAConnectionThatIsReplaced) {
  connect();
  const auto names = outlook.gNameSpace;
  outlook.gOutlookApp = makeOutlook();
  EXPECT_EQ(names->GetDefaultFolder(9)->Id(), u"calendar"_s);
}

class UserName : public OutlookWorld {
 protected:
  QString userOf(const QString& store) {
    folderInfo.storeName = store;
    connect();
    return fncGetUserName();
  }
  UserName() { world.process.environment = {{u"USERNAME"_s, u"jdoe"_s}, {u"USERDOMAIN"_s, u"OFFICE"_s}}; }
};

TEST_F(UserName, IsWhatStandsBehindTheDashOfTheMailbox) {
  EXPECT_EQ(userOf(u"Mailbox - Jane Doe"_s), u"Jane Doe"_s);
  EXPECT_EQ(outlook.gCurrentUser, u"Jane Doe"_s);
}

TEST_F(UserName, BehindADashMayHoldAComma) {
  EXPECT_EQ(userOf(u"Mailbox - Doe, Jane"_s), u"Doe, Jane"_s);
}

TEST_F(UserName, BeginsBehindTheFirstDash) {
  EXPECT_EQ(userOf(u"A - B - C"_s), u"B - C"_s);
}

TEST_F(UserName, IsTrimmed) {
  EXPECT_EQ(userOf(u"Mailbox -   Jane Doe  "_s), u"Jane Doe"_s);
}

TEST_F(UserName, IsTheWholeNameWithACommaAndNoDash) {
  EXPECT_EQ(userOf(u"Doe, Jane"_s), u"Doe, Jane"_s);
}

TEST_F(UserName, ComesFromTheEnvironmentForANameWithNeither) {
  EXPECT_EQ(userOf(u"Personal Folders"_s), u"jdoe"_s);
  EXPECT_EQ(outlook.gCurrentUser, u"jdoe"_s);
}

TEST_F(UserName, StaysAsItWasForAMailboxThatSaysNothing) {
  outlook.gCurrentUser = u"Known before"_s;
  EXPECT_EQ(userOf(u"Personal Folders"_s), u"Known before"_s);
}

TEST_F(UserName, IsEmptyWithoutAMailboxNameAndWithoutAShell) {
  world.components.remove(u"Wscript.Shell"_s);
  EXPECT_EQ(userOf(u"Personal Folders"_s), QString());
}

TEST_F(UserName, ConnectsFirstWhenNothingIsConnected) {
  world.components.addRunning<Application>(u"Outlook.Application"_s, [this] { return makeOutlook(); });
  EXPECT_EQ(fncGetUserName(), u"Jane Doe"_s);
}

TEST_F(UserName, OfAMailboxThatCannotBeReadIsReported) {
  connect();
  store->failAlways(platform::calendar::FailingStore::Operation::Folders, Failure(5, u"broken"_s));
  EXPECT_REPORTED(world, "subGetSafeMailboxName", fncGetUserName());
  EXPECT_EQ(fncLastLogText(), u"Getting current user full name from mailbox name"_s);
}

class SettingAppointment : public OutlookWorld {
 protected:
  void addOthers(int count) {
    for (int i = 0; i < count; ++i) addAppointment(u"Meeting %1"_s.arg(i));
  }
  void refuseLookups() {
    store->failLookups(Failure(RPC_E_SERVERFAULT, u"The server threw an exception."_s));
  }
  const QString name = u"Outlook Hourbook 3 Personal Settings"_s;
};

TEST_F(SettingAppointment, IsFoundByItsSubject) {
  connect();
  addOthers(2);
  addAppointment(name);
  ASSERT_TRUE(fncGetSettingAppointment());
  EXPECT_EQ(fncGetSettingAppointment()->Subject(), name);
}

TEST_F(SettingAppointment, IsNothingWhenThereIsNone) {
  connect();
  addOthers(2);
  EXPECT_EQ(fncGetSettingAppointment(), nullptr);
}

TEST_F(SettingAppointment, IsNothingWithoutAFolder) {
  EXPECT_EQ(fncGetSettingAppointment(), nullptr);
}

TEST_F(SettingAppointment, IsLookedForItemByItemWhereTheStoreKnowsNoLookUp) {
  connect();
  addOthers(2);
  addAppointment(name);
  addOthers(2);
  refuseLookups();
  ASSERT_TRUE(fncGetSettingAppointment());
  EXPECT_EQ(fncGetSettingAppointment()->Subject(), name);
}

TEST_F(SettingAppointment, IsComparedExactlyInThatWalk) {
  connect();
  addAppointment(name.toUpper());
  addAppointment(name);
  addOthers(1);
  refuseLookups();
  EXPECT_EQ(fncGetSettingAppointment()->Subject(), name);
}

TEST_F(SettingAppointment, IsNotSeenAsTheLastItemAndTheOneBeforeItComesBack) {
  connect();
  addOthers(3);
  addAppointment(name);
  refuseLookups();
  ASSERT_TRUE(fncGetSettingAppointment());
  EXPECT_EQ(fncGetSettingAppointment()->Subject(), u"Meeting 2"_s);
}

TEST_F(SettingAppointment, IsFoundBehindAnItemThatCannotBeRead) {
  connect();
  addOthers(2);
  addAppointment(name);
  addOthers(1);
  refuseLookups();
  // The count asks for the folder's tag once, and so does each item.
  store->failCall(platform::calendar::FailingStore::Operation::ChangeTag, 3, Failure(5, u"broken"_s));
  ASSERT_TRUE(fncGetSettingAppointment());
  EXPECT_EQ(fncGetSettingAppointment()->Subject(), name);
}

TEST_F(SettingAppointment, IsTheItemReadLastInAWalkWhoseLastItemsCannotBeRead) {
  connect();
  addOthers(4);
  refuseLookups();
  for (const int call : {3, 4})
    store->failCall(platform::calendar::FailingStore::Operation::ChangeTag, call, Failure(5, u"broken"_s));
  const auto found = fncGetSettingAppointment();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->Subject(), u"Meeting 0"_s);
}

TEST_F(SettingAppointment, IsNothingInAWalkOverASingleItem) {
  connect();
  addAppointment(name);
  refuseLookups();
  EXPECT_EQ(fncGetSettingAppointment(), nullptr);
}

TEST_F(SettingAppointment, IsNotWalkedForInAFolderOf500Items) {
  connect();
  addAppointment(name);
  addOthers(498);
  refuseLookups();
  EXPECT_TRUE(fncGetSettingAppointment());  // 499
  addOthers(1);
  EXPECT_EQ(fncGetSettingAppointment(), nullptr);
}

TEST_F(SettingAppointment, IsNotWalkedForAfterAnotherFailure) {
  connect();
  addAppointment(name);
  addOthers(2);
  store->failLookups(Failure(-2147467259, u"broken"_s));
  EXPECT_EQ(fncGetSettingAppointment(), nullptr);
}

TEST(OutlookHooks, LetTheFailureReportSendItsMailThroughTheConnection) {
  class World : public OutlookWorld {
   public:
    using OutlookWorld::makeOutlook;
    using OutlookWorld::outlook;
    using OutlookWorld::profile;
    using OutlookWorld::values;
    using OutlookWorld::world;
    void TestBody() override {}
  } w;
  QTemporaryDir drafts;
  w.profile.draftFolder = drafts.path();
  w.world.components.addRunning<Application>(u"Outlook.Application"_s, [&w] { return w.makeOutlook(); });
  subSetOutlookHooks();
  w.world.dialogs.expect({}, platform::dialogs::vbYes);
  EXPECT_ENDS_PROCESS(subHandleError(u"Broken"_s, 5, 1, u"Main"_s));
  EXPECT_TRUE(w.outlook.gOutlookApp);
  EXPECT_TRUE(w.values.gErrorBody.endsWith(u"Outlook Version: 11.0.0.8169\r\n"_s));
  EXPECT_EQ(QDir(drafts.path()).entryList(QDir::Files).size(), 1);
}

}  // namespace hourbook::tests
