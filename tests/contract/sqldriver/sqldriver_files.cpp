// Databases as files: missing, foreign, locked, compacted. A driver without files refuses what it cannot
// give.
#include "sqldriver_context.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace contract {

using namespace platform;
using namespace platform::sql;
using basic::Value;

namespace {

ConnectionString to(const QString& path) {
  ConnectionString connection;
  connection.set(u"Data Source"_qs, path);
  return connection;
}

void write(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(bytes);
}

QByteArray read(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

TEST_P(SqlDriver, ADatabaseWithoutANameIsRefused) {
  EXPECT_NE(failureNumber([&] { context->driver().connect(ConnectionString()); }), 0);
}

TEST_P(SqlDriver, AMissingFileIsRefusedAndNeverMade) {
  if (!context->has_files()) return;
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"none.mdb"_qs);
  const auto open = [&] { context->driver().connect(to(path)); };
  EXPECT_EQ(failureNumber(open), errors::fileNotFound);
  EXPECT_EQ(failureText(open), u"Could not find file '"_qs + path + u"'."_qs);
  EXPECT_FALSE(QFile::exists(path));
}

TEST_P(SqlDriver, AMissingFolderIsNamed) {
  if (!context->has_files()) return;
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"gone/none.mdb"_qs);
  const auto open = [&] { context->driver().connect(to(path)); };
  EXPECT_EQ(failureNumber(open), errors::invalidPath);
  EXPECT_TRUE(failureText(open).contains(path));
  EXPECT_EQ(failureNumber([&] { context->engine().createDatabase(path); }), errors::invalidPath);
}

TEST_P(SqlDriver, BackslashesSeparateFoldersAsWell) {
  if (!context->has_files()) return;
  QString path = context->path();
  const qsizetype slash = path.lastIndexOf(u'/');
  path[slash] = u'\\';
  context->driver().connect(to(path));
}

TEST_P(SqlDriver, APathWithOddSignsIsOpened) {
  if (!context->has_files()) return;
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"års 100% ?#&'x.mdb"_qs);
  context->engine().createDatabase(path);
  EXPECT_TRUE(QFile::exists(path));
  context->driver().connect(to(path));
}

TEST_P(SqlDriver, AnAccessFileIsRecognisedAndLeftAsItIs) {
  if (!context->has_files()) return;
  for (const QByteArray& name : {QByteArray("Standard Jet DB"), QByteArray("Standard ACE DB")}) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"Hourbook3.mdb"_qs);
    const QByteArray bytes = QByteArray("\0\1\0\0", 4) + name + QByteArray(4096, '\0');
    write(path, bytes);
    const auto open = [&] { context->driver().connect(to(path)); };
    EXPECT_EQ(failureNumber(open), errors::unrecognizedFormat);
    EXPECT_TRUE(failureText(open).contains(u"is a Microsoft Access database"));
    EXPECT_TRUE(failureText(open).contains(u"converted"));
    EXPECT_TRUE(failureText(open).contains(path));
    EXPECT_NE(failureNumber([&] { context->engine().compact(path, path + u".new"_qs); }), 0);
    EXPECT_EQ(read(path), bytes);
  }
}

TEST_P(SqlDriver, AFileThatIsNoDatabaseIsRefusedAndLeftAsItIs) {
  if (!context->has_files()) return;
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"letter.mdb"_qs);
  write(path, "Dear Sir or Madam, this is a letter and no database at all.");
  const auto open = [&] { context->driver().connect(to(path)); };
  EXPECT_EQ(failureNumber(open), errors::unrecognizedFormat);
  EXPECT_TRUE(failureText(open).contains(u"the file is no database"));
  EXPECT_EQ(read(path), QByteArray("Dear Sir or Madam, this is a letter and no database at all."));
}

TEST_P(SqlDriver, AnEmptyFileIsRefused) {
  if (!context->has_files()) return;
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"empty.mdb"_qs);
  write(path, {});
  const auto open = [&] { context->driver().connect(to(path)); };
  EXPECT_EQ(failureNumber(open), errors::unrecognizedFormat);
  EXPECT_TRUE(failureText(open).contains(u"the file is empty"));
}

TEST_P(SqlDriver, AFolderIsNoDatabase) {
  if (!context->has_files()) return;
  const QTemporaryDir folder;
  const auto open = [&] { context->driver().connect(to(folder.path())); };
  EXPECT_EQ(failureNumber(open), errors::unrecognizedFormat);
  EXPECT_TRUE(failureText(open).contains(u"not a regular file"));
}

TEST_P(SqlDriver, ATornFileIsSaidToBeDamaged) {
  if (!context->has_files()) return;
  {
    const auto session = connect();
    createTables(*session);
  }
  const QByteArray whole = read(context->path());
  ASSERT_GT(whole.size(), 8192);
  for (const qsizetype length : {qsizetype{20}, qsizetype{100}, qsizetype{4096}, whole.size() - 4096}) {
    write(context->path(), whole.left(length));
    const auto open = [&] { connect(); };
    EXPECT_EQ(failureNumber(open), errors::damaged) << length;
    EXPECT_TRUE(failureText(open).contains(u"is damaged")) << length;
    EXPECT_TRUE(failureText(open).contains(context->path()));
  }
}

TEST_P(SqlDriver, ALockedDatabaseIsSaidToBeInUse) {
  if (!context->has_files()) return;
  const auto session = connect();
  createTables(*session);
  const auto other = connect();
  other->execute(u"BEGIN EXCLUSIVE"_qs);
  const auto writing = [&] { session->execute(u"insert into tblPersons (strPersonName) values ('x')"_qs); };
  EXPECT_EQ(failureNumber(writing), errors::locked);
  EXPECT_TRUE(failureText(writing).endsWith(u"is in use by another program."))
      << qPrintable(failureText(writing));
  EXPECT_TRUE(failureText(writing).contains(context->path()));
  EXPECT_EQ(failureNumber([&] { connect(); }), errors::locked);
  other->execute(u"ROLLBACK"_qs);
  writing();
}

TEST_P(SqlDriver, ADatabaseOpenedForReadingTakesNoRows) {
  if (!context->has_files()) return;
  createTables(*connect());
  ConnectionString reading = context->connection();
  reading.set(u"Mode"_qs, u"Read"_qs);
  const auto session = context->driver().connect(reading);
  EXPECT_EQ(session->execute(u"select * from tblPersons"_qs).rows.size(), 0);
  const auto writing = [&] { session->execute(u"insert into tblPersons (strPersonName) values ('x')"_qs); };
  EXPECT_EQ(failureNumber(writing), errors::readOnly);
  EXPECT_TRUE(failureText(writing).contains(u"is read-only"));
}

TEST_P(SqlDriver, ADatabaseThatExistsIsNotMadeAgain) {
  if (!context->has_files()) return;
  createTables(*connect());
  EXPECT_EQ(failureNumber([&] { context->engine().createDatabase(context->path()); }),
            errors::databaseExists);
  EXPECT_EQ(connect()->tables().size(), 2);
}

TEST_P(SqlDriver, ACompactedCopyHoldsEverything) {
  if (!context->has_files()) return;
  {
    const auto session = connect();
    createTables(*session);
    context->engine().setCaption(*session, u"tblPersons"_qs, u"strPersonName"_qs, u"Name"_qs);
    session->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
    for (int i = 0; i < 200; ++i)
      session->execute(u"insert into tblReports (strSubject, intPersonID, strBody) values ('s', 1, ?)"_qs,
                       {QString(2000, u'b')});
    session->execute(u"delete from tblReports where intReportID > 5"_qs);
  }
  const QString target = context->path() + u".new"_qs;
  context->engine().compact(context->path(), target);
  EXPECT_LT(QFileInfo(target).size(), QFileInfo(context->path()).size());
  const auto copy = context->driver().connect(to(target));
  EXPECT_EQ(copy->execute(u"select * from tblReports"_qs).rows.size(), 5);
  EXPECT_EQ(copy->columns(u"tblPersons"_qs)[1].caption, u"Name"_qs);
  EXPECT_EQ(context->engine().relations(*copy).size(), 1);
  EXPECT_EQ(failureNumber([&] { copy->execute(u"delete from tblPersons"_qs); }), errors::relatedRecords);
  EXPECT_EQ(copy->execute(u"insert into tblReports (strSubject) values ('t')"_qs).lastId, 201);
}

TEST_P(SqlDriver, ADatabaseInUseIsNotCompacted) {
  if (!context->has_files()) return;
  createTables(*connect());
  const auto other = connect();
  other->execute(u"BEGIN IMMEDIATE"_qs);
  const QString target = context->path() + u".new"_qs;
  EXPECT_EQ(failureNumber([&] { context->engine().compact(context->path(), target); }), errors::locked);
  EXPECT_FALSE(QFile::exists(target));
  EXPECT_TRUE(QFile::exists(context->path()));
}

TEST_P(SqlDriver, ACopyDoesNotReplaceAFile) {
  if (!context->has_files()) return;
  createTables(*connect());
  const QString target = context->path() + u".new"_qs;
  write(target, "old");
  EXPECT_EQ(failureNumber([&] { context->engine().compact(context->path(), target); }),
            errors::databaseExists);
  EXPECT_EQ(read(target), QByteArray("old"));
}

TEST_P(SqlDriver, TheSourceOfACopyStaysLockedUntilItIsLetGo) {
  if (!context->has_files()) return;
  createTables(*connect());
  auto hold = context->engine().compact(context->path(), context->path() + u".new"_qs);
  EXPECT_EQ(
      failureNumber([&] { connect()->execute(u"insert into tblPersons (strPersonName) values ('x')"_qs); }),
      errors::locked);
  hold.reset();
  connect()->execute(u"insert into tblPersons (strPersonName) values ('x')"_qs);
}

TEST_P(SqlDriver, AnEmptyFileOrADanglingLinkIsNotMadeADatabase) {
  if (!context->has_files()) return;
  const QTemporaryDir folder;
  const QString empty = folder.filePath(u"empty.mdb"_qs), link = folder.filePath(u"link.mdb"_qs);
  write(empty, {});
  ASSERT_TRUE(QFile::link(folder.filePath(u"elsewhere.mdb"_qs), link));
  createTables(*connect());
  for (const QString& path : {empty, link}) {
    EXPECT_EQ(failureNumber([&] { context->engine().createDatabase(path); }), errors::databaseExists);
    EXPECT_EQ(failureNumber([&] { context->engine().compact(context->path(), path); }),
              errors::databaseExists);
  }
  EXPECT_FALSE(QFile::exists(folder.filePath(u"elsewhere.mdb"_qs)));
  EXPECT_EQ(QFileInfo(empty).size(), 0);
}

TEST_P(SqlDriver, NothingStandsBesideADatabaseThatNobodyHasOpen) {
  if (!context->has_files()) return;
  createTables(*connect());
  context->engine().compact(context->path(), context->path() + u".new"_qs);
  EXPECT_EQ(
      QFileInfo(context->path()).dir().entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
      QStringList({u"contract.mdb"_qs, u"contract.mdb.new"_qs}));
}

TEST_P(SqlDriver, ATransactionIsCarriedOutWholeOrNotAtAll) {
  const auto session = connect();
  createTables(*session);
  const auto add = [&](const QString& name) {
    session->execute(u"insert into tblPersons (strPersonName) values (?)"_qs, {name});
  };
  {
    Transaction dropped(*session);
    add(u"dropped"_qs);
  }
  Transaction outer(*session);
  add(u"a"_qs);
  {
    Transaction inner(*session);
    add(u"dropped too"_qs);
  }
  {
    Transaction inner(*session);
    add(u"b"_qs);
    Column extra = column(u"intExtra"_qs, Type::Long);
    context->engine().addColumn(*session, u"tblPersons"_qs, extra);
    inner.commit();
  }
  outer.commit();
  const Result result = session->execute(u"select strPersonName, intExtra from tblPersons"_qs);
  ASSERT_EQ(result.rows.size(), 2);
  EXPECT_TRUE(result.rows[0][0] == Value(u"a"_qs));
  EXPECT_TRUE(result.rows[1][0] == Value(u"b"_qs));
  session->execute(u"insert into tblPersons (strPersonName) values ('c')"_qs);  // by itself again
}

TEST_P(SqlDriver, WhatIsCommittedInsideGoesWhenTheOutsideIsRolledBack) {
  const auto session = connect();
  createTables(*session);
  {
    Transaction outer(*session);
    context->engine().addColumn(*session, u"tblPersons"_qs, column(u"intExtra"_qs, Type::Long));
  }
  EXPECT_EQ(session->columns(u"tblPersons"_qs).size(), 2);
}

}  // namespace contract
