#include "companions/settings/servertext.h"

#include "companions/settings/texts.h"
#include "database/modSQLLogon.h"
#include "platform/sql/oledbkeys.h"
#include "shell/Tolerate.h"

#include <QSet>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::sql::ConnectionString;
namespace keys = platform::sql::oledbkeys;

namespace {

const auto passwordKeys = {"Password", "PWD"};
const auto userKeys = {"User ID", "UID", "User"};
const auto trustedKeys = {"Integrated Security", "Trusted_Connection"};

ConnectionString parsed(const QString& text) {
  ConnectionString connection;
  tolerate([&] { connection = ConnectionString(text); });
  return connection;
}

/// Keys whose values the fields and the fixed beginning of the text hold.
bool isOfLogin(const QString& key) {
  static const QSet<QString> known{u"provider"_s,
                                   u"persist security info"_s,
                                   u"data source"_s,
                                   u"server"_s,
                                   u"address"_s,
                                   u"addr"_s,
                                   u"network address"_s,
                                   u"initial catalog"_s,
                                   u"database"_s,
                                   u"user id"_s,
                                   u"uid"_s,
                                   u"user"_s,
                                   u"password"_s,
                                   u"pwd"_s,
                                   u"integrated security"_s,
                                   u"trusted_connection"_s};
  return known.contains(key.trimmed().toLower());
}

/// Where the piece that begins at `from` ends: at a ";" outside of quotes, which only enclose a whole value.
qsizetype endOfPiece(const QString& text, qsizetype from) {
  qsizetype at = text.indexOf(u'=', from);
  const qsizetype plainEnd = text.indexOf(u';', from);
  if (at < 0 || (plainEnd >= 0 && plainEnd < at)) return plainEnd < 0 ? text.size() : plainEnd;
  do ++at;
  while (at < text.size() && text[at].isSpace());
  if (at < text.size() && (text[at] == u'"' || text[at] == u'\'')) {
    const QChar quote = text[at];
    for (++at; at < text.size(); ++at) {
      if (text[at] != quote) continue;
      if (at + 1 < text.size() && text[at + 1] == quote)
        ++at;
      else
        break;
    }
  }
  const qsizetype end = text.indexOf(u';', at);
  return end < 0 ? text.size() : end;
}

}  // namespace

SqlServerLogin loginOf(const QString& text) {
  const ConnectionString connection = parsed(text);
  SqlServerLogin login;
  if (text.isEmpty()) return login;
  login.server = keys::server(connection);
  login.database = keys::database(connection);
  login.trusted = keys::isYes(keys::firstValue(connection, trustedKeys));
  login.user = keys::firstValue(connection, userKeys);
  login.password = keys::firstValue(connection, passwordKeys);
  return login;
}

bool fieldsShow(const QString& text) {
  return text.isEmpty() || providerOf(text).compare(sqlServerProvider, Qt::CaseInsensitive) == 0;
}

QString providerOf(const QString& text) {
  return parsed(text).provider();
}

bool holdsPassword(const QString& text) {
  return !keys::firstValue(parsed(text), passwordKeys).isEmpty();
}

QString furtherParts(const QString& text) {
  QStringList parts;
  for (qsizetype from = 0; from < text.size();) {
    const qsizetype end = endOfPiece(text, from);
    const QString piece = text.mid(from, end - from).trimmed();
    if (!piece.isEmpty() && !isOfLogin(piece.section(u'=', 0, 0))) parts.append(piece);
    from = end + 1;
  }
  return parts.join(u';');
}

QString withLogin(const QString& text, const SqlServerLogin& login) {
  if (!text.isEmpty() && login == loginOf(text)) return text;
  const QString own = fncBuildSQLConnection(
      {login.server.trimmed(), login.database.trimmed(), login.user.trimmed(), login.password, login.trusted},
      false);
  const QString further = furtherParts(text);
  return further.isEmpty() ? own : own + u';' + further;
}

QString connectionTextProblem(const QString& text) {
  const QString trimmed = text.trimmed();
  if (trimmed.isEmpty()) return texts::connectionTextMissing;
  for (const QChar sign : trimmed)
    if (sign.category() == QChar::Other_Control) return texts::controlSign;
  // by these letters the report program tells a text from a folder
  if (!trimmed.startsWith(u"Provider="_s)) return texts::connectionTextBeginning;
  if (const auto failure = tolerate([&] { ConnectionString connection(trimmed); }))
    return texts::connectionTextForm;
  if (providerOf(trimmed).startsWith(u"Microsoft.Jet."_s, Qt::CaseInsensitive))
    return texts::connectionTextIsAccess;
  return keys::server(parsed(trimmed)).isEmpty() ? texts::connectionTextServer : QString();
}

}  // namespace hourbook
