#pragma once
#include "platform/basic/failure.h"
#include "platform/calendar/failing/failingstore.h"
#include "platform/calendar/memory/memorystore.h"
#include "platform/outlook/application.h"
#include "tests/support/testworld.h"

namespace tests {

/// A calendar in memory behind a store that can be told to fail; the user's clock is Stockholm's.
class CalendarTest : public testing::Test {
 protected:
  CalendarTest() {
    platform::calendar::FolderInfo info;
    info.id = folder;
    info.name = QStringLiteral("Calendar");
    memory->addFolder(info);
  }

  static QDateTime local(const QString& text, const char* zone = "Europe/Stockholm") {
    const QDateTime read = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm"));
    return QDateTime(read.date(), read.time(), QTimeZone(zone));
  }
  static platform::calendar::Item appointment(const QString& subject, const QString& start, int minutes = 60,
                                              const char* zone = "Europe/Stockholm") {
    platform::calendar::Item item;
    item.subject = subject;
    item.start = local(start, zone);
    item.end = item.start.addSecs(minutes * 60);
    return item;
  }
  static platform::calendar::Item wholeDay(const QString& subject, const QDate& day, int days = 1) {
    platform::calendar::Item item;
    item.subject = subject;
    item.allDay = true;
    item.start = QDateTime(day, QTime(0, 0), Qt::LocalTime);
    item.end = item.start.addDays(days);
    return item;
  }
  platform::outlook::Items items() const { return platform::outlook::Items(store, folder); }
  std::shared_ptr<platform::outlook::AppointmentItem> add(const platform::calendar::Item& item) {
    memory->add(folder, item);
    return items().Item(item.subject);
  }
  /// All occurrences of the year 2024 that match the subject.
  QList<std::shared_ptr<platform::outlook::AppointmentItem>> walk() {
    QList<std::shared_ptr<platform::outlook::AppointmentItem>> found;
    platform::outlook::Items all = items();
    all.setIncludeRecurrences(true);
    for (auto item = all.Find(QStringLiteral("[Start] >= \"1/1/2024\" and [Start] <= \"12/31/2024\"")); item;
         item = all.FindNext())
      found.append(item);
    return found;
  }
  static QString shown(const platform::basic::Date& date) {
    return date.toLocal().date().toString(QStringLiteral("yyyy-MM-dd ")) +
           date.time().toString(QStringLiteral("HH:mm:ss"));
  }
  static qint32 failureOf(const std::function<void()>& statement) {
    try {
      statement();
    } catch (const platform::Failure& failure) {
      EXPECT_FALSE(failure.description().isEmpty());
      return failure.number();
    }
    return 0;
  }

  TestWorld world;
  const QString folder = QStringLiteral("calendar");
  std::shared_ptr<platform::calendar::MemoryStore> memory =
      std::make_shared<platform::calendar::MemoryStore>();
  std::shared_ptr<platform::calendar::FailingStore> store =
      std::make_shared<platform::calendar::FailingStore>(memory);
  const platform::Failure broken{platform::calendar::errStoreBroken, QStringLiteral("The disk is full.")};
};

}  // namespace tests
