#pragma once
#include <QString>

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

namespace platform::sql::odbc {

/// A handle of the driver manager, freed when it goes.
class Handle {
 public:
  Handle(SQLSMALLINT kind, SQLHANDLE parent);
  ~Handle();
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  SQLHANDLE get() const { return handle_; }
  SQLSMALLINT kind() const { return kind_; }

 private:
  SQLSMALLINT kind_;
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

/// A text as the driver manager takes it; lives as long as its owner.
inline SQLWCHAR* wide(const QString& text) {
  return const_cast<SQLWCHAR*>(reinterpret_cast<const SQLWCHAR*>(text.utf16()));
}
inline QString fromWide(const SQLWCHAR* text, qsizetype length) {
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), length);
}

}  // namespace platform::sql::odbc
