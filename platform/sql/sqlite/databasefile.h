#pragma once
#include <QString>

namespace platform::sql::sqlite {

enum class FileKind { Missing, FolderMissing, NotAFile, Unreadable, Empty, Sqlite, Access, Other };

/// What stands at the path, told from its first bytes alone.
FileKind recognise(const QString& path);

/// Throws the failure that says why the file cannot be opened as a database; returns for an SQLite file.
void requireDatabase(const QString& path);

/// "\" and "/" both separate folders in what is given here.
QString systemForm(const QString& path);

/// Gives a file the mode of another and, where the system permits it, its owner and group: a database that
/// several users share stays theirs.
void takeAccessRights(const QString& from, const QString& to);

/// Brings the file and the entry in its folder to the disk. Throws when the disk refuses.
void syncToDisk(const QString& path);

}  // namespace platform::sql::sqlite
