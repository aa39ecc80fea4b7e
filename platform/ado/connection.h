#pragma once
#include "platform/ado/constants.h"
#include "platform/sql/driver.h"

#include <memory>

namespace platform::ado {

/// `ADODB.Connection` over the drivers of this machine.
class Connection {
 public:
  explicit Connection(std::shared_ptr<const sql::Drivers> drivers) : drivers_(std::move(drivers)) {}
  QString ConnectionString() const { return text_; }
  void setConnectionString(const QString& text) { text_ = text; }
  /// Failure 3706 for an unknown provider, else the driver's own. The connection stays closed then.
  void Open();
  void Close();  // Failure 3704 when it is not open
  int State() const { return session_ ? adStateOpen : adStateClosed; }
  sql::Session& session() const;  // Failure 3709 when closed

 private:
  std::shared_ptr<const sql::Drivers> drivers_;
  QString text_;
  std::unique_ptr<sql::Session> session_;
};

/// `ADODB.Command`.
class Command {
 public:
  void setActiveConnection(std::shared_ptr<Connection> connection) { connection_ = std::move(connection); }
  QString CommandText;
  int CommandType = adCmdText;
  sql::Result Execute();  // Failure 3709 without an open connection

 private:
  std::shared_ptr<Connection> connection_;
};

}  // namespace platform::ado
