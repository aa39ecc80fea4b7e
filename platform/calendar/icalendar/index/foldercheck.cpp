#include "platform/calendar/icalendar/index/foldercheck.h"

#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <exception>
#include <numeric>

namespace platform::calendar::icalendar::index {
namespace {

constexpr qsizetype maxNames = 5000;

}  // namespace

KnownFiles::KnownFiles(Database& database) {
  std::vector<Known> files;
  std::vector<quint32> ids;
  const auto count = database.number("SELECT count(*) FROM file").value_or(0);
  files.reserve(static_cast<size_t>(count));
  ids.reserve(static_cast<size_t>(count));
  Rows rows = database.ask("SELECT name, stamp, id FROM file");
  while (rows.next()) {
    files.push_back({checksumOf(rows.bytes(0)), rows.bits(1)});
    ids.push_back(static_cast<quint32>(rows.number(2)));
  }
  std::vector<quint32> order(files.size());
  std::iota(order.begin(), order.end(), 0U);
  std::sort(order.begin(), order.end(), [&](quint32 a, quint32 b) { return files[a].name < files[b].name; });
  files_.reserve(files.size());
  ids_.reserve(files.size());
  for (const quint32 at : order) {
    files_.push_back(files[at]);
    ids_.push_back(ids[at]);
  }
  seen_.resize(files_.size(), false);
}

KnownFiles::State KnownFiles::see(const QString& name, quint64 stamp) {
  const quint64 wanted = checksumOf(name.toUtf8());
  const auto found = std::lower_bound(files_.begin(), files_.end(), wanted,
                                      [](const Known& known, quint64 sum) { return known.name < sum; });
  if (found == files_.end() || found->name != wanted) return State::Unknown;
  seen_[static_cast<size_t>(found - files_.begin())] = true;
  return found->stamp == stamp ? State::Same : State::Other;
}

QList<qint64> KnownFiles::unseen() const {
  QList<qint64> missing;
  for (size_t i = 0; i < seen_.size(); ++i)
    if (!seen_[i]) missing.append(ids_[i]);
  return missing;
}

FolderCheck::FolderCheck(QString path, bool isFolder, QString databasePath, quint64 identity)
    : path_(std::move(path)),
      isFolder_(isFolder),
      databasePath_(std::move(databasePath)),
      identity_(identity) {}

FolderCheck::~FolderCheck() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
}

void FolderCheck::start() {
  if (thread_.joinable()) return;
  done_ = false;
  try {
    thread_ = std::thread([this] {
      Differences found = look();
      const std::lock_guard lock(mutex_);
      found_ = std::move(found);
      done_ = true;
      finished_.notify_all();
    });
  } catch (const std::exception&) {  // the system has no thread, or no memory, to spare
    found_ = {};
    found_.failed = true;
    done_ = true;
  }
}

std::optional<FolderCheck::Differences> FolderCheck::take(int waitMs) {
  if (!thread_.joinable() && !done_) return std::nullopt;
  {
    std::unique_lock lock(mutex_);
    if (!finished_.wait_for(lock, std::chrono::milliseconds(waitMs), [&] { return done_; }))
      return std::nullopt;
  }
  if (thread_.joinable()) thread_.join();
  done_ = false;
  return std::exchange(found_, {});
}

bool FolderCheck::isDone() {
  const std::lock_guard lock(mutex_);
  return done_;
}

void FolderCheck::lookAtFolder(Database& database, Differences& found) const {
  KnownFiles known(database);
  const bool whole = listFolder(path_, [&](const QString& name, const DiskState& state) {
    if (known.see(name, state.stamp) != KnownFiles::State::Same) found.names.append(name);
    return !stop_ && found.names.size() < maxNames;
  });
  const QList<qint64> gone = known.unseen();
  found.failed = !whole || stop_ || found.names.size() + gone.size() >= maxNames;
  if (found.failed) return;
  for (const qint64 id : gone) {
    Rows rows = database.ask("SELECT name FROM file WHERE id = ?", id);
    if (rows.next()) found.names.append(rows.text(0));
  }
}

FolderCheck::Differences FolderCheck::look() const {
  Differences found;
  try {
    Database database(databasePath_, identity_, Database::Access::ReadWrite);
    if (isFolder_) {
      lookAtFolder(database, found);
    } else {
      const QString name = QFileInfo(path_).fileName();
      const auto known = fileNamed(database, name);
      if (!known || known->stamp != stateOf(path_).stamp) found.names.append(name);
    }
  } catch (const IndexFailure&) {
    found.failed = true;  // whoever takes the result finds the same out by himself
  } catch (const std::bad_alloc&) {
    found.failed = true;
  }
  return found;
}

}  // namespace platform::calendar::icalendar::index
