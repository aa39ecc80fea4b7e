#include "platform/sql/odbc/connectstring.h"

namespace platform::sql::odbc {

namespace {

constexpr int longestTimeoutSeconds = 600;

QString valueOf(const ConnectionString& connection, std::initializer_list<const char*> keys) {
  for (const char* key : keys) {
    const QString value = connection.value(QString::fromLatin1(key));
    if (!value.isEmpty()) return value;
  }
  return {};
}

bool isYes(const QString& value) {
  for (const char* yes : {"yes", "true", "sspi", "1", "mandatory", "strict"})
    if (value.compare(QLatin1String(yes), Qt::CaseInsensitive) == 0) return true;
  return false;
}

QString serverOf(const ConnectionString& connection) {
  return valueOf(connection, {"Data Source", "Server", "Address", "Addr", "Network Address"});
}

QString databaseOf(const ConnectionString& connection) {
  return valueOf(connection, {"Initial Catalog", "Database"});
}

/// In braces, where a sign of it would end or change it.
QString shielded(const QString& value) {
  const bool plain =
      !value.contains(u';') && !value.contains(u'{') && !value.contains(u'}') && value == value.trimmed();
  return plain ? value : u'{' + QString(value).replace(u"}"_qs, u"}}"_qs) + u'}';
}

}  // namespace

QString connectString(const ConnectionString& connection, const QString& driver) {
  QStringList parts;
  const auto add = [&parts](const char* key, const QString& value) {
    if (!value.isEmpty()) parts.append(QString::fromLatin1(key) + u'=' + shielded(value));
  };
  QString server = serverOf(connection), port;
  const qsizetype comma = server.lastIndexOf(u',');
  if (comma >= 0) {
    port = server.mid(comma + 1).trimmed();
    server = server.left(comma).trimmed();
  }
  if (server.startsWith(u"tcp:", Qt::CaseInsensitive)) server.remove(0, 4);
  if (server == u"." || server.compare(u"(local)", Qt::CaseInsensitive) == 0)
    server = QStringLiteral("localhost");
  add("DRIVER", driver);
  add("SERVER", server);
  // a named instance has its own port, which the server tells
  add("PORT", port.isEmpty() && !server.contains(u'\\') ? QStringLiteral("1433") : port);
  add("DATABASE", databaseOf(connection));
  if (isYes(valueOf(connection, {"Integrated Security", "Trusted_Connection"}))) {
    add("Trusted_Connection", QStringLiteral("Yes"));
  } else {
    add("UID", valueOf(connection, {"User ID", "UID", "User"}));
    add("PWD", valueOf(connection, {"Password", "PWD"}));
  }
  add("APP", valueOf(connection, {"Application Name", "APP"}));
  add("WSID", valueOf(connection, {"Workstation ID", "WSID"}));
  const QString encrypt = valueOf(connection, {"Use Encryption for Data", "Encrypt"});
  if (!encrypt.isEmpty())
    add("Encryption", isYes(encrypt) ? QStringLiteral("require") : QStringLiteral("request"));
  add("PacketSize", connection.value(QStringLiteral("Packet Size")));
  add("Language", valueOf(connection, {"Current Language", "Language"}));
  add("AttachDbFilename", valueOf(connection, {"Initial File Name", "AttachDbFilename"}));
  add("TDS_Version", QStringLiteral("7.4"));  // without it neither Unicode nor dates are whole
  add("ClientCharset", QStringLiteral("UTF-8"));
  return parts.join(u';');
}

QString labelOf(const ConnectionString& connection) {
  const QString database = databaseOf(connection);
  return database.isEmpty() ? serverOf(connection) : database + u" on "_qs + serverOf(connection);
}

int connectTimeout(const ConnectionString& connection) {
  const int seconds = valueOf(connection, {"Connect Timeout", "Connection Timeout"}).toInt();
  return seconds > 0 && seconds <= longestTimeoutSeconds ? seconds : connectTimeoutSeconds;
}

}  // namespace platform::sql::odbc
