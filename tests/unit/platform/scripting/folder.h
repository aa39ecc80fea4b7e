#pragma once
#include "platform/basic/failure.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <functional>
#include <gtest/gtest.h>

namespace tests {

struct ScriptingTest : testing::Test {
  QTemporaryDir dir;

  QString path(const QString& name) const { return dir.filePath(name); }
  void put(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }
  QByteArray content(const QString& name) const {
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }
  QStringList names() const {
    return QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
  }
  void makeReadOnly(const QString& name) const {
    ASSERT_TRUE(QFile::setPermissions(path(name), QFile::ReadOwner | QFile::ReadGroup));
  }
  static void expectFailure(qint32 number, const QString& description, const std::function<void()>& work) {
    try {
      work();
      ADD_FAILURE() << "no failure; expected " << number;
    } catch (const platform::Failure& failure) {
      EXPECT_EQ(failure.number(), number) << qUtf8Printable(failure.description());
      EXPECT_EQ(failure.description(), description);
    }
  }
};

}  // namespace tests
