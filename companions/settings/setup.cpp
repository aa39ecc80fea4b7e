#include "companions/settings/setup.h"

#include "companions/settings/guarded.h"
#include "companions/settings/steps.h"
#include "database/DatabaseValues.h"
#include "database/modDBCode.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace hourbook {

namespace {

/// A shared connection of its own for what happens in here.
std::optional<ReportTarget> askForDatabase(const QString& folder,
                                           const std::function<void(DatabaseValues&)>& useForms) {
  Shared<DatabaseValues>::Scope database;
  useForms(*database);
  database->gReportValue = folder;
  QString connection;
  try {
    guarded([&] { connection = fncGetConnection(); });
  } catch (const StepEnded&) {
    return std::nullopt;  // Cancel, which ends a program that has nothing else to do
  }
  return connection.isEmpty() ? std::nullopt : std::optional(reportTarget());
}

/// A logon that was cancelled leaves one, which says nothing.
void removeEmptyConnectionFile(const QString& folder) {
  const QString file = QDir(folder).filePath(connectionFileName);
  if (QFileInfo(file).isFile() && QFileInfo(file).size() == 0) QFile::remove(file);
}

}  // namespace

std::optional<ReportTarget> setUpDatabase(const QString& folder,
                                          const std::function<void(DatabaseValues&)>& useForms) {
  Undo undo;
  try {
    stepMakeFolder(undo, QDir::cleanPath(folder), false);
    const auto found = askForDatabase(QDir::cleanPath(folder), useForms);
    if (!found) {
      removeEmptyConnectionFile(folder);
      undo.takeBack();
    }
    return found;
  } catch (const platform::Failure&) {
    undo.takeBack();
    throw;
  }
}

}  // namespace hourbook
