#include "companions/settings/steps.h"

#include "companions/settings/guarded.h"
#include "companions/settings/places.h"
#include "companions/settings/texts.h"
#include "database/DatabaseValues.h"
#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "shell/Tolerate.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
namespace files = platform::files;

namespace {

void require(const files::WriteResult& result, const QString& path) {
  if (result.outcome == files::Outcome::Written) return;
  const bool changed = result.outcome == files::Outcome::ChangedMeanwhile;
  throw Failure(changed ? changedMeanwhile : platform::failure::permissionDenied,
                result.error.isEmpty() ? path : result.error);
}

/// A shared connection of its own for what happens in here.
void createDatabase(const QString& folder) {
  const Shared<DatabaseValues>::Scope database;
  guarded([&] { subCreateHBDatabase(QDir(folder).absolutePath() + u'\\' + databaseFileName); });
  guarded([&] {
    databaseValues().gReportValue = folder;
    subSetupConnection();  // brings the new file up to date
  });
  auto& connection = databaseValues().gConnection;
  if (!connection)
    throw Failure(platform::failure::objectNotSet, texts::databaseIsNone.arg(databaseIn(folder)));
  connection->Close();
  connection.reset();
}

}  // namespace

QStringList Undo::takeBack() {
  QStringList failures;
  while (!steps_.empty()) {
    const auto step = std::move(steps_.back());
    steps_.pop_back();
    if (const auto failure = tolerate(step)) failures.append(failure->description());
  }
  return failures;
}

void stepWriteFile(Undo& undo, const QString& path, const QByteArray& bytes,
                   const files::Fingerprint& expected, files::FileMode mode) {
  const files::ReadResult before = files::readFile(path);
  if (!before.ok && !before.missing) throw Failure(platform::failure::permissionDenied, before.error);
  const files::WriteResult written = files::replaceFile(path, bytes, expected, mode);
  const auto takeBack = [path, before, mode, after = written.fingerprint] {
    require(
        before.missing ? files::removeFile(path, after) : files::replaceFile(path, before.bytes, after, mode),
        path);
  };
  // a failure may have come when the new content stood there already
  if (written.outcome == files::Outcome::Written || written.fingerprint.exists) undo.add(takeBack);
  require(written, path);
}

void stepRemoveFile(Undo& undo, const QString& path) {
  const files::ReadResult before = files::readFile(path);
  if (before.missing) return;
  if (!before.ok) throw Failure(platform::failure::permissionDenied, before.error);
  require(files::removeFile(path, before.fingerprint), path);
  undo.add([path, before] {
    require(files::replaceFile(path, before.bytes, files::Fingerprint{}, files::FileMode::OwnerOnly), path);
  });
}

void stepMakeFolder(Undo& undo, const QString& folder, bool ownerOnly) {
  if (QDir(folder).exists()) return;
  const QString around = QFileInfo(folder).absolutePath();
  if (around == folder) throw Failure(platform::failure::pathNotFound, texts::folderNotThere.arg(folder));
  stepMakeFolder(undo, around, ownerOnly);
  if (!QDir().mkdir(folder))
    throw Failure(platform::failure::permissionDenied, texts::folderNotWritable.arg(around));
  // one that holds something by now, put there by somebody else, stays
  undo.add([folder] { QDir().rmdir(folder); });
  if (ownerOnly) QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void stepMakeDatabase(Undo& undo, const QString& folder) {
  stepMakeFolder(undo, folder, false);
  const QString path = databaseIn(folder);
  // what is there is never replaced: it may have come since the user was told that the place is free
  if (holdsDatabase(folder)) throw Failure(platform::failure::permissionDenied, texts::databaseExists);
  const auto failure = tolerate([&] { createDatabase(folder); });
  if (failure) {
    QFile::remove(path);
    throw *failure;
  }
  undo.add([path] {
    if (!QFile::remove(path)) throw Failure(platform::failure::permissionDenied, path);
  });
}

}  // namespace hourbook
