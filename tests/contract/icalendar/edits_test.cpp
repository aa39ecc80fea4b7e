#include "platform/calendar/icalendar/icalendarstore.h"
#include "tests/journeys/outside.h"
#include "tests/support/testworld.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// What we have written into a calendar other programs show as we do: khal, and python3-icalendar with
// recurring-ical-events, asked after every edit.
namespace {

using namespace Qt::StringLiterals;
using namespace platform::calendar;

const QString from = u"2024-02-01"_s, to = u"2024-05-01"_s;

QByteArray calendarOf(const QByteArrayList& events) {
  QByteArray bytes = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another//Maker//EN\r\n";
  for (const QByteArray& event : events)
    bytes += "BEGIN:VEVENT\r\nDTSTAMP:20240101T000000Z\r\n" + event + "END:VEVENT\r\n";
  return bytes + "END:VCALENDAR\r\n";
}

class EditsSeenByOthers : public testing::Test {
 protected:
  EditsSeenByOthers() {
    put("zoned", calendarOf({"UID:zoned\r\nSUMMARY:Zoned\r\nDTSTART;TZID=Europe/Stockholm:20240205T090000\r\n"
                             "DTEND;TZID=Europe/Stockholm:20240205T100000\r\n"}));
    put("utc", calendarOf({"UID:utc\r\nSUMMARY:In UTC\r\nDTSTART:20240206T080000Z\r\nDURATION:PT45M\r\n"}));
    put("day", calendarOf({"UID:day\r\nSUMMARY:Whole day\r\nDTSTART;VALUE=DATE:20240207\r\n"
                           "DTEND;VALUE=DATE:20240209\r\n"}));
    put("abroad",
        calendarOf({"UID:abroad\r\nSUMMARY:Abroad\r\nDTSTART;TZID=America/New_York:20240308T090000\r\n"
                    "DTEND;TZID=America/New_York:20240308T100000\r\n"}));
    put("weekly", calendarOf({"UID:weekly\r\nSUMMARY:Weekly\r\n"
                              "DTSTART;TZID=Europe/Stockholm:20240212T130000\r\n"
                              "DTEND;TZID=Europe/Stockholm:20240212T133000\r\n"
                              "RRULE:FREQ=WEEKLY;COUNT=10\r\n"
                              "EXDATE;TZID=Europe/Stockholm:20240226T130000\r\n"}));
    put("days", calendarOf({"UID:days\r\nSUMMARY:Every third\r\nDTSTART;VALUE=DATE:20240301\r\n"
                            "DTEND;VALUE=DATE:20240302\r\nRRULE:FREQ=DAILY;INTERVAL=3;COUNT=6\r\n"}));
    put("dawn", calendarOf({"UID:dawn\r\nSUMMARY:Dawn\r\nDTSTART:20240325T010000Z\r\nDURATION:PT1H\r\n"
                            "RRULE:FREQ=DAILY;COUNT=9\r\n"}));
    put("moved",
        calendarOf({"UID:moved\r\nSUMMARY:Series\r\nDTSTART;TZID=Europe/Stockholm:20240401T100000\r\n"
                    "DURATION:PT1H\r\nRRULE:FREQ=DAILY;COUNT=5\r\n",
                    "UID:moved\r\nSUMMARY:Moved\r\n"
                    "RECURRENCE-ID;TZID=Europe/Stockholm:20240403T100000\r\n"
                    "DTSTART;TZID=Europe/Stockholm:20240403T150000\r\nDURATION:PT2H\r\n"}));
    open();
  }

  void put(const QByteArray& name, const QByteArray& bytes) {
    QFile file(folder() + u'/' + QString::fromLatin1(name) + u".ics"_s);
    QDir().mkpath(folder());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
  }
  void open() {
    store_ = std::make_unique<IcalendarStore>(
        QList<IcalendarFolder>{{u"cal"_s, u"Calendar"_s, u"Mailbox"_s, folder(), false}});
  }
  QString folder() const { return root_.filePath(u"calendar"_s); }

  QList<Item> items() {
    Query query;
    query.zone = QTimeZone("Europe/Stockholm");
    query.expandSeries = true;
    query.startFrom = QDateTime(QDate::fromString(from, Qt::ISODate), QTime(0, 0), query.zone);
    query.startTo = QDateTime(QDate::fromString(to, Qt::ISODate), QTime(0, 0), query.zone).addSecs(-1);
    return store_->items(u"cal"_s, query);
  }
  Item occurrence(const QString& uid, const QString& day) {
    for (const Item& item : items())
      if (item.key.uid == uid && item.start.date().toString(Qt::ISODate) == day) return item;
    ADD_FAILURE() << qPrintable(uid) << " is not there on " << qPrintable(day);
    return {};
  }
  Item master(const QString& uid) {
    Query query;
    query.uid = uid;
    query.zone = QTimeZone("Europe/Stockholm");
    return store_->items(u"cal"_s, query).value(0);
  }

  QStringList ours() {
    QStringList lines;
    for (const Item& item : items()) {
      const QString form = item.allDay ? u"yyyy-MM-dd"_s : u"yyyy-MM-dd HH:mm"_s;
      const QDateTime end = item.allDay ? item.end.addDays(-1) : item.end;
      lines.append(item.start.toString(form) + u' ' + end.toString(form) + u' ' + item.subject);
    }
    lines.sort();
    return lines;
  }
  /// An item of several days is listed by khal on each of them.
  QStringList khals() {
    QStringList lines = outside::khalList(folder(), root_.filePath(u"scratch%1"_s.arg(++asked_)), from, to);
    for (QString& line : lines) line.truncate(line.lastIndexOf(u" ["_s));
    lines.removeDuplicates();
    lines.sort();
    return lines;
  }
  QStringList pythons() {
    QStringList lines = outside::run(u"/usr/bin/python3"_s, {u"-B"_s, u"-W"_s, u"ignore"_s,
                                                             QStringLiteral(OCCURRENCES), folder(), from, to})
                            .split(u'\n', Qt::SkipEmptyParts);
    lines.sort();
    return lines;
  }
  void expectAgreement(const char* after) {
    const QStringList shown = ours();
    EXPECT_EQ(khals(), shown) << "khal after " << after;
    EXPECT_EQ(pythons(), shown) << "python3-icalendar after " << after;
    open();
    EXPECT_EQ(ours(), shown) << "after a restart after " << after;
  }
  void edit(const Item& item, const std::function<void(Change&)>& how) {
    Change change;
    how(change);
    store_->save(u"cal"_s, item.key, item.tag, change);
  }
  static QDateTime moment(int month, int day, int hour, int minute = 0) {
    return QDateTime(QDate(2024, month, day), QTime(hour, minute), QTimeZone("Europe/Stockholm"));
  }

  tests::TestWorld world;

 private:
  QTemporaryDir root_;
  std::unique_ptr<IcalendarStore> store_;
  int asked_ = 0;

 protected:
  Store& store() { return *store_; }
};

void stamp(Change& change) {
  change.billingInformation = u"5/15/2024 10:00:00 AM"_s;
}

TEST_F(EditsSeenByOthers, BeforeAnyOfThem) {
  EXPECT_EQ(ours().size(), 1 + 1 + 1 + 1 + 9 + 6 + 9 + 5);
  expectAgreement("nothing");
}

TEST_F(EditsSeenByOthers, OfSingleItems) {
  for (const char* uid : {"zoned", "utc", "day", "abroad"}) {
    edit(master(QString::fromLatin1(uid)), stamp);
    edit(master(QString::fromLatin1(uid)), [](Change& change) {
      change.subject = u"Changed, with; signs: \\ and ÅÄÖ "_s + QString(90, u'x');
      change.categories = QStringList{u"Acme AB"_s, u"Website"_s};
      change.body = u"Two\r\nlines"_s;
    });
  }
  expectAgreement("stamps and texts");
  edit(master(u"zoned"_s), [](Change& change) { change.start = moment(3, 31, 1, 30); });
  edit(master(u"zoned"_s), [](Change& change) { change.durationMinutes = 120; });
  edit(master(u"utc"_s), [](Change& change) {
    change.start = moment(4, 1, 8);
    change.durationMinutes = 90;
  });
  edit(master(u"abroad"_s), [](Change& change) { change.start = moment(3, 12, 15); });
  edit(master(u"day"_s), [](Change& change) { change.start = moment(3, 5, 0); });
  expectAgreement("other times");
}

TEST_F(EditsSeenByOthers, OfSeries) {
  for (const char* uid : {"weekly", "days", "dawn", "moved"}) edit(master(QString::fromLatin1(uid)), stamp);
  expectAgreement("stamps");
  edit(master(u"days"_s), [](Change& change) { change.start = moment(3, 2, 0); });
  edit(master(u"dawn"_s), [](Change& change) { change.durationMinutes = 30; });
  edit(master(u"weekly"_s), [](Change& change) { change.subject = u"Weekly, renamed"_s; });
  expectAgreement("other times and a subject");
}

TEST_F(EditsSeenByOthers, OfOneOccurrence) {
  edit(occurrence(u"weekly"_s, u"2024-02-19"_s), stamp);
  edit(occurrence(u"weekly"_s, u"2024-04-01"_s), stamp);  // on the other side of the clocks' change
  edit(occurrence(u"days"_s, u"2024-03-07"_s), stamp);
  edit(occurrence(u"dawn"_s, u"2024-03-31"_s), stamp);
  expectAgreement("stamps");
  edit(occurrence(u"weekly"_s, u"2024-03-11"_s), [](Change& change) {
    change.start = moment(3, 12, 9, 15);
    change.durationMinutes = 75;
    change.subject = u"Moved once"_s;
  });
  edit(occurrence(u"days"_s, u"2024-03-10"_s), [](Change& change) { change.subject = u"Another day"_s; });
  edit(occurrence(u"dawn"_s, u"2024-03-30"_s), [](Change& change) { change.durationMinutes = 20; });
  edit(occurrence(u"moved"_s, u"2024-04-03"_s), [](Change& change) { change.subject = u"Moved twice"_s; });
  edit(occurrence(u"moved"_s, u"2024-04-05"_s), stamp);
  expectAgreement("other times and texts");
  const Item again = occurrence(u"weekly"_s, u"2024-03-12"_s);
  edit(again, stamp);
  expectAgreement("a stamp on what was moved");
}

TEST_F(EditsSeenByOthers, OfWhatIsMadeAndRemoved) {
  Change made;
  made.subject = u"Made here"_s;
  made.start = moment(4, 10, 14);
  made.durationMinutes = 50;
  store().save(u"cal"_s, {}, {}, made);
  for (const auto& [uid, day] : {std::pair{u"weekly"_s, u"2024-03-04"_s},
                                 {u"days"_s, u"2024-03-13"_s},
                                 {u"dawn"_s, u"2024-04-01"_s},
                                 {u"moved"_s, u"2024-04-03"_s},
                                 {u"utc"_s, u"2024-02-06"_s}}) {
    const Item gone = occurrence(uid, day);
    store().remove(u"cal"_s, gone.key, gone.tag);
  }
  EXPECT_EQ(ours().size(), 33 + 1 - 5);
  expectAgreement("a new item and removals");
}

}  // namespace
