#pragma once
#include "platform/dao/dao.h"

#include <memory>

namespace hourbook {

/// Makes the database file in its first form, tables and relations; `subCheckUpgrade` brings it up to date. A
/// file that is there already is deleted. False, after the report, when a step failed: the file stays partly
/// made.
bool subCreateHBDatabase(const QString& strPath);

/// Adds a relation on the field that both tables have under the same name; integrity is enforced, nothing
/// cascades.
void subDAOCreateForeignKey(platform::dao::Database& db, const QString& strRelationName,
                            const QString& strTable, const QString& strForeignTable, const QString& strField);

/// A new table with its counter column as primary key, appended to the database.
std::shared_ptr<platform::dao::TableDef> fncCreateDAOTable(platform::dao::Database& db,
                                                           const QString& strTable, const QString& strKey,
                                                           const QString& strCaption);

/// Adds a column. `intSize` counts for text only. No caption is set when it is empty.
void subCreateDAOField(platform::dao::TableDef& table, const QString& strField, const QString& strCaption,
                       int intType, int intSize = 0);

/// Is there a table of exactly this name, with case? False on any failure, too.
bool fncTableExists(const QString& strTableName, const platform::dao::Database& db);

}  // namespace hourbook
