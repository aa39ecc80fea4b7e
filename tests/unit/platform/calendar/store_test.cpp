#include "platform/calendar/store.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace platform::calendar;

namespace {

Item item(const QString& start, const QString& end, const QByteArray& zone) {
  Item made;
  const auto local = [&](const QString& text) {
    const QDateTime read = QDateTime::fromString(text, u"yyyy-MM-dd HH:mm:ss"_s);
    return QDateTime(read.date(), read.time(), QTimeZone(zone));
  };
  made.start = local(start);
  made.end = local(end);
  return made;
}

}  // namespace

TEST(CalendarItem, ADurationIsWholeMinutesBetweenTheMoments) {
  EXPECT_EQ(item(u"2024-05-15 09:00:00"_s, u"2024-05-15 10:30:59"_s, "Europe/Stockholm").durationMinutes(),
            90);
  EXPECT_EQ(item(u"2024-03-31 00:00:00"_s, u"2024-04-01 00:00:00"_s, "Europe/Stockholm").durationMinutes(),
            1380);
}

TEST(CalendarItem, AnAllDayItemCountsWholeDaysWhateverTheClocksDo) {
  for (const auto& [start, end, minutes] :
       {std::tuple{u"2024-03-31 00:00:00"_s, u"2024-04-01 00:00:00"_s, 1440},
        std::tuple{u"2024-10-27 00:00:00"_s, u"2024-10-29 00:00:00"_s, 2880}}) {
    Item day = item(start, end, "Europe/Stockholm");
    day.allDay = true;
    EXPECT_EQ(day.durationMinutes(), minutes);
  }
}

TEST(CalendarItem, AnEndBeforeTheStartOrNoEndIsNoDuration) {
  EXPECT_EQ(item(u"2024-05-15 09:00:00"_s, u"2024-05-15 08:00:00"_s, "UTC").durationMinutes(), 0);
  EXPECT_EQ(Item().durationMinutes(), 0);
}

TEST(CalendarChange, IsEmptyUntilAnyFieldIsSet) {
  EXPECT_TRUE(Change().isEmpty());
  const QList<std::function<void(Change&)>> settings{[](Change& c) { c.subject = u""_s; },
                                                     [](Change& c) { c.body = u""_s; },
                                                     [](Change& c) { c.start = QDateTime(); },
                                                     [](Change& c) { c.durationMinutes = 0; },
                                                     [](Change& c) { c.allDay = false; },
                                                     [](Change& c) { c.sensitivity = Sensitivity::Normal; },
                                                     [](Change& c) { c.categories = QStringList(); },
                                                     [](Change& c) { c.categoriesText = QString(); },
                                                     [](Change& c) { c.billingInformation = QString(); },
                                                     [](Change& c) { c.userProperties.insert(u"N"_s, {}); }};
  for (const auto& set : settings) {
    Change change;
    set(change);
    EXPECT_FALSE(change.isEmpty());
  }
}
