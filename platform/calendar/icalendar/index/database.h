#pragma once
#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QString>

#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

// The few things that the index asks of SQLite.
namespace platform::calendar::icalendar::index {

/// SQLite did not do what it was asked for. The index is then of no use, now (`isBusy`) or at all.
struct IndexFailure {
  int code = 0;
  QByteArray text;
  bool isBusy() const;
};

/// The rows of a question. One question of the same text at a time.
class Rows {
 public:
  explicit Rows(sqlite3_stmt* statement) : statement_(statement) {}
  Rows(Rows&& other) noexcept : statement_(std::exchange(other.statement_, nullptr)) {}
  ~Rows();
  bool next();
  qint64 number(int column) const;
  quint64 bits(int column) const { return static_cast<quint64>(number(column)); }
  QByteArray bytes(int column) const;
  /// Until the next row.
  QByteArrayView view(int column) const;
  QString text(int column) const { return QString::fromUtf8(bytes(column)); }
  bool isNull(int column) const;
  QByteArray firstText() { return next() ? bytes(0) : QByteArray(); }

 private:
  sqlite3_stmt* statement_;
};

class Runs;

class Database {
 public:
  enum class Access { ReadWrite, Create };
  /// `identity` is that of the calendar; see pagecheck.h.
  Database(const QString& path, quint64 identity, Access access);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  template <class... Values>
  Rows ask(const char* sql, const Values&... values) {
    sqlite3_stmt* statement = prepared(sql);
    int at = 0;
    (bind(statement, ++at, values), ...);
    return Rows(statement);
  }
  template <class... Values>
  void run(const char* sql, const Values&... values) {
    Rows rows = ask(sql, values...);
    while (rows.next()) {
    }
  }
  /// The first number of the first row; nothing without rows.
  template <class... Values>
  std::optional<qint64> number(const char* sql, const Values&... values) {
    Rows rows = ask(sql, values...);
    return rows.next() && !rows.isNull(0) ? std::optional(rows.number(0)) : std::nullopt;
  }
  void script(const char* sql);
  /// What events are searched by. What is noted there is written with the commit of a change.
  Runs& runs() { return *runs_; }
  /// What the index holds cannot be.
  [[noreturn]] static void failBroken(const char* what);
  /// Whether another file, or none, stands where this one was opened.
  bool hasMoved();
  /// What is held as long as the connection lives.
  void hold(std::shared_ptr<void> held) { held_ = std::move(held); }

 private:
  sqlite3_stmt* prepared(const char* sql);
  void check(int code);
  void bind(sqlite3_stmt* statement, int at, qint64 value);
  void bind(sqlite3_stmt* statement, int at, int value) { bind(statement, at, qint64(value)); }
  void bind(sqlite3_stmt* statement, int at, bool value) { bind(statement, at, qint64(value)); }
  void bind(sqlite3_stmt* statement, int at, quint64 value) {
    bind(statement, at, static_cast<qint64>(value));
  }
  void bind(sqlite3_stmt* statement, int at, const QString& value);
  void bind(sqlite3_stmt* statement, int at, const QByteArray& value);  // as a blob

  std::shared_ptr<void> held_;
  std::unique_ptr<Runs> runs_;
  sqlite3* handle_ = nullptr;
  QHash<const char*, sqlite3_stmt*> statements_;  // the texts are literals
};

/// Many questions about one state of the index, and one lock for all of them.
class Reading {
 public:
  explicit Reading(Database& database) : database_(database) { database.run("BEGIN"); }
  ~Reading();
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  Database& database_;
};

/// Undone unless committed, with what was noted for the searches.
class Change {
 public:
  explicit Change(Database& database) : database_(database) { database.run("BEGIN IMMEDIATE"); }
  ~Change();
  void commit();

 private:
  Database& database_;
  bool done_ = false;
};

}  // namespace platform::calendar::icalendar::index
