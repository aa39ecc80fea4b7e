#pragma once
#include "platform/basic/failure.h"

#include <QString>

namespace platform::sql::postgresql {

/// What the server says of a statement that it refuses. Only the state and the names are told alike in all
/// languages.
struct ServerError {
  QString state;  // SQLSTATE, five signs
  QString text, detail;
  QString table, column, constraint;
  QString word;  // of the statement, where the server stopped
};

/// The word that begins at this character of a statement, counted from 1; empty for 0.
QString wordAt(const QString& statement, int position);

Failure failureOf(const ServerError& error, const QString& statement, const QString& label);

}  // namespace platform::sql::postgresql
