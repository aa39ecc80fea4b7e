#include "pages.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

// Appointments

TEST_F(Pages, FiltersRulesAndStartAreSaved) {
  openFilledIn();
  goTo(phrases().LNGAPPOINTMENTS);
  press("chkPrivate");
  press("chkEvents");
  press("chkConvert24");
  type("txtConvert24Hours", u"7.5"_s);
  press("chkRemoveLunch");
  type("txtRemoveLunchHours", u"1"_s);
  press("chkStartGrid");
  ok();
  const SettingsBuffer found = stored();
  EXPECT_TRUE(found.filterPrivate && found.filterEvents && found.convert24 && found.removeLunch &&
              found.startGrid);
  EXPECT_FALSE(found.filterRecurring);
  EXPECT_EQ(found.convert24Hours, u"7.5"_s);
  EXPECT_EQ(found.removeLunchHours, u"1"_s);
}

TEST_F(Pages, HoursThatAreNoneAreToldWhileTheyAreTyped) {
  openFilledIn();
  goTo(phrases().LNGAPPOINTMENTS);
  type("txtConvert24Hours", u"eight"_s);
  EXPECT_EQ(message("msgConvert24Hours"), texts::notANumber.arg(u"eight"_s, u"7.5"_s));
  expectRefused("txtConvert24Hours", texts::notANumber.arg(u"eight"_s, u"7.5"_s));
  type("txtConvert24Hours", u"0"_s);
  EXPECT_EQ(message("msgConvert24Hours"), texts::wholeDayRange);
  type("txtConvert24Hours", u"24"_s);
  EXPECT_EQ(message("msgConvert24Hours"), QString());
  type("txtRemoveLunchHours", u"7.5"_s);
  expectRefused("txtRemoveLunchHours", texts::lunchRange);
}

TEST_F(Pages, ADecimalIsShownAndReadInTheSystemsForm) {
  world.setLocale(u"de_DE"_s);
  shellValues().gListSeparator = platform::locale::current().listSeparator();
  openFilledIn();
  goTo(texts::listsPage);
  type("txtPersonalRate", u"12,75"_s);
  EXPECT_EQ(message("msgPersonalRate"), QString());
  ok();
  EXPECT_EQ(stored().personalRate, u"12,75"_s);
  open();
  goTo(phrases().LNGAPPOINTMENTS);
  EXPECT_EQ(control<QLineEdit>("txtRemoveLunchHours")->text(), u"0,75"_s);
}

// Lists and rate

TEST_F(Pages, ListsAndValuesAreAddedRenamedMovedAndRemoved) {
  openFilledIn();
  goTo(texts::listsPage);
  type("txtNewValue", u"Crest"_s);
  pressKey(Qt::Key_Return);
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(items("lstValues"), (QStringList{u"Acme"_s, u"Bolt"_s, u"Crest"_s}));
  press("cmdUp");
  EXPECT_EQ(items("lstValues"), (QStringList{u"Acme"_s, u"Crest"_s, u"Bolt"_s}));
  tabTo("lstValues");
  pressKey(Qt::Key_Home);
  pressKey(Qt::Key_F2);
  QTest::keyClicks(QApplication::focusWidget(), u"Acorn"_s);
  pressKey(Qt::Key_Return);
  QApplication::processEvents();
  EXPECT_EQ(items("lstValues"), (QStringList{u"Acorn"_s, u"Crest"_s, u"Bolt"_s}));
  tabTo("lstValues");
  pressKey(Qt::Key_End);
  pressKey(Qt::Key_Delete);
  press("cmdAddList");
  QTest::keyClicks(QApplication::focusWidget(), u"Place"_s);
  type("txtNewValue", u"Home"_s);
  press("cmdAddValue");
  EXPECT_FALSE(control("cmdAddList")->isEnabled());
  ok();
  EXPECT_FALSE(isOpen()) << qPrintable(message("lblProblem"));
  EXPECT_EQ(stored().lists, (QList<NamedList>{{u"Customer"_s, {u"Acorn"_s, u"Crest"_s}},
                                              {u"Task"_s, {u"Support"_s}},
                                              {u"Place"_s, {u"Home"_s}}}));
}

TEST_F(Pages, NamesThatTheStoredFormsCannotHoldAreRefusedWhileTheyAreTyped) {
  world.setLocale(u"en_US"_s);
  openFilledIn();
  goTo(texts::listsPage);
  for (const auto& [value, word] :
       {std::pair(u"a;b"_s, u"\";\""_s), std::pair(u"a,b"_s, u"\",\""_s),
        std::pair(u"ACME"_s, phrases().LNGNODOUBLES), std::pair(u" a"_s, u"blank"_s)}) {
    type("txtNewValue", value);
    EXPECT_TRUE(message("msgNewValue").contains(word)) << qPrintable(message("msgNewValue"));
    pressKey(Qt::Key_Return);
    EXPECT_EQ(items("lstValues").size(), 2);
    EXPECT_EQ(focused(), u"txtNewValue"_s);
  }
  type("txtNewValue", QString());
  type("txtListName", u"Cus:tomer"_s);
  EXPECT_TRUE(message("msgListName").contains(u"\":\""_s));
  type("txtListName", u"task"_s);
  expectRefused("txtListName", phrases().LNGNODOUBLES);
}

TEST_F(Pages, ANewNameThatCannotBeStoredIsNotTaken) {
  openFilledIn();
  goTo(texts::listsPage);
  tabTo("lstValues");
  pressKey(Qt::Key_Home);
  pressKey(Qt::Key_F2);
  QTest::keyClicks(QApplication::focusWidget(), u"bolt"_s);
  pressKey(Qt::Key_Return);
  QApplication::processEvents();
  EXPECT_EQ(items("lstValues"), (QStringList{u"Acme"_s, u"Bolt"_s}));
  EXPECT_EQ(message("msgValues"), phrases().LNGNODOUBLES);
}

TEST_F(Pages, RatesThatAreNoneAreRefused) {
  openFilledIn();
  goTo(texts::listsPage);
  type("txtPersonalRate", u"much"_s);
  expectRefused("txtPersonalRate", texts::notANumber.arg(u"much"_s, u"450.5"_s));
  type("txtPersonalRate", u"-1"_s);
  expectRefused("txtPersonalRate", texts::rateRange.arg(u"32767"_s));
  type("txtPersonalRate", u"40000"_s);
  expectRefused("txtPersonalRate", texts::rateRange.arg(u"32767"_s));
  type("txtPersonalRate", u"1.00005"_s);
  expectRefused("txtPersonalRate", texts::rateDecimals);
}

TEST_F(Pages, AListWithoutValuesAndNoListAreRefused) {
  openFilledIn();
  goTo(texts::listsPage);
  press("cmdAddList");
  expectRefused("lstValues", texts::noValues);
  for (int i = 0; i < 3; ++i) press("cmdRemoveList");
  expectRefused("lstLists", texts::noLists);
}

TEST_F(Pages, WhoHasNoListsBeginsWithTheCommonOnesOfTheDatabaseChosen) {
  SettingsStore first(config());
  first.save(filledIn(first));
  const QString database = path(u"database"_s);
  ASSERT_TRUE(QDir(config()).removeRecursively());
  open(true);
  goTo(texts::targetPage);
  type("txtFolder", database);
  goTo(texts::listsPage);
  EXPECT_EQ(items("lstLists"), (QStringList{phrases().LNGCUSTOMER, phrases().LNGTASK}));
}

TEST_F(Pages, AValueThatTheCommonListLacksIsNamed) {
  SettingsStore first(config());
  first.save(filledIn(first));
  open(true);
  goTo(texts::listsPage);
  EXPECT_EQ(message("lblCommon"), texts::notCommon.arg(u"Acme, Bolt"_s));
  press("cmdTakeCommon");
  EXPECT_EQ(items("lstValues"), QStringList());
  EXPECT_EQ(message("lblCommon"), QString());
}

TEST_F(Pages, ANewDatabaseIsNotMadeWithoutItsCommonSettings) {
  setUpANewMachine();
  press("cmdAddList");
  type("txtNewValue", u"Acme"_s);
  press("cmdAddValue");
  press("cmdTakeCommon");
  press("cmdRemoveList");
  type("txtNewValue", u"Support"_s);
  press("cmdAddValue");
  ok();
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(message("lblProblem").endsWith(texts::newNeedsCommon)) << qPrintable(message("lblProblem"));
  EXPECT_FALSE(QFileInfo::exists(path(u"new"_s)));
}

TEST_F(Pages, OfANewDatabaseTheCommonListsAreAskedForBeforeOnesOwnAndGiveThemTheirValues) {
  setUpANewMachine();
  ok();
  const QString common = control<QListWidget>("lstPages")->item(2)->text();
  EXPECT_EQ(page(), common);
  EXPECT_EQ(message("lblProblem"), texts::problemOnPage.arg(common, texts::newNeedsCommon));
  auto lists = window->session().commonLists();
  ASSERT_FALSE(lists.isEmpty());
  lists[0].values = {u"Acme"_s};
  window->session().commonLists = [lists] { return lists; };
  goTo(texts::listsPage);
  EXPECT_EQ(items("lstValues"), QStringList{u"Acme"_s});
  EXPECT_EQ(window->session().buffer.lists, lists);
}

// Others

TEST_F(Pages, AChangeOfAnotherProgramIsNotOverwrittenWithoutAsking) {
  openFilledIn();
  goTo(texts::listsPage);
  type("txtPersonalRate", u"9"_s);
  SettingsStore other(config());
  SettingsBuffer theirs = other.read().buffer;
  theirs.startGrid = true;
  other.save(theirs);
  const auto before = everything();
  answers.choices = {-1};
  ok();
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(everything(), before);
  EXPECT_TRUE(answers.asked.last().contains(texts::placeRegistry));
  answers.choices = {1};
  ok();
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(control<QLineEdit>("txtPersonalRate")->text(), u"450.5"_s);
  goTo(texts::listsPage);
  type("txtPersonalRate", u"9"_s);
  ok();
  EXPECT_FALSE(isOpen());
  EXPECT_TRUE(stored().startGrid);
  EXPECT_EQ(stored().personalRate, u"9"_s);
}

TEST_F(Pages, OnesOwnSettingsAreWrittenOverThoseOfAnotherProgramOnRequest) {
  openFilledIn();
  goTo(texts::listsPage);
  type("txtPersonalRate", u"9"_s);
  SettingsStore other(config());
  SettingsBuffer theirs = other.read().buffer;
  theirs.startGrid = true;
  other.save(theirs);
  answers.choices = {0};
  ok();
  EXPECT_FALSE(isOpen());
  EXPECT_FALSE(stored().startGrid);
  EXPECT_EQ(stored().personalRate, u"9"_s);
}

TEST_F(Pages, AFailedSaveIsToldAndLeavesTheWindowOpen) {
  openFilledIn();
  goTo(texts::listsPage);
  type("txtPersonalRate", u"9"_s);
  const ::tests::Unprivileged user(home.path());
  ::tests::protect(configFile(u"registry.ini"_s));
  const auto before = everything();
  ok();
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(message("lblProblem").startsWith(u"Nothing was saved."_s)) << qPrintable(message("lblProblem"));
  EXPECT_EQ(everything(), before);
  ::tests::unprotect(configFile(u"registry.ini"_s));
}

}  // namespace
}  // namespace hourbook::tests
