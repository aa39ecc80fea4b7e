#pragma once
#include "platform/forms/widgets/mnemonics.h"
#include "workspace/ReportForm.h"

#include <QDialog>

#include <functional>
#include <memory>

class QBoxLayout;
class QLabel;

namespace platform::forms {
class WindowPlaces;
}

namespace hourbook {

class ListPart;

/// The window of the report form: lays the controls out and shows what they hold. Closing it ends the
/// program, by the form's own event.
class ReportWindow : public QDialog, public ReportFormScreen {
  Q_OBJECT
 public:
  /// Keeps its place in a file; see `WindowPlaces`.
  ReportWindow(ReportForm& form, const QString& placesFile);
  ~ReportWindow() override;

  void setMousePointer(int pointer) override;
  void Refresh() override;
  void Show() override;
  void Unload() override;
  bool UserIsBusy() const override;
  QPoint ListScroll() const override;
  void setListScroll(const QPoint& scroll) override;
  qint32 GetPixel(int x, int y) const override;

  /// The Escape key closes what is open in the window, never the window itself.
  void reject() override {}

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QLayout* periodRow();
  QWidget* framePeriod();
  QLayout* daysBefore();
  QWidget* splitViews();
  QLayout* buttonRow();
  template <class ControlType, class Widget>
  QLayout* field(platform::forms::Label& label, ControlType& control, Widget* widget);
  template <class Button, class Widget>
  Widget* button(Button& control, Widget* widget);
  void takePicker(platform::forms::DTPicker* picker);
  void dropPicker(platform::forms::DTPicker* picker);
  QList<QWidget*> readingOrder() const;
  void orderTabs();
  void sized(std::function<void()> setSize);
  template <class Widget>
  Widget* asHighAs(const QWidget& neighbour, Widget* widget);

  ReportForm& form_;
  platform::forms::WindowPlaces* places_;
  platform::forms::Mnemonics mnemonics_;
  QBoxLayout* startField_ = nullptr;
  QBoxLayout* endField_ = nullptr;
  QLabel* line_ = nullptr;
  ListPart* list_ = nullptr;
  bool waiting_ = false;
  QList<std::function<void()>> sizes_;  // that are counted from the font
};

/// A report form with its window, its events connected; not loaded and not shown yet. The window keeps its
/// place in `placesFile`; without one it begins anew each time.
std::shared_ptr<ReportForm> windowedReportForm(const ReportFormVariant& variant, const QString& placesFile);

}  // namespace hourbook
