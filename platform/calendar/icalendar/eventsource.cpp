#include "platform/calendar/icalendar/eventsource.h"

#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/editor.h"
#include "platform/calendar/icalendar/limits.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QSet>

#include <chrono>
#include <filesystem>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace platform::calendar::icalendar {
namespace {

namespace fs = std::filesystem;

fs::path native(const QString& path) {
  return fs::path(path.toStdU16String());
}

qint64 nanoseconds(fs::file_time_type time) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
}

struct Identity {
  quint64 inode = 0;  // 0 where the system has no such thing
  qint64 changedNs = 0;
};

Identity identityOf(const fs::path& path) {
#ifdef Q_OS_UNIX
  struct stat found {};
  if (::stat(path.c_str(), &found) == 0) {
    const auto changed = fs::file_time_type::clock::from_sys(std::chrono::sys_time<std::chrono::nanoseconds>(
        std::chrono::seconds(found.st_ctim.tv_sec) + std::chrono::nanoseconds(found.st_ctim.tv_nsec)));
    return {found.st_ino, nanoseconds(changed)};
  }
#else
  static_cast<void>(path);
#endif
  return {};
}

/// A file's name as a text. Of a name that is not in UTF-8 the bytes that are no letters become U+FFFD; such
/// a text does not lead back to the file. (The path's own conversion would throw.)
QString nameOf(const fs::path& path) {
  return QString::fromStdString(path.filename().string());
}

/// What a link leads to is what is written; also one that leads to a file that is yet to be made.
QFileInfo writtenThrough(const QString& path) {
  const QFileInfo info(path);
  const QString real = info.canonicalFilePath();
  if (!real.isEmpty()) return QFileInfo(real);
  return QFileInfo(info.isSymLink() ? info.symLinkTarget() : path);
}

/// The files that the links among a folder's calendar files lead to, by their folders.
QHash<QString, QSet<QString>> linkedFrom(const QString& path) {
  constexpr qsizetype maxFolders = 100;  // each is listed
  QHash<QString, QSet<QString>> found;
  std::error_code error;
  fs::directory_iterator entry(native(path), error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code ignored;
    const QString name = nameOf(entry->path());
    if (name.startsWith(u'.') || !name.endsWith(u".ics", Qt::CaseInsensitive) || !entry->is_symlink(ignored))
      continue;
    const QFileInfo file = writtenThrough(path + u'/' + name);
    if (!file.isDir() && (found.contains(file.path()) || found.size() < maxFolders))
      found[file.path()].insert(file.fileName());
  }
  return found;
}

[[noreturn]] void fail(qint32 number, const QString& label, const QString& text) {
  throw Failure(number, QStringLiteral("Calendar \"%1\": %2").arg(label, text),
                QStringLiteral("IcalendarStore"));
}

}  // namespace

FileCache::FileCache(QString path, QString label) : path_(std::move(path)), label_(std::move(label)) {}

bool FileCache::isFolder() const {
  std::error_code none;
  return fs::is_directory(native(path_), none);
}

QString FileCache::pathOf(const QString& name) const {
  return isFolder() ? path_ + u'/' + name : path_;
}

QMap<QString, FileCache::Stamp> FileCache::stamps() const {
  QMap<QString, Stamp> found;
  std::error_code error;
  const fs::path root = native(path_);
  const auto add = [&](const QString& name, const fs::directory_entry& file) {
    std::error_code ignored;
    const auto time = file.last_write_time(ignored);
    const auto size = file.is_regular_file(ignored) ? file.file_size(ignored) : 0;
    const Identity identity = identityOf(file.path());
    // a link that leads nowhere has no time
    found.insert(name, {time == fs::file_time_type::min() ? 0 : nanoseconds(time), static_cast<qint64>(size),
                        identity.inode, identity.changedNs});
  };
  const fs::file_status status = fs::status(root, error);
  if (!fs::exists(status)) fail(errNotFound, label_, QStringLiteral("\"%1\" does not exist.").arg(path_));
  if (!fs::is_directory(status)) {
    add(nameOf(root), fs::directory_entry(root, error));
    return found;
  }
  fs::directory_iterator entry(root, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const QString name = nameOf(entry->path());
    std::error_code ignored;
    if (!name.startsWith(u'.') && name.endsWith(u".ics", Qt::CaseInsensitive) &&
        !entry->is_directory(ignored))
      add(name, *entry);
  }
  if (error)  // also half-way: what is missing from a list that breaks off is not gone
    fail(error == std::errc::permission_denied ? errAccessDenied : errStoreBroken, label_,
         QStringLiteral("the folder \"%1\" cannot be read: %2")
             .arg(path_, QString::fromStdString(error.message())));
  return found;
}

void FileCache::read(const QString& name, const Stamp& stamp) {
  const bool one = !isFolder();
  // told before the file is read: what is written behind that has another time
  const bool settled =
      isSettled(nanoseconds(fs::file_time_type::clock::now()), stamp.mtimeNs, stamp.changedNs);
  const files::ReadResult result =
      files::readFile(pathOf(name), one ? maxCalendarFileBytes : maxItemFileBytes);
  if (!result.ok && one)
    fail(result.missing  ? errNotFound
         : result.denied ? errAccessDenied
                         : errStoreBroken,
         label_, result.error);
  const auto ours = ours_.constFind(name);
  const bool isOurs = ours != ours_.cend() && ours->mtimeNs == stamp.mtimeNs && ours->size == stamp.size &&
                      ours->inode == stamp.inode;
  ours_.remove(name);
  Entry entry;
  entry.stamp = stamp;
  entry.settled = settled;
  const auto before = entries_.constFind(name);
  const bool hadEvents = before != entries_.cend() && before->file;
  if (hadEvents && result.ok && before->file->document.bytes == result.bytes) {  // its times proved nothing
    entry.file = before->file;
    entries_.insert(name, std::move(entry));
    return;
  }
  const bool news = result.ok || before == entries_.cend() || before->error != result.error;
  if (news && !isOurs) ++others_;
  if (result.ok)
    entry.file = calendarFile(name, result.bytes);
  else if (name.contains(QChar::ReplacementCharacter))
    entry.error = QStringLiteral("The file's name is not in UTF-8, so the file was not read.");
  else
    entry.error = result.error;
  grouped_ = grouped_ && !entry.file && !hadEvents;
  entries_.insert(name, std::move(entry));
}

void FileCache::refresh() {
  const QMap<QString, Stamp> now = stamps();
  for (auto entry = entries_.begin(); entry != entries_.end();) {
    if (now.contains(entry.key())) {
      ++entry;
    } else {
      entry = entries_.erase(entry);
      grouped_ = false;
      ++others_;
    }
  }
  for (auto found = now.begin(); found != now.end(); ++found) {
    const auto known = entries_.constFind(found.key());
    // a read that failed may have more luck this time
    const bool again = known != entries_.cend() && (!known->settled || !known->file);
    if (known == entries_.cend() || known->stamp != found.value() || again) read(found.key(), found.value());
  }
  if (!grouped_) regroup();
}

void FileCache::regroup() {
  groups_.clear();
  for (const Entry& entry : std::as_const(entries_)) {
    if (!entry.file) continue;
    for (const Event& event : entry.file->events) {
      Group& group = groups_[event.uid];
      (event.isOverride() ? group.overrides : group.masters).append({entry.file, &event});
    }
  }
  grouped_ = true;
}

QList<Group> FileCache::between(qint64 from, qint64 to) {
  refresh();
  const auto touches = [&](const EventRef& ref) {
    if (!ref.event->start)
      return from == std::numeric_limits<qint64>::min() && to == std::numeric_limits<qint64>::max();
    return ref.event->earliest() <= to && ref.event->latest() >= from;
  };
  QList<Group> found;
  for (const Group& group : std::as_const(groups_))
    if (std::any_of(group.masters.begin(), group.masters.end(), touches) ||
        std::any_of(group.overrides.begin(), group.overrides.end(), touches))
      found.append(group);
  return found;
}

Group FileCache::withUid(const QString& uid) {
  refresh();
  return groups_.value(uid);
}

qint64 FileCache::countUpTo(qint64 most) {
  refresh();
  qint64 count = 0;
  for (auto entry = entries_.cbegin(); entry != entries_.cend() && count < most; ++entry)
    if (entry->file) count += static_cast<qint64>(entry->file->events.size());
  return qMin(count, most);
}

QList<Problem> FileCache::problems() {
  refresh();
  QList<Problem> all;
  for (auto entry = entries_.cbegin(); entry != entries_.cend(); ++entry) {
    if (entry->file)
      all += entry->file->problems;
    else
      all.append({entry.key(), 0, entry->error});
  }
  return all;
}

std::shared_ptr<const CalendarFile> FileCache::parsed(const QString& name, const QByteArray& bytes) const {
  const auto known = entries_.constFind(name);
  if (known != entries_.cend() && known->file && known->file->document.bytes == bytes) return known->file;
  return calendarFile(name, bytes);
}

Snapshot FileCache::snapshot(const QString& name, const QString& uid) {
  const QString path = pathOf(name);
  const files::ReadResult result = files::readFile(path);
  if (!result.ok)
    fail(result.missing  ? errNotFound
         : result.denied ? errAccessDenied
                         : errStoreBroken,
         label_, result.error);
  Snapshot snapshot;
  snapshot.name = name;
  snapshot.fingerprint = result.fingerprint;
  snapshot.whole = parsed(name, result.bytes);
  const Document& document = snapshot.whole->document;
  for (const Event& event : snapshot.whole->events)
    if (event.uid == uid) snapshot.events.append({snapshot.whole, &event});
  for (const Component& component : document.components)
    if (component.name == "VCALENDAR") snapshot.newEventAt = component.bodyEnd;
  snapshot.lineEnd = lineEndOf(document.bytes);
  snapshot.isEmpty = document.bytes.trimmed().isEmpty();
  return snapshot;
}

void FileCache::written(const QString& name, const QList<files::Splice>&, const files::Fingerprint& after) {
  entries_.remove(name);
  const auto time = fs::file_time_type::clock::from_sys(
      std::chrono::sys_time<std::chrono::nanoseconds>(std::chrono::nanoseconds(after.mtimeNs)));
  ours_.insert(name, {nanoseconds(time), after.size, after.inode, 0});
  grouped_ = false;
}

void FileCache::forget() {
  entries_.clear();
  groups_.clear();
  grouped_ = false;
}

void FileCache::sweep() {
  const auto now = std::chrono::steady_clock::now();
  if (swept_ && now - *swept_ < sweepPause_) return;
  swept_ = now;
  constexpr qint64 olderThanSeconds = 3600;
  QHash<QString, QSet<QString>> elsewhere;  // the files in other folders that are written as this calendar's
  if (isFolder()) {
    files::sweepLitter(path_, olderThanSeconds,
                       [](const QString& target) { return target.endsWith(u".ics", Qt::CaseInsensitive); });
    elsewhere = linkedFrom(path_);
  } else {
    const QFileInfo file = writtenThrough(path_);
    elsewhere[file.path()].insert(file.fileName());
  }
  for (auto folder = elsewhere.cbegin(); folder != elsewhere.cend(); ++folder)
    files::sweepLitter(folder.key(), olderThanSeconds,
                       [&](const QString& target) { return folder->contains(target); });
}

QString FileCache::othersTag(Look look) {
  constexpr std::chrono::seconds pause(2);  // every glance looks at every file
  const auto now = std::chrono::steady_clock::now();
  if (look == Look::Thorough || !looked_ || now - *looked_ >= pause) {
    refresh();
    looked_ = std::chrono::steady_clock::now();
  }
  return QString::number(others_);
}

QString FileCache::changeTag() {
  QCryptographicHash hash(QCryptographicHash::Sha1);
  const QMap<QString, Stamp> now = stamps();
  for (auto found = now.begin(); found != now.end(); ++found)
    hash.addData(QStringLiteral("%1\n%2\n%3\n%4\n%5\n")
                     .arg(found.key())
                     .arg(found->mtimeNs)
                     .arg(found->size)
                     .arg(found->inode)
                     .arg(found->changedNs)
                     .toUtf8());
  return QString::fromLatin1(hash.result().toHex());
}

}  // namespace platform::calendar::icalendar
