#include "database/modSQLLogon.h"

#include "platform/basic/text.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::basic::Split;

QString fncBuildSQLConnection(const SQLLogon& logon, bool blnServerConnOnly) {
  QString connection = u"Provider=SQLOLEDB.1;Persist Security Info=True;"_s;
  if (logon.blnIntegratedSecurity)
    connection += u"Integrated Security=SSPI;"_s;
  else
    connection += u"User ID="_s + logon.strUserName + u";Password="_s + logon.strPassword + u';';
  connection += u"Data Source="_s + logon.strServer;
  if (!blnServerConnOnly) connection += u";Initial Catalog="_s + logon.strDatabase;
  return connection;
}

SQLLogon fncSplitSQLConnection(const QString& strConnection) {
  SQLLogon logon;
  for (const QString& piece : Split(strConnection, u";"_s)) {
    const QStringList parts = Split(piece, u"="_s);
    const QString key = parts.value(0), value = parts.value(1);
    if (key == u"Integrated Security"_s) logon.blnIntegratedSecurity = true;
    if (key == u"Data Source"_s) logon.strServer = value;
    if (key == u"Initial Catalog"_s) logon.strDatabase = value;
    if (key == u"Password"_s) logon.strPassword = value;
    // kept: a third part is asked for, so a plain "User ID=name" leaves the field empty
    if (key == u"User ID"_s && parts.size() > 2) logon.strUserName = parts[2];
  }
  return logon;
}

}  // namespace hourbook
