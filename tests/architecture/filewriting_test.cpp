#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

// One function writes users' files, so that none of them can be lost half-written. Whoever opens a file for
// writing in another way goes round it, so the sources are read for the ways there are. Tests, and the
// programs in companions/ that make files of their own from nothing, may; temporary files may as well.

namespace {

struct Way {
  const char* words;
  QRegularExpression pattern;
};

const QList<Way>& ways() {
  const auto words = [](const char* pattern) { return QRegularExpression(QString::fromLatin1(pattern)); };
  static const QList<Way> all{
      {"a QFile opened for writing",
       words(R"(\b(WriteOnly|ReadWrite|(QIODevice|QFile|QIODeviceBase)::Append)\b)")},
      {"QSaveFile", words(R"(\bQSaveFile\b)")},
      {"a stream of the standard library", words(R"(\bstd::(basic_)?(o|w)?(fstream|ofstream)\b|<fstream>)")},
      {"fopen for writing", words(R"(\bf(re|d)?open(64)?\s*\([^;]*"[wa+r]*[wa+][wab+]*")")},
      {"open for writing", words(R"(\bO_(WRONLY|RDWR|CREAT|TRUNC|APPEND)\b)")},
      {"creat or mkstemp", words(R"(\b(creat|mkstemps?|mkostemp)\s*\()")},
      {"QSettings", words(R"(\bQSettings\s*[({]|\bQSettings\s+\w+|<QSettings>)")},
      {"QFile::copy or rename", words(R"(\bQ(File|Dir)(\(\))?(::|\.)(copy|rename)\s*\()")},
  };
  return all;
}

struct Room {
  const char* path;
  const char* reason;
};

/// Where writing is at home. A line here needs a reason that a reader believes.
const QList<Room>& rooms() {
  static const QList<Room> all{
      {"platform/files/", "the one function"},
      {"platform/registry/ini/initext.cpp", "QSettings works on a private temporary copy"},
      {"app/Configuration.cpp", "QSettings reads"},
      {"platform/sql/sqlite/lockfile.cpp", "opened for a lock over a network, never written to"},
      {"platform/calendar/icalendar/index/",
       "SQLite keeps the index, which is no file of the user's and is made anew"},
  };
  return all;
}

bool isAllowed(const QString& file) {
  for (const Room& room : rooms())
    if (file.startsWith(QString::fromLatin1(room.path))) return true;
  return false;
}

/// The code of a source without its comments, which may speak of anything. Lines are kept.
QString codeOf(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qUtf8Printable(path);
  QString code = QString::fromUtf8(file.readAll());
  // Not behind a colon: "http://" in a text is no comment.
  static const QRegularExpression lineComment(QStringLiteral("(?<!:)//[^\n]*"));
  return code.remove(lineComment);
}

QStringList waysIn(const QString& code) {
  QStringList found;
  int number = 0;
  for (const QString& line : code.split(u'\n')) {
    ++number;
    for (const Way& way : ways())
      if (way.pattern.match(line).hasMatch())
        found.append(QStringLiteral("%1: %2").arg(number).arg(QString::fromLatin1(way.words)));
  }
  return found;
}

QStringList sources() {
  QStringList all;
  const QDir root(QStringLiteral(HOURBOOK_SOURCE_DIR));
  for (const char* folder :
       {"app", "shell", "outlook", "database", "settings", "reporting", "workspace", "billing", "platform"}) {
    QDirIterator files(root.filePath(QString::fromLatin1(folder)),
                       {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) all.append(root.relativeFilePath(files.next()));
  }
  all.sort();
  return all;
}

}  // namespace

TEST(FileWriting, HappensInOnePlaceOnly) {
  const QDir root(QStringLiteral(HOURBOOK_SOURCE_DIR));
  const QStringList files = sources();
  ASSERT_GT(files.size(), 50) << "the source tree was not found";
  for (const QString& file : files) {
    if (isAllowed(file)) continue;
    for (const QString& way : waysIn(codeOf(root.filePath(file))))
      ADD_FAILURE() << qUtf8Printable(file) << ':' << qUtf8Printable(way)
                    << ". Files are written by platform::files::replaceFile().";
  }
}

TEST(FileWriting, HasNoRoomThatIsNotUsed) {
  const QDir root(QStringLiteral(HOURBOOK_SOURCE_DIR));
  for (const Room& room : rooms()) {
    bool used = false;
    for (const QString& file : sources())
      used = used || (file.startsWith(QString::fromLatin1(room.path)) &&
                      !waysIn(codeOf(root.filePath(file))).isEmpty());
    EXPECT_TRUE(used) << room.path << " needs no exception any more";
  }
}

TEST(FileWriting, IsRecognisedInEachOfItsWays) {
  for (const char* code :
       {"file.open(QIODevice::WriteOnly)", "file.open(QFile::ReadWrite | QFile::Text)",
        "open(QIODevice::Append)", "QSaveFile file(path);", "std::ofstream out(path);", "std::fstream both;",
        "#include <fstream>", "fopen(path, \"w\")", "fopen(path, \"ab\")", "fopen(path, \"r+\")",
        "::open(path, O_WRONLY | O_TRUNC)", "openat(folder, name, O_RDWR)", "mkstemp(name)",
        "QSettings settings(path, QSettings::IniFormat);", "QFile::copy(from, to)",
        "QDir().rename(from, to)"})
    EXPECT_EQ(waysIn(QString::fromLatin1(code)).size(), 1) << code;
  for (const char* code :
       {"file.open(QIODevice::ReadOnly)", "fopen(path, \"r\")", "fopen(path, \"rb\")",
        "std::ifstream in(path);", "list.append(QFile())", "recordset.open(adReadWriteNot)"})
    EXPECT_TRUE(waysIn(QString::fromLatin1(code)).isEmpty()) << code;
}
