#pragma once
#include "platform/sql/driver.h"
#include "platform/sql/postgresql/connection.h"

namespace platform::sql::postgresql {

struct CatalogueTable {
  struct Entry {
    Column column;
    int number = 0;  // the engine's; those of dropped columns are missing
  };
  unsigned id = 0;
  QString name;
  bool isView = false;
  QList<Entry> entries;

  /// Without regard to case; of two that differ by it alone, the one that is spelled so.
  const Column* column(const QString& name) const;
  const Column* columnOfNumber(int number) const;
  const Column* counter() const;
};

/// The tables and views of a database that a statement may name without their schema. The engine tells names
/// apart by case, statements of the Access kind do not: here the real ones are found.
class Catalogue {
 public:
  static Catalogue read(Connection& connection);
  const CatalogueTable* table(const QString& name) const;
  const CatalogueTable* tableOfId(unsigned id) const;
  const QList<CatalogueTable>& tables() const { return tables_; }
  void add(CatalogueTable table) { tables_.append(std::move(table)); }

 private:
  QList<CatalogueTable> tables_;
};

}  // namespace platform::sql::postgresql
