#pragma once
#include "platform/sql/driver.h"

// PostgreSQL, for whoever composes the program.
namespace platform::sql::postgresql {

/// The names under which connection strings ask for it.
inline QStringList providers() {
  return {QStringLiteral("PostgreSQL")};
}

/// Takes nothing and connects to nothing before it is asked to; see session.h for what it does.
std::shared_ptr<Driver> makeDriver();
/// Making and changing tables on any session of it.
std::shared_ptr<FileEngine> makeEngine();

}  // namespace platform::sql::postgresql
