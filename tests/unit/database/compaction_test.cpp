#include "databaseworld.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/contract/sqldriver/otherprocess.h"

#include <QFileInfo>

#include <cerrno>

using namespace hourbook;
using platform::Failure;

namespace {
const QString temporaryName = QStringLiteral("tmpHourbook3.mdb.mdb");
constexpr int longWait = 60000;
}  // namespace

class Compaction : public testing::Test {
 protected:
  Compaction() {
    w.createCurrent();
    reportTarget().ReportToValue = w.shownPath();
    w.other()->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
  }
  tests::DatabaseWorld w;
};

TEST_F(Compaction, ReplacesTheDatabaseByACompactedCopy) {
  {
    const auto file = w.other();
    for (int i = 0; i < 100; ++i)
      file->execute(u"insert into tblReports (strBody) values (?)"_qs, {QString(3000, u'b')});
    file->execute(u"delete from tblReports"_qs);
  }
  const qint64 before = w.read(u"Hourbook3.mdb"_qs).size();
  subCompactDatabase(true);
  EXPECT_LT(w.read(u"Hourbook3.mdb"_qs).size(), before);
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
  EXPECT_FALSE(w.exists(temporaryName));
  EXPECT_FALSE(w.exists(u"Hourbook3.mdb-journal"_qs));
  EXPECT_EQ(w.shell->gLastLogText, u"Attempting to compact the database at "_qs + w.folder.path());
  EXPECT_EQ(
      w.plan->statements.filter(u"compact"_qs),
      QStringList{u"compact "_qs + w.shownPath() + u' ' + w.folder.path() + u"\\tmpHourbook3.mdb.mdb"_qs});
}

TEST_F(Compaction, TakesThePathWithAndWithoutTheFileNameAndBackslashes) {
  for (const QString& value : {w.folder.path(), w.folder.path() + u'\\', w.shownPath() + u'\\'}) {
    reportTarget().ReportToValue = value;
    subCompactDatabase(false);
    EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
  }
}

TEST_F(Compaction, AFailingCopyLeavesTheDatabaseInPlace) {
  const QByteArray before = w.read(u"Hourbook3.mdb"_qs);
  w.plan->failContaining(u"compact"_qs, Failure(3026, u"Not enough space on disk."_qs));
  w.expectFailure(u"subCompactDatabase"_qs, u"Not enough space on disk."_qs,
                  [] { subCompactDatabase(true); });
  EXPECT_EQ(w.read(u"Hourbook3.mdb"_qs), before);
  EXPECT_FALSE(w.exists(temporaryName));
}

TEST_F(Compaction, ADatabaseInUseIsLeftInPlace) {
  const auto other = w.other();
  other->execute(u"BEGIN IMMEDIATE"_qs);
  w.expectFailure(u"subCompactDatabase"_qs, u"is in use by another program"_qs,
                  [] { subCompactDatabase(true); });
  EXPECT_TRUE(w.exists());
  EXPECT_FALSE(w.exists(temporaryName));
}

TEST_F(Compaction, ADatabaseThatCannotBeDeletedLeavesBothFiles) {
  w.files->failDelete = u"Hourbook3.mdb"_qs;
  w.expectFailure(u"subCompactDatabase"_qs, u"Permission denied"_qs, [] { subCompactDatabase(true); });
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
  EXPECT_TRUE(w.exists(temporaryName));
}

TEST_F(Compaction, ACopyThatCannotBeRenamedIsAllThatIsLeft) {
  w.files->failRename = true;
  w.expectFailure(u"subCompactDatabase"_qs, u"Permission denied"_qs, [] { subCompactDatabase(true); });
  EXPECT_FALSE(w.exists());
  EXPECT_TRUE(w.exists(temporaryName));
  w.database->gConnection.reset();
  w.database->blnMayCreateDatabase = true;  // whoever looks for it next is told, and makes none instead
  w.expectFailure(u"fncGetConnection"_qs, u"its compacted copy \"tmpHourbook3.mdb.mdb\" stands there"_qs,
                  [] { subSetupConnection(); });
  EXPECT_FALSE(w.exists());
  ASSERT_TRUE(QFile::rename(w.path(temporaryName), w.path()));  // as an administrator would
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
}

TEST_F(Compaction, ACopyAloneBesideTheTargetOfALinkIsToldAndNoDatabaseIsMade) {
  QTemporaryDir shared;
  const QString real = shared.filePath(u"team.mdb"_qs), copy = shared.filePath(u"tmpteam.mdb.mdb"_qs);
  ASSERT_TRUE(QFile::rename(w.path(), copy));
  ASSERT_TRUE(QFile::link(real, w.path()));
  w.database->blnMayCreateDatabase = true;
  w.expectFailure(u"fncGetConnection"_qs,
                  u"\"team.mdb\" is missing from \"%1\", and its compacted copy \"tmpteam.mdb.mdb\""_qs.arg(
                      shared.path()),
                  [] { subSetupConnection(); });
  EXPECT_FALSE(QFile::exists(real));
  ASSERT_TRUE(QFile::rename(copy, real));
  w.database->gConnection.reset();
  subSetupConnection();
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
}

TEST_F(Compaction, ADatabaseThatAnotherProgramCompactsAtThatMomentIsWaitedFor) {
  const auto patient = std::make_shared<platform::sql::sqlite::SqliteDriver>(longWait, tests::noWait);
  const auto engine = std::make_shared<platform::sql::sqlite::SqliteEngine>(0, tests::noWait);
  platform::dao::registerComponents(w.world.components, patient, engine);
  contract::OtherProcess other([&](const contract::OtherProcess::Wire& wire) {
    const auto held = engine->compact(w.path(), w.path(temporaryName));
    if (!QFile::remove(w.path())) return 1;
    wire.tell();
    contract::awaitOpenInTest(w.path(u"Hourbook3.ldb"_qs));
    return QFile::rename(w.path(temporaryName), w.path()) ? 0 : 2;
  });
  other.await();
  subSetupConnection();
  EXPECT_EQ(other.finish(), 0);
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
}

TEST_F(Compaction, ADatabaseThatComesBackBetweenTwoLooksIsNoReasonToMakeOne) {
  ASSERT_TRUE(QFile::rename(w.path(), w.path(temporaryName)));
  w.database->blnMayCreateDatabase = true;  // nobody answers the question whether to
  w.files->looked = [&](const QString& path) {
    if (path.endsWith(databaseFileName)) QFile::rename(w.path(temporaryName), w.path());
  };
  subSetupConnection();
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
}

namespace {
/// A connection file, as it stays behind where a team has gone from a server to the file.
const QByteArray leftBehind = "Provider=SQLOLEDB.1;Data Source=server;Initial Catalog=Hourbook3SQL";
}  // namespace

TEST_F(Compaction, WithAConnectionFileBesideItADatabaseThatIsCompactedAtThatMomentIsWaitedForAsWell) {
  w.write(connectionFileName, leftBehind);
  const auto patient = std::make_shared<platform::sql::sqlite::SqliteDriver>(longWait, tests::noWait);
  const auto engine = std::make_shared<platform::sql::sqlite::SqliteEngine>(0, tests::noWait);
  platform::dao::registerComponents(w.world.components, patient, engine);
  contract::OtherProcess other([&](const contract::OtherProcess::Wire& wire) {
    const auto held = engine->compact(w.path(), w.path(temporaryName));
    if (!QFile::remove(w.path())) return 1;
    wire.tell();
    contract::awaitOpenInTest(w.path(u"Hourbook3.ldb"_qs));
    return QFile::rename(w.path(temporaryName), w.path()) ? 0 : 2;
  });
  other.await();
  subSetupConnection();
  EXPECT_EQ(other.finish(), 0);
  EXPECT_EQ(reportTarget().ReportTo, 2);
  EXPECT_EQ(w.database->gConnection->ConnectionString(), fncAccessConnection(w.shownPath()));
  EXPECT_EQ(w.read(connectionFileName), leftBehind);
}

TEST_F(Compaction, WithAConnectionFileBesideItADatabaseThatComesBackBetweenTwoLooksIsUsed) {
  w.write(connectionFileName, leftBehind);
  ASSERT_TRUE(QFile::rename(w.path(), w.path(temporaryName)));
  w.files->looked = [&](const QString& path) {
    if (path.endsWith(databaseFileName)) QFile::rename(w.path(temporaryName), w.path());
  };
  subSetupConnection();
  EXPECT_EQ(reportTarget().ReportTo, 2);
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
}

TEST_F(Compaction, ThatTakesTooLongIsToldAndNoServerIsAskedInstead) {
  w.write(connectionFileName, leftBehind);
  const auto held =
      platform::sql::sqlite::SqliteEngine(0, tests::noWait).compact(w.path(), w.path(temporaryName));
  ASSERT_TRUE(QFile::remove(w.path()));
  reportTarget().ReportTo = 2;
  w.expectFailure(u"fncGetConnection"_qs, u"is in use by another program"_qs, [] { subSetupConnection(); });
  EXPECT_EQ(reportTarget().ReportTo, 2);
}

TEST_F(Compaction, ACopyThatNobodyIsMakingLeavesTheFolderToItsConnectionFile) {
  w.write(connectionFileName, leftBehind);
  ASSERT_TRUE(QFile::rename(w.path(), w.path(temporaryName)));
  w.expectFailure(u"subSetupConnection"_qs, u"Provider cannot be found."_qs, [] { subSetupConnection(); });
  EXPECT_EQ(reportTarget().ReportTo, 3);
  EXPECT_EQ(reportTarget().ReportToValue, QString::fromUtf8(leftBehind));
}

TEST_F(Compaction, ACopyLeftFromBeforeIsNotOverwritten) {
  w.write(temporaryName, "left");
  w.expectFailure(u"subCompactDatabase"_qs, u"Database already exists"_qs, [] { subCompactDatabase(true); });
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(
      u"tmpHourbook3.mdb.mdb'. It is left from a compaction that was interrupted, and may be removed as long "
      u"as \"Hourbook3.mdb\" stands beside it."_qs))
      << qPrintable(w.world.dialogs.shown.last().text);
  EXPECT_EQ(w.read(temporaryName), QByteArray("left"));
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
}

TEST_F(Compaction, NobodyWritesIntoTheFileThatIsBeingReplaced) {
  // another program that tries between the copy and the exchange
  qint32 seen = 0;
  w.plan->rules.append({u"compact"_qs, 0, 1, true, std::nullopt, [&] {
                          try {
                            w.other()->execute(u"insert into tblPersons (strPersonName) values ('lost')"_qs);
                          } catch (const Failure& failure) {
                            seen = failure.number();
                          }
                        }});
  subCompactDatabase(true);
  EXPECT_EQ(seen, platform::sql::errors::locked);
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
}

TEST_F(Compaction, ADatabaseThatAnotherProgramHasOpenIsLeftInPlaceThoughNobodyUsesIt) {
  contract::OtherProcess other([&](const contract::OtherProcess::Wire& wire) {
    const auto idle = w.other();
    wire.tell();
    return wire.wait() ? 0 : 1;
  });
  other.await();
  const QByteArray before = w.read(u"Hourbook3.mdb"_qs);
  w.expectFailure(u"subCompactDatabase"_qs, u"is in use by another program"_qs,
                  [] { subCompactDatabase(true); });
  EXPECT_EQ(w.read(u"Hourbook3.mdb"_qs), before);
  EXPECT_FALSE(w.exists(temporaryName));
  other.goOn();
  EXPECT_EQ(other.finish(), 0);
  subCompactDatabase(true);
}

TEST_F(Compaction, AFileThatAnotherProgramHasPutInItsPlaceIsKept) {
  const QString theirs = w.path(u"theirs"_qs);
  w.plan->rules.append({u"compact"_qs, 0, 1, true, std::nullopt, [&] {
                          QFile::remove(w.path());
                          w.write(u"Hourbook3.mdb"_qs, "theirs");
                        }});
  w.expectFailure(u"subCompactDatabase"_qs, u"was replaced by another program; try again"_qs,
                  [] { subCompactDatabase(true); });
  EXPECT_EQ(w.read(u"Hourbook3.mdb"_qs), QByteArray("theirs"));
  EXPECT_FALSE(w.exists(temporaryName));
}

TEST_F(Compaction, OfALinkTheRealFileIsExchangedSoThatAllStillShareIt) {
  const QTemporaryDir team;
  const QString real = team.filePath(u"team.mdb"_qs);
  ASSERT_TRUE(QFile::rename(w.path(), real));
  ASSERT_TRUE(QFile::link(real, w.path()));
  subCompactDatabase(true);
  EXPECT_EQ(QFile::symLinkTarget(w.path()), real);
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
  EXPECT_TRUE(QFileInfo(real).isFile());
  EXPECT_EQ(QDir(team.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"team.mdb"_qs});
  EXPECT_EQ(w.shell->gLastLogText, u"Attempting to compact the database at "_qs + w.folder.path());
}

TEST_F(Compaction, AFolderThatCannotBeSecuredAfterTheDeleteDoesNotStopTheRename) {
  platform::files::SystemCalls calls = platform::files::SystemCalls::ofTheSystem();
  bool deleted = false, failed = false;
  calls.unlinkat = [&](int folder, const char* name) {
    deleted = deleted || QByteArray(name) == "Hourbook3.mdb";
    return ::unlinkat(folder, name, 0);
  };
  calls.fsync = [&](int file) {
    if (!deleted || failed) return ::fsync(file);
    failed = true;
    errno = EIO;
    return -1;
  };
  {
    const platform::files::ScopedSystemCalls scope(calls);
    subCompactDatabase(true);
  }
  EXPECT_TRUE(failed);
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
  EXPECT_FALSE(w.exists(temporaryName));
}
