#include "platform/sql/odbc/failures.h"

#include "platform/sql/errors.h"
#include "platform/sql/servererrors.h"

#include <QRegularExpression>

namespace platform::sql::odbc {

namespace {

struct Known {
  int number;  // the server's
  qint32 ours;
};
constexpr Known numbers[] = {
    {208, errors::tableNotFound},    {3701, errors::tableNotFound},   {4902, errors::tableNotFound},
    {207, errors::noSuchColumn},     {1911, errors::noSuchColumn},    {2627, errors::duplicateKey},
    {2601, errors::duplicateKey},    {1505, errors::duplicateKey},    {515, errors::valueRequired},
    {8152, errors::fieldTooSmall},   {2628, errors::fieldTooSmall},   {1205, errors::locked},
    {1222, errors::locked},          {3906, errors::readOnly},        {2714, errors::tableExists},
    {2705, errors::duplicateField},  {1801, errors::databaseExists},  {1105, errors::diskFull},
    {9002, errors::diskFull},        {823, errors::diskError},        {824, errors::damaged},
    {229, errors::noPermission},     {230, errors::noPermission},     {262, errors::noPermission},
    {241, errors::unreadableValue},  {242, errors::unreadableValue},  {245, errors::unreadableValue},
    {257, errors::unreadableValue},  {260, errors::unreadableValue},  {295, errors::unreadableValue},
    {8114, errors::unreadableValue}, {8169, errors::unreadableValue}, {206, errors::unreadableValue},
    {220, failure::overflow},        {8115, failure::overflow},       {232, failure::overflow},
    {3726, errors::relatedRecords},  {1776, errors::noUniqueIndex},   {18456, errors::loginFailed},
    {18452, errors::loginFailed},    {18470, errors::loginFailed},    {18486, errors::loginFailed},
    {18487, errors::loginFailed},    {18488, errors::loginFailed},    {4060, errors::connectionFailed},
    {4064, errors::connectionFailed}};

struct KnownState {
  const char* state;  // or its beginning: the longer ones come first
  qint32 ours;
};
constexpr KnownState states[] = {
    {"IM002", errors::providerNotFound},
    {"IM003", errors::providerNotFound},
    {"01000", errors::providerNotFound},  // a driver's file that cannot be opened
    {"28", errors::loginFailed},
    {"42S02", errors::tableNotFound},
    {"42S22", errors::noSuchColumn},
    {"42S01", errors::tableExists},
    {"42S21", errors::duplicateField},
    {"22001", errors::fieldTooSmall},
    {"22003", failure::overflow},
    {"22007", errors::unreadableValue},
    {"22018", errors::unreadableValue},
    {"40001", errors::locked},
    {"HYT", errors::timeout},
    {"S1T00", errors::timeout},
    {"08", errors::connectionFailed}};

// the client library's own numbers, of which no server has any
constexpr int firstOfClient = 20000, lastOfClient = 20999;
constexpr int clientTimeout = 20003;
constexpr int clientLost[] = {20004, 20006, 20017, 20047};
constexpr int conflictWithConstraint = 547;

bool isOfClient(int number) {
  return number >= firstOfClient && number <= lastOfClient;
}

bool startsWith(const QString& statement, const char* word) {
  return statement.trimmed().startsWith(QLatin1String(word), Qt::CaseInsensitive);
}

/// The name of the constraint that refuses empty texts, from a text in any language: only names stand in
/// quotes.
QString zeroLengthConstraint(const QString& text) {
  static const QRegularExpression name(QStringLiteral("[\"'«„]([^\"'«„]* zero-length)[\"'»“]"));
  return name.match(text).captured(1);
}

/// Of a foreign key: its words stand in the server's language, but for these. Where they do not, the
/// statement tells.
qint32 conflictOf(const QString& text, const QString& statement) {
  if (text.contains(u"FOREIGN KEY")) return errors::relatedRecordRequired;
  if (text.contains(u"REFERENCE")) return errors::relatedRecords;
  if (text.contains(u"CHECK")) return errors::statementFailed;
  return startsWith(statement, "delete") ? errors::relatedRecords : errors::relatedRecordRequired;
}

qint32 numberOf(const Diagnosis& diagnosis, const QString& statement) {
  if (diagnosis.number == conflictWithConstraint) return conflictOf(diagnosis.text, statement);
  for (const Known& known : numbers)
    if (diagnosis.number == known.number) return known.ours;
  if (isTimeout(diagnosis)) return errors::timeout;
  if (isLost(diagnosis)) return errors::connectionFailed;
  for (const KnownState& known : states)
    if (diagnosis.state.startsWith(QLatin1String(known.state))) return known.ours;
  return errors::statementFailed;
}

/// Without the "[maker][driver][server]" before it.
QString plain(const QString& text) {
  static const QRegularExpression makers(QStringLiteral("^(?:\\[[^\\]]*\\])+"));
  const QString told = QString(text).remove(makers).simplified();
  return told.isEmpty() || told.endsWith(u'.') ? told : told + u'.';
}

}  // namespace

Diagnosis diagnosisOf(const Handle& handle) {
  Diagnosis diagnosis;
  QStringList texts, serversTexts;
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
    const bool ofServer = number > 0 && !isOfClient(number);
    if (diagnosis.number == 0 || (ofServer && !diagnosis.fromServer)) diagnosis.number = number;
    diagnosis.fromServer = diagnosis.fromServer || ofServer;
    texts.append(plain(fromWide(text, qBound(0, int{length}, room - 1))));
    if (ofServer) serversTexts.append(texts.last());
  }
  diagnosis.text = (diagnosis.fromServer ? serversTexts : texts).join(u' ');
  return diagnosis;
}

bool isTimeout(const Diagnosis& diagnosis) {
  return !diagnosis.fromServer && (diagnosis.number == clientTimeout || diagnosis.state.startsWith(u"HYT") ||
                                   diagnosis.state == u"S1T00");
}

bool isLost(const Diagnosis& diagnosis) {
  if (diagnosis.fromServer) return false;
  for (const int number : clientLost)
    if (diagnosis.number == number) return true;
  return diagnosis.state.startsWith(u"08");
}

Failure failureOf(const Diagnosis& diagnosis, const QString& statement, const QString& label) {
  if (diagnosis.number == conflictWithConstraint)
    if (const QString name = zeroLengthConstraint(diagnosis.text); !name.isEmpty())
      return zeroLengthFailure(name, label);
  QString text = diagnosis.text.isEmpty() ? QStringLiteral("The driver gives no reason.") : diagnosis.text;
  if (diagnosis.number != 0) text += QStringLiteral(" [%1]").arg(diagnosis.number);
  return serverFailure(numberOf(diagnosis, statement), text, label);
}

}  // namespace platform::sql::odbc
