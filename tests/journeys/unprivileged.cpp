#include "unprivileged.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tests {

namespace {

constexpr uid_t nobody = 65534;

void give(const QString& path, uid_t owner) {
  EXPECT_EQ(::lchown(QFile::encodeName(path).constData(), owner, owner), 0) << qPrintable(path);
}

void giveAll(const QString& folder, uid_t owner) {
  ASSERT_TRUE(folder.contains(QStringLiteral("hourbook-")))
      << "Not a test's own folder: " << qPrintable(folder);
  give(folder, owner);
  QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                   QDirIterator::Subdirectories);
  while (all.hasNext()) give(all.next(), owner);
}

}  // namespace

Unprivileged::Unprivileged(const QString& folder)
    : wasRoot_(::getuid() == 0),
      // the second holds the home and the temporary files of this test program
      folders_{folder, QFileInfo(QDir::tempPath()).path()} {
  if (!wasRoot_) return;
  for (const QString& each : folders_) giveAll(each, nobody);
  // the saved user stays root, which leads back
  EXPECT_EQ(::setresgid(nobody, nobody, 0), 0);
  EXPECT_EQ(::setresuid(nobody, nobody, 0), 0);
}

Unprivileged::~Unprivileged() {
  if (!wasRoot_) return;
  EXPECT_EQ(::setresuid(0, 0, 0), 0);
  EXPECT_EQ(::setresgid(0, 0, 0), 0);
  // lost by the change of user; the leak check at the end of the program needs it
  EXPECT_EQ(::prctl(PR_SET_DUMPABLE, 1), 0);
  for (const QString& each : folders_) giveAll(each, 0);
}

void protect(const QString& path) {
  struct stat info {};
  const QByteArray name = QFile::encodeName(path);
  ASSERT_EQ(::stat(name.constData(), &info), 0) << name.constData();
  ASSERT_EQ(::chmod(name.constData(), info.st_mode & 0555), 0) << name.constData();
}

void unprotect(const QString& path) {
  struct stat info {};
  const QByteArray name = QFile::encodeName(path);
  ASSERT_EQ(::stat(name.constData(), &info), 0) << name.constData();
  ASSERT_EQ(::chmod(name.constData(), (info.st_mode & 0777) | 0200), 0) << name.constData();
}

}  // namespace tests
