#include "workspace/ReportWindow.h"

#include "platform/forms/widgets/bind.h"
#include "platform/forms/widgets/windowplaces.h"
#include "workspace/FlowLayout.h"
#include "workspace/ListPart.h"
#include "workspace/modReportForm.h"
#include "workspace/StatisticsPart.h"
#include "workspace/StatusPart.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>

namespace hourbook {

namespace forms = platform::forms;

namespace {

inline constexpr int baseWidth = 920, baseHeight = 680;  // of a window on a screen with room

const QString startPickerName = QStringLiteral("dtpStartDate");

/// Side by side, and never broken apart.
QBoxLayout* together(const QList<QWidget*>& widgets) {
  auto* row = new QHBoxLayout;
  for (QWidget* widget : widgets) row->addWidget(widget, 0, Qt::AlignBottom);
  return row;
}

/// The desktop's own picture for what a button does; a desktop without one shows the text alone.
QPushButton* withIcon(const char* name, QPushButton* button) {
  button->setIcon(QIcon::fromTheme(QLatin1String(name)));
  return button;
}

/// For a field with its label above.
QBoxLayout* emptyColumn() {
  auto* column = new QVBoxLayout;
  column->setSpacing(2);
  return column;
}

}  // namespace

ReportWindow::ReportWindow(ReportForm& form, const QString& placesFile)
    : form_(form), places_(new forms::WindowPlaces(this, placesFile)) {
  setObjectName(form.Name());
  setWindowFlags(Qt::Window);
  setSizeGripEnabled(false);
  auto* page = new QVBoxLayout(this);
  page->addLayout(periodRow());
  page->addWidget(splitViews(), 1);
  page->addLayout(buttonRow());
  orderTabs();
  connect(&form_, &forms::Control::propertyChanged, this, [this] { setWindowTitle(form_.Caption()); });
  connect(&form_, &ReportForm::pickerAdded, this, &ReportWindow::takePicker);
  connect(&form_, &ReportForm::pickerRemoved, this, &ReportWindow::dropPicker);
  const QRect room = screen()->availableGeometry();
  resize(qMin(baseWidth, room.width()), qMin(baseHeight, room.height()));
  places_->restore();
}

ReportWindow::~ReportWindow() {
  setMousePointer(vbDefault);
}

// Layout

/// Sets a size now and whenever the font changes.
void ReportWindow::sized(std::function<void()> setSize) {
  setSize();
  sizes_.append(std::move(setSize));
}

/// As high as the fields and buttons beside it, so that its text stands on their line.
template <class Widget>
Widget* ReportWindow::asHighAs(const QWidget& neighbour, Widget* widget) {
  sized([&neighbour, widget] { widget->setMinimumHeight(neighbour.sizeHint().height()); });
  return widget;
}

/// A narrow window breaks its rows and needs more height for them; what a layout asks for by itself does not
/// count that.
void ReportWindow::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  const int needed = layout()->minimumHeightForWidth(width());
  if (needed > 0) setMinimumHeight(qMin(needed, screen()->availableGeometry().height()));
}

void ReportWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  for (const auto& setSize : sizes_) setSize();
}

/// A label over its field.
template <class ControlType, class Widget>
QLayout* ReportWindow::field(forms::Label& label, ControlType& control, Widget* widget) {
  auto* text = new QLabel(this);
  text->setBuddy(widget);
  forms::bind(label, text);
  forms::bind(control, widget);
  mnemonics_.add(label, text);
  QBoxLayout* column = emptyColumn();
  column->addWidget(text);
  column->addWidget(widget);
  return column;
}

template <class Button, class Widget>
Widget* ReportWindow::button(Button& control, Widget* widget) {
  forms::bind(control, widget);
  mnemonics_.add(control, widget);
  connect(widget, &QAbstractButton::pressed, this, [this] { list_->settle(); });
  return widget;
}

QLayout* ReportWindow::periodRow() {
  auto* row = new FlowLayout;
  startField_ = emptyColumn();
  endField_ = emptyColumn();
  line_ = new QLabel(this);
  forms::bind(form_.lnTo, line_);
  line_->hide();
  QPushButton* get = withIcon("view-refresh", button(form_.cmdGetValues, new QPushButton(this)));
  auto* again = new QShortcut(Qt::Key_F5, this);
  connect(again, &QShortcut::activated, get, &QPushButton::click);
  row->addLayout(startField_);
  row->addWidget(asHighAs(*get, line_));
  row->addLayout(endField_);
  row->addWidget(framePeriod());
  row->addLayout(field(form_.lblWeek, form_.cmbWeek, new QComboBox(this)));
  row->addWidget(get);
  row->addStretch();
  QBoxLayout* shown = together({asHighAs(*get, button(form_.chkGrid, new QCheckBox(this)))});
  shown->addSpacing(fontMetrics().height());
  shown->addLayout(field(form_.lblFilterCalendar, form_.cmbFilterCalendar, new QComboBox(this)));
  row->addLayout(shown);
  return row;
}

/// Only groups: a line round fields that stand in one row with others would break the row.
QWidget* ReportWindow::framePeriod() {
  auto* frame = new QWidget(this);
  frame->setObjectName(form_.fraPeriod.Name());
  connect(&form_.fraPeriod, &forms::Control::propertyChanged, frame,
          [this, frame] { frame->setVisible(form_.fraPeriod.Visible()); });
  mnemonics_.watch(form_.fraPeriod);
  auto* row = new FlowLayout(frame);
  row->setContentsMargins({});
  row->addLayout(field(form_.lblYear, form_.cmbYear, new QComboBox(this)));
  row->addLayout(field(form_.lblMonth, form_.cmbMonth, new QComboBox(this)));
  row->addLayout(field(form_.lblDay, form_.cmbDay, new QComboBox(this)));
  row->addLayout(daysBefore());
  return frame;
}

/// The text box with the scroll bar as its up and down arrows.
QLayout* ReportWindow::daysBefore() {
  auto* days = new QLineEdit(this);
  QLayout* column = field(form_.lblDaysBefore, form_.txtDays, days);
  auto* bar = new QScrollBar(Qt::Vertical, this);
  forms::bind(form_.vDaysBefore, bar);
  sized([days, bar] {
    bar->setFixedHeight(days->sizeHint().height());
    days->setMaximumWidth(days->fontMetrics().horizontalAdvance(QStringLiteral("00000000")));
  });
  column->removeWidget(days);
  auto* pair = new QHBoxLayout;
  pair->setSpacing(1);
  pair->addWidget(days);
  pair->addWidget(bar);
  pair->addStretch();
  static_cast<QBoxLayout*>(column)->addLayout(pair);
  return column;
}

void ReportWindow::takePicker(forms::DTPicker* picker) {
  const bool start = picker->Name() == startPickerName;
  auto* edit = new QDateEdit(this);
  auto* text = new QLabel(this);
  forms::Label& label = start ? form_.lblStart : form_.lblEnd;
  text->setBuddy(edit);
  forms::bind(label, text);
  forms::bind(*picker, edit);
  mnemonics_.add(label, text);
  QBoxLayout* column = start ? startField_ : endField_;
  column->addWidget(text);
  column->addWidget(edit);
  line_->setVisible(form_.lnTo.Visible());
  orderTabs();
}

void ReportWindow::dropPicker(forms::DTPicker* picker) {
  QBoxLayout* column = picker->Name() == startPickerName ? startField_ : endField_;
  while (QLayoutItem* item = column->takeAt(0)) {
    delete item->widget();
    delete item;
  }
  mnemonics_.apply();
  line_->hide();
}

QWidget* ReportWindow::splitViews() {
  auto* splitter = new QSplitter(Qt::Vertical, this);
  splitter->setObjectName(QStringLiteral("listAndStatistics"));
  list_ = new ListPart(form_, this);
  splitter->addWidget(list_);
  splitter->addWidget(new StatisticsPart(form_, this));
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 2);
  splitter->setChildrenCollapsible(false);
  splitter->setSizes({7000, 3000});  // parts of the whole, until the user pulls it
  return splitter;
}

QLayout* ReportWindow::buttonRow() {
  auto* row = new FlowLayout;
  QPushButton* add = withIcon("list-add", button(form_.cmdAddNew, new QPushButton(this)));
  QPushButton* save = withIcon("document-save", button(form_.cmdSaveChanges, new QPushButton(this)));
  QPushButton* print = withIcon("document-print", button(form_.cmdPrint, new QPushButton(this)));
  QPushButton* ok = button(form_.cmdOK, new QPushButton(this));
  QPushButton* cancel = button(form_.cmdCancel, new QPushButton(this));
  row->addWidget(asHighAs(*ok, new StatusPart(form_, this)));
  row->addStretch();
  row->addLayout(together({add, save, print, ok, cancel}));
  ok->setDefault(true);
  return row;
}

/// The controls in the order in which one reads them.
QList<QWidget*> ReportWindow::readingOrder() const {
  static const QStringList order{
      QStringLiteral("dtpStartDate"),      QStringLiteral("dtpEndDate"),   QStringLiteral("cmbYear"),
      QStringLiteral("cmbMonth"),          QStringLiteral("cmbDay"),       QStringLiteral("txtDays"),
      QStringLiteral("cmbWeek"),           QStringLiteral("cmdGetValues"), QStringLiteral("chkGrid"),
      QStringLiteral("cmbFilterCalendar"), QStringLiteral("exsThisWeek"),  QStringLiteral("tbsViews"),
      QStringLiteral("cmbChartType"),      QStringLiteral("excThisWeek"),  QStringLiteral("cmdAddNew"),
      QStringLiteral("cmdSaveChanges"),    QStringLiteral("cmdPrint"),     QStringLiteral("cmdOK"),
      QStringLiteral("cmdCancel")};
  QList<QWidget*> found;
  for (const QString& name : order)
    if (auto* widget = findChild<QWidget*>(name)) found.append(widget);
  return found;
}

void ReportWindow::orderTabs() {
  QWidget* before = nullptr;
  for (QWidget* widget : readingOrder()) {
    if (before) setTabOrder(before, widget);
    before = widget;
  }
}

// What the form asks of its screen

void ReportWindow::setMousePointer(int pointer) {
  const bool wait = pointer == vbHourglass;
  if (wait == waiting_) return;
  waiting_ = wait;
  if (wait)
    QApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QApplication::restoreOverrideCursor();
}

void ReportWindow::Refresh() {
  if (!isVisible()) return;
  // A window that is painted at once paints itself; its parts only as far as they wait to be painted.
  for (QWidget* part : findChildren<QWidget*>()) part->update();
  repaint();
}

void ReportWindow::Show() {
  for (QWidget* first : readingOrder()) {
    if (focusWidget() || !first->isVisibleTo(this)) continue;
    first->setFocus();
    break;
  }
  show();
  raise();
  activateWindow();
}

void ReportWindow::Unload() {
  close();
}

bool ReportWindow::UserIsBusy() const {
  return QApplication::activePopupWidget() || QApplication::activeModalWidget() ||
         QGuiApplication::mouseButtons() != Qt::NoButton || list_->isBeingTyped();
}

QPoint ReportWindow::ListScroll() const {
  return list_->scrolledTo();
}

void ReportWindow::setListScroll(const QPoint& scroll) {
  list_->scrollBackTo(scroll);
}

/// The controls have no background of their own: the window shows through them in every style and palette, so
/// there is no colour to be matched.
qint32 ReportWindow::GetPixel(int, int) const {
  return -1;
}

void ReportWindow::closeEvent(QCloseEvent* event) {
  list_->settle();
  event->accept();
  form_.windowClosed();
}

namespace {

struct FormWithWindow {
  FormWithWindow(const ReportFormVariant& variant, const QString& placesFile)
      : form(variant), window(form, placesFile) {
    form.setScreen(&window);
    subConnectEvents(form);
  }
  ~FormWithWindow() { form.setScreen(nullptr); }
  ReportForm form;
  ReportWindow window;
};

}  // namespace

std::shared_ptr<ReportForm> windowedReportForm(const ReportFormVariant& variant, const QString& placesFile) {
  auto both = std::make_shared<FormWithWindow>(variant, placesFile);
  return {both, &both->form};
}

}  // namespace hourbook
