#pragma once
#include <QString>

namespace platform::sql::odbc {

struct Options {
  QString driver = QStringLiteral("FreeTDS");  // the driver manager's name for a driver, or its file
  int lockTimeoutMs = 5000;     // how long a statement waits for a row or table that another program holds
  int statementSeconds = 30;    // and how long its answer is waited for
  int definitionSeconds = 600;  // that of a statement in the server's own language, such as CREATE DATABASE
};

}  // namespace platform::sql::odbc
