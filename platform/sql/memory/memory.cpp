#include "platform/sql/memory/memory.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"

#include <QUrl>

namespace platform::sql::sqlite {

MemoryDriver::MemoryDriver() {
  static QAtomicInt counter;
  prefix_ = QStringLiteral("platform-sql-memory-%1-").arg(counter.fetchAndAddRelaxed(1));
}

std::unique_ptr<Session> MemoryDriver::connect(const ConnectionString& connection) {
  const QString name = connection.value(QStringLiteral("Data Source"));
  if (name.isEmpty())
    throw Failure(errors::invalidPath, QStringLiteral("A database in memory needs a name (Data Source)."));
  const QString uri = QStringLiteral("file:") +
                      QString::fromLatin1(QUrl::toPercentEncoding(prefix_ + name.toLower())) +
                      u"?mode=memory&cache=shared"_qs;
  if (!anchors_.contains(name.toLower()))
    anchors_.insert(name.toLower(), std::make_shared<SqliteSession>(uri, name, OpenOptions{}));
  return std::make_unique<SqliteSession>(uri, name, OpenOptions{});
}

}  // namespace platform::sql::sqlite
