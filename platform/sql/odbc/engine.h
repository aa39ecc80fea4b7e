#pragma once
#include "platform/sql/serverengine.h"

namespace platform::sql::odbc {

/// Counters are identities, captions are the descriptions of columns that the server's own tools show
/// (MS_Description), relations are foreign keys under their names. Texts are Unicode and compare as the
/// database does, usually without regard to case. Names have at most 64 characters.
class OdbcEngine : public ServerEngine {
 public:
  OdbcEngine();

 protected:
  QString quoted(const QString& name) const override;
  QString definition(const QString& table, const Column& column) const override;
  void describe(Session& session, const QString& table, const QString& column,
                const QString& caption) const override;
};

}  // namespace platform::sql::odbc
