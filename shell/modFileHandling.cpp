#include "shell/modFileHandling.h"

#include "platform/automation/components.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "platform/process/process.h"
#include "platform/scripting/shellapplication.h"
#include "shell/modErrorReport.h"
#include "shell/modScriptingDic.h"
#include "shell/Present.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::basic::vbCrLf;
using platform::process::Process;
using platform::scripting::FileSystemObject;
using platform::scripting::Folder;

namespace {

FileSystemObject& files() {
  subSetupFS();
  return *shellValues().gFileSystem;
}

bool isSeparator(QChar c) {
  return c == u'\\' || c == u'/';
}

QString temporaryFolder() {
  ShellValues& values = shellValues();
  if (!values.temporaryFolderFound) {
    values.temporaryFolder = fncGetTempPath();
    values.temporaryFolderFound = true;
  }
  return values.temporaryFolder;
}

QString newName(const QString& fileName) {
  if (!fileName.isEmpty()) return fileName;
  return files().GetTempName().replace(QStringLiteral(".tmp"), QStringLiteral(".ndf"));
}

/// A name that nobody holds: a number stands in front of the extension.
QString freeName(const QString& fileName) {
  constexpr qsizetype extension = 4;
  QString candidate = fileName;
  for (int counter = 1; files().FileExists(candidate); ++counter) {
    candidate =
        QString(fileName).insert(qMax(qsizetype(0), fileName.size() - extension), QString::number(counter));
    tolerate([&] {
      if (files().FileExists(candidate)) files().DeleteFile(candidate, true);
    });
  }
  return candidate;
}

bool isAddress(const QString& command) {
  const QString scheme = command.left(4).toUpper();
  return scheme == u"HTTP"_s || scheme == u"MAIL"_s;
}

QString findProgram(const QString& command, const QString& folder) {
  if (!folder.isEmpty()) {
    const QString path = fncProgramPath(folder, command);
    if (files().FileExists(path)) return path;
  }
  return fncProgramPath(Process::current().programFolder(), command);
}

void showFailedStart(const QString& path, const Failure& failure) {
  using namespace platform::dialogs;
  Dialogs::current().MsgBox(
      path + vbCrLf + failure.description() + vbCrLf + u'#' + QString::number(failure.number()), vbCritical,
      gTitle);
}

}  // namespace

void subSetupFS() {
  ShellValues& values = shellValues();
  if (values.gFileSystem) return;
  subLog(QStringLiteral("Creating Scripting.FileSystemObject") + vbCrLf +
         QStringLiteral("This component is normally installed with Internet Explorer 4.0 or later"));
  const auto make = [&values] {
    values.gFileSystem =
        platform::automation::CreateObject<FileSystemObject>(QStringLiteral("Scripting.FileSystemObject"));
  };
  std::optional<Failure> failure = tolerate(make);
  if (!values.gFileSystem) failure = tolerate(make);
  if (values.gFileSystem) return;
  if (values.fileSystemRepairTried) subHandleError(*failure, QStringLiteral("subSetupFS"));
  QString ignored;
  Process::current().start(QStringLiteral("regsvr32"), {QStringLiteral("scrrun.dll"), QStringLiteral("/s")},
                           &ignored);
  values.fileSystemRepairTried = true;
  subSetupFS();
}

QString fncGetTempPath() {
  FileSystemObject& system = files();
  subLog(QStringLiteral("Finding Temp folder path"));
  constexpr int temporary = 2;
  return fncLongFolderPath(system.GetSpecialFolder(temporary));
}

QString fncLongFolderPath(const std::shared_ptr<Folder>& folder) {
  if (folder->IsRootFolder()) return folder->Path();
  QStringList shortNames;
  bool allLong = true;
  std::shared_ptr<Folder> level = folder;
  for (; !level->IsRootFolder(); level = level->ParentFolder()) {
    allLong = allLong && level->ShortName() == level->Name();
    shortNames.prepend(level->ShortName());
  }
  if (allLong) return folder->Path();
  QString path = level->Path();
  for (const QString& shortName : std::as_const(shortNames)) {
    for (const auto& entry : level->SubFolders()) {
      if (entry->ShortName() != shortName) continue;
      level = entry;
      if (!path.isEmpty() && !isSeparator(path.back())) path += u'\\';
      path += entry->Name();
      break;
    }
  }
  return path;
}

QString fncSaveTextFile(QString& fileName, const QString& text, bool temporary) try {
  FileSystemObject& system = files();
  if (temporary || fileName.isEmpty()) fileName = temporaryFolder() + u'\\' + newName(fileName);
  // kept: the text of the log is misspelt
  subLog(QStringLiteral("Checking for previoius existance of ") + fileName);
  if (system.FileExists(fileName)) {
    const auto failure = tolerate([&] { system.DeleteFile(fileName, true); });
    if (failure && !temporary) throw *failure;
    if (failure) fileName = freeName(fileName);
  }
  // kept: a saved file never holds a double quote
  const QString content = QString(text).remove(u'"');
  subLog(QStringLiteral("Saving textfile ") + fileName);
  const auto stream = system.CreateTextFile(fileName, true, false);
  stream->Write(content);
  stream->Close();
  return fileName;
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("fncSaveTextFile"));
}

void subExecute(const QString& command, const QString& folder, const QString& parameters) try {
  subLog(QStringLiteral("Attempting to execute ") + command);
  const auto shell = fncGetShell();
  if (!shell) return;  // the user has been told
  if (isAddress(command)) {
    shell->Run(command);
    return;
  }
  const QString path = findProgram(command, folder);
  subLog(QStringLiteral("Attempting to execute the path '") + path);
  if (!files().FileExists(path)) {
    showFailedStart(path, Failure(platform::failure::fileNotFound, QStringLiteral("File not found")));
    return;
  }
  QString line = u'"' + platform::scripting::systemPath(path) + u'"';
  if (!parameters.isEmpty()) line += u' ' + parameters;
  constexpr int normalWindow = 1;
  if (const auto failure = tolerate([&] { shell->Run(line, normalWindow); })) showFailedStart(path, *failure);
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("modFileHandling.subExecute"));
}

void fncPrintFile(const QString& path) try {
  FileSystemObject& system = files();
  subLog(QStringLiteral("Attempting to print the file ") + path);
  const auto file = system.GetFile(path);
  fncInvokeVerb(file->ParentFolder()->Path(), file->Name(), QStringLiteral("Print"));
} catch (const Failure& failure) {
  // kept: reported under the name of the procedure that saves files
  subHandleError(failure, QStringLiteral("fncSaveTextFile"));
}

void fncInvokeVerb(const QString& folder, const QString& file, const QString& verb) try {
  subLog(QStringLiteral("Trying to execute ") + folder);
  const auto shell = platform::automation::CreateObject<platform::scripting::ShellApplication>(
      QStringLiteral("Shell.Application"));
  const auto place = shell->NameSpace(folder);
  const auto item = present(place).Items().Item(file);
  present(item).InvokeVerb(verb);
} catch (const Failure& failure) {
  // kept: the name of a form that this program does not have
  subHandleError(failure, QStringLiteral("frmDummy.Form_Load"));
}

QString fncProgramPath(const QString& folder, const QString& name) {
  const QString bare = fncStripSlash(folder) + u'\\' + name;
  const QString withExtension = bare + u".exe"_s;
  return !files().FileExists(withExtension) && files().FileExists(bare) ? bare : withExtension;
}

QString fncStripSlash(const QString& text) {
  return !text.isEmpty() && isSeparator(text.back()) ? text.chopped(1) : text;
}

}  // namespace hourbook
