#pragma once
#include "platform/sql/driver.h"

// SQL Server, for whoever composes the program.
namespace platform::sql::odbc {

/// The names under which connection strings ask for it.
inline QStringList providers() {
  return {QStringLiteral("SQLOLEDB.1"),   QStringLiteral("SQLOLEDB"),     QStringLiteral("SQLNCLI"),
          QStringLiteral("SQLNCLI.1"),    QStringLiteral("SQLNCLI10"),    QStringLiteral("SQLNCLI10.1"),
          QStringLiteral("SQLNCLI11"),    QStringLiteral("SQLNCLI11.1"),  QStringLiteral("MSOLEDBSQL"),
          QStringLiteral("MSOLEDBSQL.1"), QStringLiteral("MSOLEDBSQL19"), QStringLiteral("MSOLEDBSQL19.1")};
}

/// Takes nothing and connects to nothing before it is asked to; see session.h for what it does.
std::shared_ptr<Driver> makeDriver();
/// Making and changing tables on any session of it.
std::shared_ptr<FileEngine> makeEngine();

}  // namespace platform::sql::odbc
