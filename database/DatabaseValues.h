#pragma once
#include "database/ReportTarget.h"
#include "platform/ado/connection.h"
#include "shell/SharedValues.h"

#include <functional>
#include <memory>

namespace hourbook {

struct DatabaseValues {
  /// The one connection; null until the first use and after it was closed.
  std::shared_ptr<platform::ado::Connection> gConnection;
  /// The database folder or connection text, as the personal settings held it at start. Empty: the program's
  /// folder.
  QString gReportValue;
  /// May a missing database be made by asking the user? Nothing in the report program turns it on.
  bool blnMayCreateDatabase = false;
  /// Asks which database to make or use, and returns its connection string; the argument is where the file
  /// would stand. Empty: nobody can be asked.
  std::function<QString(const QString& path)> chooseConnection;
  /// How many ProbeScopes live: the connection code may fail then.
  int probes = 0;
  /// The common settings' target; owned by them. Null until they are made: then `fallbackTarget` is used.
  ReportTarget* target = nullptr;
  ReportTarget fallbackTarget;
};

inline DatabaseValues& databaseValues() {
  return Shared<DatabaseValues>::current();
}
inline ReportTarget& reportTarget() {
  DatabaseValues& values = databaseValues();
  return values.target ? *values.target : values.fallbackTarget;
}

}  // namespace hourbook
