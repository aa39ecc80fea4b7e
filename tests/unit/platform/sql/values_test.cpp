#include "platform/sql/sqlite/values.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/sqlite/databasefile.h"
#include "platform/sql/sqlite/engine.h"
#include "scopedtimezone.h"

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <cmath>
#include <gtest/gtest.h>

using namespace platform;
using namespace platform::sql;
using namespace platform::sql::sqlite;
using basic::Currency;
using basic::Date;
using basic::Value;

// What another program finds in the file.
TEST(StoredValues, ReadWellForOtherPrograms) {
  EXPECT_EQ(toStored(true), QVariant(-1));
  EXPECT_EQ(toStored(false), QVariant(0));
  EXPECT_EQ(toStored(Date::of(QDate(2024, 2, 5), QTime(9, 0))), QVariant(u"2024-02-05T09:00:00"_qs));
  EXPECT_EQ(toStored(7.1F), QVariant(7.1));
  EXPECT_EQ(toStored(Currency::fromTenThousandths(4505001)), QVariant(450.5001));
  EXPECT_TRUE(toStored(basic::Null{}).isNull());
  EXPECT_TRUE(toStored(Value()).isNull());
}

TEST(StoredValues, AnAmountThatCannotBeKeptExactlyIsRefused) {
  EXPECT_THROW(toStored(Currency::fromTenThousandths(9223372036854775807)), Failure);
}

TEST(StoredValues, WhatOtherProgramsWriteIsRead) {
  EXPECT_TRUE(fromStored(u"2024-02-05 09:00"_qs, Type::Date) ==
              Value(Date::of(QDate(2024, 2, 5), QTime(9, 0))));
  EXPECT_TRUE(fromStored(u"2024-02-05"_qs, Type::Date) == Value(Date::of(2024, 2, 5)));
  EXPECT_TRUE(fromStored(45327.5, Type::Date) == Value(Date::of(QDate(2024, 2, 5), QTime(12, 0))));
  EXPECT_TRUE(fromStored(u"soon"_qs, Type::Date) == Value(u"soon"_qs));
  EXPECT_TRUE(fromStored(1, Type::Boolean) == Value(true));
  EXPECT_TRUE(fromStored(QVariant(12LL), Type::Currency) == Value(Currency::fromTenThousandths(120000)));
  EXPECT_TRUE(fromStored(QVariant(3000000000LL), Type::Long) == Value(qint64{3000000000}));
  EXPECT_TRUE(fromStored(QVariant(70000LL), Type::Integer) == Value(qint32{70000}));
}

TEST(StoredValues, DatesAreReadEvenWhereTheMachinesClockLeavesThatHourOut) {
  for (const char* rule : {tests::noMidnightOnFebruary5, tests::noTenOClockOnMay15}) {
    const tests::ScopedTimeZone zone(rule);
    for (const Date& moment : {Date::of(2024, 2, 5), Date::of(QDate(2024, 2, 5), QTime(0, 30)),
                               Date::of(QDate(2024, 5, 15), QTime(10, 30))})
      EXPECT_TRUE(fromStored(toStored(moment), Type::Date) == Value(moment)) << rule;
    EXPECT_TRUE(fromStored(u"2024-02-05"_qs, Type::Date) == Value(Date::of(2024, 2, 5)));
  }
}

TEST(StoredValues, FractionsOfASecondAndZonesOfOtherProgramsAreReadAsTheyStand) {
  const Value half(Date::of(QDate(2024, 2, 5), QTime(9, 30)));
  for (const QString& text : {u"2024-02-05T09:30:00.000"_qs, u"2024-02-05 09:30Z"_qs,
                              u"2024-02-05T09:30:00+02:00"_qs, u" 2024-02-05 09:30:00 "_qs})
    EXPECT_TRUE(fromStored(text, Type::Date) == half) << qPrintable(text);
  for (const QString& text : {u"2024-02-30"_qs, u"2024-02-05T25:00"_qs, u"2024-02-05 nine"_qs})
    EXPECT_TRUE(fromStored(text, Type::Date) == Value(text));
}

TEST(StoredValues, WhatIsNoneOfTheTypeIsRefused) {
  for (const Type type :
       {Type::Boolean, Type::Integer, Type::Long, Type::Single, Type::Double, Type::Currency})
    for (const QVariant& stored : {QVariant(u"450,5"_qs), QVariant(u"True"_qs), QVariant(u""_qs),
                                   QVariant(QByteArray("1")), QVariant(HUGE_VAL)})
      EXPECT_THROW(fromStored(stored, type), Failure) << int(type) << qPrintable(stored.toString());
  EXPECT_THROW(fromStored(1e30, Type::Long), Failure);
  EXPECT_THROW(fromStored(QByteArray("1"), Type::Date), Failure);
  EXPECT_TRUE(fromStored(u"450.5"_qs, Type::Currency) == Value(Currency::fromTenThousandths(4505000)));
}

TEST(StoredValues, TextsAreWholeCharacters) {
  const QString wave = QString::fromUcs4(U"\U0001F44B");
  ASSERT_EQ(wave.size(), 2);
  EXPECT_EQ(storedText(u"a"_qs + wave), u"a"_qs + wave);
  EXPECT_EQ(storedText(u"a"_qs + wave.left(1)), u"a\uFFFD"_qs);
  EXPECT_EQ(storedText(wave.right(1) + u'b' + wave.left(1) + wave), u"\uFFFDb\uFFFD"_qs + wave);
  EXPECT_EQ(storedText(QString(u"a"_qs) + QChar(u'\0') + u'b'), u"a\uFFFDb"_qs);
  EXPECT_FALSE(storedText(QString()).isNull());
  EXPECT_EQ(toStored(wave.left(1)), QVariant(u"\uFFFD"_qs));
}

TEST(StoredValues, DeclarationsOfOtherProgramsAreUnderstood) {
  EXPECT_EQ(typeOfDeclaration(u"nvarchar(40)"_qs).type, Type::Text);
  EXPECT_EQ(typeOfDeclaration(u"nvarchar(40)"_qs).size, 40);
  EXPECT_EQ(typeOfDeclaration(u"TEXT"_qs).type, Type::Memo);
  EXPECT_EQ(typeOfDeclaration(u"decimal(10,4)"_qs).type, Type::Currency);
  EXPECT_EQ(typeOfDeclaration(u"Real"_qs).type, Type::Double);
  EXPECT_EQ(typeOfDeclaration(u""_qs).type, Type::Text);
}

TEST(DatabaseFile, SafetyOfTheFileIsSwitchedOn) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a.mdb"_qs);
  SqliteEngine().createDatabase(path);
  ConnectionString connection;
  connection.set(u"Data Source"_qs, path);
  const auto session = SqliteDriver().connect(connection);
  const auto pragma = [&](const QString& name) { return session->execute(u"PRAGMA "_qs + name).rows[0][0]; };
  EXPECT_TRUE(pragma(u"foreign_keys"_qs) == Value(qint32{1}));
  EXPECT_TRUE(pragma(u"synchronous"_qs) == Value(qint32{3})) << "EXTRA";
  EXPECT_TRUE(pragma(u"journal_mode"_qs) == Value(u"delete"_qs));
}

TEST(DatabaseFile, AWaitForAnotherConnectionLastsAsLongAsItIsToldAndThenFailsClearly) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a.mdb"_qs);
  SqliteEngine().createDatabase(path);
  ConnectionString connection;
  connection.set(u"Data Source"_qs, path);
  constexpr int bound = 80;
  const auto holder = SqliteDriver().connect(connection), waiting = SqliteDriver(bound).connect(connection);
  holder->execute(u"create table t (a int)"_qs);
  holder->begin();
  holder->execute(u"insert into t values (1)"_qs);
  QElapsedTimer since;
  since.start();
  try {
    waiting->execute(u"insert into t values (2)"_qs);
    ADD_FAILURE() << "written into a locked database";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number(), errors::locked);
  }
  EXPECT_GE(since.elapsed(), bound) << "given up too early";
  holder->commit();
  waiting->execute(u"insert into t values (2)"_qs);
  EXPECT_EQ(waiting->execute(u"select a from t"_qs).rows.size(), 2);
  EXPECT_EQ(busyTimeoutMs, 10000);
}

TEST(DatabaseFile, NothingIsLeftOpenWhenAConnectionFails) {
  const int before = static_cast<int>(QSqlDatabase::connectionNames().size());
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a.mdb"_qs);
  {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("SQLite format 3\0", 16) + "torn");
  }
  ConnectionString connection;
  connection.set(u"Data Source"_qs, path);
  EXPECT_THROW(SqliteDriver(0).connect(connection), Failure);
  EXPECT_EQ(QSqlDatabase::connectionNames().size(), before);
}

TEST(DatabaseFile, ARelationKeepsIndexesAndTriggersOfTheTable) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a.mdb"_qs);
  SqliteEngine engine;
  engine.createDatabase(path);
  ConnectionString connection;
  connection.set(u"Data Source"_qs, path);
  const auto session = SqliteDriver().connect(connection);
  session->execute(u"create table tblP (id integer primary key)"_qs);
  session->execute(u"create table tblC (x text default 'd', id integer)"_qs);
  session->execute(u"create index ixC on tblC (x)"_qs);
  session->execute(
      u"create trigger trC after insert on tblC begin update tblC set x = 't' where x = 'go'; end"_qs);
  engine.addRelation(*session, {u"R"_qs, u"tblP"_qs, u"tblC"_qs, u"id"_qs});
  EXPECT_EQ(session->execute(u"select name from sqlite_master where name in ('ixC', 'trC')"_qs).rows.size(),
            2);
  session->execute(u"insert into tblC (x) values ('go')"_qs);
  session->execute(u"insert into tblC (id) values (null)"_qs);
  const Result result = session->execute(u"select x from tblC order by rowid"_qs);
  EXPECT_TRUE(result.rows[0][0] == Value(u"t"_qs));
  EXPECT_TRUE(result.rows[1][0] == Value(u"d"_qs));
}

TEST(DatabaseFile, ACompactedCopyHasTheModeOfItsSource) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a.mdb"_qs);
  SqliteEngine engine;
  engine.createDatabase(path);
  const auto shared = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::WriteGroup;
  ASSERT_TRUE(QFile::setPermissions(path, shared));
  engine.compact(path, path + u".new"_qs);
  const auto mode = QFile::permissions(path + u".new"_qs);
  EXPECT_TRUE(mode & QFile::WriteGroup);
  EXPECT_FALSE(mode & QFile::ReadOther);
}
