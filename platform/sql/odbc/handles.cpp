#include "platform/sql/odbc/handles.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"

namespace platform::sql::odbc {

Handle::Handle(SQLSMALLINT kind, SQLHANDLE parent) : kind_(kind) {
  if (!SQL_SUCCEEDED(SQLAllocHandle(kind, parent, &handle_)))
    throw Failure(errors::connectionFailed, QStringLiteral("The ODBC driver manager gives no handle."));
}

Handle::~Handle() {
  SQLFreeHandle(kind_, handle_);
}

}  // namespace platform::sql::odbc
