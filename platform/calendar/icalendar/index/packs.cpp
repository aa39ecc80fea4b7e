#include "platform/calendar/icalendar/index/packs.h"

#include <QtEndian>

#include <algorithm>
#include <limits>
#include <tuple>

namespace platform::calendar::icalendar::index {
namespace {

constexpr qsizetype eventBytes = 8 * 8 + 4 * 4;
constexpr quint32 namelessFlag = 1;

class Out {
 public:
  explicit Out(char* at) : at_(at) {}
  template <class Number>
  Out& operator<<(Number number) {
    qToLittleEndian<Number>(number, at_);
    at_ += sizeof(Number);
    return *this;
  }

 private:
  char* at_;
};

class In {
 public:
  explicit In(const char* at) : at_(at) {}
  template <class Number>
  In& operator>>(Number& number) {
    number = qFromLittleEndian<Number>(at_);
    at_ += sizeof(Number);
    return *this;
  }

 private:
  const char* at_;
};

QByteArray encoded(const Pack& pack) {
  QByteArray bytes(static_cast<qsizetype>(pack.size()) * eventBytes, Qt::Uninitialized);
  char* at = bytes.data();
  for (const auto& [row, place] : pack) {
    Out(at) << row.earliest << row.latest << row.uid << row.subject << row.recurrenceId << place.sum
            << place.offset << place.calendar << static_cast<quint32>(place.length)
            << static_cast<qint32>(place.line) << static_cast<qint32>(place.number)
            << (row.hasUid ? quint32(0) : namelessFlag);
    at += eventBytes;
  }
  return bytes;
}

Pack decoded(QByteArrayView bytes) {
  if (bytes.size() % eventBytes != 0) Database::failBroken("events of an odd size");
  Pack pack(static_cast<size_t>(bytes.size() / eventBytes));
  const char* at = bytes.data();
  for (auto& [row, place] : pack) {
    quint32 length = 0, flags = 0;
    qint32 line = 0, number = 0;
    In(at) >> row.earliest >> row.latest >> row.uid >> row.subject >> row.recurrenceId >> place.sum >>
        place.offset >> place.calendar >> length >> line >> number >> flags;
    place.length = length;
    place.line = line;
    place.number = number;
    row.hasUid = (flags & namelessFlag) == 0;
    at += eventBytes;
  }
  return pack;
}

using Time = std::tuple<Search, qint64, qint64, qint64>;  // what it is found by, key, bound, name

Time timeOf(const EventRow& row) {
  const auto uid = static_cast<qint64>(row.uid);
  return row.isShort() ? Time(Search::Short, row.earliest, row.latest, uid)
                       : Time(Search::Wide, row.latest, row.earliest, uid);
}

template <class Value>
void makeUnique(std::vector<Value>& values) {
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

/// Calls with all that the events are found by, each once.
template <class Take>
void eachEntry(const Pack& pack, qint64 file, Home home, const Take& take) {
  std::vector<Time> times;
  std::vector<qint64> uids, subjects;
  bool anyNameless = false;
  for (const StoredEvent& event : pack) {
    times.push_back(timeOf(event.row));
    uids.push_back(static_cast<qint64>(event.row.uid));
    subjects.push_back(static_cast<qint64>(event.row.subject));
    anyNameless = anyNameless || !event.row.hasUid;
  }
  makeUnique(times);
  makeUnique(uids);
  makeUnique(subjects);
  for (const auto& [search, key, bound, uid] : times) take(search, Entry{key, home.number(), bound, uid});
  for (const qint64 uid : uids) take(Search::Uid, Entry{uid, home.number()});
  for (const qint64 subject : subjects) take(Search::Subject, Entry{subject, home.number()});
  if (anyNameless) take(Search::Nameless, Entry{file, home.number()});
}

void addEntries(Database& database, qint64 file, Home home, const Pack& pack) {
  eachEntry(pack, file, home, [&](Search search, const Entry& entry) { database.runs().add(search, entry); });
}

void removeEntries(Database& database, qint64 file, Home home, const Pack& pack) {
  eachEntry(pack, file, home,
            [&](Search search, const Entry& entry) { database.runs().remove(search, entry); });
}

}  // namespace

Pack packAt(Database& database, Home home) {
  Rows rows = database.ask("SELECT events FROM pack WHERE id = ?", home.number());
  return rows.next() ? decoded(rows.view(0)) : Pack();
}

void insertPack(Database& database, qint64 file, Home home, const Pack& pack) {
  if (pack.empty()) return;
  database.run("INSERT INTO pack VALUES (?, ?)", home.number(), encoded(pack));
  addEntries(database, file, home, pack);
}

void replacePack(Database& database, qint64 file, Home home, const Pack& was, const Pack& now) {
  database.run("UPDATE pack SET events = ? WHERE id = ?", encoded(now), home.number());
  removeEntries(database, file, home, was);
  addEntries(database, file, home, now);
}

void removePack(Database& database, qint64 file, Home home) {
  const Pack was = packAt(database, home);
  if (was.empty()) return;
  database.run("DELETE FROM pack WHERE id = ?", home.number());
  removeEntries(database, file, home, was);
}

qint64 countEvents(Database& database, qint64 most) {
  qint64 count = 0;
  Rows rows = database.ask("SELECT length(events) FROM pack");
  while (count < most && rows.next()) count += rows.number(0) / eventBytes;
  return qMin(count, most);
}

QSet<quint64> uidsBetween(Database& database, qint64 from, qint64 to) {
  constexpr qint64 first = std::numeric_limits<qint64>::min(), last = std::numeric_limits<qint64>::max();
  QSet<quint64> uids;
  database.runs().each(Search::Short, from < first + shortMs ? first : from - shortMs, to,
                       [&](const Entry& entry) {
                         if (entry.bound >= from) uids.insert(static_cast<quint64>(entry.uid));
                       });
  database.runs().each(Search::Wide, from, last, [&](const Entry& entry) {
    if (entry.bound <= to) uids.insert(static_cast<quint64>(entry.uid));
  });
  return uids;
}

QList<Home> homesOf(Database& database, Search search, quint64 sum) {
  QList<Home> homes;
  const auto key = static_cast<qint64>(sum);
  database.runs().each(search, key, key, [&](const Entry& entry) { homes.append(Home(entry.home)); });
  return homes;
}

QSet<quint64> uidsWithSubject(Database& database, quint64 subject) {
  QSet<quint64> uids;
  for (const Home home : homesOf(database, Search::Subject, subject))
    for (const StoredEvent& event : packAt(database, home))
      if (event.row.subject == subject) uids.insert(event.row.uid);
  return uids;
}

}  // namespace platform::calendar::icalendar::index
