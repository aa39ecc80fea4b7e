// What every other test relies on: that a test's world catches what was not announced.
#include "tests/support/testworld.h"

#include "platform/basic/value.h"
#include "platform/registry/registry.h"
#include "tests/support/messages.h"

#include <QDir>
#include <QLoggingCategory>
#include <QStandardPaths>

#include <gtest/gtest-spi.h>

using namespace platform;
using tests::ExpectedWarning;
using tests::TestWorld;

TEST(TestWorld, PutsEveryPartOfTheOutsideWorldInForce) {
  const TestWorld world;
  EXPECT_EQ(&dialogs::Dialogs::current(), &world.dialogs);
  EXPECT_EQ(&process::Process::current(), &world.process);
  EXPECT_EQ(&registry::Registry::current(), &world.registry);
  EXPECT_EQ(&automation::Components::current(), &world.components);
  EXPECT_EQ(locale::current().name(), QStringLiteral("en_US"));
  EXPECT_EQ(basic::Now(), basic::Date::of(QDate(2024, 5, 15), QTime(10, 0)));
  EXPECT_EQ(basic::Clock::current().now().toUTC().time(), QTime(8, 0));
  EXPECT_TRUE(QDir(process::Process::current().programFolder()).exists());
}

TEST(TestWorld, ChangesLocaleAndTime) {
  TestWorld world;
  world.setLocale(QStringLiteral("sv_SE"));
  world.setTime(QDateTime(QDate(2025, 1, 2), QTime(3, 4)), "America/New_York");
  world.clock->advance(60);
  EXPECT_EQ(locale::current().name(), QStringLiteral("sv_SE"));
  EXPECT_EQ(basic::Now(), basic::Date::of(QDate(2025, 1, 2), QTime(3, 5)));
}

TEST(TestWorld, FailsATestThatIsAskedAnUnexpectedQuestion) {
  EXPECT_NONFATAL_FAILURE(
      {
        TestWorld world;
        EXPECT_EQ(world.dialogs.MsgBox(QStringLiteral("Sure?"), dialogs::vbYesNo, QStringLiteral("T")),
                  dialogs::vbNo);
      },
      "An unexpected message box \"T\": Sure?");
}

TEST(TestWorld, FailsATestWhoseExpectedQuestionNeverCame) {
  EXPECT_NONFATAL_FAILURE(
      {
        TestWorld world;
        world.dialogs.expect(QStringLiteral("Sure?"), dialogs::vbYes);
      },
      "A scripted answer was never asked for: Sure?");
}

TEST(TestWorld, FailsATestThatEndsTheProcessUnannounced) {
  EXPECT_NONFATAL_FAILURE(
      {
        TestWorld world;
        process::guardEvent([&] { world.process.end(); });
      },
      "Ends of the process that were not announced");
}

TEST(TestWorld, TakesAnAnnouncedEndInAnEvent) {
  TestWorld world;
  world.expectEnds(1);
  process::guardEvent([] { process::Process::current().end(); });
}

TEST(ExpectEndsProcess, CatchesTheSignalAndTheGuardedEnd) {
  TestWorld world;
  bool reached = false;
  EXPECT_ENDS_PROCESS(process::Process::current().end(); reached = true);
  EXPECT_ENDS_PROCESS(process::guardEvent([] { process::Process::current().end(); }));
  EXPECT_FALSE(reached);
  EXPECT_EQ(world.process.ends, 2);
}

TEST(ExpectEndsProcess, FailsWhenTheStatementReturns) {
  EXPECT_NONFATAL_FAILURE(
      {
        TestWorld world;
        EXPECT_ENDS_PROCESS(int unused = 1; (void)unused);
      },
      "The process was not ended by");
}

TEST(Messages, FailATestWhenTheyWarnUnannounced) {
  EXPECT_NONFATAL_FAILURE(qWarning("something is odd"), "An unannounced message: something is odd");
  EXPECT_NONFATAL_FAILURE(qCritical("something is bad"), "An unannounced message: something is bad");
}

TEST(Messages, PassWhenTheyAreAnnounced) {
  const ExpectedWarning warning(QStringLiteral("odd"));
  qWarning("something is odd");
  EXPECT_EQ(warning.count(), 1);
}

TEST(Messages, FailATestWhenTheAnnouncedOneDoesNotCome) {
  EXPECT_NONFATAL_FAILURE({ const ExpectedWarning warning(QStringLiteral("odd")); },
                          "The announced message did not come: odd (0 of 1)");
  const ExpectedWarning mayCome(QStringLiteral("odd"), 0);
}

TEST(Home, OfATestIsATemporaryFolder) {
  const QString home = QDir::homePath();
  EXPECT_TRUE(home.contains(QStringLiteral("hourbook-tests-"))) << qUtf8Printable(home);
  for (const auto place : {QStandardPaths::GenericConfigLocation, QStandardPaths::GenericDataLocation,
                           QStandardPaths::GenericCacheLocation, QStandardPaths::DocumentsLocation,
                           QStandardPaths::TempLocation, QStandardPaths::RuntimeLocation})
    EXPECT_TRUE(QStandardPaths::writableLocation(place).contains(QStringLiteral("hourbook-tests-"))) << place;
}
