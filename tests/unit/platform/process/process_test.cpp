#include "platform/process/process.h"

#include <gtest/gtest.h>

using namespace platform::process;

TEST(CatchingProcess, TurnsAnEndIntoASignalAndCountsIt) {
  CatchingProcess process;
  EXPECT_THROW(process.end(), EndSignal);
  EXPECT_THROW(process.end(), EndSignal);
  EXPECT_EQ(process.ends, 2);
}

TEST(CatchingProcess, RecordsWhatWasStartedAndOpened) {
  CatchingProcess process;
  EXPECT_TRUE(process.start(QStringLiteral("/bin/cube"), {QStringLiteral("a b")}, nullptr));
  EXPECT_TRUE(process.open(QStringLiteral("mailto:ann@example.org"), nullptr));
  EXPECT_EQ(process.started, (QList<QStringList>{{QStringLiteral("/bin/cube"), QStringLiteral("a b")}}));
  EXPECT_EQ(process.opened, QStringList{QStringLiteral("mailto:ann@example.org")});
}

TEST(CatchingProcess, FailsEveryStartWithTheTextItWasGiven) {
  CatchingProcess process;
  process.startFailure = QStringLiteral("no such program");
  QString error;
  EXPECT_FALSE(process.start(QStringLiteral("x"), {}, &error));
  EXPECT_EQ(error, QStringLiteral("no such program"));
  error.clear();
  EXPECT_FALSE(process.open(QStringLiteral("x"), &error));
  EXPECT_EQ(error, QStringLiteral("no such program"));
  EXPECT_FALSE(process.open(QStringLiteral("x"), nullptr));
  EXPECT_TRUE(process.started.isEmpty() && process.opened.isEmpty());
}

TEST(CatchingProcess, KnowsOnlyTheEnvironmentOfTheTest) {
  qputenv("HOURBOOK_TEST", "outside");
  CatchingProcess process;
  process.environment.insert(QStringLiteral("USERNAME"), QStringLiteral("ann"));
  EXPECT_EQ(process.expandEnvironment(QStringLiteral("%username% %HOURBOOK_TEST%")),
            QStringLiteral("ann %HOURBOOK_TEST%"));
  qunsetenv("HOURBOOK_TEST");
}

TEST(ScopedProcess, IsInForceForItsLifeAndNests) {
  CatchingProcess outer;
  CatchingProcess inner;
  const ScopedProcess outerScope(outer);
  {
    const ScopedProcess innerScope(inner);
    EXPECT_EQ(&Process::current(), &inner);
  }
  EXPECT_EQ(&Process::current(), &outer);
}

TEST(GuardEvent, StopsTheSignalOfAnEndAndNothingElse) {
  CatchingProcess process;
  bool went = false;
  EXPECT_NO_THROW(guardEvent([&] {
    process.end();
    went = true;
  }));
  EXPECT_FALSE(went);
  EXPECT_EQ(process.ends, 1);
  EXPECT_THROW(guardEvent([] { throw 1; }), int);
}
