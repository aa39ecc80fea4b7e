#include "companions/sampledata/sampledatabase.h"

#include "companions/sampledata/samplelists.h"
#include "database/DatabaseValues.h"
#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "platform/ado/recordset.h"
#include "platform/basic/convert.h"
#include "platform/locale/locale.h"

namespace sampledata {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::ado::Recordset;
using platform::basic::Currency;
using platform::basic::Date;

namespace {

constexpr qint32 costOfFirstList = 2;
constexpr qint32 targetAccess = 2;

std::shared_ptr<Recordset> writable(const QString& table) {
  auto rs = hourbook::fncReturnRecordset(table);
  if (!rs) throw Failure(platform::failure::objectNotSet, u"The new database cannot be opened."_s);
  return rs;
}

/// Keys of the values by name, for each list.
QList<QHash<QString, qint32>> addLists() {
  QList<QHash<QString, qint32>> keys;
  auto captions = writable(u"tblMetaLists"_s);
  int n = 0;
  for (const MetaList& list : metaLists()) {
    captions->AddNew();
    (*captions)[u"strMetaListCaption"_s].setValue(list.caption);
    (*captions)[u"strMetaListCategoryCaption"_s].setValue(list.categoryCaption);
    (*captions)[u"strMetaListSuperCategoryCaption"_s].setValue(list.superCategoryCaption);
    captions->Update();

    auto values = writable(u"tblMeta%1"_s.arg(++n));
    QHash<QString, qint32> byName;
    for (const ListValue& value : list.values) {
      values->AddNew();
      (*values)[u"strName"_s].setValue(value.name);
      (*values)[u"strCategory"_s].setValue(value.category);
      (*values)[u"strSuperCategory"_s].setValue(value.superCategory);
      (*values)[u"curRate"_s].setValue(value.rate);
      (*values)[u"blnEnabled"_s].setValue(value.enabled);
      values->Update();
      byName.insert(value.name, platform::basic::CLng((*values)[u"intMeta%1ID"_s.arg(n)].Value()));
    }
    keys.append(byName);
  }
  return keys;
}

void addSettings(const QString& path) {
  auto settings = writable(u"tblSettings"_s);
  settings->AddNew();
  (*settings)[u"intCostCarrier"_s].setValue(costOfFirstList);
  (*settings)[u"intReportTo"_s].setValue(targetAccess);
  (*settings)[u"strReportToValue"_s].setValue(path);
  settings->Update();
}

qint32 addPerson() {
  auto persons = writable(u"tblPersons"_s);
  persons->AddNew();
  (*persons)[u"strPersonName"_s].setValue(personName());
  persons->Update();
  return platform::basic::CLng((*persons)[u"intPersonID"_s].Value());
}

Currency rateOf(const QString& customer) {
  for (const ListValue& value : metaLists().first().values)
    if (value.name == customer) return value.rate;
  return {};
}

void addReports(const QList<PostedRow>& posted, const QList<QHash<QString, qint32>>& keys, qint32 person) {
  const platform::locale::Locale& names = platform::locale::current();
  auto reports = writable(u"tblReports"_s);
  for (const PostedRow& row : posted) {
    const QDate day = row.start.date();
    reports->AddNew();
    (*reports)[u"numHours"_s].setValue(row.hours);
    (*reports)[u"strSubject"_s].setValue(row.subject);
    (*reports)[u"strMonthName"_s].setValue(names.monthName(day.month(), false));
    (*reports)[u"strWeekdayName"_s].setValue(names.weekdayName(day.dayOfWeek(), false));
    (*reports)[u"dtmDate"_s].setValue(Date::fromLocal(row.start).dateOnly());
    (*reports)[u"curCost"_s].setValue(Currency::fromDouble(row.hours) * rateOf(row.values.first()));
    (*reports)[u"dteReported"_s].setValue(Date::fromLocal(row.reported));
    (*reports)[u"intPersonID"_s].setValue(person);
    for (int n = 1; n <= 3; ++n)
      (*reports)[u"intMeta%1ID"_s.arg(n)].setValue(keys[n - 1].value(row.values[n - 1]));
    (*reports)[u"strBody"_s].setValue(row.body.isEmpty() ? u" "_s : row.body);
    reports->Update();
  }
}

}  // namespace

void makeDatabase(const QString& folder, const QList<PostedRow>& posted) {
  const QString path = folder + u"\\Hourbook3.mdb"_s;
  hourbook::subCreateHBDatabase(path);
  hourbook::databaseValues().gReportValue = folder;
  hourbook::subSetupConnection();  // brings the new file up to date, too
  const auto keys = addLists();
  addSettings(path);
  addReports(posted, keys, addPerson());
  if (auto& connection = hourbook::databaseValues().gConnection) {
    connection->Close();
    connection.reset();
  }
}

}  // namespace sampledata
