#include "reporting/cDatabaseTarget.h"

#include "database/DatabaseValues.h"
#include "database/modDBCode.h"
#include "database/ProbeScope.h"
#include "platform/basic/convert.h"
#include "platform/scripting/filesystem.h"
#include "platform/sql/oledbkeys.h"
#include "reporting/modReportToAccess.h"
#include "settings/cGlobalSettings.h"
#include "shell/Present.h"
#include "shell/Tolerate.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::ado::Recordset;
using platform::basic::Date;
using platform::basic::IsNull;
using platform::basic::Value;

namespace {

const QString markReport = u"lastReportID"_s, markPerson = u"personID"_s, markSession = u"session"_s;

struct Line {
  ReportLine what;
  std::optional<Date> reported;
  bool taken = false;
};

std::shared_ptr<Recordset> asked(const QString& question) {
  const ProbeScope probe;
  const AskingScope asking;
  auto rows = fncReturnRecordset(question, true);
  if (rows) return rows;
  if (databaseValues().probeFailure) throw Failure(*databaseValues().probeFailure);
  throw Failure(platform::failure::objectNotSet, u"There is no database."_s);
}

/// A server may still be about to store what it was sent last, though the program that sent it is gone.
void settleSession(const QString& token) {
  if (token.isEmpty()) return;
  const AskingScope asking;
  subSetupConnection();
  present(databaseValues().gConnection).session().settle(token);
}

std::optional<qint32> keyOf(const Value& value) {
  if (IsNull(value)) return std::nullopt;
  return platform::basic::CLng(value);
}

Line lineOf(Recordset& rs) {
  Line line;
  const Value day = rs[u"dtmDate"_s].Value(), hours = rs[u"numHours"_s].Value();
  const Value subject = rs[u"strSubject"_s].Value(), reported = rs[u"dteReported"_s].Value();
  if (!IsNull(day)) line.what.day = platform::basic::CDate(day).date();
  if (!IsNull(hours)) line.what.hours = float(platform::basic::CDbl(hours));
  if (!IsNull(subject)) line.what.subject = platform::basic::CStr(subject);
  if (!IsNull(reported)) line.reported = platform::basic::CDate(reported);
  for (int n = 1; n <= metaCount; ++n)
    line.what.keys[size_t(n - 1)] = keyOf(rs[u"intMeta%1ID"_s.arg(n)].Value());
  return line;
}

QString withoutBlanksAtTheEnd(QString text) {
  while (text.endsWith(u' ')) text.chop(1);
  return text;
}

/// Is the second text the first one as some database may have made it? Blanks at the end dropped, and letters
/// that its code page lacks replaced by others (a question mark, or the letter without its mark).
bool mayHaveBecome(const QString& text, const QString& stored) {
  QString pattern;
  int lost = 0;  // of the stretch that the walk is in
  const auto closeStretch = [&] {
    if (lost > 0) pattern += u".{0,%1}"_s.arg(2 * lost);
    lost = 0;
  };
  for (const QChar c : withoutBlanksAtTheEnd(text)) {
    const bool plain = c.unicode() >= u' ' && c.unicode() < 0x7f;
    if (!plain) {
      ++lost;
      continue;
    }
    closeStretch();
    pattern += QRegularExpression::escape(QString(c));
  }
  closeStretch();
  return QRegularExpression(QRegularExpression::anchoredPattern(pattern),
                            QRegularExpression::DotMatchesEverythingOption)
      .match(withoutBlanksAtTheEnd(stored))
      .hasMatch();
}

bool sameButSubject(const ReportLine& a, const ReportLine& b) {
  return a.day == b.day && a.hours == b.hours && a.keys == b.keys;
}

bool exactly(const ReportLine& a, const ReportLine& b) {
  return sameButSubject(a, b) && a.subject == b.subject;
}

bool nearly(const ReportLine& a, const ReportLine& b) {
  return sameButSubject(a, b) && mayHaveBecome(a.subject, b.subject);
}

void take(const ReportRun& run, QList<Line>& lines, QList<std::optional<Date>>& stored,
          bool (*same)(const ReportLine&, const ReportLine&)) {
  for (qsizetype i = 0; i < run.rows.size(); ++i) {
    if (stored[i]) continue;
    for (Line& line : lines) {
      if (line.taken || !same(run.rows[i].line, line.what)) continue;
      line.taken = true;
      stored[i] = line.reported.value_or(Date());
      break;
    }
  }
}

/// The person's lines that have come since the run began.
QList<Line> linesSince(const ReportRun& run) {
  if (!run.mark[markReport].isDouble() || !run.mark[markPerson].isDouble())
    throw Failure(platform::failure::typeMismatch, u"The journal does not say which lines to look for."_s);
  const auto rs = asked(
      u"select intReportID, numHours, strSubject, dtmDate, dteReported, intMeta1ID, intMeta2ID, intMeta3ID "
      "from tblReports where intReportID > %1 and intPersonID = %2 order by intReportID"_s
          .arg(run.mark[markReport].toInt())
          .arg(run.mark[markPerson].toInt()));
  QList<Line> lines;
  for (; !rs->isEOF(); rs->MoveNext()) lines.append(lineOf(*rs));
  return lines;
}

QList<std::optional<Date>> takenBy(const ReportRun& run, QList<Line>& lines) {
  QList<std::optional<Date>> stored(run.rows.size());
  take(run, lines, stored, exactly);
  take(run, lines, stored, nearly);
  return stored;
}

QString filePlace(const QString& path) {
  const QFileInfo file(platform::scripting::systemPath(path));
  const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
  return QDir::cleanPath((folder.isEmpty() ? file.absolutePath() : folder) + u'/' + file.fileName());
}

}  // namespace

QString fncPlaceOfConnection(const QString& strConnection) {
  namespace keys = platform::sql::oledbkeys;
  const platform::sql::ConnectionString connection(strConnection);
  const QString provider = connection.provider().toLower();
  const QString database = keys::database(connection);
  if (provider.startsWith(u"microsoft."_s)) return provider + u' ' + filePlace(keys::server(connection));
  if (database.isEmpty())  // then it follows from the login
    return u"%1 %2 %3 of %4"_s.arg(
        provider, keys::server(connection).toLower(), connection.value(u"Port"_s),
        keys::firstValue(connection, {"User ID", "UID", "User", "UserName", "User Name"}));
  return u"%1 %2 %3 %4"_s.arg(provider, keys::server(connection).toLower(), connection.value(u"Port"_s),
                              database);
}

cDatabaseTarget::cDatabaseTarget(qint16 intPersonID)
    : intPersonID_(intPersonID), blnWasOpen_(databaseValues().gConnection != nullptr) {}

cDatabaseTarget::~cDatabaseTarget() {
  auto& connection = databaseValues().gConnection;
  if (blnWasOpen_ || !connection) return;
  tolerate([&] { connection->Close(); });
  connection.reset();
}

QString cDatabaseTarget::Place() {
  const AskingScope asking;
  subSetupConnection();
  const auto& connection = databaseValues().gConnection;
  if (!connection) throw Failure(platform::failure::objectNotSet, u"There is no database."_s);
  return fncPlaceOfConnection(connection->ConnectionString());
}

bool cDatabaseTarget::TakeKeys(ReportLine& line) {
  for (int n = 1; n <= metaCount; ++n) {
    const QString& name = line.names[size_t(n - 1)];
    if (name.isEmpty()) continue;
    const auto key = fncMetaKey(n, name);
    if (!key) return false;
    line.keys[size_t(n - 1)] = *key;
  }
  return true;
}

QJsonObject cDatabaseTarget::Mark() {
  const auto newest = asked(u"select top 1 intReportID from tblReports order by intReportID desc"_s);
  const qint32 last = newest->isEOF() ? 0 : platform::basic::CLng((*newest)[u"intReportID"_s].Value());
  return {{markReport, last},
          {markPerson, intPersonID_},
          {markSession, present(databaseValues().gConnection).session().token()}};
}

QJsonObject cDatabaseTarget::MarkOfAll(const QString& person) {
  const auto found = asked(u"select intPersonID from tblPersons where strPersonName = '%1'"_s.arg(
      QString(person).replace(u"'"_s, u"''"_s)));
  if (found->isEOF()) return {};
  return {{markReport, 0}, {markPerson, platform::basic::CLng((*found)[u"intPersonID"_s].Value())}};
}

QList<std::optional<Date>> cDatabaseTarget::Stored(const ReportRun& run) {
  settleSession(run.mark[markSession].toString());
  QList<Line> lines = linesSince(run);
  return takenBy(run, lines);
}

QList<bool> cDatabaseTarget::StoredAgain(const ReportRun& run) {
  QList<Line> lines = linesSince(run);
  takenBy(run, lines);
  QList<std::optional<Date>> again(run.rows.size());
  take(run, lines, again, exactly);
  QList<bool> flags;
  for (const auto& line : again) flags.append(line.has_value());
  return flags;
}

}  // namespace hourbook
