#include "reporting/cReportJournal.h"

#include "platform/basic/failure.h"
#include "platform/files/atomicfile.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
namespace files = platform::files;

namespace {

constexpr qint64 mostBytes = 16 * 1024 * 1024;  // of a file that is ours; 199 rows take a tenth of a megabyte
constexpr int digits = 8;
constexpr int mostNames = 1000;
const QString prefix = u"report-"_s, suffix = u".json"_s;

[[noreturn]] void failWith(const QString& error) {
  throw Failure(platform::failure::permissionDenied, u"The journal of reports cannot be kept: "_s + error);
}

int numberOf(const QString& name) {
  return name.mid(prefix.size(), name.size() - prefix.size() - suffix.size()).toInt();
}

/// Whatever bears such a name, left-overs of earlier ones that were set aside included.
int highestNumber(const QString& folder) {
  int highest = 0;
  for (const QString& name :
       QDir(folder).entryList({prefix + u'*'}, QDir::Files | QDir::System | QDir::Hidden))
    highest = qMax(highest, name.mid(prefix.size(), digits).toInt());
  return highest;
}

}  // namespace

std::unique_ptr<files::FileLock> cReportJournal::Lock() const {
  QString error = files::makePrivateFolder(folder_);
  std::unique_ptr<files::FileLock> lock;
  if (error.isEmpty()) lock = files::FileLock::tryTake(folder_ + u"/lock"_s, &error);
  if (!error.isEmpty()) failWith(error);
  if (lock) files::sweepLitter(folder_);  // what a crash has left of a journal
  return lock;
}

QStringList cReportJournal::Files() const {
  QStringList found;
  for (const QString& name :
       QDir(folder_).entryList({prefix + u'*' + suffix}, QDir::Files | QDir::System | QDir::Hidden))
    if (numberOf(name) > 0) found.append(folder_ + u'/' + name);
  std::sort(found.begin(), found.end(), [](const QString& a, const QString& b) {
    return numberOf(QFileInfo(a).fileName()) < numberOf(QFileInfo(b).fileName());
  });
  return found;
}

ReportRun cReportJournal::Read(const QString& file) try {
  const files::ReadResult found = files::readFile(file, mostBytes);
  if (!found.ok) throw Failure(platform::failure::permissionDenied, found.error);
  return fncRunOfJournalText(found.bytes);
} catch (const Failure& failure) {
  const QString name = failure.description().contains(file) ? QString() : file + u": "_s;
  throw Failure(failure.number(), name + failure.description());
}

QString cReportJournal::Add(const ReportRun& run) const {
  for (int number = highestNumber(folder_) + 1;; ++number) {
    const QString file = folder_ + u'/' + prefix + u"%1"_s.arg(number, digits, 10, QChar(u'0')) + suffix;
    const auto written =
        files::replaceFile(file, fncJournalText(run), files::Fingerprint{}, files::FileMode::OwnerOnly);
    if (written.outcome == files::Outcome::Failed) failWith(written.error);
    if (written.outcome == files::Outcome::Written) return file;
  }
}

void cReportJournal::Write(const QString& file, const ReportRun& run) {
  const auto written =
      files::replaceFile(file, fncJournalText(run), std::nullopt, files::FileMode::OwnerOnly);
  if (written.outcome != files::Outcome::Written) failWith(written.error);
}

void cReportJournal::Remove(const QString& file) {
  const auto removed = files::removeFile(file);
  if (removed.outcome != files::Outcome::Written) failWith(removed.error);
}

bool cReportJournal::MarkTold(const QString& file) {
  const QString mark = file + u".told"_s;
  if (QFileInfo::exists(mark)) return false;
  const auto made = files::replaceFile(mark, {}, std::nullopt, files::FileMode::OwnerOnly);
  if (made.outcome != files::Outcome::Written) failWith(made.error);
  return true;
}

QString cReportJournal::SetAside(const QString& file) {
  const QFileInfo info(file);
  for (int n = 1; n <= mostNames; ++n) {
    const QString name = info.fileName() + u".unreadable"_s + (n == 1 ? QString() : u"-%1"_s.arg(n));
    const auto renamed = files::renameFile(file, name);
    if (renamed.outcome == files::Outcome::Written) return info.path() + u'/' + name;
    if (renamed.outcome == files::Outcome::Failed) failWith(renamed.error);
  }
  failWith(u"%1: there are too many of its name."_s.arg(file));
}

}  // namespace hourbook
