#include "companions/settings/common/billingtable.h"

#include "companions/settings/guarded.h"
#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "platform/automation/components.h"
#include "platform/basic/convert.h"
#include "platform/dao/dao.h"
#include "shell/genTools.h"
#include "shell/Present.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::dao;
using platform::basic::Date;
using platform::basic::Value;

namespace {

const QString tableName = u"tblWFData"_s;
constexpr int namedSize = 50;
constexpr int linkSize = 255;

bool hasTable(HeldConnection& database) {
  return database.session().tables().contains(tableName, Qt::CaseInsensitive);
}

QString trimmed(const Value& value) {
  return fncNullToEmpty(value).trimmed();
}

void addColumn(Database& db, const QString& tableName, const QString& column, int type, int size = 0) {
  const auto table = db.TableDefs(tableName);
  for (const Field& field : table->Fields())
    if (field.Name.compare(column, Qt::CaseInsensitive) == 0) return;
  subCreateDAOField(*table, column, {}, type, size);
}

void addTable(Database& db) {
  const auto table = fncNewDAOTable(db, tableName, u"ReportTo"_s, {});
  const auto text = [&](const QString& name, int size) { subCreateDAOField(*table, name, {}, dbText, size); };
  text(u"Location"_s, billingLocationSize);
  text(u"SHLocation"_s, billingLocationSize);
  text(u"ServerName"_s, billingTextSize);
  text(u"DatabaseName"_s, billingTextSize);
  text(u"UserId"_s, billingTextSize);
  text(u"Password"_s, billingTextSize);
  subCreateDAOField(*table, u"LastSyncDate"_s, {}, dbDate);
  text(u"Custom1"_s, namedSize);
  text(u"Custom2"_s, namedSize);
  text(u"PaymentLink"_s, linkSize);
  db.AppendTableDef(table);
}

void makeTable(HeldConnection& database) {
  const auto engine = platform::automation::CreateObject<DBEngine>(u"DAO.DBEngine"_s);
  const auto db = engine->DatabaseOver(database.sessionOver());
  const QString numbers[] = {u"lngProjId"_s, u"lngItemId"_s};
  for (int n = 1; n <= 2; ++n) {
    const QString list = u"tblMeta%1"_s.arg(n);
    addColumn(*db, list, numbers[n - 1], dbLong);
    addColumn(*db, list, u"txtEditSequence"_s, dbText, namedSize);
    addColumn(*db, list, u"txtListId"_s, dbText, namedSize);
  }
  addTable(*db);
}

}  // namespace

BillingRow readBillingRow(HeldConnection& database) {
  BillingRow row;
  if (!hasTable(database)) return row;
  database.lend();
  guarded([&] {
    const auto table = fncReturnRecordset(u"Select * from tblWFData"_s, true);
    if (present(table).isEOF()) return;
    const auto field = [&](const QString& name) { return table->Fields().Item(name).Value(); };
    row.present = true;
    row.serverName = trimmed(field(u"ServerName"_s));
    row.location = trimmed(field(u"SHLocation"_s));
    row.userId = trimmed(field(u"UserID"_s));
    row.password = trimmed(field(u"PassWord"_s));
    if (const Value last = field(u"LastSyncDate"_s); platform::basic::IsDate(last))
      row.lastSync = platform::basic::CDate(last);
  });
  return row;
}

void writeBillingRow(HeldConnection& database, const BillingRow& row) {
  if (!hasTable(database)) makeTable(database);
  database.lend();
  guarded([&] {
    const auto table = fncReturnRecordset(u"Select * from tblWFData"_s);
    const bool isNew = present(table).isEOF();
    if (isNew) table->AddNew();
    const auto set = [&](const QString& name, const Value& value) {
      table->Fields().Item(name).setValue(value);
    };
    set(u"SHLocation"_s, row.location);
    set(u"UserID"_s, row.userId);
    set(u"PassWord"_s, row.password);
    set(u"ServerName"_s, row.serverName);
    // The day that the first download asks for changes since.
    if (isNew) set(u"LastSyncDate"_s, Date::of(2000, 1, 1));
    table->Update();
  });
}

}  // namespace hourbook
