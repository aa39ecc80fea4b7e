#pragma once
#include "platform/basic/failure.h"

#include <QString>

#include <optional>

namespace platform::sql::sqlite {

enum class FileKind { Missing, FolderMissing, NotAFile, Unreadable, Empty, Sqlite, Access, Other };

/// What stands at the path, without opening it: `Sqlite` stands for any file that is not empty.
FileKind lookAt(const QString& path);

/// Throws the failure that says why there is nothing at the path that could be opened as a database. The file
/// is not opened.
void requireFile(const QString& path);

/// For a file that the engine has refused to read: throws the failure that says what it is instead, from its
/// first bytes; returns for an SQLite file. Opens the file, and closing it takes this process's own locks off
/// it, if it has any: not to be asked of a database that is open elsewhere in the program.
void refuseForeignFile(const QString& path);

/// "\" and "/" both separate folders in what is given here.
QString systemForm(const QString& path);

/// The one path of a file that several names lead to; also of one that is yet to be made.
QString realPath(const QString& path);

/// Which file it is, whatever its name.
struct FileIdentity {
  quint64 device = 0;
  quint64 inode = 0;
  bool operator==(const FileIdentity&) const = default;
};
std::optional<FileIdentity> identityOf(const QString& path);
/// That it is no longer the one that was opened.
Failure replacedFailure(const QString& path);

/// Makes an empty file that was not there, nor a link of that name. Failure 3204 when the name is taken.
enum class CreationMode { Usual, OwnerOnly };
FileIdentity createFile(const QString& path, CreationMode mode);
/// Removes the file if it is still this one.
void removeOwn(const QString& path, const FileIdentity& identity);

/// Gives a file the mode of another and, where the system permits it, its owner and group: a database that
/// several users share stays theirs.
void takeAccessRights(const QString& from, const QString& to);
/// The mode that a copy may have. What was meant for a group must not open the file to another group: of its
/// bits those stay that everybody has.
int rightsOfCopy(int mode, bool groupKept);

/// Brings the file and the entry in its folder to the disk. Throws when the disk refuses.
void syncToDisk(const QString& path);

}  // namespace platform::sql::sqlite
