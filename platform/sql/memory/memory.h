#pragma once
#include "platform/sql/sqlite/session.h"

namespace platform::sql::sqlite {

/// Databases in memory: "Provider=Memory;Data Source=name". A name is a database from its first connection
/// on; all connections of one driver object share it, and it lives as long as that object.
class MemoryDriver : public Driver {
 public:
  MemoryDriver();
  std::unique_ptr<Session> connect(const ConnectionString& connection) override;

 private:
  QString prefix_;
  QHash<QString, std::shared_ptr<Session>> anchors_;  // keep the databases alive
};

}  // namespace platform::sql::sqlite
