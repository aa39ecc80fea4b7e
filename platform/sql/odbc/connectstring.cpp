#include "platform/sql/odbc/connectstring.h"

#include "platform/sql/oledbkeys.h"

namespace platform::sql::odbc {

namespace {

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
  QString server = oledbkeys::server(connection), port;
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
  add("DATABASE", oledbkeys::database(connection));
  if (oledbkeys::isYes(oledbkeys::firstValue(connection, {"Integrated Security", "Trusted_Connection"}))) {
    add("Trusted_Connection", QStringLiteral("Yes"));
  } else {
    add("UID", oledbkeys::firstValue(connection, {"User ID", "UID", "User"}));
    add("PWD", oledbkeys::firstValue(connection, {"Password", "PWD"}));
  }
  add("APP", oledbkeys::firstValue(connection, {"Application Name", "APP"}));
  add("WSID", oledbkeys::firstValue(connection, {"Workstation ID", "WSID"}));
  const QString encrypt = oledbkeys::firstValue(connection, {"Use Encryption for Data", "Encrypt"});
  if (!encrypt.isEmpty())
    add("Encryption", oledbkeys::isYes(encrypt) ? QStringLiteral("require") : QStringLiteral("request"));
  add("PacketSize", connection.value(QStringLiteral("Packet Size")));
  add("Language", oledbkeys::firstValue(connection, {"Current Language", "Language"}));
  add("AttachDbFilename", oledbkeys::firstValue(connection, {"Initial File Name", "AttachDbFilename"}));
  add("TDS_Version", QStringLiteral("7.4"));  // without it neither Unicode nor dates are whole
  add("ClientCharset", QStringLiteral("UTF-8"));
  return parts.join(u';');
}

QString labelOf(const ConnectionString& connection) {
  const QString database = oledbkeys::database(connection);
  return database.isEmpty() ? oledbkeys::server(connection)
                            : database + u" on "_qs + oledbkeys::server(connection);
}

int connectTimeout(const ConnectionString& connection) {
  const int seconds = oledbkeys::firstValue(connection, {"Connect Timeout", "Connection Timeout"}).toInt();
  return seconds > 0 && seconds <= oledbkeys::longestTimeoutSeconds ? seconds : connectTimeoutSeconds;
}

}  // namespace platform::sql::odbc
