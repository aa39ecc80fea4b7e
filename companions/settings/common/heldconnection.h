#pragma once
#include "companions/settings/page.h"
#include "database/DatabaseValues.h"
#include "settings/cGlobalSettings.h"

#include <memory>

namespace hourbook {

/// The database that a place leads to, held open over several procedures of the product. These close the
/// shared connection when they are done, so they are lent one that leads to the same session and leaves it
/// open: that is how reading, comparing and saving become one transaction. While it lives, the database code
/// works on values of its own.
class HeldConnection {
 public:
  /// Throws platform::Failure when the database cannot be reached.
  explicit HeldConnection(const ReportPlace& place);
  ~HeldConnection();
  HeldConnection(const HeldConnection&) = delete;
  HeldConnection& operator=(const HeldConnection&) = delete;

  platform::sql::Session& session() { return real_->session(); }
  /// Another session over the same one, which can be closed by itself.
  std::unique_ptr<platform::sql::Session> sessionOver();
  /// The settings object whose target led to the database.
  cGlobalSettings& settings() { return *settings_; }
  /// Makes the next procedure of the database code use this connection.
  void lend();
  /// Is it the embedded database, the only kind that the billing roads read?
  bool isAccess() const;

 private:
  Shared<DatabaseValues>::Scope values_;
  std::unique_ptr<cGlobalSettings> settings_;
  std::shared_ptr<platform::ado::Connection> real_;
};

/// The folder of a database as messages show it; for a server its connection without a password.
QString placeName(const ReportPlace& place);

}  // namespace hourbook
