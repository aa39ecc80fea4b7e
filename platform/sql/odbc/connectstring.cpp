#include "platform/sql/odbc/connectstring.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/oledbkeys.h"

namespace platform::sql::odbc {

namespace {

const QString defaultPort = QStringLiteral("1433");
constexpr int highestPort = 65535;

[[noreturn]] void refuse(const QString& text) {
  throw Failure(errors::connectionFailed, text);
}

bool startsWith(const QString& text, QStringView with) {
  return text.startsWith(with, Qt::CaseInsensitive);
}

bool same(const QString& text, QStringView other) {
  return text.compare(other, Qt::CaseInsensitive) == 0;
}

/// In braces, where a sign of it would end or change it. This driver does not know a doubled "}" (later ones
/// do): for it a value ends at "};" and nowhere before.
QString shielded(const QString& value) {
  if (!value.contains(u';') && !value.startsWith(u'{') && value == value.trimmed()) return value;
  if (value.contains(u"};"))
    refuse(QStringLiteral(
        "A value of the connection string holds a \"}\" with a \";\" behind it, which cannot be "
        "handed to the driver. Choose another password."));
  return u'{' + value + u'}';
}

struct Server {
  QString host, instance, port;
};

bool isPort(const QString& text) {
  bool readable = false;
  const int number = text.trimmed().toInt(&readable);
  return readable && number >= 1 && number <= highestPort;
}

void takePort(QString& text, QString& port) {
  const qsizetype comma = text.lastIndexOf(u',');
  if (comma < 0) return;
  if (!isPort(text.mid(comma + 1)))
    refuse(QStringLiteral("'%1' is no server: behind the comma stands its port, a number up to %2.")
               .arg(text)
               .arg(highestPort));
  port = QString::number(text.mid(comma + 1).trimmed().toInt());
  text = text.left(comma).trimmed();
}

/// The key of its own, where the server's name has none with it.
QString portKey(const ConnectionString& connection) {
  const QString text = connection.value(QStringLiteral("Port"));
  if (text.isEmpty()) return {};
  if (!isPort(text))
    refuse(QStringLiteral("The connection string's Port is none: it is a number up to %1.").arg(highestPort));
  return QString::number(text.trimmed().toInt());
}

Server serverOf(const ConnectionString& connection) {
  QString text = oledbkeys::server(connection);
  if (text.isEmpty()) refuse(QStringLiteral("The connection string names no server (Data Source)."));
  // not quoted: what is taken for the server here may go on with the password
  for (const QString& value : {text, oledbkeys::database(connection)})
    if (value.contains(u'='))
      refuse(
          QStringLiteral("The connection string has a '=' in its server or database; the ';' before a key is "
                         "missing."));
  if (startsWith(text, u"tcp:")) text = text.mid(4).trimmed();
  const bool otherRoad = startsWith(text, u"np:") || startsWith(text, u"lpc:") ||
                         startsWith(text, u"admin:") || startsWith(text, u"\\\\") ||
                         startsWith(text, u"(localdb)");
  if (otherRoad)
    refuse(QStringLiteral("The server '%1' cannot be reached from here: only TCP can be used, as in "
                          "\"host\", \"host,port\" or \"host\\instance\".")
               .arg(text));
  Server server;
  takePort(text, server.port);
  if (server.port.isEmpty()) server.port = portKey(connection);
  const qsizetype slash = text.indexOf(u'\\');
  if (slash >= 0) {
    server.instance = text.mid(slash + 1).trimmed();
    text = text.left(slash).trimmed();
  }
  if (same(server.instance, u"MSSQLSERVER")) server.instance.clear();  // the unnamed one's name
  if (text.startsWith(u'[') && text.endsWith(u']')) text = text.mid(1, text.size() - 2);
  const bool here = text.isEmpty() || text == u"." || same(text, u"(local)");
  server.host = here ? QStringLiteral("localhost") : text;
  // a named instance has its own port, which the server tells; a port that is given leads to it by itself
  if (!server.port.isEmpty()) server.instance.clear();
  if (server.instance.isEmpty() && server.port.isEmpty()) server.port = defaultPort;
  return server;
}

/// In the driver's words. It looks at no certificate, so that "Trust Server Certificate" changes nothing.
QString encryption(const QString& asked) {
  if (asked.isEmpty()) return {};
  if (same(asked, u"strict")) return QStringLiteral("strict");
  return oledbkeys::isYes(asked) ? QStringLiteral("require") : QStringLiteral("request");
}

}  // namespace

QString connectString(const ConnectionString& connection, const QString& driver) {
  using oledbkeys::firstValue;
  QStringList parts;
  const auto add = [&parts](const char* key, const QString& value) {
    if (!value.isEmpty()) parts.append(QString::fromLatin1(key) + u'=' + shielded(value));
  };
  const Server server = serverOf(connection);
  add("DRIVER", driver);
  add("SERVER", server.instance.isEmpty() ? server.host : server.host + u'\\' + server.instance);
  add("PORT", server.port);
  add("DATABASE", oledbkeys::database(connection));
  if (isTrusted(connection)) {
    add("Trusted_Connection", QStringLiteral("Yes"));
    add("ServerSPN", firstValue(connection, {"Server SPN", "ServerSPN"}));
  } else {
    add("UID", firstValue(connection, {"User ID", "UID", "User", "UserName", "User Name"}));
    add("PWD", firstValue(connection, {"Password", "PWD"}));
  }
  add("APP", firstValue(connection, {"Application Name", "APP"}));
  add("WSID", firstValue(connection, {"Workstation ID", "WSID"}));
  add("Encryption", encryption(firstValue(connection, {"Use Encryption for Data", "Encrypt"})));
  add("PacketSize", firstValue(connection, {"Packet Size", "PacketSize"}));
  add("Language", firstValue(connection, {"Current Language", "Language"}));
  add("AttachDbFilename", firstValue(connection, {"Initial File Name", "AttachDbFilename"}));
  add("ApplicationIntent", firstValue(connection, {"Application Intent", "ApplicationIntent"}));
  add("TDS_Version", QStringLiteral("7.4"));  // without it neither Unicode nor dates are whole
  add("ClientCharset", QStringLiteral("UTF-8"));
  return parts.join(u';');
}

QString labelOf(const ConnectionString& connection) {
  const QString database = oledbkeys::database(connection);
  return database.isEmpty() ? oledbkeys::server(connection)
                            : database + u" on "_qs + oledbkeys::server(connection);
}

bool isTrusted(const ConnectionString& connection) {
  return oledbkeys::isYes(oledbkeys::firstValue(connection, {"Integrated Security", "Trusted_Connection"}));
}

int connectTimeout(const ConnectionString& connection) {
  const int seconds =
      oledbkeys::firstValue(connection, {"Connect Timeout", "Connection Timeout", "Timeout"}).toInt();
  return seconds > 0 && seconds <= oledbkeys::longestTimeoutSeconds ? seconds : connectTimeoutSeconds;
}

}  // namespace platform::sql::odbc
