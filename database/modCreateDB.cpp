#include "database/modCreateDB.h"

#include "platform/automation/components.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::dao;
using platform::Failure;

namespace {

struct ColumnPlan {
  QString name;
  int type;
  QString caption;
};

void addColumns(TableDef& table, const QList<ColumnPlan>& columns) {
  for (const ColumnPlan& column : columns)
    subCreateDAOField(table, column.name, column.caption, column.type,
                      column.type == dbText ? textColumnSize : 0);
}

void createReports(Database& db) {
  const Phrases& p = phrases();
  const auto table = fncCreateDAOTable(db, u"tblReports"_s, u"intReportID"_s, p.LNGREPORT + u" ID"_s);
  addColumns(*table, {{u"numHours"_s, dbSingle, p.LNGHOURS},
                      {u"strSubject"_s, dbText, p.LNGSUBJECT},
                      {u"strMonthName"_s, dbText, p.LNGMONTH},
                      {u"strWeekdayName"_s, dbText, p.LNGDAY},
                      {u"dtmDate"_s, dbDate, p.LNGDATE},
                      {u"curCost"_s, dbCurrency, p.LNGRATE},
                      {u"dteReported"_s, dbDate, p.LNGREPORTDATE},
                      {u"intPersonID"_s, dbLong, p.LNGNAME + u" ID"_s},
                      {u"intMeta1ID"_s, dbLong, u"Meta 1 ID"_s},
                      {u"intMeta2ID"_s, dbLong, u"Meta 2 ID"_s},
                      {u"intMeta3ID"_s, dbLong, u"Meta 3 ID"_s}});
}

void createMetaList(Database& db, int n) {
  const Phrases& p = phrases();
  const auto table =
      fncCreateDAOTable(db, u"tblMeta%1"_s.arg(n), u"intMeta%1ID"_s.arg(n), u"Meta %1 ID"_s.arg(n));
  addColumns(*table, {{u"strName"_s, dbText, p.LNGNAME},
                      {u"strCategory"_s, dbText, p.LNGCATEGORY},
                      {u"strSuperCategory"_s, dbText, p.LNGSUPERCATEGORY},
                      {u"curRate"_s, dbCurrency, p.LNGRATE}});
}

void createPersons(Database& db) {
  const Phrases& p = phrases();
  const auto table = fncCreateDAOTable(db, u"tblPersons"_s, u"intPersonID"_s, p.LNGNAME + u" ID"_s);
  addColumns(*table, {{u"strPersonName"_s, dbText, p.LNGNAME}});
}

void createSettings(Database& db) {
  const Phrases& p = phrases();
  const auto table = fncCreateDAOTable(db, u"tblSettings"_s, u"intSettingsID"_s, u"Settings ID"_s);
  addColumns(*table, {{u"intCostCarrier"_s, dbInteger, p.LNGCOSTCARRIER},
                      {u"intReportTo"_s, dbInteger, p.LNGREPORT},
                      {u"strReportToValue"_s, dbText, u"Value"_s}});
}

void createMetaLists(Database& db) {
  const auto table = fncCreateDAOTable(db, u"tblMetaLists"_s, u"intMetaListID"_s, u"Meta List ID"_s);
  addColumns(*table, {{u"strMetaListCaption"_s, dbText, u"Meta List Caption"_s},
                      {u"strMetaListCategoryCaption"_s, dbText, u"Meta List Category Caption"_s},
                      {u"strMetaListSuperCategoryCaption"_s, dbText, u"Meta List SuperCategory Caption"_s}});
}

void createRelations(Database& db) {
  subDAOCreateForeignKey(db, u"PersonReports"_s, u"tblPersons"_s, u"tblReports"_s, u"intPersonID"_s);
  for (int n = 1; n <= 3; ++n)
    subDAOCreateForeignKey(db, u"Meta%1Reports"_s.arg(n), u"tblMeta%1"_s.arg(n), u"tblReports"_s,
                           u"intMeta%1ID"_s.arg(n));
}

}  // namespace

bool subCreateHBDatabase(const QString& strPath) try {
  subLog(u"Creating Access database in path "_s + strPath);
  const auto engine = platform::automation::CreateObject<DBEngine>(u"DAO.DBEngine"_s);
  subSetupFS();
  auto& files = *shellValues().gFileSystem;
  if (files.FileExists(strPath)) files.DeleteFile(strPath, true);
  const auto db = engine->CreateDatabase(strPath, u";LANGID=0x0409;CP=1252;COUNTRY=0"_s, dbVersion40);
  createReports(*db);
  for (int n = 1; n <= 3; ++n) createMetaList(*db, n);
  createPersons(*db);
  createSettings(*db);
  createMetaLists(*db);
  createRelations(*db);
  return true;
} catch (const Failure& failure) {
  subHandleError(failure, u"subCreateHBDatabase"_s);
}

std::shared_ptr<TableDef> fncNewDAOTable(Database& db, const QString& strTable, const QString& strKey,
                                         const QString& strCaption) {
  auto table = db.CreateTableDef(strTable);
  Field key = table->CreateField(strKey, dbLong);
  key.Attributes = dbAutoIncrField;
  key.Caption = strCaption;
  table->AppendField(key);
  Index index = table->CreateIndex(u"PrimaryKey"_s);
  index.Primary = true;
  index.Fields.append(strKey);
  table->AppendIndex(index);
  return table;
}

std::shared_ptr<TableDef> fncCreateDAOTable(Database& db, const QString& strTable, const QString& strKey,
                                            const QString& strCaption) {
  auto table = fncNewDAOTable(db, strTable, strKey, strCaption);
  db.AppendTableDef(table);
  return table;
}

void subCreateDAOField(TableDef& table, const QString& strName, const QString& strCaption, int intType,
                       int intSize) {
  Field field = table.CreateField(strName, intType, intSize);
  if (intType == dbText) field.AllowZeroLength = true;
  field.Caption = strCaption;
  table.AppendField(field);
}

void subDAOCreateForeignKey(Database& db, const QString& strRelationName, const QString& strTable,
                            const QString& strForeignTable, const QString& strField) try {
  subLog(u"Adding the relation "_s + strRelationName);
  db.AppendRelation({strRelationName, strTable, strForeignTable, strField});
} catch (const Failure& failure) {
  subHandleError(failure, u"subDAOCreateForeignKey"_s);
}

bool fncTableExists(const QString& strTableName, const Database& db) {
  bool exists = false;
  tolerate([&] { exists = db.TableDefNames().contains(strTableName, Qt::CaseSensitive); });
  return exists;
}

}  // namespace hourbook
