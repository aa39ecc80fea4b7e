#pragma once
#include "database/DatabaseValues.h"
#include "database/frmChooseConnection.h"
#include "database/frmSQLLogon.h"

namespace hourbook {

// Each shows a form modally over the window in front, and returns when it was hidden or its window closed.
void subShowChooseConnection(frmChooseConnection& form);
void subShowSQLLogon(frmSQLLogon& form);

/// Makes the dialogs for a new database known to the database code, and allows it to use them.
void subUseDatabaseForms(DatabaseValues& values);

}  // namespace hourbook
