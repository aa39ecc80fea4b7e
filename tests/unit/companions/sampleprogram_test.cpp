#include "tests/support/quickfolder.h"

#include <QDir>
#include <QFile>
#include <QProcess>

namespace {

using namespace Qt::StringLiterals;

struct Ended {
  int code;
  QString output, errors;
};

Ended sampledata(const QStringList& arguments) {
  constexpr int patience = 60000;
  QProcess program;
  program.start(QStringLiteral(SAMPLEDATA_PROGRAM), arguments);
  EXPECT_TRUE(program.waitForStarted(patience) && program.waitForFinished(patience))
      << qPrintable(program.errorString());
  return {program.exitCode(), QString::fromUtf8(program.readAllStandardOutput()),
          QString::fromUtf8(program.readAllStandardError())};
}

TEST(SampleProgram, MakesAProfile) {
  const QTemporaryDir home(tests::quickFolder(u"sample"_s));
  const QString folder = home.filePath(u"new"_s);
  const Ended ended = sampledata({u"--folder"_s, folder, u"--today"_s, u"2024-05-15"_s, u"--seed"_s, u"7"_s});
  EXPECT_EQ(ended.code, 0) << qPrintable(ended.errors);
  EXPECT_EQ(ended.output, u"A sample profile stands in %1\n"_s.arg(folder));
  for (const char* file : {"config/platform.ini", "config/registry.ini", "database/Hourbook3.mdb"})
    EXPECT_TRUE(QFile::exists(folder + u'/' + QString::fromLatin1(file))) << file;
  EXPECT_GT(QDir(folder + u"/calendar"_s).entryList({u"sample-7-*.ics"_s}).size(), 100);
}

TEST(SampleProgram, RefusesAFolderThatHoldsSomething) {
  const QTemporaryDir home(tests::quickFolder(u"sample"_s));
  QFile file(home.filePath(u"mine.txt"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.close();
  const Ended ended = sampledata({u"--folder"_s, home.path()});
  EXPECT_EQ(ended.code, 1);
  EXPECT_EQ(
      ended.errors,
      u"hourbook-sampledata: The folder %1 is not empty. A sample profile is only made in an empty one.\n"_s
          .arg(home.path()));
  EXPECT_EQ(QDir(home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"mine.txt"_s});
}

TEST(SampleProgram, NamesTheArgumentThatIsWrong) {
  const QTemporaryDir home(tests::quickFolder(u"sample"_s));
  const QString folder = home.filePath(u"new"_s);
  EXPECT_EQ(sampledata({}).errors, u"hourbook-sampledata: --folder is missing.\n"_s);
  EXPECT_EQ(sampledata({u"--folder"_s, folder, u"--seed"_s, u"one"_s}).errors,
            u"hourbook-sampledata: --seed takes a whole number.\n"_s);
  const Ended ended = sampledata({u"--folder"_s, folder, u"--today"_s, u"15 May"_s});
  EXPECT_EQ(ended.errors, u"hourbook-sampledata: --today takes a date such as 2024-05-15.\n"_s);
  EXPECT_EQ(ended.code, 1);
  EXPECT_FALSE(QDir(folder).exists());
}

}  // namespace
