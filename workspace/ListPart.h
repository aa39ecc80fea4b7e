#pragma once
#include "workspace/ReportForm.h"

#include <QWidget>

namespace platform::owc {
class SheetView;
}

namespace hourbook {

class RowDropDown;

/// The list with the drop-downs that lie over the row being marked, each over its column as long as that is
/// in sight. It is as large as the list.
class ListPart : public QWidget {
  Q_OBJECT
 public:
  ListPart(ReportForm& form, QWidget* parent);

  /// Ends what is being typed in a cell or a drop-down, as leaving it with the mouse does. A key may press a
  /// button without taking the focus along.
  void settle();
  /// A cell or a drop-down is being typed in.
  bool isBeingTyped() const;
  /// How far the list is scrolled: x in pixels, y in rows.
  QPoint scrolledTo() const;
  void scrollBackTo(const QPoint& place);

 protected:
  void changeEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct DropDown {
    platform::forms::ComboBox* control;
    RowDropDown* widget;
    int column;
  };
  void addDropDown(platform::forms::ComboBox& control, int column);
  void followFont();
  void followCells();
  void lay(const DropDown& dropDown);
  void followContents(const platform::owc::CellRect& changed);
  void showCell(const DropDown& dropDown);
  void makeRoomFor(const QWidget* focused);
  bool openDropDown();

  ReportForm& form_;
  platform::owc::SheetView* list_;
  QList<DropDown> dropDowns_;
};

}  // namespace hourbook
