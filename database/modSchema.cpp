#include "database/modSchema.h"

#include "platform/basic/failure.h"
#include "shell/ShellValues.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::dao;

namespace {

SchemaTable reports() {
  const Phrases& p = phrases();
  return {u"tblReports"_s,
          {{u"intReportID"_s, dbLong, p.LNGREPORT + u" ID"_s},
           {u"numHours"_s, dbSingle, p.LNGHOURS},
           {u"strSubject"_s, dbText, p.LNGSUBJECT},
           {u"strMonthName"_s, dbText, p.LNGMONTH},
           {u"strWeekdayName"_s, dbText, p.LNGDAY},
           {u"dtmDate"_s, dbDate, p.LNGDATE},
           {u"curCost"_s, dbCurrency, p.LNGRATE},
           {u"dteReported"_s, dbDate, p.LNGREPORTDATE},
           {u"intPersonID"_s, dbLong, p.LNGNAME + u" ID"_s},
           {u"intMeta1ID"_s, dbLong, u"Meta 1 ID"_s},
           {u"intMeta2ID"_s, dbLong, u"Meta 2 ID"_s},
           {u"intMeta3ID"_s, dbLong, u"Meta 3 ID"_s},
           {u"strBody"_s, dbMemo, u"Body"_s, SchemaState::Body}}};
}

SchemaTable metaList(int n) {
  const Phrases& p = phrases();
  return {u"tblMeta%1"_s.arg(n),
          {{u"intMeta%1ID"_s.arg(n), dbLong, u"Meta %1 ID"_s.arg(n)},
           {u"strName"_s, dbText, p.LNGNAME},
           {u"strCategory"_s, dbText, p.LNGCATEGORY},
           {u"strSuperCategory"_s, dbText, p.LNGSUPERCATEGORY},
           {u"curRate"_s, dbCurrency, p.LNGRATE},
           {u"blnEnabled"_s, dbBoolean, p.LNGENABLE, SchemaState::Enabled}}};
}

SchemaTable persons() {
  const Phrases& p = phrases();
  return {u"tblPersons"_s,
          {{u"intPersonID"_s, dbLong, p.LNGNAME + u" ID"_s},
           {u"strPersonName"_s, dbText, p.LNGNAME},
           {u"strPersonCategory"_s, dbText, p.LNGCATEGORY, SchemaState::OtherSettings}}};
}

SchemaTable settings() {
  const Phrases& p = phrases();
  return {u"tblSettings"_s,
          {{u"intSettingsID"_s, dbLong, u"Settings ID"_s},
           {u"intCostCarrier"_s, dbInteger, p.LNGCOSTCARRIER},
           {u"intReportTo"_s, dbInteger, p.LNGREPORT},
           {u"strReportToValue"_s, dbText, u"Value"_s}}};
}

SchemaTable metaLists() {
  return {u"tblMetaLists"_s,
          {{u"intMetaListID"_s, dbLong, u"Meta List ID"_s},
           {u"strMetaListCaption"_s, dbText, u"Meta List Caption"_s},
           {u"strMetaListCategoryCaption"_s, dbText, u"Meta List Category Caption"_s},
           {u"strMetaListSuperCategoryCaption"_s, dbText, u"Meta List SuperCategory Caption"_s}}};
}

SchemaTable otherSettings() {
  return {u"tblOtherSettings"_s,
          {{u"intSettingID"_s, dbLong, phrases().LNGSETTINGS + u" ID"_s, SchemaState::OtherSettings},
           {u"strPropName"_s, dbText, {}, SchemaState::OtherSettings},
           {u"strPropValue"_s, dbMemo, u"Value"_s, SchemaState::OtherSettings}}};
}

}  // namespace

QList<SchemaColumn> SchemaTable::columnsOf(SchemaState state) const {
  QList<SchemaColumn> found;
  for (const SchemaColumn& column : columns)
    if (column.since == state) found.append(column);
  return found;
}

QList<SchemaTable> fncSchemaTables() {
  QList<SchemaTable> tables{reports()};
  for (int n = 1; n <= metaListCount; ++n) tables.append(metaList(n));
  tables << persons() << settings() << metaLists() << otherSettings();
  return tables;
}

SchemaTable fncSchemaTable(const QString& strTable) {
  for (const SchemaTable& table : fncSchemaTables())
    if (table.strName == strTable) return table;
  throw platform::Failure(platform::failure::subscriptOutOfRange,
                          u"The database has no table \"%1\"."_s.arg(strTable));
}

QList<platform::sql::Relation> fncSchemaRelations() {
  QList<platform::sql::Relation> relations{
      {u"PersonReports"_s, u"tblPersons"_s, u"tblReports"_s, u"intPersonID"_s}};
  for (int n = 1; n <= metaListCount; ++n)
    relations.append(
        {u"Meta%1Reports"_s.arg(n), u"tblMeta%1"_s.arg(n), u"tblReports"_s, u"intMeta%1ID"_s.arg(n)});
  return relations;
}

}  // namespace hourbook
