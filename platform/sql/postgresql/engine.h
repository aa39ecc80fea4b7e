#pragma once
#include "platform/sql/serverengine.h"

namespace platform::sql::postgresql {

/// Counters are identities, captions are comments, relations are foreign keys under their names. Texts
/// compare without regard to case by a collation that is made in the database with the first text column
/// ("general_ci"); the server does not offer its functions that look for a part of a text on such columns.
/// Names have at most 63 bytes in UTF-8.
class PostgresqlEngine : public ServerEngine {
 public:
  PostgresqlEngine();

 protected:
  QString quoted(const QString& name) const override;
  QString definition(const QString& table, const Column& column) const override;
  void describe(Session& session, const QString& table, const QString& column,
                const QString& caption) const override;
  void prepare(Session& session, const QList<Column>& columns) const override;
};

}  // namespace platform::sql::postgresql
