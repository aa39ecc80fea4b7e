#include "platform/calendar/icalendar/index/database.h"

#include "platform/calendar/icalendar/index/pagecheck.h"
#include "platform/calendar/icalendar/index/runs.h"

#include <QFile>

#include <sqlite3.h>

namespace platform::calendar::icalendar::index {
namespace {

/// Another process that has the index takes it for milliseconds. Rather than to wait for one that is stuck,
/// this one goes without.
constexpr int patienceMs = 250;

}  // namespace

bool IndexFailure::isBusy() const {
  return (code & 0xFF) == SQLITE_BUSY || (code & 0xFF) == SQLITE_LOCKED;
}

Rows::~Rows() {
  if (statement_) sqlite3_reset(statement_);
}

bool Rows::next() {
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) {
    sqlite3_reset(statement_);
    return false;
  }
  sqlite3* handle = sqlite3_db_handle(statement_);
  throw IndexFailure{sqlite3_extended_errcode(handle), sqlite3_errmsg(handle)};
}

qint64 Rows::number(int column) const {
  return sqlite3_column_int64(statement_, column);
}
QByteArray Rows::bytes(int column) const {
  const void* data = sqlite3_column_blob(statement_, column);
  return QByteArray(static_cast<const char*>(data), sqlite3_column_bytes(statement_, column));
}
QByteArrayView Rows::view(int column) const {
  const void* data = sqlite3_column_blob(statement_, column);
  return {static_cast<const char*>(data), sqlite3_column_bytes(statement_, column)};
}
bool Rows::isNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

Database::Database(const QString& path, quint64 identity, Access access)
    : runs_(std::make_unique<Runs>(*this)) {
  int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE;
  if (access == Access::Create) flags |= SQLITE_OPEN_CREATE;
  const int code = sqlite3_open_v2(QFile::encodeName(path).constData(), &handle_, flags,
                                   checkedPages(identity).constData());
  try {
    check(code);
    sqlite3_extended_result_codes(handle_, 1);
    sqlite3_busy_timeout(handle_, patienceMs);
    int reserved = checkBytes;
    check(sqlite3_file_control(handle_, "main", SQLITE_FCNTL_RESERVE_BYTES, &reserved));
    script("PRAGMA page_size=4096; PRAGMA trusted_schema=OFF; PRAGMA cache_size=-6000; PRAGMA mmap_size=0");
  } catch (...) {
    sqlite3_close_v2(handle_);
    throw;
  }
}

Database::~Database() {
  for (sqlite3_stmt* statement : std::as_const(statements_)) sqlite3_finalize(statement);
  sqlite3_close_v2(handle_);
}

void Database::check(int code) {
  if (code == SQLITE_OK) return;
  throw IndexFailure{handle_ ? sqlite3_extended_errcode(handle_) : code,
                     handle_ ? sqlite3_errmsg(handle_) : "no memory"};
}

void Database::failBroken(const char* what) {
  throw IndexFailure{SQLITE_CORRUPT, what};
}

void Database::script(const char* sql) {
  check(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr));
}

bool Database::hasMoved() {
  int moved = 0;
  check(sqlite3_file_control(handle_, "main", SQLITE_FCNTL_HAS_MOVED, &moved));
  return moved != 0;
}

sqlite3_stmt* Database::prepared(const char* sql) {
  sqlite3_stmt*& statement = statements_[sql];
  if (!statement) {
    sqlite3_stmt* made = nullptr;
    check(sqlite3_prepare_v3(handle_, sql, -1, SQLITE_PREPARE_PERSISTENT, &made, nullptr));
    statement = made;
  }
  return statement;
}

void Database::bind(sqlite3_stmt* statement, int at, qint64 value) {
  check(sqlite3_bind_int64(statement, at, value));
}
void Database::bind(sqlite3_stmt* statement, int at, const QString& value) {
  const QByteArray bytes = value.toUtf8();
  check(
      sqlite3_bind_text(statement, at, bytes.constData(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT));
}
void Database::bind(sqlite3_stmt* statement, int at, const QByteArray& value) {
  check(
      sqlite3_bind_blob(statement, at, value.constData(), static_cast<int>(value.size()), SQLITE_TRANSIENT));
}

Reading::~Reading() {
  try {
    database_.run("COMMIT");
  } catch (const IndexFailure&) {
    // nothing was written, and the failure of a question has been told
  }
}

Change::~Change() {
  if (done_) return;
  database_.runs().drop();
  try {
    database_.script("ROLLBACK");
  } catch (const IndexFailure&) {
    // after some failures SQLite has already rolled back itself; the first failure is the one to be told
  }
}

void Change::commit() {
  database_.runs().flush();
  database_.run("COMMIT");
  done_ = true;
}

}  // namespace platform::calendar::icalendar::index
