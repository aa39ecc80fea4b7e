#include "platform/sql/odbc/handles.h"

#include "platform/sql/errors.h"

namespace platform::sql::odbc {

namespace {

struct Known {
  int number;  // the server's
  qint32 ours;
};
constexpr Known numbers[] = {
    {208, errors::tableNotFound},    {207, errors::noSuchColumn},    {2627, errors::duplicateKey},
    {2601, errors::duplicateKey},    {515, errors::valueRequired},   {8152, errors::fieldTooSmall},
    {2628, errors::fieldTooSmall},   {1205, errors::locked},         {1222, errors::locked},
    {3906, errors::readOnly},        {2714, errors::tableExists},    {2705, errors::duplicateField},
    {1801, errors::databaseExists},  {1105, errors::diskFull},       {229, errors::noPermission},
    {230, errors::noPermission},     {262, errors::noPermission},    {241, errors::unreadableValue},
    {242, errors::unreadableValue},  {245, errors::unreadableValue}, {8114, errors::unreadableValue},
    {220, failure::overflow},        {8115, failure::overflow},      {18456, errors::loginFailed},
    {4060, errors::connectionFailed}};

struct KnownState {
  const char* state;  // or its beginning: the longer ones come first
  qint32 ours;
};
constexpr KnownState states[] = {
    {"IM002", errors::providerNotFound}, {"IM003", errors::providerNotFound},
    {"01000", errors::providerNotFound},  // a driver's file that cannot be opened
    {"28", errors::loginFailed},         {"42S02", errors::tableNotFound},
    {"42S22", errors::noSuchColumn},     {"42S01", errors::tableExists},
    {"42S21", errors::duplicateField},   {"22001", errors::fieldTooSmall},
    {"22003", failure::overflow},        {"22007", errors::unreadableValue},
    {"22018", errors::unreadableValue},  {"40001", errors::locked},
    {"HYT01", errors::connectionFailed}, {"HYT00", errors::locked},
    {"08", errors::connectionFailed},    {"S1T00", errors::connectionFailed}};

bool startsWith(const QString& statement, const char* word) {
  return statement.trimmed().startsWith(QLatin1String(word), Qt::CaseInsensitive);
}

qint32 numberOf(const Diagnosis& diagnosis, const QString& statement) {
  // a foreign key, or a check: only the text tells them apart, and it is in the server's language
  if (diagnosis.number == 547)
    return startsWith(statement, "delete") ? errors::relatedRecords : errors::relatedRecordRequired;
  for (const Known& known : numbers)
    if (diagnosis.number == known.number) return known.ours;
  for (const KnownState& known : states)
    if (diagnosis.state.startsWith(QLatin1String(known.state))) return known.ours;
  return errors::statementFailed;
}

}  // namespace

Handle::Handle(SQLSMALLINT kind, SQLHANDLE parent) : kind_(kind) {
  if (!SQL_SUCCEEDED(SQLAllocHandle(kind, parent, &handle_)))
    throw Failure(errors::connectionFailed, QStringLiteral("The ODBC driver manager gives no handle."));
}

Handle::~Handle() {
  SQLFreeHandle(kind_, handle_);
}

Diagnosis diagnosisOf(const Handle& handle) {
  Diagnosis diagnosis;
  QStringList texts;
  for (SQLSMALLINT record = 1;; ++record) {
    SQLWCHAR state[6] = {};
    SQLWCHAR text[SQL_MAX_MESSAGE_LENGTH * 2] = {};
    SQLINTEGER number = 0;
    SQLSMALLINT length = 0;
    constexpr SQLSMALLINT room = static_cast<SQLSMALLINT>(std::size(text));
    if (!SQL_SUCCEEDED(
            SQLGetDiagRecW(handle.kind(), handle.get(), record, state, &number, text, room, &length)))
      break;
    if (record == 1) diagnosis.state = fromWide(state, 5);
    if (diagnosis.number == 0) diagnosis.number = number;
    texts.append(fromWide(text, qBound(0, int{length}, room - 1)).simplified());
  }
  diagnosis.text = texts.join(u' ');
  return diagnosis;
}

Failure failureOf(const Diagnosis& diagnosis, const QString& statement, const QString& label) {
  QString text = diagnosis.text.isEmpty() ? QStringLiteral("The driver gives no reason.") : diagnosis.text;
  if (diagnosis.number != 0) text += QStringLiteral(" [%1]").arg(diagnosis.number);
  return {numberOf(diagnosis, statement), text + u" ("_qs + label + u')'};
}

}  // namespace platform::sql::odbc
