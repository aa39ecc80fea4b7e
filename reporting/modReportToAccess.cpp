#include "reporting/modReportToAccess.h"

#include "database/DatabaseValues.h"
#include "database/modDBCode.h"
#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/dialogs/dialogs.h"
#include "platform/locale/locale.h"
#include "settings/cGlobalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using platform::Failure;
using platform::ado::Recordset;
using platform::basic::Value;

namespace {

cGlobalSettings& common() {
  return *settingsValues().gGlobalSettings;
}

bool asksDepartment() {
  return platform::basic::CInt(common().OtherSettings->GetValue(QStringLiteral("ADDepartment"), 2)) == 1;
}

Recordset& opened(const std::shared_ptr<Recordset>& rs) {
  if (!rs)
    throw Failure(platform::failure::objectNotSet,
                  QStringLiteral("Object variable or With block variable not set"));
  return *rs;
}

QString textOf(const Value& value) {
  return platform::basic::IsNull(value) ? QString() : platform::basic::CStr(value);
}

/// Hours times a rate. The hours become money-like first (four decimals), so that 1.33 hours are 1.33 and not
/// what a single float makes of them.
Value costOf(const Value& hours, const platform::basic::Currency& rate) {
  if (platform::basic::IsNull(hours)) return platform::basic::Null{};
  return platform::basic::CCur(hours) * rate;
}

/// The row's values as keys, and the cost where a list carries it. Every list is looked at, so that a refusal
/// is the same whichever of the values is missing.
qint64 takeMetaValues(Recordset& rs, Recordset& reports, qint64 result) {
  for (int n = 1; n <= 3; ++n) {
    const QString name = textOf(rs[QStringLiteral("strMeta%1").arg(n)].Value());
    if (name.isEmpty()) continue;
    const auto& values = *common().MetaDataLists.Item(n)->MetaDic;
    if (!values.Exists(name)) {
      result = resultMissingValue;
      continue;
    }
    const cMetaData& value = *values.Item(name);
    if (common().CostCarrier == n + 1)
      reports[QStringLiteral("curCost")].setValue(
          costOf(rs[QStringLiteral("intHours")].Value(), value.HourlyRate));
    reports[QStringLiteral("intMeta%1ID").arg(n)].setValue(value.ID);
  }
  return result;
}

void takeBody(Recordset& rs, Recordset& reports) {
  // a database without the column still takes reports
  tolerate([&] {
    const QString body = textOf(rs[QStringLiteral("strBody")].Value());
    reports[QStringLiteral("strBody")].setValue(body.isEmpty() ? QStringLiteral(" ") : body);
  });
}

void storeRow(Recordset& rs, Recordset& reports, qint16 personID) {
  const platform::locale::Locale& names = platform::locale::current();
  const Value start = rs[QStringLiteral("dteStartDate")].Value();
  const QDate day = platform::basic::CDate(start).date();
  reports[QStringLiteral("numHours")].setValue(rs[QStringLiteral("intHours")].Value());
  reports[QStringLiteral("dtmDate")].setValue(start);
  reports[QStringLiteral("strSubject")].setValue(rs[QStringLiteral("strSubject")].Value());
  reports[QStringLiteral("strMonthName")].setValue(names.monthName(day.month(), false));
  reports[QStringLiteral("strWeekdayName")].setValue(names.weekdayName(day.dayOfWeek(), false));
  takeBody(rs, reports);
  reports[QStringLiteral("intPersonID")].setValue(qint32(personID));
  if (common().CostCarrier == 1)
    reports[QStringLiteral("curCost")].setValue(
        costOf(rs[QStringLiteral("intHours")].Value(),
               platform::basic::CCur(rs[QStringLiteral("curPersonalRate")].Value())));
  reports[QStringLiteral("dteReported")].setValue(platform::basic::Now());
  reports.Update();
}

void reportOneRow(Recordset& rs, Recordset& reports, Recordset& output, qint16 personID) {
  const bool separate = &output != &rs;
  reports.AddNew();
  if (separate) {
    output.AddNew();
    output[QStringLiteral("intRowCounter")].setValue(rs[QStringLiteral("intRowCounter")].Value());
  }
  qint64 result = personID < 1 ? resultNoPerson : resultAccepted;
  result = takeMetaValues(rs, reports, result);
  if (result == resultAccepted)
    storeRow(rs, reports, personID);
  else
    reports.Cancel();  // a refused row leaves no line behind
  output[QStringLiteral("intResult")].setValue(result);
  output.Update();
}

void reportRows(Recordset& rs, Recordset& output, std::optional<PendingError>* pending,
                const std::function<void(qint16)>& beforeFirstRow) {
  const auto reports = fncReturnRecordset(QStringLiteral("Select* from tblReports where intReportID = 0"));
  Recordset& rows = opened(reports);
  if (!rs.isBOF()) rs.MoveFirst();
  const qint16 personID = fncGetPersonID(pending);
  if (personID >= 1 && beforeFirstRow) beforeFirstRow(personID);
  while (!rs.isEOF()) {
    reportOneRow(rs, rows, output, personID);
    rs.MoveNext();
  }
}

void closeSharedConnection() {
  auto& connection = databaseValues().gConnection;
  if (connection) tolerate([&] { connection->Close(); });
  connection.reset();
}

/// In an empty table nobody is found; a name that cannot be asked for fails there as well.
bool foundPerson(Recordset& persons, const QString& name) {
  const auto failure = tolerate([&] { persons.Find(QStringLiteral("strPersonName = '%1'").arg(name)); });
  if (failure && failure->number() != platform::ado::adErrNoCurrentRecord) throw Failure(*failure);
  return !failure && !persons.isEOF();
}

void findOrAddPerson(Recordset& persons, const QString& name) {
  const QString category = QStringLiteral("strPersonCategory");
  if (foundPerson(persons, name)) {
    if (asksDepartment() && textOf(persons[category].Value()).isEmpty()) {
      persons[category].setValue(fncAskDepartment());
      persons.Update();
    }
    return;
  }
  subLog(QStringLiteral("Adding user ") + name);
  persons.AddNew();
  persons[QStringLiteral("strPersonName")].setValue(name);
  if (asksDepartment()) persons[category].setValue(fncAskDepartment());
  persons.Update();
}

/// Keeps the first failure for a caller that can wait, else reports it.
void hand(std::optional<PendingError>* pending, const Failure& failure, const QString& procedure) {
  if (!pending) subHandleError(failure, procedure);
  if (!*pending) *pending = PendingError{failure, procedure};
}

}  // namespace

std::shared_ptr<Recordset> fncReportToAccess(const std::shared_ptr<Recordset>& rs, bool blnUpdateInput,
                                             std::optional<PendingError>* pending,
                                             const std::function<void(qint16)>& beforeFirstRow) {
  std::shared_ptr<Recordset> output;
  std::optional<PendingError> mine;
  try {
    output = blnUpdateInput ? rs : fncSetupReturRS();
    reportRows(opened(rs), *output, pending ? pending : &mine, beforeFirstRow);
  } catch (const Failure& failure) {
    hand(pending ? pending : &mine, failure, QStringLiteral("fncReportToAccess"));
    if (output) tolerate([&] { output->Cancel(); });  // a row that has got no result
  }
  closeSharedConnection();
  if (mine) subHandleError(mine->failure, mine->procedure);
  return output;
}

std::optional<qint32> fncMetaKey(int n, const QString& name) {
  const auto& values = *common().MetaDataLists.Item(n)->MetaDic;
  if (!values.Exists(name)) return std::nullopt;
  return values.Item(name)->ID;
}

std::shared_ptr<Recordset> fncSetupReturRS() {
  subLog(QStringLiteral("Creating a new offline return recordset"));
  auto rs = std::make_shared<Recordset>();
  rs->Fields().Append(QStringLiteral("intRowCounter"), platform::ado::adBigInt);
  rs->Fields().Append(QStringLiteral("intResult"), platform::ado::adBigInt);
  rs->Open();
  return rs;
}

qint16 fncGetPersonID(std::optional<PendingError>* pending) {
  try {
    const QString name = outlookValues().gCurrentUser;
    subLog(QStringLiteral("Trying to find user ") + name);
    const auto persons = fncReturnRecordset(QStringLiteral("tblPersons"));
    findOrAddPerson(opened(persons), name);
    return platform::basic::CInt((*persons)[QStringLiteral("intPersonID")].Value());
  } catch (const Failure& failure) {
    hand(pending, failure, QStringLiteral("fncGetPersonID"));
    return 0;
  }
}

QString fncAskDepartment() {
  QString department;
  while (department.isEmpty())
    department = platform::dialogs::Dialogs::current().InputBox(phrases().LNGWHICHDEPARTMENT, gTitle);
  return department;
}

}  // namespace hourbook
