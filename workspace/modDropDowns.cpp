#include "settings/cMetaDictionary.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "workspace/modReportForm.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

void subFillDropDowns() try {
  ReportForm& form = reportForm();
  const auto& lists = present(settingsValues().gPersonalSettings).MetaDataLists;
  const QList<platform::forms::ComboBox*> dropDowns{&form.cmbMeta1, &form.cmbMeta2, &form.cmbMeta3};
  for (int list = 1; list <= lists.Count() && list <= dropDowns.size(); ++list)
    subFillcombo(*dropDowns[list - 1], present(lists.Item(list)->MetaDic));
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subFillDropDowns"));
}

void subFillcombo(platform::forms::ComboBox& combo, const QStringList& keys) try {
  combo.Clear();
  for (const QString& key : keys) combo.AddItem(key);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subFillcombo"));
}

}  // namespace hourbook
