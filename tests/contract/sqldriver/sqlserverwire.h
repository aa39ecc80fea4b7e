#pragma once
#include "platform/sql/odbc/session.h"
#include "sqldriver_context.h"
#include "tdspeer.h"

namespace contract {

/// Sessions with a scripted peer.
class SqlServerWire : public testing::Test {
 protected:
  /// What "more" names again counts.
  platform::sql::ConnectionString connection(const QString& more = {}) const {
    return platform::sql::ConnectionString(
        u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=ann;Password=secret1;Data Source=%1;Initial "
        u"Catalog=Hourbook3SQL;%2"_qs.arg(server(), more));
  }
  QString server() const { return u"127.0.0.1,%1"_qs.arg(peer.port()); }
  std::unique_ptr<platform::sql::Session> connect(const QString& more = {}) const {
    return platform::sql::odbc::OdbcDriver(options).connect(connection(more));
  }
  /// What stands behind a statement that writes.
  static TdsAnswer counts(qint32 rows, qint64 id) {
    return TdsAnswer().columns({{{}, TdsType::Int}, {{}, TdsType::BigInt}}).row({rows, id}).done();
  }

  platform::sql::odbc::Options options;
  TdsPeer peer;
};

/// An environment variable for the length of a test.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value)
      : name_(name), before_(qgetenv(name)), wasSet_(qEnvironmentVariableIsSet(name)) {
    qputenv(name, value);
  }
  ~ScopedVariable() {
    if (wasSet_)
      qputenv(name_, before_);
    else
      qunsetenv(name_);
  }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  const char* name_;
  QByteArray before_;
  bool wasSet_;
};

}  // namespace contract
