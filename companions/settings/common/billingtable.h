#pragma once
#include "companions/settings/common/commonbuffer.h"
#include "companions/settings/common/heldconnection.h"

namespace hourbook {

/// The row of `tblWFData`; an absent one when the table has none or is not there.
BillingRow readBillingRow(HeldConnection& database);

/// Writes the four fields that the billing roads read. What the database lacks for them is made first: the
/// table, and the columns of the first two lists that hold the billing system's own numbers. Those belong
/// together: a reader that finds the table takes the columns for granted.
void writeBillingRow(HeldConnection& database, const BillingRow& row);

}  // namespace hourbook
