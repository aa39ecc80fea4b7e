#include "platform/sql/postgresql/library.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"

#include <QLibrary>

namespace platform::sql::postgresql {

namespace {

constexpr int libraryVersion = 5;

QLibrary& library() {
  static QLibrary found(QStringLiteral("pq"), libraryVersion);
  return found;
}

}  // namespace

void (*functionOf(const char* name))() {
  const QFunctionPointer function = library().resolve(name);
  if (function) return function;
  throw Failure(errors::providerNotFound,
                QStringLiteral("The client library of PostgreSQL cannot be used (Debian: libpq5): ") +
                    library().errorString());
}

}  // namespace platform::sql::postgresql
