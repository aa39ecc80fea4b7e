#pragma once
#include "platform/basic/value.h"
#include "platform/forms/controls.h"
#include "platform/scripting/dictionary.h"

#include <QStringList>

namespace hourbook {

class ReportForm;

/// Connects the events of the form to what happens in them. Once for a form, before it is loaded.
void subConnectEvents(ReportForm& form);

/// The load event, the first fetch included. `gReportForm` must be the form.
void Form_Load();

/// Adds the date pickers, or leaves `fraPeriod` in use where they cannot be made, and shows the present date.
void subSetupDateControls();
/// Shows the dates in the controls in use; a second date before 1901 is not shown.
void subSetDate(const platform::basic::Date& first, const platform::basic::Date& second);
void subWeekChanged();
void subGridCheckChanged();
void txtDays_Change();
void vDaysBefore_Change();

/// Writes the phrases and the names of the meta lists to the form.
void subSetLangCaptions();

/// Puts the keys of a dictionary into a drop-down, in the dictionary's order.
void subFillcombo(platform::forms::ComboBox& combo, const QStringList& keys);
template <class T>
void subFillcombo(platform::forms::ComboBox& combo, const platform::scripting::Dictionary<T>& dictionary) {
  subFillcombo(combo, dictionary.Keys());
}

}  // namespace hourbook
