#include "tests/faults/powerloss.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace faults {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostTaken = 10;

/// Of so many things those that have reached the disk, as bits, in every way that is looked at.
QList<quint64> choices(qsizetype count) {
  QList<quint64> all;
  const quint64 every = (quint64{1} << count) - 1;
  if (count <= mostTaken) {
    for (quint64 choice = 0; choice <= every; ++choice) all.append(choice);
    return all;
  }
  for (qsizetype i = 0; i <= count; ++i) all.append((quint64{1} << i) - 1);
  for (qsizetype i = 0; i < count; ++i)
    for (qsizetype j = i; j < count; ++j) all.append(every & ~(quint64{1} << i) & ~(quint64{1} << j));
  return all;
}

enum class Arrived { Whole, Half, Zeros };

void carryOut(const Operation& operation, Arrived arrived, QByteArray* bytes) {
  if (operation.kind == Operation::Kind::Resize) {
    bytes->resize(operation.offset, '\0');
    return;
  }
  const qsizetype size = operation.bytes.size();
  if (arrived == Arrived::Half && size < 2) return;
  const QByteArray with = arrived == Arrived::Whole  ? operation.bytes
                          : arrived == Arrived::Half ? operation.bytes.left(size / 2)
                                                     : QByteArray(size, '\0');
  if (bytes->size() < operation.offset + with.size()) bytes->resize(operation.offset + with.size(), '\0');
  bytes->replace(operation.offset, with.size(), with);
}

QByteArray folderOf(const QByteArray& path) {
  const qsizetype slash = path.lastIndexOf('/');
  return slash < 0 ? QByteArray("") : path.left(slash);
}

/// Under such a name nobody looks for a calendar.
bool isTemporary(const QByteArray& path) {
  return path.mid(path.lastIndexOf('/') + 1).startsWith('.');
}

}  // namespace

QList<int> PowerLoss::pendingNames(qsizetype count) const {
  QList<int> pending;
  for (int i = 0; i < count; ++i) {
    const Operation& operation = operations_[i];
    if (operation.kind == Operation::Kind::Name) pending.append(i);
    if (operation.kind == Operation::Kind::SyncFolder)
      pending.removeIf([&](int each) { return folderOf(operations_[each].path) == operation.path; });
  }
  return pending;
}

QList<int> PowerLoss::pendingBytes(qsizetype count, int file) const {
  QList<int> pending;
  for (int i = 0; i < count; ++i) {
    const Operation& operation = operations_[i];
    if (operation.file != file) continue;
    if (operation.kind == Operation::Kind::Write || operation.kind == Operation::Kind::Resize)
      pending.append(i);
    if (operation.kind == Operation::Kind::SyncFile) pending.clear();
  }
  return pending;
}

QByteArrayList PowerLoss::contentsOf(qsizetype count, int file, bool isSeen) const {
  const QList<int> pending = pendingBytes(count, file);
  const auto made = [&](quint64 choice, qsizetype torn, Arrived how) {
    QByteArray bytes = before_.files.value(file);
    for (int i = 0; i < count; ++i) {
      const Operation& operation = operations_[i];
      const bool changes =
          operation.kind == Operation::Kind::Write || operation.kind == Operation::Kind::Resize;
      if (operation.file != file || !changes) continue;
      const qsizetype place = pending.indexOf(i);
      if (place < 0 || (choice >> place & 1) != 0)
        carryOut(operation, place >= 0 && place == torn ? how : Arrived::Whole, &bytes);
    }
    return bytes;
  };
  QByteArrayList contents;
  const auto add = [&](const QByteArray& bytes) {
    if (!contents.contains(bytes)) contents.append(bytes);
  };
  const quint64 every = (quint64{1} << pending.size()) - 1;
  for (const quint64 choice : isSeen ? choices(pending.size()) : QList<quint64>{0, every}) {
    add(made(choice, -1, Arrived::Whole));
    for (qsizetype torn = 0; isSeen && torn < pending.size(); ++torn)
      if ((choice >> torn & 1) != 0)
        for (const Arrived how : {Arrived::Half, Arrived::Zeros}) add(made(choice, torn, how));
  }
  return contents;
}

QList<Found> PowerLoss::foundAfter(qsizetype count, const QByteArray& within) const {
  const QList<int> pending = pendingNames(count);
  QMap<std::pair<int, bool>, QByteArrayList> known;
  QList<Found> all;
  for (const quint64 choice : choices(pending.size())) {
    QMap<QByteArray, int> names = before_.names;
    for (int i = 0; i < count; ++i) {
      const Operation& operation = operations_[i];
      const qsizetype place = pending.indexOf(i);
      if (operation.kind != Operation::Kind::Name || (place >= 0 && (choice >> place & 1) == 0)) continue;
      if (operation.file == 0)
        names.remove(operation.path);
      else
        names.insert(operation.path, operation.file);
    }
    QList<Found> states{Found()};
    for (auto name = names.cbegin(); name != names.cend(); ++name) {
      if (folderOf(name.key()) != within) continue;
      const bool isSeen = !isTemporary(name.key());
      QByteArrayList& contents = known[{name.value(), isSeen}];
      if (contents.isEmpty()) contents = contentsOf(count, name.value(), isSeen);
      QList<Found> further;
      for (const Found& state : std::as_const(states)) {
        for (const QByteArray& content : std::as_const(contents)) {
          further.append(state);
          further.last().insert(name.key(), content);
        }
      }
      states = further;
    }
    all += states;
  }
  return all;
}

Found PowerLoss::atTheEnd() const {
  QMap<QByteArray, int> names = before_.names;
  QMap<int, QByteArray> files = before_.files;
  for (const Operation& operation : operations_) {
    if (operation.kind == Operation::Kind::Name && operation.file == 0)
      names.remove(operation.path);
    else if (operation.kind == Operation::Kind::Name)
      names.insert(operation.path, operation.file);
    else if (operation.kind == Operation::Kind::Write || operation.kind == Operation::Kind::Resize)
      carryOut(operation, Arrived::Whole, &files[operation.file]);
  }
  Found found;
  for (auto name = names.cbegin(); name != names.cend(); ++name)
    found.insert(name.key(), files.value(name.value()));
  return found;
}

QByteArrayList PowerLoss::unsynced(qsizetype count) const {
  QByteArrayList names;
  QMap<int, QByteArray> nameOf;
  for (auto name = before_.names.cbegin(); name != before_.names.cend(); ++name)
    nameOf[name.value()] = name.key();
  for (int i = 0; i < count; ++i)
    if (operations_[i].kind == Operation::Kind::Name && operations_[i].file > 0)
      nameOf[operations_[i].file] = operations_[i].path;
  for (const int each : pendingNames(count)) names.append(operations_[each].path);
  for (auto file = nameOf.cbegin(); file != nameOf.cend(); ++file)
    if (!pendingBytes(count, file.key()).isEmpty()) names.append(file.value());
  return names;
}

namespace {

QByteArray fingerprintOf(const Found& found) {
  QCryptographicHash hash(QCryptographicHash::Sha256);
  for (auto file = found.cbegin(); file != found.cend(); ++file) {
    hash.addData(file.key() + '\0' + QByteArray::number(file->size()) + '\0');
    hash.addData(*file);
  }
  return hash.result();
}

/// The user's files as they were found, everything beside them as it was when the save was over.
void putDown(const QString& root, const QByteArray& within, const Found& found, const Found& whole) {
  const DiskImage present = imageOf(QFile::encodeName(root));
  for (auto name = present.names.cbegin(); name != present.names.cend(); ++name)
    ASSERT_TRUE(QFile::remove(root + u'/' + QFile::decodeName(name.key())));
  Found all = found;
  for (auto each = whole.cbegin(); each != whole.cend(); ++each)
    if (folderOf(each.key()) != within) all.insert(each.key(), *each);
  for (auto each = all.cbegin(); each != all.cend(); ++each) {
    QFile file(root + u'/' + QFile::decodeName(each.key()));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(*each) == each->size());
  }
}

QString storyOf(const QList<Operation>& operations, qsizetype count) {
  QStringList words;
  for (qsizetype i = 0; i < count; ++i) {
    const Operation& operation = operations[i];
    const QString path = QFile::decodeName(operation.path);
    switch (operation.kind) {
      case Operation::Kind::Name:
        words += u"\"%1\" is %2"_s.arg(path).arg(operation.file);
        break;
      case Operation::Kind::Write:
        words += u"%1 bytes into %2"_s.arg(operation.bytes.size()).arg(operation.file);
        break;
      case Operation::Kind::Resize:
        words += u"%1 is cut"_s.arg(operation.file);
        break;
      case Operation::Kind::SyncFile:
        words += u"sync of %1"_s.arg(operation.file);
        break;
      case Operation::Kind::SyncFolder:
        words += u"sync of the folder \"%1\""_s.arg(path);
        break;
    }
  }
  return words.join(u", "_s);
}

/// What the next start makes of a state: it can save, and nothing is left beside the user's files.
QString afterTheNextStart(Saver& saver) {
  saver.age();
  try {
    saver.startAgain();
  } catch (const std::exception& failure) {
    return u"the next start fails: "_s + QString::fromUtf8(failure.what());
  }
  const QStringList left = saver.litter();
  return left.isEmpty() ? QString() : u"left over: "_s + left.join(u", "_s);
}

}  // namespace

Verdict judged(Place& place, const std::function<void()>& first) {
  Verdict verdict;
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  place.renew();
  const QByteArray root = QFile::encodeName(saver.folder()), within = QFile::encodeName(saver.place());
  const DiskImage before = imageOf(root);
  Plan plan;
  plan.record = root;
  plan.first = first;
  const Trial trial = tried(saver, plan);
  EXPECT_TRUE(trial.succeeded) << saver.name() << ": " << qPrintable(trial.message);
  const PowerLoss loss(before, trial.operations);
  Found now;
  const DiskImage image = imageOf(root);
  for (auto name = image.names.cbegin(); name != image.names.cend(); ++name)
    now.insert(name.key(), image.files.value(name.value()));
  const Found whole = loss.atTheEnd();
  for (auto file = whole.cbegin(); file != whole.cend(); ++file)
    EXPECT_TRUE(folderOf(file.key()) != within || (now.contains(file.key()) && now[file.key()] == *file))
        << saver.name() << ": something was written that was not recorded";

  const qsizetype last = trial.operations.size();
  QMap<QByteArray, bool> seen;  // whether the save had succeeded by then
  for (qsizetype count = 0; count <= last; ++count) {
    ++verdict.cuts;
    for (const Found& found : loss.foundAfter(count, within)) {
      const bool isDone = count == last;
      const QByteArray known = fingerprintOf(found);
      if (seen.contains(known) && (seen[known] || !isDone)) continue;
      seen.insert(known, isDone);
      ++verdict.states;
      putDown(saver.folder(), within, found, now);
      const Contents contents = saver.contents();
      QString fault;
      if (isDone ? contents != course.after
                 : contents != course.before && contents != course.after &&
                       !saver.isBetween(contents, course.before, course.after))
        fault = QString::fromStdString(text(contents, course.before, course.after));
      else
        fault = afterTheNextStart(saver);
      if (!fault.isEmpty())
        verdict.faults += u"%1 after %2: %3"_s.arg(isDone ? u"at the end"_s : u"cut"_s,
                                                   storyOf(trial.operations, count), fault);
    }
  }
  // what another store has been told is there before the user's file says so
  for (qsizetype count = 0; count < last && !within.isEmpty(); ++count) {
    if (folderOf(trial.operations[count].path) != within) continue;
    for (const QByteArray& name : loss.unsynced(count))
      if (name.contains(".mdb"))
        verdict.faults +=
            u"\"%1\" is not on the disk yet when the user's file is written"_s.arg(QFile::decodeName(name));
    break;
  }
  return verdict;
}

}  // namespace faults
