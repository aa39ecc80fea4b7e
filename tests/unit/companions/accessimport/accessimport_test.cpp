#include "companions/accessimport/accessfile.h"
#include "companions/accessimport/conversion.h"
#include "platform/basic/convert.h"
#include "platform/sql/sqlite/engine.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"
#include "tests/support/testworld.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace accessimport {
namespace {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::basic::Value;

/// Columns in a short form: "name:type" with "=caption" behind.
QJsonObject table(const QString& name, const QStringList& columns, const QList<QJsonArray>& rows = {}) {
  QJsonArray list;
  for (const QString& column : columns) {
    const QStringList parts = column.split(u'=');
    const QStringList nameAndType = parts.first().split(u':');
    list.append(QJsonObject{
        {u"name"_s, nameAndType.first()}, {u"type"_s, nameAndType.last()}, {u"caption"_s, parts.value(1)}});
  }
  QJsonArray all;
  for (const QJsonArray& row : rows) all.append(row);
  return {{u"name"_s, name}, {u"columns"_s, list}, {u"rows"_s, all}};
}

/// The tables of a database in use, in Swedish, from before values could be put out of use.
QList<QJsonObject> oldTables() {
  QList<QJsonObject> tables;
  for (int n = 1; n <= 3; ++n)
    tables.append(
        table(u"tblMeta%1"_s.arg(n),
              {u"intMeta%1ID:counter=Meta %1 ID"_s.arg(n), u"strName:text=Namn"_s,
               u"strCategory:text=Kategori"_s, u"strSuperCategory:text"_s, u"curRate:currency=Pris"_s},
              {QJsonArray{1, u"A & B"_s, u"x"_s, {}, u"450.1234"_s},
               QJsonArray{9, u"Żółć 日本"_s, {}, {}, u"-0.5"_s}}));
  tables.append(table(u"tblPersons"_s, {u"intPersonID:counter"_s, u"strPersonName:text=Namn"_s},
                      {QJsonArray{3, u"O'Brien [x]"_s}}));
  tables.append(table(u"tblSettings"_s,
                      {u"intSettingsID:counter"_s, u"intCostCarrier:integer"_s, u"intReportTo:integer"_s,
                       u"strReportToValue:text"_s},
                      {QJsonArray{1, 2, 2, u"C:\\db\\Hourbook3.mdb"_s}}));
  tables.append(table(u"tblMetaLists"_s,
                      {u"intMetaListID:counter"_s, u"strMetaListCaption:text"_s,
                       u"strMetaListCategoryCaption:text"_s, u"strMetaListSuperCategoryCaption:text"_s},
                      {QJsonArray{1, u"Kund"_s, u"Bransch"_s, {}}}));
  tables.append(
      table(u"tblReports"_s,
            {u"intReportID:counter=Rapport ID"_s, u"numHours:single=Timmar"_s, u"strSubject:text"_s,
             u"strMonthName:text"_s, u"strWeekdayName:text"_s, u"dtmDate:date"_s, u"curCost:currency"_s,
             u"dteReported:date"_s, u"intPersonID:long"_s, u"intMeta1ID:long"_s, u"intMeta2ID:long"_s,
             u"intMeta3ID:long"_s, u"strBody:memo=Text"_s},
            {QJsonArray{5,
                        1.33,
                        u"Möte"_s,
                        u"mars"_s,
                        u"söndag"_s,
                        u"2024-03-31T02:30:00"_s,
                        u"598.6641"_s,
                        u"2024-04-01T10:11:12"_s,
                        3,
                        1,
                        9,
                        {},
                        u"line\r\n\"two\""_s},
             QJsonArray{8, {}, {}, {}, {}, {}, {}, {}, 3, {}, {}, {}, QString(9000, u'ä')}}));
  return tables;
}

class AccessImport : public testing::Test {
 protected:
  QString write(const QList<QJsonObject>& tables, const QString& password = {}) {
    QJsonArray list;
    for (const QJsonObject& one : tables) list.append(one);
    const QString path = folder.filePath(u"Hourbook3.mdb"_s);
    QProcess maker;
    maker.start(u"python3"_s, {QStringLiteral(MAKE_ACCESS_FILE), path});
    maker.write(QJsonDocument(QJsonObject{{u"tables"_s, list}, {u"password"_s, password}}).toJson());
    maker.closeWriteChannel();
    EXPECT_TRUE(maker.waitForFinished() && maker.exitCode() == 0) << maker.readAllStandardError().constData();
    return path;
  }
  std::unique_ptr<platform::sql::Session> open(const QString& path) {
    platform::sql::ConnectionString connection;
    connection.set(u"Provider"_s, u"Microsoft.Jet.OLEDB.4.0"_s);
    connection.set(u"Data Source"_s, path);
    return driver.connect(connection);
  }
  QStringList rowsOf(platform::sql::Session& session, const QString& sql) {
    QStringList rows;
    for (const auto& row : session.execute(sql).rows) {
      QStringList values;
      for (const Value& value : row)
        values.append(platform::basic::IsNull(value) ? u"null"_s : platform::basic::CStr(value));
      rows.append(values.join(u'|'));
    }
    return rows;
  }
  QString refusal(const QString& source) {
    try {
      convert(source, target());
    } catch (const Failure& failure) {
      EXPECT_FALSE(QFile::exists(target()));
      EXPECT_FALSE(QFileInfo::exists(folder.filePath(u"new"_s)));
      return failure.description();
    }
    return u"taken"_s;
  }
  QString target() const { return folder.filePath(u"new/Hourbook3.mdb"_s); }
  static QByteArray bytesOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  }

  void SetUp() override { hourbook::LoadLanguages(hourbook::fncGetlocalLanguage()); }

  tests::TestWorld world;
  QTemporaryDir folder;
  hourbook::Shared<hourbook::ShellValues>::Scope shell;
  platform::sql::sqlite::SqliteDriver driver;
};

TEST_F(AccessImport, EveryRowIsThereWithItsKeyAndTheOriginalIsAsItWas) {
  const QString source = write(oldTables());
  const QByteArray before = bytesOf(source);
  const Outcome outcome = convert(source, target());
  EXPECT_EQ(outcome.tables, 7);
  EXPECT_EQ(outcome.rows, 11);
  EXPECT_EQ(outcome.notes, QStringList());
  EXPECT_EQ(bytesOf(source), before);
  const auto session = open(target());
  EXPECT_EQ(rowsOf(*session, u"select intMeta2ID, strName, strCategory, curRate from tblMeta2"_s),
            (QStringList{u"1|A & B|x|450.1234"_s, u"9|Żółć 日本|null|-0.5"_s}));
  EXPECT_EQ(rowsOf(*session, u"select intPersonID, strPersonName, strPersonCategory from tblPersons"_s),
            QStringList(u"3|O'Brien [x]|null"_s));
  EXPECT_EQ(rowsOf(*session, u"select intCostCarrier, intReportTo, strReportToValue from tblSettings"_s),
            QStringList(u"2|2|C:\\db\\Hourbook3.mdb"_s));
  const auto reports = session->execute(u"select * from tblReports order by intReportID"_s);
  ASSERT_EQ(reports.rows.size(), 2);
  const auto& row = reports.rows.first();
  EXPECT_EQ(platform::basic::CLng(row[0]), 5);
  EXPECT_EQ(std::get<float>(row[1]), 1.33F);
  EXPECT_EQ(std::get<platform::basic::Date>(row[5]),
            platform::basic::Date::of(QDate(2024, 3, 31), QTime(2, 30)));
  EXPECT_EQ(std::get<platform::basic::Currency>(row[6]).tenThousandths(), 5986641);
  EXPECT_EQ(platform::basic::CStr(row[12]), u"line\r\n\"two\""_s);
  EXPECT_EQ(platform::basic::CStr(reports.rows.last()[12]), QString(9000, u'ä'));
  EXPECT_TRUE(platform::basic::IsNull(reports.rows.last()[1]));
}

TEST_F(AccessImport, CaptionsAreThoseOfTheFileAndElseTheProgramsOwn) {
  convert(write(oldTables()), target());
  const auto session = open(target());
  QStringList captions;
  for (const platform::sql::Column& column : session->columns(u"tblReports"_s))
    captions.append(column.caption);
  EXPECT_EQ(captions.mid(0, 3), (QStringList{u"Rapport ID"_s, u"Timmar"_s, u"Subject"_s}));
  EXPECT_EQ(captions.last(), u"Text"_s);
  EXPECT_EQ(session->columns(u"tblMeta1"_s)[4].caption, u"Pris"_s);
}

TEST_F(AccessImport, KeysGoOnBehindTheLargestAndRelationsHold) {
  convert(write(oldTables()), target());
  const auto session = open(target());
  EXPECT_EQ(session->execute(u"insert into tblMeta1 (strName) values ('new')"_s).lastId, 10);
  EXPECT_EQ(platform::sql::sqlite::SqliteEngine().relations(*session).size(), 4);
  EXPECT_THROW(session->execute(u"insert into tblReports (intMeta1ID) values (77)"_s), Failure);
}

TEST_F(AccessImport, ValuesOfAnOlderDatabaseAreInUseAndThoseOfANewerOneAsTheyWere) {
  QList<QJsonObject> tables = oldTables();
  tables[1] = table(u"tblMeta2"_s, {u"intMeta2ID:counter"_s, u"strName:text"_s, u"blnEnabled:boolean"_s},
                    {QJsonArray{1, u"A"_s, true}, QJsonArray{9, u"B"_s, false}});
  tables.append(table(u"tblOtherSettings"_s,
                      {u"intSettingID:counter"_s, u"strPropName:text"_s, u"strPropValue:memo=Value"_s},
                      {QJsonArray{1, u"ADDepartment"_s, u"1"_s}}));
  convert(write(tables), target());
  const auto session = open(target());
  const QString enabled = u"select strName from tblMeta%1 where blnEnabled <> 0"_s;
  EXPECT_EQ(rowsOf(*session, enabled.arg(1)).size(), 2);
  EXPECT_EQ(rowsOf(*session, enabled.arg(2)), QStringList(u"A"_s));
  EXPECT_EQ(rowsOf(*session, u"select strPropName, strPropValue from tblOtherSettings"_s),
            QStringList(u"ADDepartment|1"_s));
}

TEST_F(AccessImport, OwnColumnsAndTablesComeAlongAndWhatHasNoPlaceIsNamed) {
  QList<QJsonObject> tables = oldTables();
  tables[3] =
      table(u"tblPersons"_s,
            {u"intPersonID:counter"_s, u"strPersonName:text"_s, u"Phone no:text=Telefon"_s, u"Photo:ole"_s},
            {QJsonArray{3, u"Ann"_s, u"+46 8"_s, u"0011ff"_s}});
  tables.append(table(u"My notes"_s, {u"When:date"_s, u"Ratio:double"_s, u"Small:byte"_s},
                      {QJsonArray{u"1899-12-31T00:00:00"_s, 0.1, 200}}));
  const Outcome outcome = convert(write(tables), target());
  EXPECT_EQ(outcome.notes,
            (QStringList{
                u"The column \"Photo\" of \"tblPersons\" is left out: it holds values of the kind \"OLE\"."_s,
                u"The table \"My notes\" is not of this program; it was taken over without its keys."_s}));
  const auto session = open(target());
  EXPECT_EQ(rowsOf(*session, u"select strPersonName, [Phone no] from tblPersons"_s),
            QStringList(u"Ann|+46 8"_s));
  EXPECT_EQ(rowsOf(*session, u"select [Ratio], [Small] from [My notes]"_s), QStringList(u"0.1|200"_s));
}

TEST_F(AccessImport, OwnNamesThatHaveNoPlaceAreLeftOutByName) {
  QList<QJsonObject> tables = oldTables();
  tables.append(table(u"Ann's list"_s,
                      {u"id:counter=It's \"it\""_s, u"5\" disk:text"_s, u"a'b:text"_s, u"-c:text"_s},
                      {QJsonArray{1, u"gone"_s, u"'\""_s, u"-"_s}}));
  tables.append(table(u"\"Own\""_s, {u"id:counter"_s}, {QJsonArray{1}}));
  tables.append(table(u"-old"_s, {u"id:counter"_s}, {QJsonArray{1}}));
  const Outcome outcome = convert(write(tables), target());
  EXPECT_EQ(
      outcome.notes,
      (QStringList{
          u"The column \"5\" disk\" of \"Ann's list\" is left out: its name has a quotation mark in it."_s,
          u"The table \"Ann's list\" is not of this program; it was taken over without its keys."_s,
          u"The table \"\"Own\"\" is left out: its name has a quotation mark in it."_s,
          u"The table \"-old\" is left out: its name begins like an option of the program that reads it."_s}));
  EXPECT_EQ(outcome.rows, 12);
  const auto session = open(target());
  EXPECT_EQ(rowsOf(*session, u"select id, [a'b], [-c] from [Ann's list]"_s), QStringList(u"1|'\"|-"_s));
  EXPECT_EQ(session->columns(u"Ann's list"_s).first().caption, u"It's \"it\""_s);
}

TEST_F(AccessImport, AmountsArriveToTheTenThousandthOrAreNamed) {
  const auto tablesWith = [](const QString& amount) {
    QList<QJsonObject> tables = oldTables();
    tables.append(table(u"Own"_s, {u"id:counter"_s, u"Worth:currency"_s},
                        {QJsonArray{1, u"0.0001"_s}, QJsonArray{2, amount}}));
    return tables;
  };
  for (const QString& amount : {u"549755813887.9999"_s, u"-549755813887.9999"_s}) {
    QFile::remove(target());
    convert(write(tablesWith(amount)), target());
    EXPECT_EQ(rowsOf(*open(target()), u"select Worth from Own order by id"_s),
              (QStringList{u"0.0001"_s, amount}));
  }
  QFile::remove(target());
  QDir(folder.path()).rmdir(u"new"_s);
  for (const QString& amount : {u"549755813888.0001"_s, u"-922337203685477.5808"_s}) {
    const QString text = refusal(write(tablesWith(amount)));
    EXPECT_TRUE(text.startsWith(u"Row 2 of \"Own\" in "_s)) << qPrintable(text);
    EXPECT_TRUE(text.contains(u"the amount of \"Worth\" is too large to be read"_s)) << qPrintable(text);
  }
}

TEST_F(AccessImport, AFailureTakesNoFolderAwayThatWasThere) {
  ASSERT_TRUE(QDir(folder.path()).mkdir(u"new"_s));
  QList<QJsonObject> tables = oldTables();
  tables[3] = table(u"tblPersons"_s, {u"intPersonID:counter"_s, u"strPersonName:text"_s});
  EXPECT_THROW(convert(write(tables), folder.filePath(u"new/a/b/Hourbook3.mdb"_s)), Failure);
  EXPECT_TRUE(QFileInfo::exists(folder.filePath(u"new"_s)));
  EXPECT_FALSE(QFileInfo::exists(folder.filePath(u"new/a"_s)));
}

TEST_F(AccessImport, AThousandRowsOverManyPagesAreAllThere) {
  QList<QJsonObject> tables = oldTables();
  QList<QJsonArray> rows;
  for (int n = 1; n <= 1000; ++n) rows.append(QJsonArray{n, u"Person number %1 "_s.arg(n).repeated(3)});
  tables[3] = table(u"tblPersons"_s, {u"intPersonID:counter"_s, u"strPersonName:text"_s}, rows);
  EXPECT_EQ(convert(write(tables), target()).rows, 1010);
  EXPECT_EQ(rowsOf(*open(target()), u"select count(*) from tblPersons"_s), QStringList(u"1000"_s));
}

TEST_F(AccessImport, LettersOfAllPlanesArriveWhole) {
  const QString wave = QString::fromUcs4(U"\U0001F44B\U00020BB7 ??");
  QList<QJsonObject> tables = oldTables();
  tables[3] =
      table(u"tblPersons"_s, {u"intPersonID:counter="_s + wave, u"strPersonName:text"_s, u"Notes:memo"_s},
            {QJsonArray{3, wave, wave.repeated(2000)}});
  EXPECT_EQ(convert(write(tables), target()).rows, 11);
  const auto session = open(target());
  EXPECT_EQ(rowsOf(*session, u"select strPersonName, Notes from tblPersons"_s),
            QStringList(wave + u'|' + wave.repeated(2000)));
  EXPECT_EQ(session->columns(u"tblPersons"_s).first().caption, wave);
}

TEST_F(AccessImport, ADateThatTheReaderDoesNotKnowIsNamedAndNotTakenForAnother) {
  QList<QJsonObject> tables = oldTables();
  tables.append(
      table(u"Own"_s, {u"id:counter"_s, u"Born:date"_s}, {QJsonArray{1, u"1850-01-01T00:00:00"_s}}));
  const QString text = refusal(write(tables));
  EXPECT_TRUE(text.startsWith(u"Row 1 of \"Own\" in "_s)) << qPrintable(text);
  EXPECT_TRUE(text.contains(u"the date of \"Born\" lies before 30 December 1899"_s)) << qPrintable(text);
}

TEST_F(AccessImport, TheSmallestAndLargestNumbersArriveAsTheyAre) {
  QList<QJsonObject> tables = oldTables();
  tables.append(table(u"Own"_s, {u"id:counter"_s, u"n:long"_s},
                      {QJsonArray{1, -2147483647 - 1}, QJsonArray{2, 2147483647}}));
  convert(write(tables), target());
  EXPECT_EQ(rowsOf(*open(target()), u"select n from Own order by id"_s),
            (QStringList{u"-2147483648"_s, u"2147483647"_s}));
}

TEST_F(AccessImport, ATextThatTheReaderWouldCutIsNamedAndNotTaken) {
  QList<QJsonObject> tables = oldTables();
  tables.append(table(u"tblOtherSettings"_s,
                      {u"intSettingID:counter"_s, u"strPropName:text"_s, u"strPropValue:memo"_s},
                      {QJsonArray{1, u"long"_s, QString(210000, u'x')}}));
  EXPECT_TRUE(refusal(write(tables)).contains(u"the text of \"strPropValue\" is longer than can be read"_s));
}

TEST_F(AccessImport, AColumnOfTheProgramThatWasGivenAnotherKindIsRefused) {
  QList<QJsonObject> tables = oldTables();
  tables[3] = table(u"tblPersons"_s, {u"intPersonID:counter"_s, u"strPersonName:ole"_s});
  EXPECT_TRUE(
      refusal(write(tables))
          .startsWith(u"The column \"strPersonName\" of \"tblPersons\" holds values of the kind \"OLE\""_s));
}

TEST_F(AccessImport, AnExistingTargetStays) {
  const QString source = write(oldTables());
  ASSERT_TRUE(QDir(folder.path()).mkdir(u"new"_s));
  QFile there(target());
  ASSERT_TRUE(there.open(QIODevice::WriteOnly));
  there.write("kept");
  there.close();
  try {
    convert(source, target());
    ADD_FAILURE() << "replaced";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.description(), u"\"%1\" is there already."_s.arg(target()));
  }
  EXPECT_EQ(bytesOf(target()), "kept");
}

TEST_F(AccessImport, WhatIsNoneOfThisProgramsIsRefused) {
  EXPECT_EQ(refusal(write({table(u"Users"_s, {u"Id:counter"_s})})),
            u"The Access database holds no table \"tblPersons\", so it is none of this program's."_s);
}

TEST_F(AccessImport, AFileThatIsOpenInAccessIsRefused) {
  const QString source = write(oldTables());
  QFile locks(folder.filePath(u"Hourbook3.ldb"_s));
  ASSERT_TRUE(locks.open(QIODevice::WriteOnly));
  EXPECT_TRUE(refusal(source).startsWith(u"\"%1\" is open in Access or in another program"_s.arg(source)));
}

TEST_F(AccessImport, APasswordIsNamed) {
  const QString source = write(oldTables(), u"secret"_s);
  EXPECT_EQ(
      refusal(source),
      u"\"%1\" is protected by a password. Take the password away in Access and begin again."_s.arg(source));
}

TEST_F(AccessImport, OtherFilesAndMissingOnesAreRefused) {
  QFile text(folder.filePath(u"a.mdb"_s));
  ASSERT_TRUE(text.open(QIODevice::WriteOnly));
  text.write("no database at all, but long enough to be one");
  text.close();
  EXPECT_EQ(refusal(text.fileName()), u"\"%1\" is not a Microsoft Access database."_s.arg(text.fileName()));
  EXPECT_EQ(refusal(u"/no/such.mdb"_s), u"There is no file \"/no/such.mdb\"."_s);
}

TEST_F(AccessImport, AFileThatBreaksOffIsRefusedAndLeavesNothing) {
  const QString source = write(oldTables());
  const QByteArray whole = bytesOf(source);
  for (const int pages : {0, 1, 3, 8, 12}) {
    QFile file(source);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(whole.left(pages * 4096 + 100));
    file.close();
    EXPECT_NE(refusal(source), u"taken"_s) << pages;
  }
}

TEST_F(AccessImport, ARowThatRefersToNothingIsNamed) {
  QList<QJsonObject> tables = oldTables();
  tables[3] = table(u"tblPersons"_s, {u"intPersonID:counter"_s, u"strPersonName:text"_s});
  EXPECT_TRUE(refusal(write(tables)).startsWith(u"Row 1 of \"tblReports\" cannot be taken over: "_s));
}

}  // namespace
}  // namespace accessimport
