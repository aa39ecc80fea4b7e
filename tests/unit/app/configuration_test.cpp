#include "app/Configuration.h"

#include "tests/support/testworld.h"

#include <QDir>
#include <QFile>

namespace tests {
namespace {

using hourbook::Configuration;
using hourbook::ConfigurationError;
using testing::HasSubstr;

class PlatformConfiguration : public testing::Test {
 protected:
  PlatformConfiguration() { QDir(folder.path()).mkdir(QStringLiteral("work")); }
  void write(const QByteArray& text) {
    QFile file(folder.filePath(QStringLiteral("platform.ini")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }
  Configuration read() const { return Configuration::read(folder.path()); }
  /// Why the configuration cannot be used.
  std::string refusal() const {
    try {
      read();
    } catch (const ConfigurationError& error) {
      return error.text().toStdString();
    }
    return "It was not refused.";
  }
  QTemporaryDir folder;
  const QByteArray one =
      "[mailbox]\nname=Mailbox - Jane Doe\n[calendars]\nsize=1\n1\\id=work\n1\\name=Calendar\n1\\path=work\n";
};

TEST_F(PlatformConfiguration, NamesMailboxAndCalendars) {
  QDir(folder.path()).mkdir(QStringLiteral("home"));
  write(
      "[mailbox]\nname=\"Mailbox - Doe, "
      "Jane\"\nversion=10.0.0.1\n[calendars]\nsize=2\n1\\id=work\n1\\name=Calendar\n"
      "1\\path=work\n2\\id=home\n2\\name=Home\n2\\path=" +
      folder.filePath(QStringLiteral("home")).toUtf8() + "\n2\\readonly=true\nopen=home\n");
  const Configuration found = read();
  EXPECT_EQ(found.mailboxName, QStringLiteral("Mailbox - Doe, Jane"));
  EXPECT_EQ(found.outlookVersion, QStringLiteral("10.0.0.1"));
  EXPECT_EQ(found.openCalendar, QStringLiteral("home"));
  ASSERT_EQ(found.calendars.size(), 2);
  EXPECT_EQ(found.calendars[0].path, folder.filePath(QStringLiteral("work")));
  EXPECT_FALSE(found.calendars[0].readOnly);
  EXPECT_EQ(found.calendars[1].name, QStringLiteral("Home"));
  EXPECT_TRUE(found.calendars[1].readOnly);
}

TEST_F(PlatformConfiguration, NeedsNoVersionAndNoOpenCalendar) {
  write(one);
  EXPECT_EQ(read().outlookVersion, QStringLiteral("11.0.0.8169"));
  EXPECT_EQ(read().openCalendar, QString());
}

TEST_F(PlatformConfiguration, HasTheNewestSpreadsheetAndTheDatePickersUnlessItSaysOtherwise) {
  write(one);
  EXPECT_EQ(read().spreadsheetGenerations, QList<int>{11});
  EXPECT_TRUE(read().datePickers);
}

TEST_F(PlatformConfiguration, ListsTheGenerationsOfTheSpreadsheetThatAreInstalled) {
  write(one + "[components]\nspreadsheet=9\ndatepickers=false\n");
  EXPECT_EQ(read().spreadsheetGenerations, QList<int>{9});
  EXPECT_FALSE(read().datePickers);
  for (const char* list : {"9, 10,11", "\"9,10, 11\"", "9,10,11,"}) {
    write(one + "[components]\nspreadsheet=" + list + "\n");
    EXPECT_EQ(read().spreadsheetGenerations, (QList<int>{9, 10, 11})) << list;
  }
  write(one + "[components]\nspreadsheet=none\n");
  EXPECT_TRUE(read().spreadsheetGenerations.isEmpty());
}

TEST_F(PlatformConfiguration, RefusesGenerationsThatThereAreNot) {
  for (const char* list : {"12", "9,eleven", "", ",", "none,9"}) {
    write(one + "[components]\nspreadsheet=" + list + "\n");
    EXPECT_THAT(refusal(), HasSubstr("it may list 9, 10 and 11, or be none")) << list;
  }
  write(one + "[components]\ndatepickers=perhaps\n");
  EXPECT_THAT(refusal(), HasSubstr("\"components/datepickers\" is \"perhaps\""));
}

TEST_F(PlatformConfiguration, KeepsTheWindowsPlaceAndTheJournalInTheStateFolder) {
  const QByteArray before = qgetenv("XDG_STATE_HOME");
  qputenv("XDG_STATE_HOME", "/var/state/jane");
  EXPECT_EQ(Configuration::placesFile(), QStringLiteral("/var/state/jane/hourbook/window.json"));
  EXPECT_EQ(Configuration::journalFolder(), QStringLiteral("/var/state/jane/hourbook/reports"));
  qputenv("XDG_STATE_HOME", "not/absolute");
  EXPECT_EQ(Configuration::placesFile(),
            QDir::homePath() + QStringLiteral("/.local/state/hourbook/window.json"));
  qunsetenv("XDG_STATE_HOME");
  EXPECT_EQ(Configuration::placesFile(),
            QDir::homePath() + QStringLiteral("/.local/state/hourbook/window.json"));
  if (!before.isNull()) qputenv("XDG_STATE_HOME", before);
}

TEST_F(PlatformConfiguration, KeepsRegistryAndDraftsBesideItself) {
  write(one);
  EXPECT_EQ(read().registryFile(), folder.filePath(QStringLiteral("registry.ini")));
  EXPECT_EQ(read().draftFolder(), folder.filePath(QStringLiteral("drafts")));
}

TEST_F(PlatformConfiguration, SaysWhereItIsMissed) {
  EXPECT_THAT(refusal(),
              HasSubstr(folder.filePath(QStringLiteral("platform.ini")).toStdString() + " does not exist"));
}

TEST_F(PlatformConfiguration, RefusesAFolderInItsPlace) {
  QDir(folder.path()).mkdir(QStringLiteral("platform.ini"));
  EXPECT_THAT(refusal(), HasSubstr("it is not a file"));
}

TEST_F(PlatformConfiguration, RefusesBrokenText) {
  write("[mailbox\nname");
  EXPECT_THAT(refusal(), HasSubstr("cannot be used"));
}

TEST_F(PlatformConfiguration, NamesWhatIsMissing) {
  write("[mailbox]\nname=x\n");
  EXPECT_THAT(refusal(), HasSubstr("\"calendars/size\" is missing"));
  write("[calendars]\nsize=1\n1\\path=work\n");
  EXPECT_THAT(refusal(), HasSubstr("\"calendars/1/id\" is missing"));
  write("[calendars]\nsize=1\n1\\id=work\n");
  EXPECT_THAT(refusal(), HasSubstr("\"calendars/1/path\" is missing"));
}

TEST_F(PlatformConfiguration, RefusesSizesThatAreNone) {
  write("[calendars]\nsize=many\n");
  EXPECT_THAT(refusal(), HasSubstr("\"calendars/size\" is \"many\" and not a number of calendars"));
  write("[calendars]\nsize=-1\n");
  EXPECT_THAT(refusal(), HasSubstr("not a number of calendars"));
  write("[calendars]\nsize=0\n");
  EXPECT_THAT(refusal(), HasSubstr("it names no calendar"));
}

TEST_F(PlatformConfiguration, NamesACalendarThatDoesNotExist) {
  write("[calendars]\nsize=1\n1\\id=gone\n1\\name=Gone\n1\\path=/nowhere/calendar\n");
  EXPECT_THAT(refusal(), HasSubstr("the calendar \"Gone\" was not found: /nowhere/calendar does not exist"));
}

TEST_F(PlatformConfiguration, RefusesTwoCalendarsOfOneId) {
  write("[calendars]\nsize=2\n1\\id=work\n1\\path=work\n2\\id=work\n2\\path=work\n");
  EXPECT_THAT(refusal(), HasSubstr("two calendars have the id \"work\""));
}

TEST_F(PlatformConfiguration, RefusesAnOpenCalendarThatIsNotThere) {
  write(one + "open=home\n");
  EXPECT_THAT(refusal(), HasSubstr("the open calendar \"home\" is not among the calendars"));
}

TEST_F(PlatformConfiguration, RefusesAFlagThatIsNone) {
  write(one + "1\\readonly=perhaps\n");
  EXPECT_THAT(refusal(), HasSubstr("\"calendars/1/readonly\" is \"perhaps\"; it may be true or false"));
}

TEST_F(PlatformConfiguration, AsksForQuotesAroundAValueWithAComma) {
  write("[mailbox]\nname=Mailbox - Doe, Jane\n[calendars]\nsize=1\n1\\id=work\n1\\path=work\n");
  EXPECT_THAT(refusal(), HasSubstr("the value of \"mailbox/name\" holds a comma; put it in double quotes"));
}

TEST_F(PlatformConfiguration, StandsInTheFolderThatTheEnvironmentNames) {
  const QByteArray before = qgetenv("HOURBOOK_CONFIG");
  qputenv("HOURBOOK_CONFIG", folder.path().toUtf8());
  EXPECT_EQ(Configuration::defaultFolder(), folder.path());
  qunsetenv("HOURBOOK_CONFIG");
  EXPECT_TRUE(Configuration::defaultFolder().endsWith(QStringLiteral("/hourbook")));
  if (!before.isEmpty()) qputenv("HOURBOOK_CONFIG", before);
}

}  // namespace
}  // namespace tests
