#pragma once
#include "platform/calendar/icalendar/index/database.h"

#include <array>
#include <vector>

// What events are searched by. A row for each event and each search would be most of the work of making an
// index, so the entries of a search stand in order in runs, some dozens in a row, and are written many at a
// time.
namespace platform::calendar::icalendar::index {

enum class Search { Short = 1, Wide = 2, Uid = 3, Subject = 4, Nameless = 5 };

/// What the entries lead to is where events are kept together: see packs.h.
struct Entry {
  qint64 key = 0;
  qint64 home = 0;
  qint64 bound = 0, uid = 0;  // only of Short (key: earliest, bound: latest) and Wide (the other way round)
};

class Runs {
 public:
  explicit Runs(Database& database) : database_(database) {}

  static void createTable(Database& database);

  /// Noted, and written with the next flush(). The same entry stands there once at the most.
  void add(Search search, const Entry& entry) { note(search, entry, 1); }
  void remove(Search search, const Entry& entry) { note(search, entry, -1); }
  /// To be called before anything is looked for that may have been noted. A commit does it.
  void flush();
  /// Forgets what was noted.
  void drop();
  /// All entries go.
  void clear();

  /// Calls with each entry whose key is none below `from` and none above `to`.
  template <class Take>
  void each(Search search, qint64 from, qint64 to, const Take& take) {
    Rows rows = ask(search, from, to);
    while (rows.next()) {
      const QByteArrayView bytes = rows.view(0);
      const qsizetype size = entryBytes(search);
      checkSize(bytes.size(), size);
      for (qsizetype at = 0; at < bytes.size(); at += size) {
        const Entry entry = entryAt(search, bytes.data() + at);
        if (entry.key >= from && entry.key <= to) take(entry);
      }
    }
  }

 private:
  template <size_t words>
  struct Noted {
    std::array<qint64, words> entry;
    qint64 by;
  };
  using Place = std::pair<qint64, qint64>;  // key and home
  template <size_t words>
  struct Run {
    std::vector<std::array<qint64, words>> entries;
    std::optional<Place> first, next;  // where it begins, and the one behind it
  };
  template <size_t words>
  using Notes = std::vector<Noted<words>>;

  static qsizetype entryBytes(Search search);
  static Entry entryAt(Search search, const char* bytes);
  static void checkSize(qsizetype size, qsizetype entrySize);
  Rows ask(Search search, qint64 from, qint64 to);
  void note(Search search, const Entry& entry, qint64 by);
  template <size_t words>
  void write(Search search, Notes<words>& notes);
  template <size_t words>
  Run<words> runFor(Search search, qint64 key, qint64 home);
  template <size_t words>
  void replace(Search search, const Run<words>& run, const std::vector<std::array<qint64, words>>& entries);
  template <size_t words>
  void put(Search search, const std::vector<std::array<qint64, words>>& entries);

  Database& database_;
  std::array<Notes<4>, 2> times_;  // Short, Wide
  std::array<Notes<2>, 3> names_;  // Uid, Subject, Nameless
  size_t noted_ = 0;
};

}  // namespace platform::calendar::icalendar::index
