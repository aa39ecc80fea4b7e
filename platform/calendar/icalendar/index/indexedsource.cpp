#include "platform/calendar/icalendar/index/indexedsource.h"

#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/index/indexsweep.h"
#include "platform/calendar/icalendar/index/packs.h"
#include "platform/calendar/icalendar/limits.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <limits>

namespace platform::calendar::icalendar {

using namespace index;

namespace {

constexpr int maxAttempts = 4;  // against files that change while they are read
constexpr int maxFailures = 3;  // of the index itself, before this process goes without
constexpr std::chrono::seconds retryAfter{10};
constexpr int longestCheckMs = 120'000;
constexpr int maxResettled = 500;  // files for one question
constexpr qint64 noBoundBelow = std::numeric_limits<qint64>::min();
constexpr qint64 noBoundAbove = std::numeric_limits<qint64>::max();

}  // namespace

IndexedSource::IndexedSource(QString path, const QString& label, IndexOptions options)
    : path_(std::move(path)),
      options_(std::move(options)),
      cache_(path_, label),
      file_(options_.cacheFolder, QDir::cleanPath(QFileInfo(path_).absoluteFilePath())),
      ownName_(QFileInfo(path_).fileName()),
      nonce_(QString::number(QRandomGenerator::system()->generate64(), 36)) {}

IndexedSource::~IndexedSource() {
  try {
    rememberFolder();
  } catch (const IndexFailure&) {
    // then the next start looks at every file first
  }
}

// --- keeping in step

bool IndexedSource::ready() {
  const DiskState root = stateOf(path_);
  if (!root.exists || (!root.folder && !root.regular)) {
    close();
    return false;
  }
  const bool another =
      root.folder != isFolder_ || (root.folder && (root.device != rootDevice_ || root.inode != rootInode_));
  if (database_ && (another || database_->hasMoved())) close();
  if (!database_) {
    isFolder_ = root.folder;
    rootDevice_ = root.device;
    rootInode_ = root.inode;
    return open();
  }
  return true;
}

void IndexedSource::close() {
  check_.reset();
  hits_.reset();
  intake_.reset();
  database_.reset();
  watch_.end();
  following_ = false;
  pending_.clear();
  unsureTaken_ = false;
  changed(By::Others);
}

bool IndexedSource::open() {
  if (failures_ >= maxFailures || (taken_ && Clock::now() - *taken_ < retryAfter)) return false;
  taken_.reset();
  const DiskState root = stateOf(path_);
  database_ = file_.open();
  bool fresh = !database_;
  // before anything is read: what changes from here on is heard of
  following_ = fresh;
  if (fresh && options_.watches) watch_.begin(path_);
  try {
    if (fresh && !make()) return false;
  } catch (const IndexFailure& failure) {
    if (!failure.isBusy()) throw;
    database_ = file_.open();  // somebody may have made it meanwhile
    if (!database_) throw;
    following_ = false;
  }
  intake_.emplace(*database_, path_, isFolder_);
  hits_.emplace(*database_, path_, isFolder_);
  sweepIndexesOnce(options_.cacheFolder, file_.path());
  const auto known = isFolder_ ? database_->number("SELECT stamp FROM calendar").value_or(0) : 0;
  asItWas_ = !isFolder_ || (known != 0 && static_cast<quint64>(known) == root.stamp);
  return true;
}

/// From here on what changes is heard of; what has changed before is looked for in the background. A process
/// that asks but once is spared both: all that it shows is compared with the files, and that a file came or
/// went the folder tells.
void IndexedSource::follow() {
  following_ = true;
  unsureTaken_ = false;
  if (options_.watches) watch_.begin(path_);
  if (isFolder_) startCheck();
}

void IndexedSource::startCheck() {
  check_ = std::make_unique<FolderCheck>(path_, isFolder_, file_.path(), file_.identity());
  check_->start();
}

/// False when the calendar cannot be read.
bool IndexedSource::make() {
  bool readable = true;
  database_ = file_.make([&](Database& fresh) {
    if (isFolder_)
      readable = passAll(fresh);
    else
      Intake(fresh, path_, false).take(ownName_, stateOf(path_), false);
  });
  unsureTaken_ = watch_.isOn();
  if (readable) return true;
  discard();
  return false;
}

/// Away with it, unless somebody else uses it: then this one goes without for a while.
bool IndexedSource::discard() {
  close();
  const bool removed = file_.remove();
  if (!removed) taken_ = Clock::now();
  return removed;
}

bool IndexedSource::refresh(Wait wait) {
  const auto version = database_->number("PRAGMA data_version");
  // another process has taken something in
  if (std::exchange(version_, version) != version) changed(By::Others);
  if (!following_ && !(wait == Wait::Short && asItWas_)) follow();
  return isFolder_ ? refreshFolder(wait) : refreshOne();
}

/// Names of files that the folder does not tell of, and of those whose times prove nothing. Those that are
/// being heard of need not be read again, but a few of them are once their times do prove something, so that
/// they are not asked about for ever, nor all of them at the next start.
void IndexedSource::takeUnsure(QSet<QString>& linked, QSet<QString>& unsettled) {
  const bool quiet = watch_.isOn() && Clock::now() - lastTaken_ > std::chrono::nanoseconds(settlingNs);
  int resettled = 0;
  Rows rows = database_->ask("SELECT name, settled, linked, form FROM file WHERE settled = 0 OR linked = 1");
  while (rows.next()) {
    const bool isSettled = rows.number(1) != 0, isLinked = rows.number(2) != 0;
    // the folder does not tell when a file can be read again
    const bool isUnread = rows.number(3) == static_cast<int>(Form::Unread);
    if (isSettled)
      linked.insert(rows.text(0));
    else if (isLinked || isUnread || !unsureTaken_ || (quiet && ++resettled <= maxResettled))
      unsettled.insert(rows.text(0));
  }
  // what is dated ahead stays unsure, which need not cost at each question
  if (resettled > 0) lastTaken_ = Clock::now();
}

bool IndexedSource::takeOne(const DiskState& now, bool again) {
  Change change(*database_);
  const Intake::Result result = intake_->take(ownName_, now, again);
  change.commit();
  if (result != Intake::Result::Same) changed(By::Others);
  return result != Intake::Result::Odd && result != Intake::Result::Unread;
}

bool IndexedSource::refreshOne() {
  bool again = watch_.take().any;
  if (again) watch_.begin(path_);  // maybe it is another file now
  if (check_ && check_->isDone()) check_.reset(), lastPass_ = Clock::now();
  const DiskState now = stateOf(path_);
  auto row = fileNamed(*database_, ownName_);
  const bool heardOf = watch_.isOn() && unsureTaken_;
  again = again || (row && !row->settled && (row->form == Form::Unread || !heardOf));
  unsureTaken_ = true;
  if (!row || again || row->stamp != now.stamp) {
    if (!takeOne(now, again)) return false;
    row = fileNamed(*database_, ownName_);
  }
  return row && row->form != Form::Unread;
}

/// Where nothing is heard of, everything has to be looked at, at times.
bool IndexedSource::isDue() const {
  return !watch_.isOn() && !check_ &&
         (options_.checkEveryMs <= 0 ||
          Clock::now() - lastPass_ >= std::chrono::milliseconds(options_.checkEveryMs));
}

/// The names of the files that have to be compared, and of those to be read whatever their times say. False
/// when the folder cannot be read.
bool IndexedSource::takeNews(Wait wait, QSet<QString>& plain, QSet<QString>& again) {
  const Watch::News news = watch_.take();
  if (news.lost) {
    if (!watch_.begin(path_)) lastPass_ = {};
    if (!passAll(*database_)) return false;
    unsureTaken_ = false;  // of files whose times prove nothing, what was lost would have told
  }
  if (following_ && isDue()) {
    if (!passAll(*database_)) return false;
    unsureTaken_ = false;
  }
  again = std::exchange(pending_, {}) + news.names;
  if (!check_) return true;
  const int patience = wait == Wait::None   ? 0
                       : wait == Wait::Full ? longestCheckMs
                       : asItWas_           ? 0
                                            : options_.firstAnswerMs;
  if (const auto found = check_->take(patience)) {
    check_.reset();
    lastPass_ = Clock::now();
    if (!watch_.isOn()) unsureTaken_ = false;
    if (found->failed && !passAll(*database_)) return false;
    plain = QSet<QString>(found->names.begin(), found->names.end());
  }
  return true;
}

bool IndexedSource::refreshFolder(Wait wait) {
  QSet<QString> plain, again, unsettled;
  if (!takeNews(wait, plain, again)) return false;
  takeUnsure(plain, unsettled);
  again += unsettled;
  unsureTaken_ = true;
  takeFiles(plain - again, false);
  takeFiles(again, true);
  // such a name does not lead to its file; listing the folder does
  const auto isUnreadable = [](const QString& name) { return name.contains(QChar::ReplacementCharacter); };
  return std::none_of(again.begin(), again.end(), isUnreadable) || passAll(*database_);
}

void IndexedSource::takeFiles(QSet<QString> names, bool again) {
  if (!again)
    names.removeIf([&](const QString& name) {
      const auto row = fileNamed(*database_, name);
      return row && row->stamp == stateOf(path_ + u'/' + name).stamp;
    });
  if (names.isEmpty()) return;
  bool any = false;
  Change change(*database_);
  for (const QString& name : std::as_const(names)) {
    if (name.contains(QChar::ReplacementCharacter)) continue;
    any = intake_->take(name, stateOf(path_ + u'/' + name), again) != Intake::Result::Same || any;
  }
  change.commit();
  if (!any) return;
  lastTaken_ = Clock::now();
  changed(By::Others);
}

/// Looks at every file. False when the folder cannot be read.
bool IndexedSource::passAll(Database& database) {
  const DiskState root = stateOf(path_);
  const bool fresh = &database != database_.get();
  std::optional<Change> change;
  if (!fresh) change.emplace(database);
  Intake intake(database, path_, true);
  KnownFiles known(database);
  bool any = false;
  const bool whole = listFolder(path_, [&](const QString& name, const DiskState& state) {
    if (known.see(name, state.stamp) != KnownFiles::State::Same)
      any = intake.take(name, state, false) != Intake::Result::Same || any;
    return true;
  });
  if (!whole) return false;
  for (const qint64 gone : known.unseen()) {
    removeFile(database, gone);
    any = true;
  }
  database.run("UPDATE calendar SET stamp = ?", root.isSettled() ? root.stamp : 0);
  if (change) change->commit();
  check_.reset();
  lastPass_ = Clock::now();
  if (any || fresh) lastTaken_ = lastPass_;
  if (any) changed(By::Others);
  return true;
}

/// So that the next start need not look at every file before its first answer.
void IndexedSource::rememberFolder() {
  if (!database_ || !isFolder_ || !watch_.isOn() || check_) return;
  const DiskState root = stateOf(path_);
  const Watch::News news = watch_.take();
  if (news.any || !pending_.isEmpty() || !root.isSettled()) return;
  if (database_->number("SELECT stamp FROM calendar") != static_cast<qint64>(root.stamp))
    database_->run("UPDATE calendar SET stamp = ?", root.stamp);
}

void IndexedSource::changed(By by) {
  ++revision_;
  if (by == By::Others) ++others_;
  if (hits_) hits_->forget();
}

// --- questions

template <class Result, class Asked, class Otherwise>
Result IndexedSource::answered(Wait wait, const Asked& asked, const Otherwise& otherwise) {
  for (int attempt = 0; attempt < maxAttempts; ++attempt) {
    try {
      // closed where its rows may be behind the files, and nothing would tell of it again
      if (!ready()) {
        if (database_) close();
        break;
      }
      if (!refresh(wait)) {
        if (isFolder_) close();
        break;
      }
      if (!answeredFromIndex_) cache_.forget();
      answeredFromIndex_ = true;
      const Reading reading(*database_);
      return asked();
    } catch (const Stale& stale) {
      pending_.insert(stale.name);
      if (!isFolder_) unsureTaken_ = false;
      if (!isFolder_ && database_) {
        try {
          takeOne(stateOf(path_), true);
        } catch (const IndexFailure&) {
          close();
        }
      }
    } catch (const IndexFailure& failure) {
      if (failure.isBusy()) {  // another process is at it; this one goes without for a while
        if (database_)
          close();  // what was heard of is not taken in
        else
          taken_ = Clock::now();
        break;
      }
      if (discard()) ++failures_;
    }
  }
  answeredFromIndex_ = false;
  return otherwise();
}

QList<Group> IndexedSource::grouped(const QList<EventRef>& events) {
  QHash<QString, qsizetype> places;
  QList<Group> groups;
  for (const EventRef& ref : events) {
    auto place = places.constFind(ref.event->uid);
    if (place == places.cend()) {
      place = places.insert(ref.event->uid, groups.size());
      groups.append(Group());
    }
    Group& group = groups[*place];
    (ref.event->isOverride() ? group.overrides : group.masters).append(ref);
  }
  return groups;
}

QList<Group> IndexedSource::named(const QSet<quint64>& uids) {
  return grouped(hits_->named(uids));
}

QList<Group> IndexedSource::between(qint64 from, qint64 to) {
  const auto asked = [&] {
    if (from == noBoundBelow && to == noBoundAbove) return grouped(hits_->all());
    return named(uidsBetween(*database_, from, to));
  };
  const Wait wait = std::exchange(answeredOnce_, true) ? Wait::Full : Wait::Short;
  return answered<QList<Group>>(wait, asked, [&] { return cache_.between(from, to); });
}

Group IndexedSource::withUid(const QString& uid) {
  const auto asked = [&] {
    for (const Group& group : named({nameSum(uid)}))
      if ((group.masters.isEmpty() ? group.overrides : group.masters).first().event->uid == uid) return group;
    return Group();
  };
  return answered<Group>(Wait::Full, asked, [&] { return cache_.withUid(uid); });
}

QList<Group> IndexedSource::withSubject(const QString& subject) {
  const auto asked = [&] { return named(uidsWithSubject(*database_, nameSum(subject))); };
  const auto otherwise = [&] { return cache_.withSubject(subject); };
  if (!std::exchange(answeredOnce_, true)) {
    const QList<Group> found = answered<QList<Group>>(Wait::Short, asked, otherwise);
    if (!found.isEmpty()) return found;
    // whoever finds nothing may write it anew
  }
  return answered<QList<Group>>(Wait::Full, asked, otherwise);
}

qint64 IndexedSource::countUpTo(qint64 most) {
  const auto asked = [&] { return countEvents(*database_, most); };
  return answered<qint64>(Wait::Full, asked, [&] { return cache_.countUpTo(most); });
}

QList<Problem> IndexedSource::problems() {
  const auto asked = [&] {
    QList<FileRow> files;
    {
      Rows rows = database_->ask(
          "SELECT id, name, form, error FROM file WHERE form = 2 OR id IN (SELECT file FROM problem)");
      while (rows.next()) {
        FileRow row;
        row.id = rows.number(0);
        row.name = rows.text(1);
        row.form = static_cast<Form>(rows.number(2));
        row.error = rows.text(3);
        files.append(row);
      }
    }
    std::sort(files.begin(), files.end(), [](const FileRow& a, const FileRow& b) { return a.name < b.name; });
    QList<Problem> all;
    for (const FileRow& file : std::as_const(files)) all += problemsOf(file);
    return all;
  };
  return answered<QList<Problem>>(Wait::Full, asked, [&] { return cache_.problems(); });
}

/// In the order and in the number in which a file that is read in one go names them.
QList<Problem> IndexedSource::problemsOf(const FileRow& file) {
  if (file.form == Form::Unread) return {{file.name, 0, file.error}};
  QList<Problem> lines, events;
  Rows rows = database_->ask(
      "SELECT p.phase, p.line + coalesce(s.line, 0), p.text FROM problem p LEFT JOIN segment s ON s.id = "
      "p.segment "
      "WHERE p.file = ? ORDER BY coalesce(s.start, 0), p.id",
      file.id);
  while (rows.next()) {
    const Problem problem{file.name, static_cast<int>(rows.number(1)), rows.text(2)};
    (rows.number(0) == static_cast<int>(Phase::Lines) ? lines : events).append(problem);
  }
  if (file.form != Form::Parts) return lines;
  if (lines.size() > maxProblemsPerFile) {
    const qsizetype more = lines.size() - maxProblemsPerFile;
    lines.resize(maxProblemsPerFile);
    lines.append({file.name, 0, QStringLiteral("%1 more problems in this file.").arg(more)});
  }
  for (const Problem& problem : std::as_const(events))
    if (lines.size() < maxProblemsPerFile) lines.append(problem);
  return lines;
}

QString IndexedSource::changeTag() {
  const auto asked = [&] { return QStringLiteral("%1-%2").arg(nonce_).arg(revision_); };
  return answered<QString>(Wait::None, asked, [&] { return cache_.changeTag(); });
}

/// Where the system tells of changes, or nothing is known yet, a question costs next to nothing. Elsewhere
/// the files are looked at in the background first, so that a server that does not answer holds up nobody.
bool IndexedSource::isWorthAGlance() {
  if (!database_ || !following_ || watch_.isOn()) return true;
  if (check_) return check_->isDone();
  if (isDue()) startCheck();
  return false;
}

QString IndexedSource::othersTag(Look look) {
  if (look == Look::Glance && !isWorthAGlance()) return told_;
  const auto asked = [&] { return QStringLiteral("%1-%2").arg(nonce_).arg(others_); };
  const auto otherwise = [&] { return asked() + u'+' + cache_.othersTag(look); };
  told_ = answered<QString>(look == Look::Glance ? Wait::None : Wait::Full, asked, otherwise);
  return told_;
}

Snapshot IndexedSource::snapshot(const QString& name, const QString& uid) {
  const auto asked = [&] {
    seen_.reset();
    const auto row = fileNamed(*database_, name);
    if (!row || row->form != Form::Parts) return cache_.snapshot(name, uid);
    Snapshot made = hits_->snapshot(*row, uid);
    seen_ = row->stamp;
    return made;
  };
  seen_.reset();
  return answered<Snapshot>(Wait::Full, asked, [&] { return cache_.snapshot(name, uid); });
}

void IndexedSource::written(const QString& name, const QList<files::Splice>& splices,
                            const files::Fingerprint& after) {
  cache_.written(name, splices, after);
  if (!database_) return;
  try {
    if (!isFolder_ && watch_.isOn()) watch_.begin(path_);
    const QString path = pathOf(name);
    const DiskState now = stateOf(path);
    const bool asTold = now.mtimeNs == after.mtimeNs && now.size == after.size && now.inode == after.inode;
    Change change(*database_);
    // another program may have taken in another state of the file since the splices were made
    const auto row = fileNamed(*database_, name);
    const bool known = row && seen_ && *seen_ == row->stamp;
    const Intake::Result result = splices.isEmpty() || !asTold || !known ? intake_->take(name, now, true)
                                                                         : intake_->taken(name, splices, now);
    change.commit();
    seen_.reset();
    lastTaken_ = Clock::now();
    changed(asTold ? By::Us : By::Others);
    if (!isFolder_ || result == Intake::Result::Unread) return;
    // the folder tells of our own writing as well, which is no news unless somebody wrote behind us
    const Watch::News news = watch_.take();
    pending_ += news.names;
    if (news.lost) lastPass_ = {}, watch_.end();
    if (stateOf(path).stamp == now.stamp) pending_.remove(name);
  } catch (const IndexFailure& failure) {
    if (failure.isBusy())
      close();
    else
      discard();
  }
}

}  // namespace platform::calendar::icalendar
