#pragma once
#include <QString>
#include <QStringList>

namespace hourbook {

/// A meta list by its name, with its values in the order of display.
struct NamedList {
  QString name;
  QStringList values;
  bool operator==(const NamedList&) const = default;
};

/// Where the reports go as the window holds it now, saved or not.
struct ReportPlace {
  qint32 choice = 2;   // 1 ASP page, 2 Access, 3 SQL Server, 4 billing system
  QString value;       // for 2 the database's folder with "\" at its end, for 3 a connection string
  bool isNew = false;  // the database is only made when everything is saved, before any page's apply()
  bool operator==(const ReportPlace&) const = default;
};

}  // namespace hourbook
