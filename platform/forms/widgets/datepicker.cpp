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
/// over the whole date, would be dropped without a sign of it; they begin the part anew. And a day would be
/// cut down to the days of a month that is only about to be typed over: 31 in February to 3.
class DateKeys : public QObject {
 public:
  explicit DateKeys(QDateEdit* edit) : QObject(edit), edit_(edit), line_(edit->findChild<QLineEdit*>()) {
    edit->installEventFilter(this);
    line_->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::FocusOut) endTyping();
    if (watched == edit_ && event->type() == QEvent::ShortcutOverride) {
      const int key = static_cast<QKeyEvent*>(event)->key();
      if (key >= Qt::Key_F1 && key <= Qt::Key_F35) endTyping();
    }
    if (watched == edit_ && event->type() == QEvent::KeyPress)
      return isTaken(*static_cast<QKeyEvent*>(event)) || QObject::eventFilter(watched, event);
    return QObject::eventFilter(watched, event);
  }

 private:
  /// A month of one digit counts only now, as far as the field is concerned.
  void endTyping() {
    if (wantedDay_) edit_->interpretText();
    showWantedDay();
    forget();
  }

  void forget() {
    typedInto_.reset();
    dayDigits_.reset();
    wantedDay_.reset();
  }

  bool isTaken(QKeyEvent& key) {
    if (dropsDown(key)) {
      dropDown();
      return true;
    }
    const QString text = key.text();
    if (!text.isEmpty() && text[0].isDigit()) return takesDigit(key, text[0]);
    if (key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete) {
      forget();
      typedInto_ = edit_->currentSection();
      return false;
    }
    const bool sign = text == u"/" || text == u"." || text == u"-" || text == u" ";
    const bool wentOn = typedInto_ && *typedInto_ != edit_->currentSection();
    typedInto_.reset();
    dayDigits_.reset();
    if (!sign) {
      endTyping();
      return false;
    }
    if (!wentOn) edit_->event(&key);
    showWantedDay();
    return true;
  }

  bool takesDigit(QKeyEvent& key, QChar digit) {
    beginPart();
    const QDateTimeEdit::Section part = edit_->currentSection();
    typedInto_ = part;
    if (part != QDateTimeEdit::DaySection) {
      edit_->event(&key);
      const bool yearIsFull = part == QDateTimeEdit::YearSection && edit_->date().year() >= 1000 &&
                              line_->cursorPosition() == line_->text().size();
      if (edit_->currentSection() != part || yearIsFull) showWantedDay();
      return true;
    }
    if (!dayDigits_) return false;
    *dayDigits_ += QString::number(digit.digitValue());
    const int day = dayDigits_->toInt(), days = edit_->date().daysInMonth();
    constexpr int mostDays = 31;
    if (dayDigits_->size() == 1) {
      wantedDay_.reset();
      // The field would go on to the month at once, since no day from 30 on fits the month before.
      if (day != 3 || days >= 30) return false;
      show(day);
      edit_->setSelectedSection(part);
      return true;
    }
    if (day > mostDays || dayDigits_->size() > 2) return false;
    wantedDay_ = day;
    if (day <= days) return false;
    show(days);
    edit_->setCurrentSectionIndex(edit_->currentSectionIndex() + 1);
    edit_->setSelectedSection(edit_->currentSection());
    return true;
  }

  void show(int day) {
    const QDate date = edit_->date();
    edit_->setDate(QDate(date.year(), date.month(), day));
  }

  /// The day comes to stand as typed when its month or year has come that has so many days.
  void showWantedDay() {
    if (!wantedDay_ || *wantedDay_ == edit_->date().day() || *wantedDay_ > edit_->date().daysInMonth())
      return;
    const QDateTimeEdit::Section part = edit_->currentSection();
    show(*wantedDay_);
    edit_->setSelectedSection(part);
  }

  /// Selects the part that a digit is typed into, unless digits of it have been typed before or the user has
  /// selected some of its own.
  void beginPart() {
    const QString selected = line_->selectedText();
    const bool severalParts =
        std::any_of(selected.begin(), selected.end(), [](QChar sign) { return !sign.isDigit(); });
    if (!severalParts && typedInto_ == edit_->currentSection()) return;
    const bool digitsOfPart =
        !severalParts && !selected.isEmpty() && selected != edit_->sectionText(edit_->currentSection());
    dayDigits_.reset();
    if (digitsOfPart) return;
    if (severalParts) line_->setCursorPosition(line_->selectionStart());
    dayDigits_ = QString();
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
  std::optional<QString> dayDigits_;                 // typed so far; none where older ones stand beside them
  std::optional<int> wantedDay_;                     // of two digits, that its month may still lack
};

/// Makes the calendar that drops down when it is first wanted: it is dearer than all the rest of the field,
/// and most who open a window never look at it.
class LateCalendar : public QObject {
 public:
  explicit LateCalendar(QDateEdit* edit) : QObject(edit), edit_(edit) { edit->installEventFilter(this); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::MouseButtonPress) {  // which the keys that drop it down come to as well
      edit_->removeEventFilter(this);
      make();
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  void make() const {
    QCalendarWidget* calendar = edit_->calendarWidget();
    calendar->setVerticalHeaderFormat(QCalendarWidget::ISOWeekNumbers);
    calendar->setFirstDayOfWeek(edit_->locale().firstDayOfWeek());
    calendar->setGridVisible(false);
  }

  QDateEdit* edit_;
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
  new LateCalendar(widget);
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
