#include "tests/unit/platform/outlook/calendarfixture.h"

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::outlook;

namespace {

class ApplicationTest : public tests::CalendarTest {
 protected:
  ApplicationTest() {
    calendar::FolderInfo inbox;
    inbox.id = u"inbox"_s;
    inbox.name = u"Inbox"_s;
    inbox.holdsAppointments = false;
    mail->addFolder(inbox);
    calendar::FolderInfo projects;
    projects.id = u"projects"_s;
    projects.name = u"Projects"_s;
    projects.storeName = u"Mailbox - Jane Doe"_s;
    projects.readOnly = true;
    mail->addFolder(projects);
    profile.stores = {mail, store};
    profile.draftFolder = drafts.path();
  }

  QTemporaryDir drafts;
  std::shared_ptr<calendar::MemoryStore> mail = std::make_shared<calendar::MemoryStore>();
  Profile profile;
};

}  // namespace

TEST_F(ApplicationTest, TheVersionIsTheProfiles) {
  EXPECT_EQ(Application(profile).Version(), u"11.0.0.8169"_s);
  profile.version = u"9.0.0.2711"_s;
  EXPECT_EQ(Application(profile).Version(), u"9.0.0.2711"_s);
}

TEST_F(ApplicationTest, OnlyTheMapiNamespaceIsKnown) {
  Application application(profile);
  EXPECT_TRUE(application.GetNamespace(u"MAPI"_s));
  EXPECT_EQ(failureOf([&] { application.GetNamespace(u"IMAP"_s); }), failure::invalidProcedureCall);
}

TEST_F(ApplicationTest, DefaultFoldersAreTheFirstOfTheirKindOverAllStores) {
  Application application(profile);
  const auto names = application.GetNamespace(u"MAPI"_s);
  const auto calendar = names->GetDefaultFolder(olFolderCalendar);
  EXPECT_EQ(calendar->Name(), u"Projects"_s);
  EXPECT_EQ(calendar->ParentName(), u"Mailbox - Jane Doe"_s);
  EXPECT_EQ(calendar->Id(), u"projects"_s);
  EXPECT_TRUE(calendar->ReadOnly());
  EXPECT_EQ(calendar->DefaultItemType(), olAppointmentItem);
  const auto inbox = names->GetDefaultFolder(olFolderInbox);
  EXPECT_EQ(inbox->Name(), u"Inbox"_s);
  EXPECT_EQ(inbox->DefaultItemType(), olMailItem);
  EXPECT_EQ(failureOf([&] { names->GetDefaultFolder(5); }), failure::invalidProcedureCall);
}

TEST_F(ApplicationTest, AFolderSaysWhetherItMayBeWrittenNow) {
  class TurningStore : public calendar::MemoryStore {
   public:
    QList<calendar::FolderInfo> folders() override {
      QList<calendar::FolderInfo> list = MemoryStore::folders();
      for (calendar::FolderInfo& info : list) info.readOnly = readOnly;
      return list;
    }
    bool readOnly = false;
  };
  const auto turning = std::make_shared<TurningStore>();
  turning->addFolder({u"turning"_s, u"Turning"_s, u"Mailbox"_s, true, false});
  profile.stores = {turning};
  Application application(profile);
  const auto folder = application.GetNamespace(u"MAPI"_s)->GetFolderFromID(u"turning"_s);
  EXPECT_FALSE(folder->ReadOnly());
  turning->readOnly = true;
  EXPECT_TRUE(folder->ReadOnly());
  turning->readOnly = false;
  EXPECT_FALSE(folder->ReadOnly());
}

TEST_F(ApplicationTest, ANamespaceOutlivesItsApplication) {
  auto application = std::make_shared<Application>(profile);
  const auto names = application->GetNamespace(u"MAPI"_s);
  application.reset();
  EXPECT_EQ(names->GetDefaultFolder(olFolderCalendar)->Name(), u"Projects"_s);
}

TEST_F(ApplicationTest, AFolderThatNoStoreHasIsNotFound) {
  profile.stores = {store};
  Application application(profile);
  EXPECT_EQ(failureOf([&] { application.GetNamespace(u"MAPI"_s)->GetDefaultFolder(olFolderInbox); }),
            calendar::errNotFound);
  Application empty{Profile()};
  EXPECT_EQ(failureOf([&] { empty.GetNamespace(u"MAPI"_s)->GetDefaultFolder(olFolderCalendar); }),
            calendar::errNotFound);
}

TEST_F(ApplicationTest, AStoreThatCannotBeReadIsNotPassedOver) {
  profile.stores = {store, mail};
  Application application(profile);
  store->failAlways(calendar::FailingStore::Operation::Folders, broken);
  EXPECT_EQ(failureOf([&] { application.GetNamespace(u"MAPI"_s)->GetDefaultFolder(olFolderCalendar); }),
            calendar::errStoreBroken);
}

TEST_F(ApplicationTest, WithoutAnOpenFolderThereIsNoWindow) {
  Application application(profile);
  EXPECT_EQ(application.ActiveExplorer(), nullptr);
  EXPECT_EQ(application.Explorers().Count(), 0);
  EXPECT_EQ(failureOf([&] { application.Explorers().Item(1); }), failure::subscriptOutOfRange);
}

TEST_F(ApplicationTest, TheOpenFolderStandsInTheActiveWindow) {
  profile.openFolder = folder;
  Application application(profile);
  ASSERT_TRUE(application.ActiveExplorer());
  EXPECT_EQ(application.ActiveExplorer()->CurrentFolder()->Name(), u"Calendar"_s);
  EXPECT_EQ(application.Explorers().Count(), 1);
  EXPECT_EQ(application.Explorers().Item(1), application.ActiveExplorer());
}

TEST_F(ApplicationTest, AnOpenFolderThatIsGoneIsNotReplacedByAnother) {
  profile.openFolder = u"gone"_s;
  EXPECT_EQ(failureOf([&] { Application application(profile); }), calendar::errNotFound);
}

TEST_F(ApplicationTest, AnAddedWindowIsActiveOnceItHasBeenActivated) {
  Application application(profile);
  const auto calendar = application.GetNamespace(u"MAPI"_s)->GetDefaultFolder(olFolderCalendar);
  application.Explorers().Add(calendar, olFolderDisplayNormal);
  EXPECT_EQ(application.Explorers().Count(), 1);
  EXPECT_EQ(application.ActiveExplorer(), nullptr);
  application.Explorers().Item(1)->Activate();
  ASSERT_TRUE(application.ActiveExplorer());
  EXPECT_EQ(application.ActiveExplorer()->CurrentFolder(), calendar);
  EXPECT_EQ(failureOf([&] { application.Explorers().Add(nullptr, 0); }), failure::invalidProcedureCall);
}

TEST_F(ApplicationTest, TheItemsOfAFolderComeFromItsStore) {
  memory->add(folder, appointment(u"A"_s, u"2024-05-15 09:00"_s));
  profile.openFolder = folder;
  Application application(profile);
  EXPECT_EQ(application.ActiveExplorer()->CurrentFolder()->Items().Count(), 1);
}

TEST_F(ApplicationTest, AFolderTellsWhetherOthersHaveChangedIt) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  profile.openFolder = folder;
  const Application application(profile);
  const auto open = application.ActiveExplorer()->CurrentFolder();
  const QString before = open->OthersTag(calendar::Look::Glance);
  item->setSubject(u"B"_s);
  item->Save();
  EXPECT_EQ(open->OthersTag(calendar::Look::Thorough), before);
  memory->add(folder, appointment(u"C"_s, u"2024-05-15 09:00"_s));
  EXPECT_NE(open->OthersTag(calendar::Look::Glance), before);
}

TEST_F(ApplicationTest, VersionAndDraftsReachWhatAnAppointmentForwards) {
  memory->add(folder, appointment(u"A"_s, u"2024-05-15 09:00"_s));
  profile.openFolder = folder;
  profile.version = u"10.0.0.6515"_s;
  Application application(profile);
  const auto item = application.ActiveExplorer()->CurrentFolder()->Items().Item(u"A"_s);
  const auto mail = item->ForwardAsVcal();
  EXPECT_TRUE(mail->Attachments.at(0).content().contains("//Outlook 10.0 MIMEDIR//EN\r\n"));
  mail->Save();
  EXPECT_TRUE(mail->draftFile().startsWith(drafts.path()));
}

TEST_F(ApplicationTest, AMailCanBeMadeAndNothingElse) {
  Application application(profile);
  const auto mail = application.CreateItem(olMailItem);
  ASSERT_TRUE(mail);
  mail->Save();
  EXPECT_TRUE(mail->draftFile().startsWith(drafts.path()));
  EXPECT_EQ(failureOf([&] { application.CreateItem(olAppointmentItem); }), failure::invalidProcedureCall);
}
