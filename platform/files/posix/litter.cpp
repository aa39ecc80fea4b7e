#include "platform/files/posix/litternames.h"
#include "platform/files/posix/place.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <unistd.h>

namespace platform::files {

namespace {

constexpr qsizetype longestName = 255;
constexpr qsizetype randomLetters = 6;
constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";

/// Behind the target's name: a dot, the random letters and the ending.
constexpr qsizetype tailLength = 1 + randomLetters + 4;

/// A long name is cut, at the border of a character.
QByteArray cutName(const QByteArray& name, qsizetype length) {
  if (name.size() <= length) return name;
  while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) --length;
  return name.left(length);
}

/// May the target's name have been longer?
bool mayBeCut(const QByteArray& name) {
  constexpr qsizetype longestLetter = 4;
  return name.size() > longestName - longestLetter;
}

}  // namespace

QByteArray temporaryName(const QByteArray& targetName) {
  QByteArray random;
  for (qsizetype i = 0; i < randomLetters; ++i)
    random += letters[QRandomGenerator::system()->bounded(int(sizeof letters) - 1)];
  const QByteArray tail = '.' + random + ".tmp";
  return '.' + cutName(targetName, longestName - 1 - tail.size()) + tail;
}

bool isTemporaryName(const QByteArray& name) {
  static const QRegularExpression pattern(QStringLiteral("^\\..+\\.[a-z0-9]{6}\\.tmp$"),
                                          QRegularExpression::DotMatchesEverythingOption);
  return pattern.match(QString::fromLatin1(name)).hasMatch();
}

int sweepLitter(const QString& folder, qint64 olderThanSeconds,
                const std::function<bool(const QString& target)>& whose) {
  const SystemCalls& calls = SystemCalls::current();
  const QStringList names = QDir(folder).entryList({QStringLiteral(".*.tmp")}, QDir::Files | QDir::Hidden);
  const qint64 youngest = QDateTime::currentSecsSinceEpoch() - olderThanSeconds;
  int swept = 0;
  for (const QString& name : names) {
    const QByteArray encoded = QFile::encodeName(name);
    if (!isTemporaryName(encoded)) continue;
    if (whose && !mayBeCut(encoded) && !whose(name.mid(1, name.size() - 1 - tailLength))) continue;
    const QByteArray path = QFile::encodeName(QDir(folder).filePath(name));
    struct stat found {};
    if (calls.fstatat(AT_FDCWD, path.constData(), &found, AT_SYMLINK_NOFOLLOW) < 0) continue;
    const bool ours = S_ISREG(found.st_mode) && found.st_uid == ::geteuid();
    if (ours && found.st_mtim.tv_sec < youngest && calls.unlinkat(AT_FDCWD, path.constData()) == 0) ++swept;
  }
  return swept;
}

}  // namespace platform::files
