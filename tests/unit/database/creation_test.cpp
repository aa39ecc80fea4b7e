#include "databaseworld.h"

using namespace hourbook;
using namespace platform::dao;
using platform::Failure;

class Creation : public testing::Test {
 protected:
  std::shared_ptr<Database> open() {
    return platform::automation::CreateObject<DBEngine>(u"DAO.DBEngine"_qs)->OpenDatabase(w.path());
  }
  /// "name type size caption" of each column.
  QStringList describe(const QString& table) {
    QStringList lines;
    const auto db = open();
    const auto definition = db->TableDefs(table);
    for (const Field& field : definition->Fields())
      lines.append(u"%1 %2 %3 %4"_qs.arg(field.Name).arg(field.Type).arg(field.Size).arg(field.Caption));
    return lines;
  }
  tests::DatabaseWorld w;
};

TEST_F(Creation, ANewDatabaseHasTheTablesOfTheFirstRelease) {
  EXPECT_TRUE(subCreateHBDatabase(w.shownPath()));
  EXPECT_EQ(open()->TableDefNames(),
            QStringList({u"tblMeta1"_qs, u"tblMeta2"_qs, u"tblMeta3"_qs, u"tblMetaLists"_qs, u"tblPersons"_qs,
                         u"tblReports"_qs, u"tblSettings"_qs}));
  EXPECT_EQ(
      describe(u"tblReports"_qs),
      QStringList({u"intReportID 4 0 Report ID"_qs, u"numHours 6 0 Hours"_qs, u"strSubject 10 255 Subject"_qs,
                   u"strMonthName 10 255 Month"_qs, u"strWeekdayName 10 255 Day"_qs, u"dtmDate 8 0 Date"_qs,
                   u"curCost 5 0 Rate"_qs, u"dteReported 8 0 Report date"_qs, u"intPersonID 4 0 Name ID"_qs,
                   u"intMeta1ID 4 0 Meta 1 ID"_qs, u"intMeta2ID 4 0 Meta 2 ID"_qs,
                   u"intMeta3ID 4 0 Meta 3 ID"_qs}));
  EXPECT_EQ(describe(u"tblMeta2"_qs),
            QStringList({u"intMeta2ID 4 0 Meta 2 ID"_qs, u"strName 10 255 Name"_qs,
                         u"strCategory 10 255 Category"_qs, u"strSuperCategory 10 255 Super category"_qs,
                         u"curRate 5 0 Rate"_qs}));
  EXPECT_EQ(describe(u"tblPersons"_qs),
            QStringList({u"intPersonID 4 0 Name ID"_qs, u"strPersonName 10 255 Name"_qs}));
  EXPECT_EQ(describe(u"tblSettings"_qs),
            QStringList({u"intSettingsID 4 0 Settings ID"_qs, u"intCostCarrier 3 0 Count costs by"_qs,
                         u"intReportTo 3 0 Report"_qs, u"strReportToValue 10 255 Value"_qs}));
  EXPECT_EQ(
      describe(u"tblMetaLists"_qs),
      QStringList({u"intMetaListID 4 0 Meta List ID"_qs, u"strMetaListCaption 10 255 Meta List Caption"_qs,
                   u"strMetaListCategoryCaption 10 255 Meta List Category Caption"_qs,
                   u"strMetaListSuperCategoryCaption 10 255 Meta List SuperCategory Caption"_qs}));
}

TEST_F(Creation, EveryTableHasACounterUnderItsPrimaryKeyAndTextsTakeTheEmptyText) {
  w.createOld();
  const auto db = open();
  for (const QString& name : db->TableDefNames()) {
    const auto table = db->TableDefs(name);
    EXPECT_EQ(table->Fields().first().Attributes, dbAutoIncrField) << qPrintable(name);
    ASSERT_EQ(table->Indexes().size(), 1);
    EXPECT_EQ(table->Indexes().first().Name, u"PrimaryKey"_qs);
    EXPECT_EQ(table->Indexes().first().Fields, QStringList{table->Fields().first().Name});
    for (const Field& field : table->Fields()) EXPECT_TRUE(field.AllowZeroLength) << qPrintable(field.Name);
  }
}

TEST_F(Creation, RelationsAreEnforced) {
  w.createOld();
  QStringList lines;
  for (const auto& relation : open()->Relations())
    lines.append(
        QStringList({relation.name, relation.table, relation.foreignTable, relation.field}).join(u' '));
  EXPECT_EQ(lines, QStringList({u"PersonReports tblPersons tblReports intPersonID"_qs,
                                u"Meta1Reports tblMeta1 tblReports intMeta1ID"_qs,
                                u"Meta2Reports tblMeta2 tblReports intMeta2ID"_qs,
                                u"Meta3Reports tblMeta3 tblReports intMeta3ID"_qs}));
  for (const QString& field : {u"intPersonID"_qs, u"intMeta1ID"_qs, u"intMeta2ID"_qs, u"intMeta3ID"_qs})
    EXPECT_THROW(open()->Execute(u"insert into tblReports (%1) values (9)"_qs.arg(field)), Failure);
}

TEST_F(Creation, NoRowIsWritten) {
  w.createCurrent();
  for (const QString& table : open()->TableDefNames()) EXPECT_EQ(w.rows(u"select * from "_qs + table), 0);
}

TEST_F(Creation, CaptionsAreInTheProgramsLanguage) {
  w.shell->LNGHOURS = u"Stunden"_qs;
  w.shell->LNGNAME = u"Name (DE)"_qs;
  w.createOld();
  EXPECT_EQ(describe(u"tblReports"_qs)[1], u"numHours 6 0 Stunden"_qs);
  EXPECT_EQ(describe(u"tblPersons"_qs)[0], u"intPersonID 4 0 Name (DE) ID"_qs);
}

TEST_F(Creation, AnExistingFileIsDeleted) {
  w.write(u"Hourbook3.mdb"_qs, "whatever it was");
  EXPECT_TRUE(subCreateHBDatabase(w.shownPath()));
  EXPECT_EQ(open()->TableDefNames().size(), 7);
}

TEST_F(Creation, AnExistingFileIsDeletedThoughItIsReadOnly) {
  w.write(u"Hourbook3.mdb"_qs, "whatever it was");
  ASSERT_TRUE(QFile::setPermissions(w.path(), QFile::ReadOwner));
  EXPECT_TRUE(subCreateHBDatabase(w.shownPath()));
  EXPECT_EQ(open()->TableDefNames().size(), 7);
}

namespace {

/// Notes what a database is made with.
class NotingEngine : public DBEngine {
 public:
  NotingEngine(std::shared_ptr<platform::sql::Driver> driver,
               std::shared_ptr<platform::sql::FileEngine> engine, QStringList& made)
      : DBEngine(std::move(driver), std::move(engine)), made_(made) {}
  std::shared_ptr<Database> CreateDatabase(const QString& path, const QString& locale, int options) override {
    made_ = {path, locale, QString::number(options)};
    return DBEngine::CreateDatabase(path, locale, options);
  }

 private:
  QStringList& made_;
};

}  // namespace

TEST_F(Creation, TheDatabaseIsMadeWithItsSortOrderAndVersion) {
  QStringList made;
  w.world.components.remove(u"DAO.DBEngine"_qs);
  w.world.components.add<DBEngine>(u"DAO.DBEngine"_qs, [&] {
    return std::make_shared<NotingEngine>(
        std::make_shared<platform::sql::sqlite::SqliteDriver>(0, tests::noWait),
        std::make_shared<platform::sql::sqlite::SqliteEngine>(0, tests::noWait), made);
  });
  subCreateHBDatabase(w.shownPath());
  EXPECT_EQ(made, QStringList({w.shownPath(), u";LANGID=0x0409;CP=1252;COUNTRY=0"_qs, u"64"_qs}));
}

TEST_F(Creation, AFileThatCannotBeDeletedIsReportedAndKept) {
  w.write(u"Hourbook3.mdb"_qs, "kept");
  w.files->failDelete = u"Hourbook3.mdb"_qs;
  w.expectFailure(u"subCreateHBDatabase"_qs, u"Permission denied"_qs,
                  [&] { subCreateHBDatabase(w.shownPath()); });
  EXPECT_EQ(w.read(u"Hourbook3.mdb"_qs), QByteArray("kept"));
  EXPECT_TRUE(
      w.world.dialogs.shown.last().text.contains(u"Creating Access database in path "_qs + w.shownPath()));
}

TEST_F(Creation, AFailureStopsAtItsStepAndLeavesWhatIsMade) {
  w.plan->failContaining(u"createTable tblPersons"_qs,
                         Failure(platform::sql::errors::diskFull, u"Not enough space on disk."_qs));
  w.expectFailure(u"subCreateHBDatabase"_qs, u"Not enough space on disk."_qs,
                  [&] { subCreateHBDatabase(w.shownPath()); });
  EXPECT_EQ(w.other()->tables(),
            QStringList({u"tblMeta1"_qs, u"tblMeta2"_qs, u"tblMeta3"_qs, u"tblReports"_qs}));
}

TEST_F(Creation, AFailingRelationIsReportedUnderItsOwnName) {
  w.plan->failContaining(u"addRelation Meta2Reports"_qs, Failure(3043, u"Disk or network error."_qs));
  w.expectFailure(u"subDAOCreateForeignKey"_qs, u"Adding the relation Meta2Reports"_qs,
                  [&] { subCreateHBDatabase(w.shownPath()); });
}

TEST_F(Creation, AMissingFolderIsReported) {
  w.expectFailure(u"subCreateHBDatabase"_qs, u"is not a valid path"_qs,
                  [&] { subCreateHBDatabase(w.folder.path() + u"\\gone\\Hourbook3.mdb"_qs); });
}

TEST_F(Creation, ATableIsFoundByItsExactName) {
  w.createCurrent();
  const auto db = open();
  EXPECT_TRUE(fncTableExists(u"tblOtherSettings"_qs, *db));
  EXPECT_FALSE(fncTableExists(u"TBLOTHERSETTINGS"_qs, *db));
  EXPECT_FALSE(fncTableExists(u"tblNone"_qs, *db));
  db->Close();
  EXPECT_FALSE(fncTableExists(u"tblOtherSettings"_qs, *db)) << "false on a failure too";
}
