#include "platform/forms/widgets/bind.h"
#include "platform/forms/widgets/follower.h"
#include "platform/locale/locale.h"

#include <QCalendarWidget>
#include <QCoreApplication>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QStyleOptionComboBox>

#include <algorithm>
#include <optional>

namespace platform::forms {

namespace {

/// What the tool kit's field lacks for the keyboard: the calendar drops down by the keys that drop down any
/// list, and a date may be typed with its signs. The field goes on to the next part by itself where no
/// further digit fits; the sign typed then would go on once more. Digits typed into a part that is full, or
/// over the whole date, would be dropped without a sign of it; they begin the part anew.
class DateKeys : public QObject {
 public:
  explicit DateKeys(QDateEdit* edit) : QObject(edit), edit_(edit), line_(edit->findChild<QLineEdit*>()) {
    edit->installEventFilter(this);
    line_->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::FocusOut) typedInto_.reset();
    if (watched == edit_ && event->type() == QEvent::KeyPress)
      return isTaken(*static_cast<QKeyEvent*>(event)) || QObject::eventFilter(watched, event);
    return QObject::eventFilter(watched, event);
  }

 private:
  bool isTaken(const QKeyEvent& key) {
    if (dropsDown(key)) {
      dropDown();
      return true;
    }
    const QString text = key.text();
    const bool corrects = key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete;
    if (!text.isEmpty() && text[0].isDigit()) beginPart();
    if (corrects || (!text.isEmpty() && text[0].isDigit())) {
      typedInto_ = edit_->currentSection();
      return false;
    }
    const bool sign = text == u"/" || text == u"." || text == u"-" || text == u" ";
    const bool wentOn = typedInto_ && *typedInto_ != edit_->currentSection();
    typedInto_.reset();
    return sign && wentOn;
  }

  /// Selects the part that a digit is typed into, unless digits of it have been typed before or the user has
  /// selected some of its own.
  void beginPart() {
    const QString selected = line_->selectedText();
    const bool severalParts =
        std::any_of(selected.begin(), selected.end(), [](QChar sign) { return !sign.isDigit(); });
    if (severalParts)
      line_->setCursorPosition(line_->selectionStart());
    else if (!selected.isEmpty() || typedInto_ == edit_->currentSection())
      return;
    edit_->setSelectedSection(edit_->currentSection());
  }

  static bool dropsDown(const QKeyEvent& key) {
    if (key.key() == Qt::Key_F4) return key.modifiers() == Qt::NoModifier;
    return key.key() == Qt::Key_Down && key.modifiers() == Qt::AltModifier;
  }

  void dropDown() {
    QStyleOptionComboBox option;
    option.initFrom(edit_);
    option.editable = true;
    const QPointF arrow = edit_->style()
                              ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, edit_)
                              .center();
    QMouseEvent press(QEvent::MouseButtonPress, arrow, edit_->mapToGlobal(arrow), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, arrow, edit_->mapToGlobal(arrow), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(edit_, &press);
    QCoreApplication::sendEvent(edit_, &release);
  }

  QDateEdit* edit_;
  QLineEdit* line_;
  std::optional<QDateTimeEdit::Section> typedInto_;  // by the last key
};

}  // namespace

void bind(DTPicker& control, QDateEdit* widget, const QString& accessibleName) {
  const locale::Locale& system = locale::current();
  widget->setLocale(QLocale(system.name()));
  // Where all else runs from right to left the tool kit would turn day, month and year round, though their
  // digits do not run that way.
  widget->setLayoutDirection(Qt::LeftToRight);
  widget->setDisplayFormat(system.shortDatePattern());
  widget->setCalendarPopup(true);
  QCalendarWidget* calendar = widget->calendarWidget();
  calendar->setVerticalHeaderFormat(QCalendarWidget::ISOWeekNumbers);
  calendar->setFirstDayOfWeek(widget->locale().firstDayOfWeek());
  calendar->setGridVisible(false);
  new DateKeys(widget);

  auto* follower = new Follower(control, widget, accessibleName, [&control, widget] {
    if (widget->date() != control.Value().date()) widget->setDate(control.Value().date());
  });
  follower->keepWheelForFocus();
  QObject::connect(widget, &QDateEdit::dateChanged, follower, [follower, &control](const QDate& day) {
    follower->feedBack([&control, day] { control.setValue(basic::Date::of(day, control.Value().time())); });
  });
}

}  // namespace platform::forms
