#pragma once
#include <QDir>
#include <QFile>
#include <QStringList>

#include <gtest/gtest.h>

namespace tests {

/// The lines are those of the file that stands for them in tests/golden/database. With
/// HOURBOOK_WRITE_GOLDEN=1 the file is written instead, to be read before it is committed.
inline void expectGolden(const QString& name, const QStringList& lines) {
  const QString path = QStringLiteral(HOURBOOK_GOLDEN_DATABASE "/") + name;
  const QByteArray now = lines.join(u'\n').toUtf8() + '\n';
  QFile file(path);
  if (qEnvironmentVariableIsSet("HOURBOOK_WRITE_GOLDEN")) {
    QDir().mkpath(path.section(u'/', 0, -2));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    file.write(now);
    return;
  }
  ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << "There is no file to compare with: " << qPrintable(path);
  const QStringList expected = QString::fromUtf8(file.readAll()).chopped(1).split(u'\n');
  for (qsizetype i = 0; i < qMax(lines.size(), expected.size()); ++i)
    ASSERT_EQ(lines.value(i), expected.value(i)) << qPrintable(name) << ", line " << i + 1;
}

}  // namespace tests
