// Edits of a file, through the store as the program uses it. What must hold after each of them:
// - the file holds what was asked for: read anew, the item has the new values, its other values and all other
// items
//   are what they were;
// - every byte outside of the edited event stands where it stood;
// - within the event, every line that has nothing to do with the edit is there as it was;
// - an edit that is refused has changed nothing.
#include "fuzz/edits.h"
#include "fuzz/fuzz.h"
#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/calendarfile.h"
#include "platform/calendar/icalendar/icalendarstore.h"

#include <QDir>
#include <QFile>

#include <map>
#include <unistd.h>

namespace ical = platform::calendar::icalendar;
using namespace platform::calendar;
using fuzz::Edit;

namespace {

constexpr double secondsForOneInput = 90;
const QString id = QStringLiteral("calendar");

QString folderPath() {
  static const QString path = [] {
    const QString made = QStringLiteral("/dev/shm/hourbook-fuzz-%1").arg(::getpid());
    QDir().mkpath(made);
    std::atexit(
        [] { QDir(QStringLiteral("/dev/shm/hourbook-fuzz-%1").arg(::getpid())).removeRecursively(); });
    return made;
  }();
  return path;
}

QString filePath() {
  return folderPath() + QStringLiteral("/c.ics");
}

void put(const QByteArray& bytes) {
  for (const QString& name : QDir(folderPath()).entryList(QDir::Files | QDir::Hidden))
    QFile::remove(folderPath() + u'/' + name);
  QFile file(filePath());
  PROMISED(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), file.errorString());
}

QByteArray content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList names() {
  return QDir(folderPath()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

std::unique_ptr<Store> opened(bool folder) {
  return std::make_unique<IcalendarStore>(
      QList<IcalendarFolder>{{id, QStringLiteral("Calendar"), QStringLiteral("Mailbox"),
                              folder ? folderPath() : filePath(), false}});
}

/// Everything in it: series as such, and their occurrences of a year.
struct Listed {
  QList<Item> stored, year;
  bool whole = true;  // false: some series was broken off, so the lists may differ
  bool ended =
      true;  // false: something goes as far as what follows it, so that this has to do with its bytes
};

Listed list(Store& store) {
  const QTimeZone zone(fuzz::viewerZone);
  Query all;
  all.zone = zone;
  Listed listed;
  listed.stored = store.items(id, all);
  Query year;
  year.zone = zone;
  year.expandSeries = true;
  year.startFrom = QDateTime(QDate(2024, 1, 1), QTime(0, 0), zone);
  year.startTo = QDateTime(QDate(2024, 12, 31), QTime(23, 59, 59), zone);
  listed.year = store.items(id, year);
  for (const Problem& problem : store.problems(id)) {
    if (problem.text.contains(QStringLiteral("left out")) || problem.text.contains(QStringLiteral("UTF-8")))
      listed.whole = false;
    else if (problem.text.contains(QStringLiteral("has no END")))
      listed.ended = false;
  }
  return listed;
}

bool sameTexts(const Item& a, const Item& b) {
  return a.subject == b.subject && a.body == b.body && a.sensitivity == b.sensitivity &&
         a.categories == b.categories && a.categoriesText == b.categoriesText &&
         a.billingInformation == b.billingInformation && a.userProperties == b.userProperties &&
         a.messageClass == b.messageClass;
}

bool sameTimes(const Item& a, const Item& b) {
  return a.start == b.start && a.end == b.end && a.allDay == b.allDay && a.zoneUnknown == b.zoneUnknown;
}

/// `tags`: whether the bytes of both must be the same, too.
bool same(const Item& a, const Item& b, bool tags = true) {
  return a.key == b.key && (!tags || a.tag == b.tag) && a.kind == b.kind && sameTexts(a, b) &&
         sameTimes(a, b);
}

QString described(const Item& item) {
  QString properties;
  for (auto one = item.userProperties.begin(); one != item.userProperties.end(); ++one)
    properties += one.key() + u'=' + one->value + u';';
  return fuzz::textOf(item) +
         QStringLiteral(
             " body \"%1\" categories \"%2\" text \"%3\" billing \"%4\" all day %5 "
             "properties \"%6\" sensitivity %7 tag %8")
             .arg(item.body, item.categories.join(u'|'), item.categoriesText, item.billingInformation)
             .arg(item.allDay)
             .arg(properties)
             .arg(static_cast<int>(item.sensitivity))
             .arg(item.tag);
}

/// What the item must be after the change, as far as the change says it.
Item expected(Item item, const Change& change) {
  if (change.subject) item.subject = *change.subject;
  if (change.body) {
    item.body = *change.body;
    if (item.body.count(u'\n') * 2 == item.body.size())
      item.body.clear();  // nothing but line breaks is nothing
  }
  if (change.sensitivity) item.sensitivity = *change.sensitivity;
  if (change.categories) {
    item.categories = *change.categories;
    item.categoriesText = {};
  }
  if (change.billingInformation) item.billingInformation = *change.billingInformation;
  for (auto one = change.userProperties.begin(); one != change.userProperties.end(); ++one)
    item.userProperties[one.key()] = *one;
  return item;
}

void checkChanged(const Item& before, const Item& after, const Change& change) {
  const Item wanted = expected(before, change);
  const QString details = QStringLiteral("was:    %1\nwanted: %2\nis:     %3")
                              .arg(described(before), described(wanted), described(after));
  PROMISED(sameTexts(wanted, after), details);
  PROMISED(!change.allDay || after.allDay == *change.allDay, details);
  if (!change.start && !change.durationMinutes && !change.allDay) {
    PROMISED(sameTimes(wanted, after), details);
  } else if (!after.allDay) {
    PROMISED(!change.start || after.start == *change.start, details);
    PROMISED(!change.durationMinutes || after.start.secsTo(after.end) == 60 * *change.durationMinutes,
             details);
  } else if (change.start) {
    PROMISED(after.start.date() == change.start->date(), details);
  }
}

const QByteArrayList& linesOfChange() {
  static const QByteArrayList names{"SUMMARY",
                                    "DESCRIPTION",
                                    "X-ALT-DESC",
                                    "DTSTART",
                                    "DTEND",
                                    "DURATION",
                                    "CLASS",
                                    "CATEGORIES",
                                    "LAST-MODIFIED",
                                    "DTSTAMP",
                                    "EXDATE",
                                    "X-HOURBOOK-CATEGORIES",
                                    "X-HOURBOOK-BILLINGINFORMATION",
                                    "X-HOURBOOK-USERPROPERTY",
                                    "X-MICROSOFT-CDO-ALLDAYEVENT",
                                    "X-MICROSOFT-MSNCALENDAR-ALLDAYEVENT"};
  return names;
}

QByteArrayList otherLines(const ical::Document& document, const ical::Component& component) {
  QByteArrayList lines;
  for (const ical::Line& line : component.lines)
    if (!linesOfChange().contains(document.raw(line).sliced(0, line.nameLength).toByteArray().toUpper()))
      lines.append(
          ical::unfolded(document.raw(line),
                         document.bareCr));  // the last line of a file may get the line end that it lacked
  return lines;
}

using Components = QList<const ical::Component*>;

Components eventsOf(const std::vector<ical::Component>& components) {
  Components all;
  for (const ical::Component& component : components) {
    if (component.name == "VEVENT") all.append(&component);
    all += eventsOf(component.children);
  }
  return all;
}

bool sameChildren(const ical::Document& old, const ical::Component& component, const ical::Document& now) {
  const ical::Component& edited = now.components.front();
  bool same = component.children.size() == edited.children.size();
  for (size_t i = 0; same && i < component.children.size(); ++i)
    same = old.raw(component.children[i]).trimmed() == now.raw(edited.children[i]).trimmed();
  return same;
}

/// What stands between `head` bytes at the beginning and `tail` at the end, when these are as they were and
/// it is one event by itself.
std::optional<ical::Document> between(const QByteArray& before, const QByteArray& after, int head, int tail) {
  const QByteArrayView first = QByteArrayView(before).first(head), last = QByteArrayView(before).sliced(tail);
  if (after.size() < first.size() + last.size() || !after.startsWith(first) || !after.endsWith(last))
    return {};
  ical::Document now = ical::scan(after.mid(head, after.size() - first.size() - last.size()), {});
  if (now.components.size() != 1) return {};
  return now;
}

/// Wherever events of these very bytes stand, one of them was edited, and all before it and behind it is as
/// it was. The edit of an unchanged occurrence puts a new event behind the series and leaves the one that
/// described it.
void checkBytes(const QByteArray& before, const QByteArray& after, const Item& item) {
  const ical::Document old = ical::scan(before, {});
  const Components all = eventsOf(old.components);
  for (const ical::Component* described : all) {
    if (ical::CalendarFile::tagOf(old.raw(*described).toByteArray()) != item.tag) continue;
    if (item.kind != Kind::Occurrence) {
      const auto now = between(before, after, described->offset, described->end);
      if (now && sameChildren(old, *described, *now) &&
          otherLines(old, *described) == otherLines(*now, now->components.front()))
        return;
    } else {
      for (const ical::Component* series : all) {
        const auto now = between(before, after, series->end, series->end);
        if (now && sameChildren(old, *described, *now)) return;
      }
    }
  }
  fuzz::broken("every byte outside of the edited event stands where it stood",
               QStringLiteral("%1\n--- before\n%2\n--- after\n%3")
                   .arg(described(item), QString::fromUtf8(before), QString::fromUtf8(after)),
               __FILE__, __LINE__);
}

/// The others as they were, `gone` missing, `added` new. Tags tell events apart, places may move on.
void checkOthers(QList<Item> before, QList<Item> after, bool tags,
                 const std::function<bool(const Item&)>& edited) {
  before.removeIf(edited);
  after.removeIf(edited);
  bool alike = before.size() == after.size();
  for (qsizetype i = 0; alike && i < before.size(); ++i) alike = same(before[i], after[i], tags);
  if (alike) return;
  QString details = QStringLiteral("%1 items before, %2 after\n").arg(before.size()).arg(after.size());
  for (qsizetype i = 0; i < qMax(before.size(), after.size()); ++i) {
    const QString a = i < before.size() ? described(before[i]) : QString();
    const QString b = i < after.size() ? described(after[i]) : QString();
    if (a != b) details += QStringLiteral("- %1\n+ %2\n").arg(a, b);
  }
  fuzz::broken("the other items are what they were", details, __FILE__, __LINE__);
}

const Item* withKey(const QList<Item>& items, const ItemKey& key) {
  for (const Item& item : items)
    if (item.key == key) return &item;
  return nullptr;
}

/// Items that go by the same name cannot be told apart by it.
bool isAmbiguous(const Listed& listed, const Item& item) {
  const auto named = [&](const Item& other) {
    return other.key.uid == item.key.uid && other.key.recurrenceId == item.key.recurrenceId;
  };
  return std::count_if(listed.stored.begin(), listed.stored.end(), named) > 1 ||
         std::count_if(listed.year.begin(), listed.year.end(), named) > 1;
}

struct State {
  QByteArray bytes;
  Listed listed;
  /// What follows on the last line of a file gives it the line end that it lacked.
  bool keepsBytes() const { return listed.ended && endsWithLine(); }
  bool endsWithLine() const {
    return bytes.isEmpty() || bytes.endsWith('\n') || (bytes.endsWith('\r') && !bytes.contains('\n'));
  }
};

State look(bool folder) {
  return {content(filePath()), list(*opened(folder))};
}

void change(Store& store, const State& before, const Item& item, const Change& change, bool folder) {
  const Item saved = store.save(id, item.key, item.tag, change);
  const QByteArray bytes = content(filePath());
  if (bytes == before.bytes) return checkChanged(item, saved, change);  // it was so already
  checkBytes(before.bytes, bytes, item);
  if (!before.listed.whole || isAmbiguous(before.listed, item)) return;
  checkChanged(item, saved, change);
  const State after = look(folder);
  const Item* again = withKey(after.listed.stored, saved.key);
  if (!again) again = withKey(after.listed.year, saved.key);
  if (again) PROMISED(same(*again, saved), described(*again) + u'\n' + described(saved));
  const auto touched = [&](const Item& other) {
    // a series' own change moves its occurrences; and an occurrence that was changed counts as the exception
    // it is
    return other.key.uid == item.key.uid &&
           (item.key.recurrenceId.isEmpty() || other.key.recurrenceId == item.key.recurrenceId);
  };
  checkOthers(before.listed.stored, after.listed.stored, before.keepsBytes(), touched);
  checkOthers(before.listed.year, after.listed.year, before.keepsBytes(), touched);
}

void remove(Store& store, const State& before, const Item& item, bool folder) {
  store.remove(id, item.key, item.tag);
  if (!QFile::exists(filePath())) {
    PROMISED(folder, QStringLiteral("the calendar itself is gone"));
    PROMISED(before.listed.stored.size() <= 1 || item.key.recurrenceId.isEmpty(), described(item));
    return;
  }
  if (!before.listed.whole || isAmbiguous(before.listed, item)) return;
  const State after = look(folder);
  PROMISED(!withKey(after.listed.year, item.key) || item.key.recurrenceId.isEmpty(), described(item));
  const auto touched = [&](const Item& other) {
    return other.key.uid == item.key.uid &&
           (item.key.recurrenceId.isEmpty() || other.key.recurrenceId == item.key.recurrenceId ||
            other.kind == Kind::Master || other.kind == Kind::Occurrence);
  };
  checkOthers(before.listed.stored, after.listed.stored, before.keepsBytes(), touched);
  checkOthers(before.listed.year, after.listed.year, before.keepsBytes(), touched);
}

void make(Store& store, const State& before, const Change& change, bool folder) {
  const Item saved = store.save(id, {}, {}, change);
  Item empty;
  empty.start = empty.end = *change.start;
  checkChanged(empty, saved, change);
  const QByteArray bytes = content(filePath());
  if (folder) {
    PROMISED(bytes == before.bytes, QStringLiteral("a new item has changed another file"));
  }
  if (!before.listed.whole) return;
  const State after = look(folder);
  const auto touched = [&](const Item& other) { return other.key.uid == saved.key.uid; };
  PROMISED(std::count_if(after.listed.stored.begin(), after.listed.stored.end(), touched) == 1,
           described(saved));
  checkOthers(before.listed.stored, after.listed.stored, before.keepsBytes(), touched);
  checkOthers(before.listed.year, after.listed.year, before.keepsBytes(), touched);
}

/// Another program adds something at the end.
void addOutside(const QByteArray& bytes) {
  QFile file(filePath());
  PROMISED(file.open(QIODevice::WriteOnly | QIODevice::Append), file.errorString());
  file.write(bytes.endsWith('\n') ? "" : "\n");
  file.write("BEGIN:VEVENT\nUID:from outside\nDTSTART:20240704T100000Z\nSUMMARY:Outside\nEND:VEVENT\n");
}

void apply(Store& store, const Edit& edit, bool folder) {
  const State before = look(folder);
  if (edit.what == Edit::What::Outside) return addOutside(before.bytes);
  if (edit.what == Edit::What::Make) return make(store, before, edit.change, folder);
  const QList<Item> all = before.listed.stored + before.listed.year;
  if (all.isEmpty()) return;
  const Item item = all[edit.item % all.size()];
  if (edit.what == Edit::What::Remove) return remove(store, before, item, folder);
  change(store, before, item, edit.change, folder);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  qputenv("TZ", fuzz::viewerZone);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const fuzz::Budget budget(secondsForOneInput);
  const fuzz::Input input =
      fuzz::inputOf(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
  const platform::basic::ScopedClock clock(std::make_shared<platform::basic::FixedClock>(
      QDateTime(QDate(2024, 5, 15), QTime(10, 0)), fuzz::viewerZone));
  put(input.file);
  const auto store = opened(input.folder);  // one that lives through all edits, as in the program
  for (const Edit& edit : input.edits) {
    const QByteArray before = content(filePath());
    const QStringList others = names();
    try {
      apply(*store, edit, input.folder);
    } catch (const platform::Failure& failure) {
      PROMISED(content(filePath()) == before && names() == others, failure.description());
      PROMISED(!failure.description().isEmpty(), QStringLiteral("a failure without words"));
    }
    for (const QString& name : names())
      PROMISED(name.endsWith(QStringLiteral(".ics")) && !name.startsWith(u'.'), name);
  }
  return 0;
}
