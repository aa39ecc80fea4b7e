#include "database/modCreateDB.h"

#include "platform/automation/components.h"
#include "platform/scripting/filesystem.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using platform::Failure;
namespace dao = platform::dao;

namespace {

constexpr int textSize = 255;

void createReports(dao::Database& db) {
  const Phrases& phrase = phrases();
  const auto table = fncCreateDAOTable(db, QStringLiteral("tblReports"), QStringLiteral("intReportID"),
                                       phrase.LNGREPORT + QStringLiteral(" ID"));
  const auto text = [&](const QString& name, const QString& caption) {
    subCreateDAOField(*table, name, caption, dao::dbText, textSize);
  };
  subCreateDAOField(*table, QStringLiteral("numHours"), phrase.LNGHOURS, dao::dbSingle);
  text(QStringLiteral("strSubject"), phrase.LNGSUBJECT);
  text(QStringLiteral("strMonthName"), phrase.LNGMONTH);
  text(QStringLiteral("strWeekdayName"), phrase.LNGDAY);
  subCreateDAOField(*table, QStringLiteral("dtmDate"), phrase.LNGDATE, dao::dbDate);
  subCreateDAOField(*table, QStringLiteral("curCost"), phrase.LNGRATE, dao::dbCurrency);
  subCreateDAOField(*table, QStringLiteral("dteReported"), phrase.LNGREPORTDATE, dao::dbDate);
  subCreateDAOField(*table, QStringLiteral("intPersonID"), phrase.LNGNAME + QStringLiteral(" ID"),
                    dao::dbLong);
  for (int n = 1; n <= 3; ++n)
    subCreateDAOField(*table, QStringLiteral("intMeta%1ID").arg(n), QStringLiteral("Meta %1 ID").arg(n),
                      dao::dbLong);
}

void createMetaList(dao::Database& db, int n) {
  const Phrases& phrase = phrases();
  const auto table =
      fncCreateDAOTable(db, QStringLiteral("tblMeta%1").arg(n), QStringLiteral("intMeta%1ID").arg(n),
                        QStringLiteral("Meta %1 ID").arg(n));
  subCreateDAOField(*table, QStringLiteral("strName"), phrase.LNGNAME, dao::dbText, textSize);
  subCreateDAOField(*table, QStringLiteral("strCategory"), phrase.LNGCATEGORY, dao::dbText, textSize);
  subCreateDAOField(*table, QStringLiteral("strSuperCategory"), phrase.LNGSUPERCATEGORY, dao::dbText,
                    textSize);
  subCreateDAOField(*table, QStringLiteral("curRate"), phrase.LNGRATE, dao::dbCurrency);
}

void createPersons(dao::Database& db) {
  const auto table = fncCreateDAOTable(db, QStringLiteral("tblPersons"), QStringLiteral("intPersonID"),
                                       phrases().LNGNAME + QStringLiteral(" ID"));
  subCreateDAOField(*table, QStringLiteral("strPersonName"), phrases().LNGNAME, dao::dbText, textSize);
}

void createSettings(dao::Database& db) {
  const auto table = fncCreateDAOTable(db, QStringLiteral("tblSettings"), QStringLiteral("intSettingsID"),
                                       QStringLiteral("Settings ID"));
  subCreateDAOField(*table, QStringLiteral("intCostCarrier"), phrases().LNGCOSTCARRIER, dao::dbInteger);
  subCreateDAOField(*table, QStringLiteral("intReportTo"), phrases().LNGREPORT, dao::dbInteger);
  subCreateDAOField(*table, QStringLiteral("strReportToValue"), QStringLiteral("Value"), dao::dbText,
                    textSize);
}

void createMetaLists(dao::Database& db) {
  const auto table = fncCreateDAOTable(db, QStringLiteral("tblMetaLists"), QStringLiteral("intMetaListID"),
                                       QStringLiteral("Meta List ID"));
  subCreateDAOField(*table, QStringLiteral("strMetaListCaption"), QStringLiteral("Meta List Caption"),
                    dao::dbText, textSize);
  subCreateDAOField(*table, QStringLiteral("strMetaListCategoryCaption"),
                    QStringLiteral("Meta List Category Caption"), dao::dbText, textSize);
  subCreateDAOField(*table, QStringLiteral("strMetaListSuperCategoryCaption"),
                    QStringLiteral("Meta List SuperCategory Caption"), dao::dbText, textSize);
}

void createRelations(dao::Database& db) {
  const QString reports = QStringLiteral("tblReports");
  subDAOCreateForeignKey(db, QStringLiteral("PersonReports"), QStringLiteral("tblPersons"), reports,
                         QStringLiteral("intPersonID"));
  for (int n = 1; n <= 3; ++n)
    subDAOCreateForeignKey(db, QStringLiteral("Meta%1Reports").arg(n), QStringLiteral("tblMeta%1").arg(n),
                           reports, QStringLiteral("intMeta%1ID").arg(n));
}

}  // namespace

bool subCreateHBDatabase(const QString& strPath) try {
  subLog(QStringLiteral("Creating Access database in path ") + strPath);
  const auto engine = platform::automation::CreateObject<dao::DBEngine>(QStringLiteral("DAO.DBEngine"));
  subSetupFS();
  auto& files = *shellValues().gFileSystem;
  if (files.FileExists(strPath)) files.DeleteFile(strPath, true);
  const auto db =
      engine->CreateDatabase(strPath, QStringLiteral(";LANGID=0x0409;CP=1252;COUNTRY=0"), dao::dbVersion40);
  createReports(*db);
  for (int n = 1; n <= 3; ++n) createMetaList(*db, n);
  createPersons(*db);
  createSettings(*db);
  createMetaLists(*db);
  createRelations(*db);
  db->Close();
  return true;
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subCreateHBDatabase"));
}

void subDAOCreateForeignKey(dao::Database& db, const QString& strRelationName, const QString& strTable,
                            const QString& strForeignTable, const QString& strField) try {
  subLog(QStringLiteral("Adding the relation ") + strRelationName);
  db.AppendRelation({strRelationName, strTable, strForeignTable, strField});
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subDAOCreateForeignKey"));
}

std::shared_ptr<dao::TableDef> fncCreateDAOTable(dao::Database& db, const QString& strTable,
                                                 const QString& strKey, const QString& strCaption) {
  const auto table = db.CreateTableDef(strTable);
  dao::Field key = table->CreateField(strKey, dao::dbLong);
  key.Attributes = dao::dbAutoIncrField;
  table->AppendField(key);
  dao::Index primary = table->CreateIndex(QStringLiteral("PrimaryKey"));
  primary.Primary = true;
  primary.Fields.append(strKey);
  table->AppendIndex(primary);
  db.AppendTableDef(table);
  table->setCaption(strKey, strCaption);
  return table;
}

void subCreateDAOField(dao::TableDef& table, const QString& strField, const QString& strCaption, int intType,
                       int intSize) {
  dao::Field field = table.CreateField(strField, intType, intSize);
  if (intType == dao::dbText) field.AllowZeroLength = true;
  table.AppendField(field);
  if (!strCaption.isEmpty()) table.setCaption(strField, strCaption);
}

bool fncTableExists(const QString& strTableName, const dao::Database& db) {
  bool exists = false;
  tolerate([&] { exists = db.TableDefNames().contains(strTableName, Qt::CaseSensitive); });
  return exists;
}

}  // namespace hourbook
