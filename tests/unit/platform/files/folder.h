#pragma once
#include "platform/files/posix/systemcalls.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tests {

/// A folder for one test, and plain ways of putting files there and of looking at them, that share no code
/// with what is tested.
class TestFolder {
 public:
  QString path(const QString& name) const { return dir_.filePath(name); }
  QByteArray encoded(const QString& name) const { return QFile::encodeName(path(name)); }

  void put(const QString& name, const QByteArray& bytes, mode_t mode = 0644) const {
    const int file = ::open(encoded(name).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(file, 0);
    ASSERT_EQ(::write(file, bytes.constData(), size_t(bytes.size())), bytes.size());
    ASSERT_EQ(::fchmod(file, mode), 0);
    ASSERT_EQ(::close(file), 0);
  }
  QByteArray content(const QString& name) const {
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }
  struct stat status(const QString& name) const {
    struct stat found {};
    EXPECT_EQ(::lstat(encoded(name).constData(), &found), 0);
    return found;
  }
  mode_t mode(const QString& name) const { return status(name).st_mode & 07777; }
  void setTime(const QString& name, const timespec& time) const {
    const timespec times[2] = {time, time};
    ASSERT_EQ(::utimensat(AT_FDCWD, encoded(name).constData(), times, 0), 0);
  }
  /// Whether the system tells here of who has a file open for writing; not on network file systems.
  bool tellsOfWriters() const {
    const QString probe = QStringLiteral("probe");
    put(probe, "x");
    const int writer = ::open(encoded(probe).constData(), O_RDWR | O_CLOEXEC);
    const int reader = ::open(encoded(probe).constData(), O_RDONLY | O_CLOEXEC);
    const auto lease = platform::files::SystemCalls::ofTheSystem().lease;
    const bool refused = lease(reader) < 0 && errno == EAGAIN;
    ::close(writer);
    const bool tells = refused && lease(reader) == 0;  // servers refuse it always
    ::close(reader);
    ::unlink(encoded(probe).constData());
    return tells;
  }
  /// Everything that stands there, hidden files included.
  QStringList names() const {
    return QDir(dir_.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
  }

 private:
  QTemporaryDir dir_;
};

}  // namespace tests
