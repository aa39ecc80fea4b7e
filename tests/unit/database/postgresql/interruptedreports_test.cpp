// Reports that are interrupted while a real server stores them, and the next start. Being killed between any
// two statements is tried with the file's own tests, which run here as well.
#include "postgresqlroad.h"
#include "tests/unit/reporting/journal/journalworld.h"

#include <csignal>
#include <sys/wait.h>

using namespace hourbook;
using namespace Qt::StringLiterals;
using tests::PostgresqlRoad;

namespace {

const QString broken = u"The connection to the database hours on"_s;

class PostgresqlInterrupted : public testing::Test {
 protected:
  PostgresqlInterrupted() {
    for (const QString& subject : {u"one"_s, u"two"_s, u"three"_s}) w.addComplete(subject);
  }
  /// Something happens at the n-th row; the report breaks off.
  void breakOffAt(int n, const std::function<void()>& what) {
    w.plan->rules.append({u"insert into [tblReports]"_s, n - 1, 1, false, std::nullopt, what});
    w.expectFailure(u"fncReportToAccess"_s, broken, [&] { w.report(); });
    w.restart();
  }
  static void cutOff() {
    PostgresqlRoad::administrator()->execute(
        u"WITH x AS (SELECT pid FROM pg_stat_activity WHERE datname = 'hours') "
        "SELECT pg_terminate_backend(pid) FROM x"_s);
  }
  QStringList storedSubjects() const {
    QStringList subjects;
    for (const auto& value : w.stored(u"strSubject"_s)) subjects.append(std::get<QString>(value));
    subjects.sort();
    return subjects;
  }
  /// The rest is reported: each row once, each stamped, and nothing remembered.
  void expectEachOnce() {
    w.fetchAgain();
    if (w.statuses().contains(w.shell->LNGNOTPOSTED)) {
      w.expectDone();
      w.report();
    }
    EXPECT_EQ(storedSubjects(), QStringList({u"one"_s, u"three"_s, u"two"_s}));
    EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
    EXPECT_EQ(w.journals(), QStringList());
  }
  tests::JournalWorld w;
};

TEST_F(PostgresqlInterrupted, ARowWhoseAnswerWasLostIsStampedAndNotSentAgain) {
  const platform::Failure lost(platform::sql::errors::connectionFailed,
                               broken + u" the server: it is gone"_s);
  w.plan->rules.append({u"insert into [tblReports]"_s, 1, 1, true, lost, [] { cutOff(); }});
  w.expectFailure(u"fncReportToAccess"_s, broken, [&] { w.report(); });
  w.restart();
  EXPECT_EQ(w.stamped(), QList<bool>({true, false, false}));
  EXPECT_EQ(storedSubjects(), QStringList({u"one"_s, u"two"_s}));
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, false}));
  expectEachOnce();
}

TEST_F(PostgresqlInterrupted, AServerThatIsKilledBetweenTwoRowsAndStartedAgainHasEachRowOnce) {
  breakOffAt(2, [] { tests::postgresqlServer().kill(); });
  w.world.dialogs.expect(u"It is not known whether these appointments were reported:"_s,
                         platform::dialogs::vbOK);
  w.start();
  const QString text = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(text.contains(u"cannot be asked: Cannot connect to the database hours on"_s))
      << qPrintable(text);
  EXPECT_EQ(w.journals().size(), 1);
  tests::postgresqlServer().restart();
  ASSERT_TRUE(tests::postgresqlServer().problem().isEmpty());
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, false, false}));
  expectEachOnce();
}

/// Somebody is changing the person, so that a row of hers that was sent waits at the server, about to be
/// stored.
class HeldPerson {
 public:
  HeldPerson() : session_(PostgresqlRoad::administrator(u"hours"_s)) {
    session_->begin();
    session_->execute(u"WITH x AS (SELECT \"intPersonID\" FROM \"tblPersons\" FOR UPDATE) SELECT * FROM x"_s);
  }
  /// Returns when it waits; false where the process that is to send it has ended.
  static bool awaitRow(pid_t sender) {
    const auto ask = PostgresqlRoad::administrator();
    while (ask->execute(u"WITH x AS (SELECT pg_sleep(0.01)) SELECT 1 FROM pg_locks, x WHERE NOT granted"_s)
               .rows.isEmpty())
      if (::waitpid(sender, nullptr, WNOHANG) != 0) return false;
    return true;
  }
  void letGo() { session_->rollback(); }

 private:
  std::unique_ptr<platform::sql::Session> session_;
};

TEST_F(PostgresqlInterrupted, ARowThatTheServerMayStillStoreIsNotTakenForOneThatItHasNot) {
  HeldPerson held;
  w.database->gConnection.reset();
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    try {
      w.report();
    } catch (...) {  // or the tests would go on here as well
    }
    ::_exit(0);
  }
  ASSERT_TRUE(HeldPerson::awaitRow(child)) << "the report has ended without its row";
  ::kill(child, SIGKILL);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  w.start();
  held.letGo();
  // the server has gone on with what it was sent, or never will
  PostgresqlRoad::administrator()->execute(
      u"DO $$ BEGIN WHILE EXISTS (SELECT FROM pg_stat_activity WHERE datname = 'hours' AND state = 'active') "
      "LOOP PERFORM pg_sleep(0.01); PERFORM pg_stat_clear_snapshot(); END LOOP; END $$"_s);
  expectEachOnce();
}

TEST_F(PostgresqlInterrupted, ASessionOfAnotherLoginThatIsStillThereLetsNothingBeReported) {
  breakOffAt(2, [] { cutOff(); });
  const auto administrator = PostgresqlRoad::administrator(u"hours"_s);
  administrator->execute(
      u"DO $$ BEGIN IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = 'colleague') THEN CREATE ROLE "
      "colleague LOGIN; END IF; GRANT ALL ON ALL TABLES IN SCHEMA public TO colleague; END $$"_s);
  const QString token = administrator->token();
  w.rewrite([&](ReportRun& run) { run.mark[u"session"_s] = token; });
  w.common().ReportTo = 3;
  w.common().ReportToValue = PostgresqlRoad::textFor(u"hours"_s, u"colleague"_s);
  w.world.dialogs.expect(u"cannot be asked: "_s, platform::dialogs::vbOK);
  w.start();
  EXPECT_EQ(w.journals().size(), 1);
  EXPECT_NO_THROW(administrator->tables());
}

}  // namespace
