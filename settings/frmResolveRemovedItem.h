#pragma once
#include "platform/forms/controls.h"
#include "shell/FormWindow.h"

#include <QStringList>

namespace hourbook {

/// Asks what becomes of the reports of a value that is no longer in its list. Its controls without pixels: a
/// window follows them, and a script can press them.
class frmResolveRemovedItem : public platform::forms::Control {
 public:
  static constexpr qint16 removeReports = 1;
  static constexpr qint16 moveReports = 2;  // to the value in `cmbMoveChoice`
  static constexpr qint16 cancelled = 3;

  /// Loaded at once. The form is painted on the context given; none: on nothing that has a colour.
  explicit frmResolveRemovedItem(const DeviceContext* hDC = nullptr);

  qint16 intReturnValue = cancelled;

  platform::forms::Label lblConflict{QStringLiteral("lblConflict")};  // what the conflict is
  platform::forms::Label lblValueToBeResolved{QStringLiteral("lblValueToBeResolved")};  // the value's name
  platform::forms::OptionButton optRemoveReports{QStringLiteral("optRemoveReports"), this};
  platform::forms::OptionButton optMoveReportsTo{QStringLiteral("optMoveReportsTo"), this};
  platform::forms::ComboBox cmbMoveChoice{QStringLiteral("cmbMoveChoice")};
  platform::forms::CommandButton cmdOK{QStringLiteral("cmdOK")};
  platform::forms::CommandButton cmdCancel{QStringLiteral("cmdCancel")};

  void subSetCaptions();
  /// Fills `cmbMoveChoice` with the values that reports can be moved to.
  void subFillDropDown(const QStringList& colValues);
  /// Shows the form and returns when it was hidden. Failure 445 when nothing can show it.
  void Show();
  void Hide() { setVisible(false); }

 private:
  void Form_Load(const DeviceContext* hDC);
  void cmdOK_Click();
  void cmdCancel_Click();
};

}  // namespace hourbook
