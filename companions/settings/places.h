#pragma once
#include <QString>

// What stands on the disk where the user points to. Nothing is opened for writing.
namespace hourbook {

struct PlaceLook {
  QString problem;  // empty: it can be used
  QString note;     // what was found
};

/// A folder of .ics files or one such file. `path` is absolute.
PlaceLook lookAtCalendar(const QString& path, bool readOnly);

/// The folder of Hourbook3.mdb: the database that is there, or the place for one that is to be made. A folder
/// that does not exist yet can be made where the one around it can be written to.
PlaceLook lookAtDatabase(const QString& folder, bool make);

/// What keeps a database from being set up from this folder by the dialogs; empty: nothing.
QString setUpProblem(const QString& folder);

/// Does the folder hold a file of the database's name?
bool holdsDatabase(const QString& folder);
QString databaseIn(const QString& folder);

}  // namespace hourbook
