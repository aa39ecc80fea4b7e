#pragma once
#include "platform/ado/recordset.h"
#include "platform/automation/components.h"

namespace platform::ado {

/// "ADODB.Connection", "ADODB.Recordset" and "ADODB.Command" over these drivers. To be called once, by
/// whoever composes the program.
inline void registerComponents(automation::Components& components,
                               std::shared_ptr<const sql::Drivers> drivers) {
  components.add<Connection>(QStringLiteral("ADODB.Connection"),
                             [drivers] { return std::make_shared<Connection>(drivers); });
  components.add<Recordset>(QStringLiteral("ADODB.Recordset"), [] { return std::make_shared<Recordset>(); });
  components.add<Command>(QStringLiteral("ADODB.Command"), [] { return std::make_shared<Command>(); });
}

}  // namespace platform::ado
