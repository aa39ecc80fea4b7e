// A calendar lives through a random life: edits, their undoing, stamps, changes by other programs, crashes
// and restarts. At each step it must show what a plain list says. 100 lives of 30 steps in a folder and as
// many in one file, and 30 of each with an index; HOURBOOK_SOAK=25 for 25 times as many, and HOURBOOK_SEED
// for another first one.
#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "tests/support/quickfolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace faults {
namespace {

using namespace Qt::StringLiterals;
using namespace platform::calendar;

const QString id = u"calendar"_s;
#if defined(__SANITIZE_ADDRESS__)
constexpr int livesInAll = 20;
#elif defined(__has_feature)
constexpr int livesInAll = __has_feature(address_sanitizer) ? 20 : 100;
#else
constexpr int livesInAll = 100;
#endif
constexpr int steps = 30;
constexpr int everyBig = 20;  // each so-manieth life in a file is one in a file above a megabyte

QTimeZone zone() {
  return QTimeZone("Europe/Stockholm");
}

/// What the list knows of an item.
struct Known {
  QString subject, body, billing;
  QStringList categories;
  qint64 start = 0;
  int minutes = 0;
  friend bool operator==(const Known&, const Known&) = default;
};
using Name = std::pair<QString, QString>;  // UID and occurrence
using Model = std::map<Name, Known>;

std::string text(const Known& known) {
  return qPrintable(u"\"%1\" body \"%2\" billing \"%3\" categories %4 at %5 for %6"_s
                        .arg(known.subject, known.body.left(40), known.billing, known.categories.join(u'|'))
                        .arg(known.start)
                        .arg(known.minutes));
}

std::string difference(const Model& wanted, const Model& is) {
  std::string result;
  for (const auto& [name, known] : wanted) {
    const auto found = is.find(name);
    const std::string title = qPrintable(name.first + u'/' + name.second);
    if (found == is.end())
      result += "missing " + title + "\n";
    else if (!(found->second == known))
      result += title + "\n  wanted " + text(known) + "\n  is     " + text(found->second) + "\n";
  }
  for (const auto& [name, known] : is)
    if (!wanted.contains(name))
      result += "too much " + std::string(qPrintable(name.first + u'/' + name.second)) + "\n";
  return result;
}

class Life {
 public:
  Life(unsigned seed, bool folder, bool big, bool indexed)
      : random_(seed), isFolder_(folder), isIndexed_(indexed) {
    if (isFolder_) {
      for (int i = 0; i < 6; ++i) put(u"single-%1.ics"_s.arg(i), calendar(single(i, 100)));
      put(u"series.ics"_s, calendar(series()));
    } else {
      QByteArray events;
      for (int i = 0; i < 6; ++i) events += single(i, big ? 200'000 : 100);
      put(u"all.ics"_s, calendar(events + series()));
    }
    restart();
    model_ = shown();
  }

  void run() {
    for (int step = 0; step < steps; ++step) {
      const int kind = pick(20);
      if (kind < 6)
        edit();
      else if (kind < 8)
        undo();
      else if (kind < 10)
        stamp();
      else if (kind < 12)
        make();
      else if (kind < 13)
        remove();
      else if (kind < 15)
        changeOutside();
      else if (kind < 16)
        addOutside();
      else if (kind < 17)
        saveStale();
      else if (kind < 18)
        hold();
      else if (kind < 19)
        crash();
      else
        restart();
      const Model now = shown();
      ASSERT_TRUE(now == model_) << difference(model_, now) << "after " << story_.toStdString();
      if (holding_) since_.push_back(model_);
    }
    restart();
    const Model now = shown();
    ASSERT_TRUE(now == model_) << difference(model_, now) << "after " << story_.toStdString()
                               << " and a restart";
    EXPECT_TRUE(store_->problems(id).isEmpty());
    for (const QString& name : QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden))
      EXPECT_TRUE(name.endsWith(u".ics"_s)) << qPrintable(name);
  }

 private:
  int pick(int below) { return int(random_() % unsigned(below)); }
  void tell(const QString& what) { story_ += what + u"; "_s; }

  // files, as another program writes them
  static QByteArray single(int number, int letters) {
    QByteArray text;
    for (int at = 0; at < letters; at += 70) text += (at > 0 ? "\r\n " : "") + QByteArray(70, 'x');
    return "BEGIN:VEVENT\r\nUID:single-" + QByteArray::number(number) +
           "\r\nDTSTAMP:20240101T000000Z\r\nSUMMARY:Single " + QByteArray::number(number) +
           "\r\nDTSTART;TZID=Europe/Stockholm:2024030" + QByteArray::number(1 + number) +
           "T090000\r\nDTEND;TZID=Europe/Stockholm:2024030" + QByteArray::number(1 + number) +
           "T100000\r\nX-OTHERS:" + text + "\r\nEND:VEVENT\r\n";
  }
  static QByteArray series() {
    return "BEGIN:VEVENT\r\nUID:series\r\nDTSTAMP:20240101T000000Z\r\nSUMMARY:Weekly\r\n"
           "DTSTART;TZID=Europe/Stockholm:20240304T130000\r\nDURATION:PT30M\r\n"
           "RRULE:FREQ=WEEKLY;COUNT=8\r\nEND:VEVENT\r\n";
  }
  static QByteArray calendar(const QByteArray& events) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another//Maker//EN\r\n" + events +
           "END:VCALENDAR\r\n";
  }
  QString path(const QString& name) const { return folder_.filePath(name); }
  void put(const QString& name, const QByteArray& bytes) const {
    QFile file(path(u".other-program"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(bytes), bytes.size());
    file.close();
    ASSERT_EQ(
        ::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(path(name)).constData()),
        0);
  }
  QByteArray content(const QString& name) const {
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  QStringList files() const { return QDir(folder_.path()).entryList({u"*.ics"_s}, QDir::Files, QDir::Name); }

  QList<Item> items() {
    Query query;
    query.zone = zone();
    query.expandSeries = true;
    query.startFrom = QDateTime(QDate(2024, 1, 1), QTime(0, 0), zone());
    query.startTo = QDateTime(QDate(2024, 12, 31), QTime(23, 59), zone());
    return store_->items(id, query);
  }
  Model shown() {
    Model model;
    for (const Item& item : items()) model[{item.key.uid, item.key.recurrenceId}] = knownOf(item);
    return model;
  }
  static Known knownOf(const Item& item) {
    return {item.subject,
            item.body,
            item.billingInformation,
            item.categories,
            item.start.toMSecsSinceEpoch(),
            item.durationMinutes()};
  }

  void save(const Item& item, const Known& wanted) {
    Change change;
    const Known now = knownOf(item);
    if (wanted.subject != now.subject) change.subject = wanted.subject;
    if (wanted.body != now.body) change.body = wanted.body;
    if (wanted.billing != now.billing) change.billingInformation = wanted.billing;
    if (wanted.categories != now.categories) change.categories = wanted.categories;
    if (wanted.start != now.start) change.start = QDateTime::fromMSecsSinceEpoch(wanted.start, zone());
    if (wanted.minutes != now.minutes) change.durationMinutes = wanted.minutes;
    const Item saved = store_->save(id, item.key, item.tag, change);
    EXPECT_EQ(text(knownOf(saved)), text(wanted)) << story_.toStdString();
    model_[{item.key.uid, item.key.recurrenceId}] = wanted;
  }

  void edit() {
    const QList<Item> all = items();
    if (all.isEmpty()) return;
    const Item item = all[pick(int(all.size()))];
    Known wanted = knownOf(item);
    before_ = {item.key.uid, item.key.recurrenceId};
    undo_ = wanted;
    ++number_;
    switch (pick(5)) {
      case 0:
        wanted.subject = u"Subject %1, with; signs\\"_s.arg(number_);
        break;
      case 1:
        wanted.body = u"Body %1\r\nof two lines"_s.arg(number_) + QString(pick(300), u'b');
        break;
      case 2:
        wanted.categories = QStringList{u"Category %1"_s.arg(number_), u"Other"_s};
        break;
      case 3:
        wanted.start += 60'000LL * (1 + pick(3000));
        break;
      default:
        wanted.minutes = 5 + pick(600);
        break;
    }
    tell(u"edit %1/%2"_s.arg(item.key.uid, item.key.recurrenceId));
    save(item, wanted);
  }
  void undo() {
    for (const Item& item : items()) {
      if (Name(item.key.uid, item.key.recurrenceId) != before_) continue;
      tell(u"undo %1/%2"_s.arg(item.key.uid, item.key.recurrenceId));
      save(item, undo_);
    }
    before_ = {};
  }
  void stamp() {
    const QList<Item> all = items();
    if (all.isEmpty()) return;
    const Item item = all[pick(int(all.size()))];
    Known wanted = knownOf(item);
    wanted.billing = u"5/15/2024 10:00:%1 AM"_s.arg(++number_ % 60);
    tell(u"stamp %1/%2"_s.arg(item.key.uid, item.key.recurrenceId));
    save(item, wanted);
  }
  void make() {
    Change change;
    change.subject = u"Made %1"_s.arg(++number_);
    change.start = QDateTime(QDate(2024, 6, 1 + pick(28)), QTime(8, 0), zone());
    change.durationMinutes = 15 + pick(100);
    tell(u"make"_s);
    const Item made = store_->save(id, {}, {}, change);
    EXPECT_EQ(made.subject, *change.subject);
    model_[{made.key.uid, {}}] = {*change.subject,        {}, {}, {}, change.start->toMSecsSinceEpoch(),
                                  *change.durationMinutes};
  }
  void remove() {
    const QList<Item> all = items();
    if (all.size() < 4) return;
    const Item item = all[pick(int(all.size()))];
    tell(u"remove %1/%2"_s.arg(item.key.uid, item.key.recurrenceId));
    store_->remove(id, item.key, item.tag);
    model_.erase({item.key.uid, item.key.recurrenceId});
  }

  /// Another program gives one of the singles another subject.
  std::optional<Item> changeOutside() {
    if (holding_) return std::nullopt;
    for (const Item& item : items()) {
      if (!item.key.uid.startsWith(u"single"_s)) continue;
      for (const QString& name : files()) {
        const QByteArray bytes = content(name);
        const qsizetype at = bytes.indexOf("UID:" + item.key.uid.toLatin1() + "\r\n");
        if (at < 0) continue;
        const qsizetype from = bytes.indexOf("\r\nSUMMARY:", at) + 2;
        const qsizetype to = bytes.indexOf("\r\n", from);
        const QByteArray subject = "Outside " + QByteArray::number(++number_);
        tell(u"outside %1"_s.arg(item.key.uid));
        put(name, bytes.left(from) + "SUMMARY:" + subject + bytes.mid(to));
        model_[{item.key.uid, {}}].subject = QString::fromLatin1(subject);
        return item;
      }
    }
    return std::nullopt;
  }
  void addOutside() {
    if (holding_) return;
    const QByteArray uid = "outside-" + QByteArray::number(++number_);
    const QByteArray event = "BEGIN:VEVENT\r\nUID:" + uid +
                             "\r\nSUMMARY:New\r\nDTSTART:20240801T100000Z\r\nDURATION:PT1H\r\nEND:VEVENT\r\n";
    tell(u"add outside"_s);
    if (isFolder_) {
      put(QString::fromLatin1(uid) + u".ics"_s, calendar(event));
    } else {
      const QByteArray bytes = content(u"all.ics"_s);
      const qsizetype end = bytes.lastIndexOf("END:VCALENDAR");
      put(u"all.ics"_s, bytes.left(end) + event + bytes.mid(end));
    }
    model_[{QString::fromLatin1(uid), {}}] = {
        u"New"_s, {}, {}, {}, QDateTime(QDate(2024, 8, 1), QTime(10, 0), Qt::UTC).toMSecsSinceEpoch(), 60};
  }
  /// What another program has changed since it was read is not written over.
  void saveStale() {
    const std::optional<Item> old = changeOutside();
    if (!old) return;
    tell(u"save what was read before"_s);
    Change change;
    change.subject = u"Too late"_s;
    try {
      store_->save(id, old->key, old->tag, change);
      ADD_FAILURE() << "written over: " << story_.toStdString();
    } catch (const platform::Failure& failure) {
      EXPECT_EQ(failure.number(), errChangedMeanwhile) << qPrintable(failure.description());
    }
  }

  void hold() {
    if (holding_) return flush();
    tell(u"hold"_s);
    store_->hold();
    holding_ = true;
    since_ = {model_};
  }
  void flush() {
    tell(u"flush"_s);
    EXPECT_TRUE(store_->flush().isEmpty()) << story_.toStdString();
    holding_ = false;
  }
  /// Without any chance to write what was kept back: each item is then as it was at some moment since.
  void crash() {
    tell(u"crash"_s);
    if (holding_) {
      // a process that dies runs no destructor
      static auto* const neverEnded = new std::vector<Store*>;  // no leak: it can be reached to the end
      neverEnded->push_back(store_.release());
    }
    store_.reset();
    open();
    if (!std::exchange(holding_, false)) return;
    const Model now = shown();
    const auto anyTime = [&](const std::function<bool(const Model&)>& holds) {
      return std::any_of(since_.begin(), since_.end(), holds) || holds(model_);
    };
    for (const auto& each : now)
      EXPECT_TRUE(anyTime([&](const Model& then) {
        const auto found = then.find(each.first);
        return found != then.end() && found->second == each.second;
      })) << text(each.second)
          << " after " << story_.toStdString();
    for (const auto& each : since_.front())
      EXPECT_TRUE(now.contains(each.first) ||
                  anyTime([&](const Model& then) { return !then.contains(each.first); }))
          << text(each.second) << story_.toStdString();
    model_ = now;
    before_ = {};
  }
  void restart() {
    if (holding_) flush();
    if (store_) tell(u"restart"_s);
    store_.reset();
    open();
  }
  void open() {
    store_ = std::make_unique<IcalendarStore>(
        QList<IcalendarFolder>{
            {id, u"Calendar"_s, u"Mailbox"_s, isFolder_ ? folder_.path() : path(u"all.ics"_s), false}},
        isIndexed_ ? index_.path() : QString());
  }

  std::mt19937 random_;
  bool isFolder_, isIndexed_;
  QTemporaryDir index_{tests::quickFolder(u"index"_s)};
  QTemporaryDir folder_{tests::quickFolder(u"life"_s)};
  std::unique_ptr<Store> store_;
  Model model_;
  std::vector<Model> since_;  // what was held back may be written up to any of these
  Name before_;
  Known undo_;
  bool holding_ = false;
  int number_ = 0;
  QString story_;
};

struct CalendarLife : testing::TestWithParam<std::tuple<bool, bool>> {};

TEST_P(CalendarLife, ShowsAtEachStepWhatAPlainListSays) {
  const platform::basic::ScopedClock clock(std::make_shared<platform::basic::FixedClock>(
      QDateTime(QDate(2024, 5, 15), QTime(10, 0)), "Europe/Stockholm"));
  const auto [folder, indexed] = GetParam();
  const int lives =
      (indexed ? livesInAll * 3 / 10 : livesInAll) * qMax(1, qEnvironmentVariableIntValue("HOURBOOK_SOAK"));
  const unsigned first = unsigned(qEnvironmentVariableIntValue("HOURBOOK_SEED"));
  for (unsigned seed = first; seed < first + unsigned(lives) && !HasFatalFailure(); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Life(seed, folder, seed % everyBig == 7, indexed).run();
    if (HasNonfatalFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(, CalendarLife, testing::Combine(testing::Bool(), testing::Bool()),
                         [](const auto& info) {
                           return std::string(std::get<0>(info.param) ? "InAFolder" : "InOneFile") +
                                  (std::get<1>(info.param) ? "WithAnIndex" : "");
                         });

}  // namespace
}  // namespace faults
