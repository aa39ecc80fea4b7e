#include "platform/sql/sqlite/patience.h"

#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QThread>
#include <QVariant>

#include <sqlite3.h>

namespace platform::sql::sqlite {
namespace {

constexpr int shortestWaitUs = 500, longestWaitUs = 4000;

}  // namespace

void Patience::governs(const QSqlDatabase& database) {
  const QVariant handle = database.driver()->handle();
  if (qstrcmp(handle.typeName(), "sqlite3*") != 0) return;
  if (auto* const connection = *static_cast<sqlite3* const*>(handle.data()))
    sqlite3_busy_handler(connection, &Patience::wait, this);
}

int Patience::wait(void* self, int times) {
  auto& patience = *static_cast<Patience*>(self);
  if (times == 0) patience.since_.start();
  if (patience.since_.elapsed() >= patience.bound_) return 0;
  QThread::usleep(
      static_cast<unsigned long>(QRandomGenerator::global()->bounded(shortestWaitUs, longestWaitUs)));
  return 1;
}

}  // namespace platform::sql::sqlite
