#pragma once
#include "platform/scripting/filesystem.h"
#include "shell/ShellValues.h"

#include <QString>

// Paths are built with "\" between their parts and keep what they were given in front of it; the file-system
// object takes both separators.
namespace hourbook {

/// Makes `shellValues().gFileSystem`. Call it before each use of that object.
void subSetupFS();
/// The temporary folder, with long names and without a trailing separator.
QString fncGetTempPath();
/// Writes a text file and returns its path. `fileName` gets the final name. With `temporary`, or without a
/// name, the file is put into the temporary folder; a name that is in use there gets a number in front of its
/// extension. Every double quote of the text is left out.
QString fncSaveTextFile(QString& fileName, const QString& text, bool temporary);
/// Starts a program ("HBCube", looked for as "HBCube.exe" in the folder, then in the program's own; where
/// programs bear no ".exe", as "HBCube" too) or opens a URL or a mailto: link. A failed start is shown in a
/// box.
void subExecute(const QString& command, const QString& folder = {}, const QString& parameters = {});
/// Prints a file with the system's own means.
void fncPrintFile(const QString& path);
/// Does with a file of a folder what its entry in the desktop offers: "print", "open"; an empty verb is the
/// default one.
void fncInvokeVerb(const QString& folder, const QString& file, const QString& verb);
/// The path of a program in a folder, named "name.exe", or "name" where programs bear no extension. A name
/// that exists comes first; without any, the ".exe" form.
QString fncProgramPath(const QString& folder, const QString& name);
/// The text without a trailing "\" or "/".
QString fncStripSlash(const QString& text);
/// The folder's path with long names.
QString fncLongFolderPath(const std::shared_ptr<platform::scripting::Folder>& folder);

}  // namespace hourbook
