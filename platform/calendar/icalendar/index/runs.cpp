#include "platform/calendar/icalendar/index/runs.h"

#include <QtEndian>

#include <algorithm>

namespace platform::calendar::icalendar::index {
namespace {

/// A longer row would not stand on one page with three others.
constexpr size_t maxRunBytes = 960;
/// Some room is left for what comes later.
constexpr size_t fullRunBytes = maxRunBytes - maxRunBytes / 16;
constexpr size_t wordBytes = sizeof(qint64);
/// More than that is written ahead of time: it takes some 30 MB.
constexpr size_t maxNoted = 1'000'000;

bool isOfTimes(Search search) {
  return search == Search::Short || search == Search::Wide;
}

qint64 wordAt(const char* bytes, size_t word) {
  return qFromLittleEndian<qint64>(bytes + word * wordBytes);
}

template <size_t words>
using Words = std::array<qint64, words>;

template <size_t words>
std::vector<Words<words>> decoded(QByteArrayView bytes) {
  std::vector<Words<words>> entries(static_cast<size_t>(bytes.size()) / (words * wordBytes));
  const char* at = bytes.data();
  for (Words<words>& entry : entries)
    for (qint64& word : entry) {
      word = qFromLittleEndian<qint64>(at);
      at += wordBytes;
    }
  return entries;
}

template <size_t words>
QByteArray encoded(const Words<words>* first, const Words<words>* last) {
  QByteArray bytes(static_cast<qsizetype>(static_cast<size_t>(last - first) * words * wordBytes),
                   Qt::Uninitialized);
  char* at = bytes.data();
  for (; first != last; ++first)
    for (const qint64 word : *first) {
      qToLittleEndian<qint64>(word, at);
      at += wordBytes;
    }
  return bytes;
}

/// By which its row is found.
template <size_t words>
std::pair<qint64, qint64> placeOf(const Words<words>& entry) {
  return {entry[0], entry[1]};
}

/// In order, each entry once, with what has become of it in the end.
template <class Notes>
void settle(Notes& notes) {
  std::sort(notes.begin(), notes.end(), [](const auto& a, const auto& b) { return a.entry < b.entry; });
  auto into = notes.begin();
  for (auto from = notes.begin(); from != notes.end();) {
    auto one = *from;
    for (++from; from != notes.end() && from->entry == one.entry; ++from) one.by += from->by;
    if (one.by != 0) *into++ = one;
  }
  notes.erase(into, notes.end());
}

/// What was noted between `note` and `last` goes into what stands there.
template <size_t words, class Note>
std::vector<Words<words>> merged(const std::vector<Words<words>>& present, Note note, Note last) {
  std::vector<Words<words>> entries;
  entries.reserve(present.size() + static_cast<size_t>(last - note));
  auto old = present.begin();
  for (; note != last; ++note) {
    while (old != present.end() && *old < note->entry) entries.push_back(*old++);
    const bool isThere = old != present.end() && *old == note->entry;
    if (note->by != (isThere ? -1 : 1)) Database::failBroken("an entry that is missing or doubled");
    if (isThere)
      ++old;
    else
      entries.push_back(note->entry);
  }
  entries.insert(entries.end(), old, present.end());
  return entries;
}

}  // namespace

void Runs::createTable(Database& database) {
  database.script(R"(
    CREATE TABLE run (
      search INTEGER, key INTEGER, home INTEGER, entries BLOB,
      PRIMARY KEY (search, key, home)) WITHOUT ROWID;
  )");
}

qsizetype Runs::entryBytes(Search search) {
  return static_cast<qsizetype>((isOfTimes(search) ? 4 : 2) * wordBytes);
}

Entry Runs::entryAt(Search search, const char* bytes) {
  if (!isOfTimes(search)) return {wordAt(bytes, 0), wordAt(bytes, 1), 0, 0};
  return {wordAt(bytes, 0), wordAt(bytes, 1), wordAt(bytes, 2), wordAt(bytes, 3)};
}

void Runs::checkSize(qsizetype size, qsizetype entrySize) {
  if (size == 0 || size % entrySize != 0) Database::failBroken("a run of an odd size");
}

/// The last run that begins below `from` may reach into what is looked for.
Rows Runs::ask(Search search, qint64 from, qint64 to) {
  return database_.ask(
      "SELECT entries FROM run WHERE search = ?1 AND key <= ?3 AND key >= coalesce((SELECT max(key) FROM run "
      "WHERE search = ?1 AND key < ?2), ?2) ORDER BY key, home",
      static_cast<int>(search), from, to);
}

void Runs::note(Search search, const Entry& entry, qint64 by) {
  const auto which = static_cast<size_t>(search);
  if (isOfTimes(search))
    times_[which - 1].push_back({{entry.key, entry.home, entry.bound, entry.uid}, by});
  else
    names_[which - 3].push_back({{entry.key, entry.home}, by});
  if (++noted_ >= maxNoted) flush();
}

void Runs::drop() {
  times_ = {};
  names_ = {};
  noted_ = 0;
}

void Runs::clear() {
  drop();
  database_.run("DELETE FROM run");
}

void Runs::flush() {
  if (noted_ == 0) return;
  write(Search::Short, times_[0]);
  write(Search::Wide, times_[1]);
  write(Search::Uid, names_[0]);
  write(Search::Subject, names_[1]);
  write(Search::Nameless, names_[2]);
  drop();
}

/// The run into which an entry falls, else the first one.
template <size_t words>
Runs::Run<words> Runs::runFor(Search search, qint64 key, qint64 home) {
  Run<words> run;
  const auto take = [&](Rows rows) {
    if (!rows.next()) return;
    run.first = {rows.number(0), rows.number(1)};
    checkSize(rows.view(2).size(), entryBytes(search));
    run.entries = decoded<words>(rows.view(2));
  };
  const int which = static_cast<int>(search);
  take(
      database_.ask("SELECT key, home, entries FROM run WHERE search = ? AND (key, home) <= (?, ?) "
                    "ORDER BY key DESC, home DESC LIMIT 1",
                    which, key, home));
  if (!run.first)
    take(database_.ask("SELECT key, home, entries FROM run WHERE search = ? ORDER BY key, home LIMIT 1",
                       which));
  if (!run.first) return run;
  Rows rows = database_.ask(
      "SELECT key, home FROM run WHERE search = ? AND (key, home) > (?, ?) ORDER BY key, home LIMIT 1", which,
      run.first->first, run.first->second);
  if (rows.next()) run.next = {rows.number(0), rows.number(1)};
  return run;
}

template <size_t words>
void Runs::write(Search search, Notes<words>& notes) {
  settle(notes);
  for (auto note = notes.cbegin(); note != notes.cend();) {
    const Run<words> run = runFor<words>(search, note->entry[0], note->entry[1]);
    auto last = note;
    while (last != notes.cend() && (!run.next || placeOf(last->entry) < *run.next)) ++last;
    if (last == note) Database::failBroken("runs out of order");
    replace(search, run, merged<words>(run.entries, note, last));
    note = last;
  }
}

template <size_t words>
void Runs::replace(Search search, const Run<words>& run, const std::vector<Words<words>>& entries) {
  const int which = static_cast<int>(search);
  const bool fits = entries.size() * words * wordBytes <= maxRunBytes;
  if (run.first && fits && !entries.empty() && placeOf(entries.front()) == *run.first) {
    database_.run("UPDATE run SET entries = ? WHERE search = ? AND key = ? AND home = ?",
                  encoded(entries.data(), entries.data() + entries.size()), which, run.first->first,
                  run.first->second);
    return;
  }
  if (run.first)
    database_.run("DELETE FROM run WHERE search = ? AND key = ? AND home = ?", which, run.first->first,
                  run.first->second);
  put(search, entries);
}

/// In as few runs as they need. Of one key and home all are in one.
template <size_t words>
void Runs::put(Search search, const std::vector<Words<words>>& entries) {
  constexpr size_t most = maxRunBytes / wordBytes / words, full = fullRunBytes / wordBytes / words;
  const Words<words>* at = entries.data();
  const Words<words>* const last = at + entries.size();
  // what just became too long is halved: it will go on growing in the midst
  const size_t length = entries.size() <= most       ? most
                        : entries.size() <= 2 * full ? (entries.size() + 1) / 2
                                                     : full;
  while (at != last) {
    const Words<words>* end = at + std::min(length, static_cast<size_t>(last - at));
    while (end != last && placeOf(*end) == placeOf(*(end - 1))) ++end;
    database_.run("INSERT INTO run VALUES (?, ?, ?, ?)", static_cast<int>(search), (*at)[0], (*at)[1],
                  encoded(at, end));
    at = end;
  }
}

}  // namespace platform::calendar::icalendar::index
