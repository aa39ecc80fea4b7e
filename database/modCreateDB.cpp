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

bool subCreateHBDatabase(const QString& strPath) try {
  subLog(u"Creating Access database in path "_s + strPath);
  const auto engine = platform::automation::CreateObject<DBEngine>(u"DAO.DBEngine"_s);
  subSetupFS();
  auto& files = *shellValues().gFileSystem;
  if (files.FileExists(strPath)) files.DeleteFile(strPath, true);
  const auto db = engine->CreateDatabase(strPath, u";LANGID=0x0409;CP=1252;COUNTRY=0"_s, dbVersion40);
  for (const SchemaTable& table : fncSchemaTables()) subCreateSchemaTable(*db, table);
  for (const auto& [name, table, foreignTable, field] : fncSchemaRelations())
    subDAOCreateForeignKey(*db, name, table, foreignTable, field);
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

void subCreateSchemaTable(Database& db, const SchemaTable& plan) {
  const QList<SchemaColumn> columns = plan.columnsOf(SchemaState::First);
  if (columns.isEmpty()) return;
  const auto table = fncCreateDAOTable(db, plan.strName, columns.first().strName, columns.first().strCaption);
  subAddDAOFields(*table, columns.mid(1));
}

void subAddDAOFields(TableDef& table, const QList<SchemaColumn>& columns) {
  for (const SchemaColumn& column : columns)
    subCreateDAOField(table, column.strName, column.strCaption, column.intType,
                      column.intType == dbText ? textColumnSize : 0);
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
