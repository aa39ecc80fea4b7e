#include "settings/frmResolveRemovedItem.h"

#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/modXPlooks.h"
#include "shell/ShellValues.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;

frmResolveRemovedItem::frmResolveRemovedItem(const DeviceContext* hDC) : Control(u"frmResolveRemovedItem"_s) {
  setVisible(false);
  connect(&cmdOK, &platform::forms::CommandButton::Click, this, [this] { cmdOK_Click(); });
  connect(&cmdCancel, &platform::forms::CommandButton::Click, this, [this] { cmdCancel_Click(); });
  Form_Load(hDC);
}

void frmResolveRemovedItem::Form_Load(const DeviceContext* hDC) {
  setCaption(u"Hourbook for Outlook 3"_s);
  subSetCaptions();
  intReturnValue = cancelled;
  if (!hDC) return;
  subApplyBackColorToControl(*hDC, optRemoveReports);
  subApplyBackColorToControl(*hDC, optMoveReportsTo);
}

void frmResolveRemovedItem::subSetCaptions() {
  cmdOK.setCaption(phrases().LNGOK);
  cmdCancel.setCaption(phrases().LNGCANCEL);
  optRemoveReports.setCaption(phrases().LNGREMOVEREPORTS);
  optMoveReportsTo.setCaption(phrases().LNGADDTOANOTHER);
  optMoveReportsTo.setValue(true);
}

void frmResolveRemovedItem::subFillDropDown(const QStringList& colValues) try {
  subLog(u"Adding choice values to the dropdown"_s);
  cmbMoveChoice.Clear();
  for (const QString& value : colValues) cmbMoveChoice.AddItem(value);
} catch (const Failure& failure) {
  subHandleError(failure, u"subFillDropDown"_s);
}

void frmResolveRemovedItem::Show() {
  const auto& show = settingsValues().showResolveRemovedItem;
  if (!show)
    throw Failure(445,
                  u"The value \"%1\" is no longer in its list, and this version of the program has no dialog "
                  "that asks what becomes of its reports."_s.arg(lblValueToBeResolved.Caption()));
  setVisible(true);
  show(*this);
  setVisible(false);
}

void frmResolveRemovedItem::cmdOK_Click() {
  if (optRemoveReports.Value()) {
    intReturnValue = removeReports;
    Hide();
  } else if (!cmbMoveChoice.Text().isEmpty()) {
    intReturnValue = moveReports;
    Hide();
  }
}

void frmResolveRemovedItem::cmdCancel_Click() {
  intReturnValue = cancelled;
  Hide();
}

}  // namespace hourbook
