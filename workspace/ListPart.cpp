#include "workspace/ListPart.h"

#include "platform/forms/twips.h"
#include "platform/forms/widgets/bind.h"
#include "platform/owc/view/sheetview.h"
#include "platform/process/process.h"
#include "workspace/modDropDowns.h"
#include "workspace/RowDropDown.h"
#include "workspace/WorkspaceValues.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>

namespace hourbook {

namespace forms = platform::forms;
using platform::owc::CellRect;

namespace {

/// The form outlives neither the program's values nor its window by a fixed order.
bool isInUse(const ReportForm& form) {
  return Shared<WorkspaceValues>::exists() && workspaceValues().gReportForm.get() == &form;
}

/// While the list follows the calendar, rows move that come back to their places, and nobody may see it.
bool isToFollow(const ReportForm& form) {
  return isInUse(form) && !workspaceValues().following;
}

}  // namespace

ListPart::ListPart(ReportForm& form, QWidget* parent)
    : QWidget(parent), form_(form), list_(new platform::owc::SheetView(form.exsThisWeek, this)) {
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins({});
  whole->addWidget(list_);
  list_->setEditable(true);
  list_->installEventFilter(this);
  forms::bindExtender(form_.exsThisWeek.Extender, list_);
  addDropDown(form_.cmbMeta1, 2);
  addDropDown(form_.cmbMeta2, 3);
  addDropDown(form_.cmbMeta3, 4);
  connect(list_, &platform::owc::SheetView::cellsMoved, this, &ListPart::followCells);
  connect(&form_.exsThisWeek, &platform::owc::Spreadsheet::cellsChanged, this, &ListPart::followContents);
  connect(&form_, &ReportForm::listFetched, this, &ListPart::followCells);
  connect(qApp, &QApplication::focusChanged, this,
          [this](const QWidget*, const QWidget* now) { makeRoomFor(now); });
  followFont();
}

/// They lie over the row that is being marked, so no layout owns them.
void ListPart::addDropDown(forms::ComboBox& control, int column) {
  auto* widget = new RowDropDown(this);
  const DropDown dropDown{&control, widget, column};
  dropDowns_.append(dropDown);
  // Before the widget follows: hidden with the focus, it would pass it on to anywhere.
  connect(&control, &forms::Control::propertyChanged, widget, [this, &control, widget] {
    if (!control.Visible() && widget->hasFocus()) list_->setFocus(Qt::OtherFocusReason);
  });
  forms::bind(control, widget);
  connect(&control, &forms::Control::propertyChanged, widget, [this, dropDown] { lay(dropDown); });
  connect(widget, &RowDropDown::givenUp, this, [this, dropDown] { showCell(dropDown); });
  connect(widget, &RowDropDown::done, this, [this] { list_->setFocus(Qt::OtherFocusReason); });
}

void ListPart::followFont() {
  list_->setMinimumHeight(list_->fontMetrics().height() * 6);
}

void ListPart::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) followFont();
}

void ListPart::settle() {
  list_->endEdit();
  for (const DropDown& dropDown : dropDowns_)
    if (dropDown.widget->hasFocus()) list_->setFocus(Qt::OtherFocusReason);
}

bool ListPart::isBeingTyped() const {
  return list_->isBeingEdited() ||
         std::any_of(dropDowns_.cbegin(), dropDowns_.cend(),
                     [](const DropDown& one) { return one.widget->isBeingTyped(); });
}

// Places

QPoint ListPart::scrolledTo() const {
  return list_->scrolledTo();
}

void ListPart::scrollBackTo(const QPoint& place) {
  list_->scrollBackTo(place);
}

void ListPart::followCells() {
  if (!isToFollow(form_)) return;
  const int row = workspaceValues().gCurrentRow;
  bool inSight = false;
  for (int column = 1; column <= 7; ++column) inSight |= !list_->cellGeometry(row, column).isEmpty();
  platform::process::guardEvent([inSight] { subFollowScrolling(inSight); });
  for (const DropDown& dropDown : dropDowns_) lay(dropDown);
}

/// The column gives its place from left to right; how high it stands is the form's business.
void ListPart::lay(const DropDown& dropDown) {
  if (!isToFollow(form_) || !dropDown.control->Visible()) return;
  const QRect cell = list_->cellGeometry(workspaceValues().gCurrentRow, dropDown.column);
  dropDown.widget->setVisible(!cell.isEmpty());
  if (cell.isEmpty()) return;
  const QRect place = cell.translated(list_->pos());
  dropDown.control->place(forms::pixelsToTwips(place.left()), dropDown.control->Top,
                          forms::pixelsToTwips(place.width()), forms::pixelsToTwips(place.height()));
  // Tab goes on to them from the list, wherever the window has put the list among its controls.
  const QWidget* before = list_;
  for (const DropDown& other : dropDowns_) {
    setTabOrder(const_cast<QWidget*>(before), other.widget);
    before = other.widget;
  }
}

/// The editor of a cell must not lie under the drop-down of the cell.
void ListPart::makeRoomFor(const QWidget* focused) {
  const bool editing =
      focused && focused != list_ && list_->isAncestorOf(focused) && qobject_cast<const QLineEdit*>(focused);
  const QRect place = editing ? QRect(focused->mapTo(this, QPoint()), focused->size()) : QRect();
  for (const DropDown& dropDown : dropDowns_) {
    if (editing && place.intersects(dropDown.widget->geometry()))
      dropDown.widget->lower();
    else
      dropDown.widget->raise();
  }
}

// Contents

/// A cell of the row has another text, however that came: also one that has just been taken back.
void ListPart::followContents(const CellRect& changed) {
  if (!isToFollow(form_)) return;
  for (const DropDown& dropDown : dropDowns_)
    if (changed.contains(workspaceValues().gCurrentRow, dropDown.column)) showCell(dropDown);
}

void ListPart::showCell(const DropDown& dropDown) {
  if (!isInUse(form_) || !dropDown.control->Visible()) return;
  dropDown.control->setText(form_.exsThisWeek.Cell(workspaceValues().gCurrentRow, dropDown.column).Text());
}

// Keys and wheel

/// Of a drop-down, which leaves it to the list.
void ListPart::wheelEvent(QWheelEvent* event) {
  QCoreApplication::sendEvent(list_->viewport(), event);
}

bool ListPart::eventFilter(QObject* watched, QEvent* event) {
  if (watched == list_ && event->type() == QEvent::KeyPress) {
    const auto& key = *static_cast<QKeyEvent*>(event);
    const bool altDown = key.key() == Qt::Key_Down && key.modifiers() == Qt::AltModifier;
    const bool f4 = key.key() == Qt::Key_F4 && key.modifiers() == Qt::NoModifier;
    if ((altDown || f4) && openDropDown()) return true;
  }
  return QWidget::eventFilter(watched, event);
}

/// The one over the active cell.
bool ListPart::openDropDown() {
  const int column = form_.exsThisWeek.ActiveCell().Column();
  const auto found = std::find_if(dropDowns_.cbegin(), dropDowns_.cend(), [column](const DropDown& one) {
    return one.column == column && one.widget->isVisible();
  });
  if (found == dropDowns_.cend()) return false;
  found->widget->setFocus(Qt::OtherFocusReason);
  found->widget->showPopup();
  return true;
}

}  // namespace hourbook
