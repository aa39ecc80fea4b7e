#pragma once
#include "platform/automation/components.h"
#include "platform/dao/dao.h"

namespace platform::dao {

/// "DAO.DBEngine" over the embedded engine. To be called once, by whoever composes the program.
inline void registerComponents(automation::Components& components, std::shared_ptr<sql::Driver> driver,
                               std::shared_ptr<sql::FileEngine> engine) {
  components.add<DBEngine>(QStringLiteral("DAO.DBEngine"),
                           [driver, engine] { return std::make_shared<DBEngine>(driver, engine); });
}

}  // namespace platform::dao
