// From a machine on which nothing is set up, through the settings program's window, to the first report.
#include "settingsuser.h"

#include <QDir>

namespace tests {
namespace {

using namespace Qt::StringLiterals;
using namespace hourbook;

void setUp(const Journey& j) {
  Settings settings(j);
  chooseCalendar(j, settings);
  settings.type("txtFolder", j.folder() + u"/database"_s);
  settings.press("chkMakeDatabase");
  chooseListsAndSave(settings);
}

const QString storedReports =
    u"select strSubject, numHours, curCost, strPersonName from tblReports "
    "inner join tblPersons on tblReports.intPersonID = tblPersons.intPersonID"_s;
const QString visitReported = u"Visit at the customer's|1.5|675.75|Jane Doe"_s;

TEST(SettingsJourney, WhoSetsUpANewMachineReportsTheFirstRowAtTheRateTyped) {
  Journey j;
  empty(j);
  setUp(j);
  j.start();
  ASSERT_TRUE(j.hasWindow());
  j.fetch(may(13), may(19));
  ASSERT_EQ(j.rows().size(), 1);
  EXPECT_TRUE(j.rows().first().startsWith(u"Visit at the customer's|Acme|Support"_s))
      << qPrintable(j.rows().first());
  j.reportAndStay();
  EXPECT_EQ(j.sql(storedReports), QStringList{visitReported});
  EXPECT_FALSE(j.event(u"visit"_s).stamp.isEmpty());
}

TEST(SettingsJourney, WhoHasAnEmptyFolderIsAskedForTheKindOfDatabaseAndReportsIntoANewOne) {
  Journey j;
  empty(j);
  ASSERT_TRUE(QDir().mkpath(j.folder() + u"/database"_s));
  {
    Settings settings(j);
    chooseCalendar(j, settings);
    settings.type("txtFolder", j.folder() + u"/database"_s);
    Settings::whenShown(u"frmChooseConnection"_s, [&] {
      settings.tabTo("optNewAccessDatabase");
      settings.key(Qt::Key_Return);
    });
    settings.pressForDialogs("cmdSetUp");
    EXPECT_EQ(settings.text("lblResult"), texts::accessMade);
    chooseListsAndSave(settings);
  }
  j.start();
  ASSERT_TRUE(j.hasWindow());
  j.fetch(may(13), may(19));
  j.reportAndStay();
  EXPECT_EQ(j.sql(storedReports), QStringList{visitReported});
}

TEST(SettingsJourney, WhoClosesTheQuestionForTheKindOfDatabaseHasNoneAndGoesOn) {
  Journey j;
  empty(j);
  Settings settings(j);
  chooseCalendar(j, settings);
  settings.type("txtFolder", j.folder() + u"/database"_s);
  Settings::whenShown(u"frmChooseConnection"_s, [&] { settings.key(Qt::Key_Escape); });
  settings.pressForDialogs("cmdSetUp");
  EXPECT_EQ(settings.text("lblResult"), texts::setUpCancelled);
  EXPECT_TRUE(settings.isOpen());
  EXPECT_FALSE(QDir(j.folder() + u"/database"_s).exists());
}

TEST(SettingsJourney, WhoHasAServerNamesItInTheLogonAndItsTextIsStored) {
  Journey j;
  empty(j);
  {
    Settings settings(j);
    chooseCalendar(j, settings);
    settings.type("txtFolder", j.folder() + u"/database"_s);
    Settings::whenShown(u"frmChooseConnection"_s, [&] {
      settings.tabTo("optNewAccessDatabase");
      settings.key(Qt::Key_Down);
      settings.key(Qt::Key_Down);
      settings.key(Qt::Key_Return);
    });
    Settings::whenShown(u"frmSQLLogon"_s, [&] {
      settings.type("txtServer", u"box"_s);
      settings.type("txtDatabase", u"Hours"_s);
      settings.key(Qt::Key_Return);
    });
    settings.pressForDialogs("cmdSetUp");
    EXPECT_EQ(settings.text("lblResult"), texts::serverChosen.arg(j.folder() + u"/database"_s));
  }
  EXPECT_EQ(outside::files(j.folder() + u"/database"_s).value(u"HourbookConnection.txt"_s),
            "Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=box;"
            "Initial Catalog=Hours");
}

TEST(SettingsJourney, WhoCancelsLeavesTheMachineAsItWas) {
  Journey j;
  empty(j);
  const auto before = outside::files(j.calendar());
  {
    Settings settings(j);
    EXPECT_TRUE(settings.isOpen());
    settings.key(Qt::Key_Escape);
    EXPECT_FALSE(settings.isOpen());
  }
  EXPECT_EQ(outside::changed(before, outside::files(j.calendar())), QStringList());
  EXPECT_FALSE(QDir(j.configuration()).exists());
}

}  // namespace
}  // namespace tests
