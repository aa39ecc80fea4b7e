#pragma once
#include <QString>

namespace hourbook {

/// Where reports go. The common settings are built on it; the connection code reads and sets it.
struct ReportTarget {
  qint32 ReportTo = 2;    // 1 ASP page, 2 Access, 3 SQL Server, 4 billing system
  QString ReportToValue;  // path of the .mdb, connection string, or address of the ASP folder
};

}  // namespace hourbook
