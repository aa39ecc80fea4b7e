#pragma once
#include <QStringList>

namespace hourbook {

/// The statements that bring a server's database up to date, in the server's own language. Each of them is
/// executed by itself.
struct ServerUpgrade {
  QStringList addOtherSettings;   // the table
  QStringList addPersonCategory;  // its companion, the column of tblPersons
  QStringList addEnabled[3];      // to tblMeta1 to tblMeta3
  QStringList enableAll[3];       // and then: what is there already is in use
  QStringList addBody;
};

/// For the kind of server that the connection string names: PostgreSQL, and SQL Server for any other.
ServerUpgrade fncServerUpgrade(const QString& strConnection);

/// The provider of a connection string that leads to a PostgreSQL server.
inline const QString postgresqlProvider = QStringLiteral("PostgreSQL");

}  // namespace hourbook
