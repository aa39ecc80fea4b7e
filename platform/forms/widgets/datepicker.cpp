#include "platform/forms/widgets/bind.h"
#include "platform/forms/widgets/follower.h"
#include "platform/locale/locale.h"

#include <QCalendarWidget>
#include <QDateEdit>

namespace platform::forms {

void bind(DTPicker& control, QDateEdit* widget, const QString& accessibleName) {
  const locale::Locale& system = locale::current();
  widget->setLocale(QLocale(system.name()));
  widget->setDisplayFormat(system.shortDatePattern());
  widget->setCalendarPopup(true);
  QCalendarWidget* calendar = widget->calendarWidget();
  calendar->setVerticalHeaderFormat(QCalendarWidget::ISOWeekNumbers);
  calendar->setFirstDayOfWeek(widget->locale().firstDayOfWeek());
  calendar->setGridVisible(false);

  auto* follower = new Follower(control, widget, accessibleName, [&control, widget] {
    if (widget->date() != control.Value().date()) widget->setDate(control.Value().date());
  });
  follower->keepWheelForFocus();
  QObject::connect(widget, &QDateEdit::dateChanged, follower, [follower, &control](const QDate& day) {
    follower->feedBack([&control, day] { control.setValue(basic::Date::of(day, control.Value().time())); });
  });
}

}  // namespace platform::forms
