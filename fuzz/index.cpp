// Any calendar through its index and through plain reading: both show the same, at first, behind an edit of
// any kind, behind a save of our own, and at the next start. And any damage to an index file: what is shown
// stays as it is.
#include "fuzz/expanded.h"
#include "fuzz/fuzz.h"
#include "platform/calendar/icalendar/index/indexedsource.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ical = platform::calendar::icalendar;
using namespace platform::calendar;

namespace {

constexpr double secondsForOneInput = 60;
constexpr int headBytes = 4;
constexpr qsizetype recordBytes = 6;  // of one damage
constexpr int maxDamages = 12;
const QByteArray border = "\n====\n";  // between what stands in the file first and then

/// The bits of an input's first byte.
enum Flag : unsigned {
  Damaged = 1,
  Folder = 2,
  Large = 4,   // so large that its events are read one by one
  Behind = 8,  // with what makes it large behind the input, else in front of it
  Settled = 16,
  Replaced = 32,     // by another file, else written in place
  Heard = 64 | 128,  // the system tells of changes: not often, since to stop listening takes it 20 ms
};

QString root() {
  static const QString path = [] {
    const QString made = QStringLiteral("/dev/shm/hourbook-fuzz-index-%1").arg(::getpid());
    for (const char* part : {"/folder", "/cache", "/kept", "/keptcache"})
      QDir().mkpath(made + QLatin1String(part));
    std::atexit(
        [] { QDir(QStringLiteral("/dev/shm/hourbook-fuzz-index-%1").arg(::getpid())).removeRecursively(); });
    return made;
  }();
  return path;
}

void put(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  PROMISED(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), file.errorString());
}

QByteArray content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void empty(const QString& folder) {
  for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden))
    QFile::remove(folder + u'/' + name);
}

void setTime(const QString& path, qint64 seconds) {
  const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
  ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0);
}

/// A calendar of one event that makes a file one of the large ones.
QByteArray weight() {
  static const QByteArray bytes = [] {
    QByteArray text =
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:weight\r\nDTSTART:20240603T080000Z\r\n";
    while (text.size() < 65 * 1024) text += "X-WEIGHT:" + QByteArray(1000, 'w') + "\r\n";
    return text + "END:VEVENT\r\nEND:VCALENDAR\r\n";
  }();
  return bytes;
}

QString described(const ical::EventRef& ref) {
  const ical::Event& event = *ref.event;
  return QStringLiteral("%1 %2 %3 %4 %5 %6 %7")
      .arg(ref.file->name, event.uid, event.place, ref.file->tag(event))
      .arg(ref.file->base + event.component->offset)
      .arg(event.component->line)
      .arg(event.isOverride());
}

QStringList described(const QList<ical::Group>& groups) {
  QStringList lines;
  for (const ical::Group& group : groups) {
    QStringList events;
    for (const ical::EventRef& ref : group.masters) events.append(described(ref));
    for (const ical::EventRef& ref : group.overrides) events.append(described(ref));
    lines.append(events.join(u" | "));
  }
  lines.sort();
  return lines;
}

/// What a list of that period has.
QStringList listOf(ical::EventSource& source, const QDateTime& from, const QDateTime& to) {
  ical::ZoneBook zones;
  const Query query = fuzz::occurrencesBetween(from, to);
  const auto groups = source.between(from.toMSecsSinceEpoch(), to.toMSecsSinceEpoch());
  const fuzz::Found found = fuzz::find(zones, groups, query);
  QStringList lines;
  for (const Item& item : found.items)
    lines.append(QStringLiteral("%1 %2 %3").arg(fuzz::textOf(item), item.tag).arg(item.zoneUnknown));
  for (const Problem& problem : found.problems)
    lines.append(QStringLiteral("%1:%2: %3").arg(problem.place).arg(problem.line).arg(problem.text));
  lines.sort();
  return lines;
}

/// All that can be asked. The periods are about what the calendar itself is about.
QStringList shownBy(ical::EventSource& source, const QList<ical::Group>& everything) {
  const QTimeZone zone(fuzz::viewerZone);
  QStringList lines;
  QList<QDate> days;
  QString uid = QStringLiteral("nobody");
  for (const ical::Group& group : everything) {
    const ical::EventRef& ref = group.masters.isEmpty() ? group.overrides.first() : group.masters.first();
    if (ref.event->uid == u"weight") continue;
    uid = ref.event->uid;
    if (!ref.event->start || !days.isEmpty()) continue;
    days.append(ref.event->start->date);
    days.append(ref.event->start->date.addMonths(5));
  }
  for (const QDate& day : std::as_const(days))
    if (day.isValid() && day.year() > 1600 && day.year() < 3000)
      lines += listOf(source, QDateTime(day.addDays(-3), QTime(0, 0), zone),
                      QDateTime(day.addDays(5), QTime(0, 0), zone));
  lines += u"all"_qs +
           described(source.between(std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()))
               .join(u'\n');
  lines += described({source.withUid(uid)});
  lines += QString::number(source.countUpTo(1000));
  for (const Problem& problem : source.problems())
    lines.append(QStringLiteral("%1:%2: %3").arg(problem.place).arg(problem.line).arg(problem.text));
  return lines;
}

void compare(ical::EventSource& index, const QString& calendar, const char* when) {
  ical::FileCache plain(calendar, QStringLiteral("Fuzz"));
  const auto everything =
      plain.between(std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
  const QStringList right = shownBy(plain, everything), seen = shownBy(index, everything);
  if (seen == right) return;
  QString details = QString::fromLatin1(when);
  for (const QString& line : right)
    if (!seen.contains(line)) details += u"\nmissing: "_qs + line;
  for (const QString& line : seen)
    if (!right.contains(line)) details += u"\ntoo much: "_qs + line;
  PROMISED(seen == right, details);
}

/// What the file holds behind the edit: what stands behind the border, else the bytes without a stretch of
/// them, or with one of them twice.
QByteArray edited(const QByteArray& bytes, const unsigned char* head) {
  const qsizetype from = bytes.size() * head[1] / 256, length = (bytes.size() - from) * head[2] / 256;
  QByteArray result = bytes;
  if (head[3] % 3 == 0) return result.remove(from, length);
  if (head[3] % 3 == 1) return result.insert(from, bytes.mid(from, length));
  return result.replace(from, length, QByteArray(length, static_cast<char>(head[3])));  // of the same size
}

/// A line more in the first event with a name that is no other's, as a save does it.
void saveOne(ical::EventSource& index, const QString& calendar, const QString& name) {
  const auto groups = index.between(std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
  for (const ical::Group& group : groups) {
    if (group.masters.size() != 1 || !group.masters.first().event->hasUid) continue;
    const ical::Snapshot snapshot = index.snapshot(name, group.masters.first().event->uid);
    if (snapshot.events.isEmpty()) continue;
    const ical::EventRef& ref = snapshot.events.first();
    const QByteArray was = ref.file->document.raw(*ref.event->component).toByteArray();
    const qsizetype at = ref.event->component->bodyEnd - ref.event->component->offset;
    const QList<platform::files::Splice> splices{
        {ref.file->base + ref.event->component->offset, was, QByteArray(was).insert(at, "X-SAVED:here\r\n")}};
    const auto written = platform::files::spliceFile(index.pathOf(name), splices, snapshot.fingerprint);
    PROMISED(written.outcome == platform::files::Outcome::Written, written.error);
    index.written(name, splices, written.fingerprint);
    compare(index, calendar, "behind a save");
    return;
  }
}

void checkCalendar(const unsigned char* head, const QByteArray& input) {
  const unsigned flags = head[0];
  const qsizetype at = input.indexOf(border);
  QByteArray first = at < 0 ? input : input.left(at);
  QByteArray then = at < 0 ? edited(input, head) : input.mid(at + border.size());
  const auto weighed = [&](const QByteArray& bytes) {
    if ((flags & Large) == 0) return bytes;
    return (flags & Behind) != 0 ? bytes + weight() : weight() + bytes;
  };
  first = weighed(first);
  then = weighed(then);
  const QString name = QStringLiteral("c.ics");
  const QString calendar =
      root() + ((flags & Folder) != 0 ? QStringLiteral("/folder") : QStringLiteral("/c.ics"));
  const QString file = (flags & Folder) != 0 ? calendar + u'/' + name : calendar;
  empty(root() + QStringLiteral("/folder"));
  empty(root() + QStringLiteral("/cache"));
  put(file, first);
  if ((flags & Folder) != 0) put(calendar + QStringLiteral("/other.ics"), weight().left(300));
  const auto age = [&](qint64 seconds) {
    if ((flags & Settled) == 0) return;
    setTime(file, seconds);
    if ((flags & Folder) != 0) setTime(calendar, seconds);
  };
  age(1'500'000'000);
  ical::IndexOptions options;
  options.cacheFolder = root() + QStringLiteral("/cache");
  options.watches = (flags & Heard) == Heard;
  options.checkEveryMs = 0;
  {
    ical::IndexedSource index(calendar, QStringLiteral("Fuzz"), options);
    compare(index, calendar, "at first");
    if ((flags & Replaced) != 0) {
      put(root() + QStringLiteral("/new"), then);
      PROMISED(::rename(qPrintable(root() + QStringLiteral("/new")), qPrintable(file)) == 0, file);
    } else {
      put(file, then);
    }
    age(1'500'000'010);
    compare(index, calendar, "behind an edit");
    saveOne(index, calendar, name);
    age(1'500'000'020);
    if (head[3] >= 128) compare(index, calendar, "behind a touch");
  }
  if (head[3] % 2 == 1) {
    put(file, first);
    age(1'500'000'030);
  }
  ical::IndexedSource next(calendar, QStringLiteral("Fuzz"), options);
  compare(next, calendar, "at the next start");
}

/// A calendar that stays as it is, and an index of it with a log.
struct Kept {
  QString calendar, index;
  QByteArray bytes, log;
};

const Kept& kept() {
  static const Kept kept = [] {
    Kept made;
    made.calendar = root() + QStringLiteral("/kept");
    for (int i = 0; i < 6; ++i) {
      const QByteArray number = QByteArray::number(i);
      QByteArray text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:event-" + number +
                        "\r\nDTSTART;TZID=Europe/Stockholm:2024060" + QByteArray::number(i + 1) +
                        "T090000\r\nDURATION:PT1H\r\nSUMMARY:Number " + number + "\r\n" +
                        (i % 2 ? "RRULE:FREQ=WEEKLY;COUNT=9\r\n" : "") + "END:VEVENT\r\nEND:VCALENDAR\r\n";
      if (i == 5) text += weight();
      const QString path = made.calendar + u'/' + QString::number(i) + QStringLiteral(".ics");
      put(path, text);
      setTime(path, 1'500'000'000);
    }
    ical::IndexOptions options;
    options.cacheFolder = root() + QStringLiteral("/keptcache");
    ical::IndexedSource index(made.calendar, QStringLiteral("Fuzz"), options);
    compare(index, made.calendar, "before any damage");
    const QString more = made.calendar + QStringLiteral("/more.ics");
    put(more, content(made.calendar + QStringLiteral("/1.ics")));
    compare(index, made.calendar, "with a log");
    QFile::remove(more);
    compare(index, made.calendar, "with a longer log");
    setTime(made.calendar, 1'500'000'000);
    made.index = index.indexPath();
    made.bytes = content(made.index);
    made.log = content(made.index + QStringLiteral("-wal"));
    PROMISED(made.bytes.size() >= 4096 && !made.log.isEmpty(), made.index);
    return made;
  }();
  return kept;
}

void damage(QByteArray& bytes, const unsigned char* record) {
  if (bytes.isEmpty()) return;
  const qsizetype place = ((record[1] << 16) | (record[2] << 8) | record[3]) % bytes.size();
  const qsizetype length = qMin<qsizetype>(bytes.size() - place, 1 + record[4] * record[4] / 8);
  switch (record[0] / 2 % 7) {
    case 0:
      bytes[place] = static_cast<char>(bytes[place] ^ (1 << record[4] % 8));
      break;
    case 1:
      bytes[place] = static_cast<char>(record[4]);
      break;
    case 2:
      bytes.remove(place, length);
      break;
    case 3:
      bytes.insert(place, QByteArray(length, static_cast<char>(record[5])));
      break;
    case 4:
      bytes.replace(place, length, QByteArray(length, static_cast<char>(record[5])));
      break;
    case 5:
      bytes.truncate(place);
      break;
    default: {  // what stands somewhere else
      const qsizetype from = record[5] * bytes.size() / 256 / 4096 * 4096, to = place / 4096 * 4096;
      bytes.replace(to, 4096, bytes.mid(from, 4096));
      break;
    }
  }
}

void checkDamage(const unsigned char* records, qsizetype size) {
  const Kept& whole = kept();
  QByteArray bytes = whole.bytes, log = whole.log;
  for (qsizetype i = 0; i < maxDamages && (i + 1) * recordBytes <= size; ++i)
    damage(records[i * recordBytes] % 2 == 0 ? bytes : log, records + i * recordBytes);
  empty(root() + QStringLiteral("/keptcache"));
  put(whole.index, bytes);
  ::chmod(qPrintable(whole.index), 0600);
  if (!log.isEmpty()) put(whole.index + QStringLiteral("-wal"), log);
  ical::IndexOptions options;
  options.cacheFolder = root() + QStringLiteral("/keptcache");
  ical::IndexedSource index(whole.calendar, QStringLiteral("Fuzz"), options);
  compare(index, whole.calendar, "with a damaged index");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  qputenv("TZ", fuzz::viewerZone);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < headBytes) return 0;
  const fuzz::Budget budget(secondsForOneInput);
  const auto rest = static_cast<qsizetype>(size) - headBytes;
  if ((data[0] & Damaged) != 0)
    checkDamage(data + headBytes, rest);
  else
    checkCalendar(data, QByteArray(reinterpret_cast<const char*>(data) + headBytes, rest));
  return 0;
}
