// What programs may do to a database that others have open.
#include "otherprocess.h"
#include "sqldriver_context.h"

namespace contract {

using namespace platform::sql;
using platform::basic::Value;

namespace {

QByteArray content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const QString insertAnn = QStringLiteral("insert into tblPersons (strPersonName) values ('Ann')");
const QString insertBo = QStringLiteral("insert into tblPersons (strPersonName) values ('Bo')");

bool exchange(const QString& copy, const QString& path) {
  return QFile::remove(path) && QFile::rename(copy, path);
}

}  // namespace

TEST_P(SqlDriver, AnotherProgramThatHasTheDatabaseOpenAndIdlePreventsCompaction) {
  if (!context->has_files()) return;
  createTables(*connect());
  const QString target = context->path() + u".new"_qs;
  OtherProcess other([&](const OtherProcess::Wire& wire) {
    const auto idle = connect();
    wire.tell();
    return wire.wait() ? 0 : 1;
  });
  other.await();
  const QByteArray before = content(context->path());
  const auto compact = [&] { context->engine().compact(context->path(), target); };
  EXPECT_EQ(failureNumber(compact), errors::locked);
  EXPECT_TRUE(failureText(compact).endsWith(u"is in use by another program."));
  EXPECT_EQ(content(context->path()), before);
  EXPECT_FALSE(QFile::exists(target));
  other.goOn();
  EXPECT_EQ(other.finish(), 0);
  compact();
  EXPECT_TRUE(QFile::exists(target));
}

TEST_P(SqlDriver, OfTwoCompactionsAtOnceTheSecondRefusesAndNoRowIsLost) {
  if (!context->has_files()) return;
  createTables(*connect());
  const QString path = context->path();
  OtherProcess other([&](const OtherProcess::Wire& wire) {
    auto held = context->engine().compact(path, path + u".new"_qs);
    wire.tell();
    if (!wire.wait() || !exchange(path + u".new"_qs, path)) return 1;
    held.reset();
    connect()->execute(insertAnn);
    return 0;
  });
  other.await();
  const QString target = path + u".second"_qs;
  EXPECT_EQ(failureNumber([&] { context->engine().compact(path, target); }), errors::locked);
  EXPECT_FALSE(QFile::exists(target));
  other.goOn();
  EXPECT_EQ(other.finish(), 0);
  EXPECT_EQ(connect()->execute(u"select * from tblPersons"_qs).rows.size(), 1);
  const auto held = context->engine().compact(path, target);
  ASSERT_TRUE(exchange(target, path));
}

TEST_P(SqlDriver, ACompactionKeepsOthersAwayUntilTheCopyStandsInItsPlace) {
  if (!context->has_files()) return;
  createTables(*connect());
  const QString path = context->path();
  OtherProcess other([&](const OtherProcess::Wire& wire) {
    auto held = context->engine().compact(path, path + u".new"_qs);
    wire.tell();
    if (!wire.wait() || !QFile::remove(path)) return 1;
    wire.tell();
    if (!wire.wait() || !QFile::rename(path + u".new"_qs, path)) return 2;
    wire.tell();
    if (!wire.wait()) return 3;
    held.reset();
    wire.tell();
    return wire.wait() ? 0 : 4;
  });
  for (const char* step : {"copied", "removed", "renamed"}) {
    other.await();
    EXPECT_EQ(failureNumber([&] { connect(); }), errors::locked) << step;
    EXPECT_EQ(failureNumber([&] { context->engine().createDatabase(path); }), errors::locked) << step;
    other.goOn();
  }
  other.await();
  connect()->execute(insertBo);
  other.goOn();
  EXPECT_EQ(other.finish(), 0);
  EXPECT_EQ(connect()->execute(u"select * from tblPersons"_qs).rows.size(), 1);
}

TEST_P(SqlDriver, AProgramThatEndsInTheMiddleOfACompactionLeavesNoLock) {
  if (!context->has_files()) return;
  createTables(*connect());
  const QString path = context->path();
  OtherProcess other([&](const OtherProcess::Wire&) {
    const auto held = context->engine().compact(path, path + u".new"_qs);
    std::_Exit(7);
    return 0;
  });
  EXPECT_EQ(other.finish(), 7);
  connect()->execute(insertAnn);
}

TEST_P(SqlDriver, AFileThatWasExchangedUnderAnIdleConnectionTakesNoRows) {
  if (!context->has_files()) return;
  const auto idle = connect();
  createTables(*idle);
  const QString copy = context->path() + u".copy"_qs;
  ASSERT_TRUE(QFile::copy(context->path(), copy));  // by a program that does not know of locks
  ASSERT_TRUE(exchange(copy, context->path()));
  const auto insert = [&] { idle->execute(insertAnn); };
  EXPECT_EQ(failureNumber(insert), errors::replacedByAnother);
  EXPECT_EQ(failureText(insert),
            u"The database '"_qs + context->path() + u"' was replaced by another program; try again."_qs);
  EXPECT_EQ(connect()->execute(u"select * from tblPersons"_qs).rows.size(), 0);
}

TEST_P(SqlDriver, RightBeforeTheExchangeItIsAskedWhetherTheFileIsStillTheSame) {
  if (!context->has_files()) return;
  createTables(*connect());
  const QString path = context->path();
  const QString target = path + u".new"_qs;
  const auto held = context->engine().compact(path, target);
  held->requireUnchanged();
  const QString copy = path + u".copy"_qs;
  ASSERT_TRUE(QFile::copy(path, copy));
  ASSERT_TRUE(exchange(copy, path));
  EXPECT_EQ(failureNumber([&] { held->requireUnchanged(); }), errors::replacedByAnother);
  EXPECT_FALSE(QFile::exists(target)) << "the copy is out of date";
}

}  // namespace contract
