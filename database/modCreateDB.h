#pragma once
#include "database/modSchema.h"

#include <memory>

namespace hourbook {

/// Makes the database file at the path; a file that is there is deleted without asking. The tables are in the
/// form of the first release: `subCheckUpgrade` brings them up to date. No row is written.
bool subCreateHBDatabase(const QString& strPath);

/// A new table with its counter and primary key, to be given further columns and then appended to the
/// database as a whole.
std::shared_ptr<platform::dao::TableDef> fncNewDAOTable(platform::dao::Database& db, const QString& strTable,
                                                        const QString& strKey, const QString& strCaption);
/// A new table with its counter and primary key, appended to the database.
std::shared_ptr<platform::dao::TableDef> fncCreateDAOTable(platform::dao::Database& db,
                                                           const QString& strTable, const QString& strKey,
                                                           const QString& strCaption);
/// Appends a column. A text column has `intSize` characters and takes the empty text; a memo column does not.
void subCreateDAOField(platform::dao::TableDef& table, const QString& strName, const QString& strCaption,
                       int intType, int intSize = 0);
/// A table in its first form; nothing for one that has come since.
void subCreateSchemaTable(platform::dao::Database& db, const SchemaTable& plan);
void subAddDAOFields(platform::dao::TableDef& table, const QList<SchemaColumn>& columns);
/// Appends an enforced relation on a field that bears the same name on both sides.
void subDAOCreateForeignKey(platform::dao::Database& db, const QString& strRelationName,
                            const QString& strTable, const QString& strForeignTable, const QString& strField);
/// Is there a table of exactly this name, with case? False on any failure too.
bool fncTableExists(const QString& strTableName, const platform::dao::Database& db);

}  // namespace hourbook
