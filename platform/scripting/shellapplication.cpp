#include "platform/scripting/shellapplication.h"

#include "platform/basic/failure.h"
#include "platform/process/process.h"
#include "platform/scripting/filesystem.h"

#include <QDir>
#include <QFileInfo>

namespace platform::scripting {

namespace {

constexpr qint32 cannotBeStarted = -2147024894;  // 0x80070002
constexpr qint32 printerError = 482;

const QString source = QStringLiteral("Shell.Application");

void open(const QString& path) {
  QString error;
  if (process::Process::current().open(path, &error)) return;
  throw Failure(cannotBeStarted, QStringLiteral("The file \"%1\" cannot be opened: %2").arg(path, error),
                source);
}

void print(const QString& path) {
  QString error;
  if (process::Process::current().start(QStringLiteral("lp"), {path}, &error)) return;
  throw Failure(printerError,
                QStringLiteral("The file \"%1\" cannot be printed: the program \"lp\" does not start (%2)")
                    .arg(path, error),
                source);
}

}  // namespace

QString FolderItem::Name() const {
  return QFileInfo(path_).fileName();
}

void FolderItem::InvokeVerb(const QString& verb) const {
  const auto is = [&verb](const QString& name) { return verb.compare(name, Qt::CaseInsensitive) == 0; };
  if (verb.isEmpty() || is(QStringLiteral("open"))) return open(path_);
  if (is(QStringLiteral("print"))) return print(path_);
  throw Failure(failure::invalidProcedureCall,
                QStringLiteral("The verb \"%1\" is not known for the file \"%2\"").arg(verb, path_), source);
}

std::shared_ptr<FolderItem> FolderItems::Item(const QString& name) const {
  const QFileInfo file(QDir(folder_).filePath(name));
  if (file.fileName() != name || !file.isFile()) return nullptr;
  return std::make_shared<FolderItem>(file.absoluteFilePath());
}

std::shared_ptr<ShellFolder> ShellApplication::NameSpace(const QString& folder) const {
  const QFileInfo info(systemPath(folder));
  if (folder.isEmpty() || !info.isDir()) return nullptr;
  return std::make_shared<ShellFolder>(info.absoluteFilePath());
}

}  // namespace platform::scripting
