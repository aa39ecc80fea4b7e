#pragma once
#include "platform/owc/range.h"

#include <QString>

namespace hourbook {

class cMarking;

/// Fills the meta drop-downs from the user's lists.
void subFillDropDowns();

/// Shows a drop-down for each position of the marking with its value. The top is in twips, within what holds
/// the list.
void subShowDropDowns(const cMarking& marking, int top);
void subHideDropDowns();

/// Where the drop-downs of a row stand, in twips; 0 when the row is not on the screen. Only for the newer
/// forms.
int fncGetComboTop(int row);

/// Shows the drop-downs over the row that is being selected, or hides them where it is none of the list.
/// `gCurrentRow` must be its row.
void subFollowSelection(const platform::owc::Range& selected);
/// Rows stand elsewhere on the screen: moves the drop-downs along, hides them while their row is not in sight
/// and shows them again when it is.
void subFollowScrolling(bool rowInSight);

/// The user has chosen a value in a drop-down: it goes to the cell of the column in the current row, and
/// from there to the appointment.
void subHandleMetaDropClick(const QString& strText, const QString& strCol);
/// What generation 9 does then.
void subHandleMetaDropChange(const QString& strText, const QString& strCol);

}  // namespace hourbook
