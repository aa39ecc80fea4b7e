#include "pages.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

// Cancel

TEST_F(Pages, CancelChangesNoByte) {
  openFilledIn();
  write(path(u"other/a.ics"_s), "BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n");
  const auto before = everything();
  type("txtPersonName", u"Somebody Else"_s);
  answers.paths = {path(u"other"_s)};
  press("cmdAddFolder");
  goTo(texts::targetPage);
  type("txtFolder", path(u"elsewhere"_s));
  press("chkMakeDatabase");
  goTo(texts::listsPage);
  type("txtPersonalRate", u"1"_s);
  type("txtNewValue", u"Crest"_s);
  press("cmdAddValue");
  goTo(phrases().LNGAPPOINTMENTS);
  press("chkStartGrid");
  answers.choices = {0};
  press("cmdCancel");
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(everything(), before);
  EXPECT_EQ(answers.asked.last(), texts::discard);
}

TEST_F(Pages, EscapeAsksBeforeChangesAreLost) {
  openFilledIn();
  type("txtPersonName", u"Jim"_s);
  answers.choices = {-1};
  pressKey(Qt::Key_Escape);
  EXPECT_TRUE(isOpen());
  answers.choices = {0};
  pressKey(Qt::Key_Escape);
  EXPECT_FALSE(isOpen());
}

TEST_F(Pages, WithoutChangesEscapeAsksNothingAndOkWritesNothing) {
  openFilledIn();
  const auto before = everything();
  pressKey(Qt::Key_Escape);
  EXPECT_FALSE(isOpen());
  open();
  ok();
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(everything(), before);
}

// Calendar

TEST_F(Pages, CalendarsAreAddedNamedAndOneIsReportedFrom) {
  openFilledIn();
  write(path(u"private.ics"_s), "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\nEND:VCALENDAR\r\n");
  answers.paths = {path(u"private.ics"_s)};
  press("cmdAddFile");
  EXPECT_EQ(focused(), u"txtCalendarName"_s);
  type("txtCalendarName", u"Private: a, b"_s);
  press("chkReadOnly");
  ok();
  EXPECT_FALSE(isOpen()) << qPrintable(message("lblProblem"));
  const Configuration written = Configuration::read(config());
  ASSERT_EQ(written.calendars.size(), 2);
  EXPECT_EQ(written.calendars[1],
            (CalendarEntry{u"private"_s, u"Private: a, b"_s, path(u"private.ics"_s), true}));
  EXPECT_EQ(written.openCalendar, u"calendar"_s);
}

TEST_F(Pages, AnotherCalendarIsReportedFrom) {
  openFilledIn();
  QDir(home.path()).mkdir(u"second"_s);
  answers.paths = {path(u"second"_s)};
  press("cmdAddFolder");
  press("chkOpen");
  EXPECT_EQ(items("lstCalendars"), (QStringList{u"Work"_s, u"second (reported from)"_s}));
  ok();
  EXPECT_EQ(Configuration::read(config()).openCalendar, u"second"_s);
}

TEST_F(Pages, ACalendarThatIsGoneIsToldAtItsField) {
  openFilledIn();
  type("txtCalendarPath", path(u"nowhere"_s));
  expectRefused("txtCalendarPath", path(u"nowhere"_s) + u" does not exist."_s);
}

TEST_F(Pages, AFolderOfOtherFilesAndAFileThatIsNoCalendarAreRefused) {
  openFilledIn();
  write(path(u"photos/a.jpg"_s), "x");
  type("txtCalendarPath", path(u"photos"_s));
  expectRefused("txtCalendarPath", texts::folderNoCalendar.arg(path(u"photos"_s)));
  type("txtCalendarPath", path(u"photos/a.jpg"_s));
  expectRefused("txtCalendarPath", texts::pathNoCalendar.arg(path(u"photos/a.jpg"_s)));
}

TEST_F(Pages, ACalendarWithoutRightsIsRefusedUnlessItIsOnlyRead) {
  openFilledIn();
  const ::tests::Unprivileged user(home.path());
  ::tests::protect(path(u"calendar"_s));
  expectRefused("txtCalendarPath", texts::pathNotWritable.arg(path(u"calendar"_s)));
  press("chkReadOnly");
  ok();
  EXPECT_FALSE(isOpen()) << qPrintable(message("lblProblem"));
  ::tests::unprotect(path(u"calendar"_s));
}

TEST_F(Pages, WithoutACalendarOrANameNothingIsSaved) {
  openFilledIn();
  press("cmdRemove");
  expectRefused("lstCalendars", texts::noCalendar);
  type("txtPersonName", u" "_s);
  expectRefused("txtPersonName", texts::noPersonName);
}

TEST_F(Pages, TheSameFolderTwiceIsRefused) {
  openFilledIn();
  answers.paths = {path(u"calendar"_s)};
  press("cmdAddFolder");
  expectRefused("txtCalendarPath", texts::pathTwice.arg(u"Work"_s));
}

TEST_F(Pages, SettingsKeptInACalendarAreTakenOverOnRequest) {
  SettingsStore first(config());
  SettingsBuffer buffer = filledIn(first);
  first.save(buffer);
  ASSERT_TRUE(QDir(config()).removeRecursively());
  open();
  answers.paths = {path(u"calendar"_s)};
  press("cmdAddFolder");
  press("cmdTakeOver");
  EXPECT_EQ(message("msgKeep"), texts::takenOver);
  EXPECT_EQ(window->session().buffer.lists, buffer.lists);
  EXPECT_EQ(control<QLineEdit>("txtPersonalRate")->text(), u"450"_s);  // decimals do not travel
  EXPECT_EQ(control<QLineEdit>("txtFolder")->text(), path(u"database"_s));
}

TEST_F(Pages, SettingsKeptInACalendarAreNotReplacedWithoutAsking) {
  SettingsStore first(config());
  const SettingsBuffer kept = filledIn(first);
  first.save(kept);
  ASSERT_TRUE(QDir(config()).removeRecursively());
  const auto set = [&] {
    open();
    type("txtPersonName", u"Jane"_s);
    answers.paths = {path(u"calendar"_s)};
    press("cmdAddFolder");
    goTo(texts::targetPage);
    type("txtFolder", path(u"database"_s));
    goTo(texts::listsPage);
    press("cmdAddList");
    type("txtNewValue", u"Mine"_s);
    press("cmdAddValue");
  };
  set();
  const auto before = everything();
  answers.choices = {-1};
  ok();
  EXPECT_EQ(answers.asked.last(), texts::keptMeanwhile.arg(u"calendar"_s));
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(everything(), before);
  answers.choices = {0};
  ok();
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(message("lblProblem"), texts::takenOver);
  EXPECT_EQ(window->session().buffer.lists, kept.lists);
  EXPECT_EQ(everything(), before);
  type("txtPersonalRate", u"9"_s);
  ok();
  EXPECT_FALSE(isOpen()) << "what was taken over may be changed and saved";
  EXPECT_EQ(stored().lists, kept.lists);
  ASSERT_TRUE(QDir(config()).removeRecursively());
  close();
  set();
  answers.choices = {1};
  ok();
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(stored().lists.value(0).values, QStringList{u"Mine"_s});
}

TEST_F(Pages, ATornCopyInTheCalendarIsToldAtItsBox) {
  openFilledIn();
  close();
  const QString file = path(u"calendar/"_s + QDir(path(u"calendar"_s)).entryList({u"*.ics"_s}).value(0));
  write(file, content(file).replace("450.5", "450.x"));
  ASSERT_TRUE(QFile::remove(configFile(u"registry.ini"_s)));
  open();
  EXPECT_EQ(message("msgKeep"), texts::keepTornAndUsed.arg(u"line 3 reads \"450.x\""_s));
  EXPECT_EQ(control("chkKeep")->accessibleDescription(), message("msgKeep"));
}

// Reports

TEST_F(Pages, ANewDatabaseIsMadeInANewFolder) {
  openFilledIn();
  goTo(texts::targetPage);
  type("txtFolder", path(u"new/hours"_s));
  press("chkMakeDatabase");
  EXPECT_EQ(message("msgFolder"), texts::willBeMade);
  ok();
  EXPECT_FALSE(isOpen()) << qPrintable(message("lblProblem"));
  EXPECT_TRUE(QFileInfo::exists(path(u"new/hours/Hourbook3.mdb"_s)));
  EXPECT_EQ(stored().databaseFolder, path(u"new/hours"_s));
}

TEST_F(Pages, ADatabaseThatIsThereIsNeverReplaced) {
  openFilledIn();
  goTo(texts::targetPage);
  press("chkMakeDatabase");
  expectRefused("txtFolder", texts::databaseExists);
}

TEST_F(Pages, ADatabaseThatHasVanishedIsToldWhenItsPageIsShown) {
  openFilledIn();
  goTo(texts::targetPage);
  EXPECT_TRUE(QTest::qWaitFor([this] { return message("msgFolder") == texts::databaseThere; }, 60000));
  close();
  ASSERT_TRUE(QFile::remove(path(u"database/Hourbook3.mdb"_s)));
  open();
  goTo(texts::targetPage);
  EXPECT_TRUE(QTest::qWaitFor([this] { return message("msgFolder") == texts::databaseNotThere; }, 60000));
}

TEST_F(Pages, FoldersWithoutADatabaseAreRefused) {
  openFilledIn();
  goTo(texts::targetPage);
  type("txtFolder", path(u"calendar"_s));
  expectRefused("txtFolder", texts::databaseNotThere);
  type("txtFolder", path(u"nowhere"_s));
  expectRefused("txtFolder", texts::folderNotThere.arg(path(u"nowhere"_s)));
  type("txtFolder", u"database"_s);
  expectRefused("txtFolder", texts::folderRelative);
  type("txtFolder", QString());
  expectRefused("txtFolder", texts::folderMissing);
}

TEST_F(Pages, ARealAccessFileIsRecognised) {
  openFilledIn();
  write(path(u"old/Hourbook3.mdb"_s), QByteArray("\0\1\0\0Standard Jet DB\0", 20) + QByteArray(100, 'x'));
  goTo(texts::targetPage);
  type("txtFolder", path(u"old"_s));
  expectRefused("txtFolder", texts::databaseIsAccess.arg(path(u"old/Hourbook3.mdb"_s)));
}

TEST_F(Pages, AFolderWithoutRightsIsRefused) {
  openFilledIn();
  QDir(home.path()).mkdir(u"locked"_s);
  const ::tests::Unprivileged user(home.path());
  ::tests::protect(path(u"locked"_s));
  goTo(texts::targetPage);
  type("txtFolder", path(u"locked/deep"_s));
  press("chkMakeDatabase");
  expectRefused("txtFolder", texts::folderNotWritable.arg(path(u"locked"_s)));
  ::tests::unprotect(path(u"locked"_s));
}

TEST_F(Pages, TheTestOfAConnectionTellsWhatItFound) {
  openFilledIn();
  goTo(texts::targetPage);
  const auto result = [this] {
    press("cmdTest");
    EXPECT_TRUE(QTest::qWaitFor([this] { return message("lblResult") != texts::testing; }, 60000));
    return message("lblResult");
  };
  EXPECT_EQ(result(), phrases().LNGCONNECTIONSUCCEEDED + u"\nTime reports in the database: 0"_s);
  type("txtFolder", path(u"nowhere"_s));
  EXPECT_EQ(message("lblResult"), QString());
  EXPECT_EQ(result(), phrases().LNGCONNECTIONFAILED + u'\n' + texts::folderNotThere.arg(path(u"nowhere"_s)));
  write(path(u"bad/Hourbook3.mdb"_s), "SQLite format 3 and then nothing of the kind");
  type("txtFolder", path(u"bad"_s));
  EXPECT_TRUE(result().startsWith(phrases().LNGCONNECTIONFAILED));
  type("txtFolder", path(u"fresh"_s));
  press("chkMakeDatabase");
  EXPECT_EQ(result(), texts::notMadeYet);
  EXPECT_FALSE(QFileInfo::exists(path(u"fresh"_s)));
}

TEST_F(Pages, WithoutADriverTheServerIsRefusedPlainly) {
  openFilledIn();
  goTo(texts::targetPage);
  tabTo("optAccess");
  pressKey(Qt::Key_Down);
  EXPECT_EQ(message("msgTarget"), texts::noServerDriver);
  EXPECT_TRUE(control("fraServer")->isVisible());
  type("txtServer", u"box"_s);
  type("txtDatabase", u"Hours"_s);
  press("cmdTest");
  EXPECT_TRUE(QTest::qWaitFor([this] { return message("lblResult") != texts::testing; }, 60000));
  EXPECT_EQ(message("lblResult"), phrases().LNGCONNECTIONFAILED + u'\n' + texts::noServerDriver);
  expectRefused("optServer", texts::noServerDriver);
}

TEST_F(Pages, AServerIsSavedWithItsPasswordInTheConnectionFile) {
  openFilledIn(true);
  goTo(texts::targetPage);
  tabTo("optAccess");
  pressKey(Qt::Key_Down);
  type("txtServer", u"box"_s);
  type("txtDatabase", u"Hours"_s);
  press("chkIntegratedSecurity");
  type("txtUserName", u"jane"_s);
  type("txtPassword", u"se;cret"_s);
  expectRefused("txtPassword", texts::connectionSign);
  type("txtPassword", u"secret"_s);
  ok();
  EXPECT_FALSE(isOpen()) << qPrintable(message("lblProblem"));
  EXPECT_EQ(stored().sqlServer, (SqlServerLogin{u"box"_s, u"Hours"_s, false, u"jane"_s, u"secret"_s}));
  EXPECT_EQ(QFileInfo(configFile(u"server/HourbookConnection.txt"_s)).permissions() & 0x0077,
            QFile::Permissions());
}

TEST_F(Pages, AServerNeedsItsNamesAndAUser) {
  openFilledIn(true);
  goTo(texts::targetPage);
  tabTo("optAccess");
  pressKey(Qt::Key_Down);
  expectRefused("txtServer", texts::serverMissing);
  type("txtServer", u"box"_s);
  expectRefused("txtDatabase", texts::serverDatabaseMissing);
  type("txtDatabase", u"Hours"_s);
  press("chkIntegratedSecurity");
  expectRefused("txtUserName", texts::userMissing);
}

TEST_F(Pages, TargetsOfLaterVersionsAreShownWithTheReason) {
  openFilledIn();
  for (const char* name : {"optAsp", "optBilling"}) {
    EXPECT_FALSE(control(name)->isEnabled());
    EXPECT_FALSE(control(name)->accessibleDescription().isEmpty());
  }
}

}  // namespace
}  // namespace hourbook::tests
