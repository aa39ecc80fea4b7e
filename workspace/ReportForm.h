#pragma once
#include "platform/forms/controls.h"
#include "platform/owc/chartspace.h"
#include "platform/owc/spreadsheet.h"
#include "shell/FormWindow.h"
#include "workspace/OnForm.h"
#include "workspace/ReportFormVariant.h"

#include <QPoint>

#include <memory>

namespace hourbook {

inline constexpr int vbDefault = 0;     // mouse pointer
inline constexpr int vbHourglass = 11;  // mouse pointer

/// What of the report form needs a screen; the window implements it, a test notes it down.
class ReportFormScreen : public DeviceContext {
 public:
  virtual void setMousePointer(int pointer) = 0;
  /// Paints at once what has changed, without dispatching other events.
  virtual void Refresh() = 0;
  virtual void Show() = 0;
  /// Closes the window; its closing comes back as `Unload` of the form.
  virtual void Unload() = 0;
  /// The user is in the middle of something that a change of the list would disturb: he types, chooses, holds
  /// a mouse button, or another window waits for him.
  virtual bool UserIsBusy() const { return false; }
  /// How far the list is scrolled: x in pixels, y in rows.
  virtual QPoint ListScroll() const { return {}; }
  virtual void setListScroll(const QPoint&) {}
};

/// The controls of the report form under their names, and nothing else: what happens in their events stands
/// in `modReportForm` and the modules that it calls. A control without a word here is told where it is used.
class ReportForm : public platform::forms::Control {
  Q_OBJECT
 public:
  explicit ReportForm(const ReportFormVariant& variant);
  ~ReportForm() override;
  const ReportFormVariant& variant() const { return variant_; }

  /// Runs the load event. Everything is as told once: a form is loaded once.
  void Load();
  void Show();
  void Unload();
  void Refresh();
  int MousePointer() const { return mousePointer_; }
  void setMousePointer(int pointer);
  /// What the form is painted on; without a window nothing is, and no pixel has a colour.
  const DeviceContext& hDC() const;
  bool UserIsBusy() const { return screen_ && screen_->UserIsBusy(); }
  QPoint ListScroll() const { return screen_ ? screen_->ListScroll() : QPoint(); }
  void setListScroll(const QPoint& scroll);
  /// Not owned; null: a form without a window.
  void setScreen(ReportFormScreen* screen) { screen_ = screen; }
  /// The list is being rebuilt and has come so far in the period, from 0 to 1.
  void tellFetching(double part) { Q_EMIT listFetching(part); }
  /// The list has been rebuilt.
  void tellFetched() { Q_EMIT listFetched(); }
  /// The window has closed.
  void windowClosed() { Q_EMIT Unloaded(); }

  /// Adds a control of a component at run time. Failure 429 when the component is not installed.
  std::shared_ptr<platform::forms::DTPicker> addPicker(const QString& progId, const QString& name);
  void removePicker(std::shared_ptr<platform::forms::DTPicker>& picker);

  OnForm<platform::owc::Spreadsheet> exsThisWeek;
  OnForm<platform::owc::ChartSpace> excThisWeek;
  platform::forms::TabStrip tbsViews{QStringLiteral("tbsViews")};
  platform::forms::CheckBox chkGrid{QStringLiteral("chkGrid")};
  platform::forms::Label lblFilterCalendar{QStringLiteral("lblFilterCalendar")};
  platform::forms::ComboBox cmbFilterCalendar{QStringLiteral("cmbFilterCalendar")};

  platform::forms::Frame fraPeriod{QStringLiteral("fraPeriod")};
  platform::forms::Label lblYear{QStringLiteral("lblYear")};
  /// Takes typed years too, since a week may lie outside of the six years offered.
  platform::forms::ComboBox cmbYear{QStringLiteral("cmbYear"),
                                    platform::forms::ComboBox::Style::DropdownCombo};
  platform::forms::Label lblMonth{QStringLiteral("lblMonth")};
  platform::forms::ComboBox cmbMonth{QStringLiteral("cmbMonth")};
  platform::forms::Label lblDay{QStringLiteral("lblDay")};
  platform::forms::ComboBox cmbDay{QStringLiteral("cmbDay")};
  platform::forms::Label lblDaysBefore{QStringLiteral("lblDaysBefore")};
  platform::forms::TextBox txtDays{QStringLiteral("txtDays")};
  /// Holds minus the days, so that its upper arrow means more days.
  platform::forms::ScrollBar vDaysBefore{QStringLiteral("vDaysBefore")};

  platform::forms::Label lblStart{QStringLiteral("lblStart")};
  platform::forms::Label lblEnd{QStringLiteral("lblEnd")};
  platform::forms::Label lnTo{QStringLiteral("lnTo")};  // the line between the two dates
  /// Added at run time; both null where the component is missing.
  std::shared_ptr<platform::forms::DTPicker> dtpStartDate;
  std::shared_ptr<platform::forms::DTPicker> dtpEndDate;

  platform::forms::Label lblWeek{QStringLiteral("lblWeek")};
  platform::forms::ComboBox cmbWeek{QStringLiteral("cmbWeek")};

  platform::forms::ComboBox cmbMeta1{QStringLiteral("cmbMeta1"),
                                     platform::forms::ComboBox::Style::DropdownCombo};
  platform::forms::ComboBox cmbMeta2{QStringLiteral("cmbMeta2"),
                                     platform::forms::ComboBox::Style::DropdownCombo};
  platform::forms::ComboBox cmbMeta3{QStringLiteral("cmbMeta3"),
                                     platform::forms::ComboBox::Style::DropdownCombo};

  platform::forms::CommandButton cmdGetValues{QStringLiteral("cmdGetValues")};
  platform::forms::CommandButton cmdOK{QStringLiteral("cmdOK")};
  platform::forms::CommandButton cmdCancel{QStringLiteral("cmdCancel")};
  platform::forms::CommandButton cmdAddNew{QStringLiteral("cmdAddNew")};
  platform::forms::CommandButton cmdSaveChanges{QStringLiteral("cmdSaveChanges")};
  platform::forms::CommandButton cmdPrint{QStringLiteral("cmdPrint")};

  platform::forms::Label lblTotalHours{QStringLiteral("lblTotalHours")};
  platform::forms::Label lblHours{QStringLiteral("lblHours")};
  platform::forms::Timer timCheckDateChange{QStringLiteral("timCheckDateChange")};
  platform::forms::Timer timFollowCalendar{QStringLiteral("timFollowCalendar")};
  /// Null but in the form of generation 9.
  std::unique_ptr<platform::forms::ComboBox> cmbChartType;

 Q_SIGNALS:
  void Loading();   // Form_Load
  void Unloaded();  // Form_Unload
  void listFetching(double part);
  void listFetched();
  void pickerAdded(platform::forms::DTPicker* picker);
  void pickerRemoved(platform::forms::DTPicker* picker);

 private:
  const ReportFormVariant& variant_;
  ReportFormScreen* screen_ = nullptr;
  int mousePointer_ = vbDefault;
};

}  // namespace hourbook
