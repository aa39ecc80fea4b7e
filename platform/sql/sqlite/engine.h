#pragma once
#include "platform/sql/sqlite/session.h"

namespace platform::sql::sqlite {

/// Making and changing SQLite databases. Works on any session of this engine, a wrapped one included, because
/// it speaks through `execute` alone. Each operation is one transaction: it is carried out whole or not at
/// all.
///
/// A text column compares without regard to the case of A to Z, as the engine's NOCASE order does; other
/// letters compare exactly. A text that is longer than its column, or empty where that is not allowed, is
/// refused by the file itself (a check constraint), whoever writes it.
class SqliteEngine : public FileEngine {
 public:
  explicit SqliteEngine(int busyTimeout = busyTimeoutMs, Durability durability = Durability::PowerCut)
      : busyTimeout_(busyTimeout), durability_(durability) {}
  void createDatabase(const QString& path) override;
  void createTable(Session& session, const QString& table, const QList<Column>& columns) override;
  void addColumn(Session& session, const QString& table, const Column& column) override;
  void addRelation(Session& session, const Relation& relation) override;
  QList<Relation> relations(Session& session) override;
  void setCaption(Session& session, const QString& table, const QString& column,
                  const QString& caption) override;
  std::shared_ptr<CompactedSource> compact(const QString& source, const QString& target) override;

 private:
  int busyTimeout_;
  Durability durability_;
};

}  // namespace platform::sql::sqlite
