#pragma once
#include "platform/basic/failure.h"
#include "platform/sql/driver.h"
#include "platform/sql/errors.h"

#include <QTemporaryDir>

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>

namespace contract {

/// What the suite needs to know of one database driver. A new engine adds a context of its own and
/// instantiates the suite with it (sqldriver_backends.cpp); where it cannot do something, it says so by a
/// quirk and not by leaving tests out.
class SqlDriverContext {
 public:
  virtual ~SqlDriverContext() = default;
  virtual platform::sql::Driver& driver() = 0;
  /// Leads to an empty database that this context has made.
  virtual platform::sql::ConnectionString connection() = 0;
  /// Of the same engine; works on the driver's sessions.
  virtual platform::sql::FileEngine& engine() = 0;

  // quirks
  /// Databases are files: they can be missing, damaged, locked by others, compacted.
  virtual bool has_files() const { return true; }
  /// The path of the database, where it is a file.
  virtual QString path() const { return {}; }
  /// `top n` gives exactly n rows, where Access gives those that tie with the n-th as well.
  virtual bool has_top_without_ties() const { return true; }
  /// Texts compare without regard to case for A to Z only.
  virtual bool folds_only_ascii() const { return true; }
  /// A column takes any value, and one that is none of its type shows when it is read; otherwise it is
  /// refused when it is written.
  virtual bool keeps_foreign_values() const { return true; }
};

struct Backend {
  const char* name;
  std::function<std::unique_ptr<SqlDriverContext>()> make;
};
inline void PrintTo(const Backend& backend, std::ostream* out) {
  *out << backend.name;
}

class SqlDriver : public testing::TestWithParam<Backend> {
 protected:
  SqlDriver() : context(GetParam().make()) {}

  std::unique_ptr<platform::sql::Session> connect() {
    return context->driver().connect(context->connection());
  }

  static platform::sql::Column key(const QString& name, const QString& caption = {});
  static platform::sql::Column text(const QString& name, int size = 255);
  static platform::sql::Column column(const QString& name, platform::sql::Type type);
  /// "tblPersons" and "tblReports" with all types of column, related by "PersonReports".
  void createTables(platform::sql::Session& session);

  std::unique_ptr<SqlDriverContext> context;
};

/// The number of the failure that the statements end with; 0 when they do not fail.
qint32 failureNumber(const std::function<void()>& statements);
QString failureText(const std::function<void()>& statements);

}  // namespace contract
