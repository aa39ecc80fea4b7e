#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <QDirIterator>
#include <QFile>

#include <iostream>

// Files of other programs. They are not part of the project; HOURBOOK_SAMPLES names the folder that holds
// them.
using namespace icalendar_tests;
using platform::calendar::IcalendarStore;

class SamplesTest : public IcalendarTest {
 protected:
  void SetUp() override {
    samples_ = qEnvironmentVariable("HOURBOOK_SAMPLES");
    if (samples_.isEmpty())
      GTEST_SKIP() << "HOURBOOK_SAMPLES is not set: the files of other programs are not read.";
    folder = u"one"_qs;
  }
  QByteArray sample(const QString& name) const {
    QFile file(samples_ + u'/' + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(file.fileName());
    return file.readAll();
  }
  void open(const QString& name) { writeOne(sample(u"icalendar/"_qs + name)); }
  QStringList namesUnder(const QString& folderName) const {
    QStringList names;
    QDirIterator all(samples_ + u'/' + folderName, {u"*.ics"_qs}, QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext()) names.append(all.next().mid(samples_.size() + 1));
    names.sort();
    return names;
  }
  static int minutesOf(const QList<Item>& items) {
    int sum = 0;
    for (const Item& item : items) sum += item.durationMinutes();
    return sum;
  }

  QString samples_;
};

TEST_F(SamplesTest, ExchangesMovedDayIsShownOnItsNewDay) {
  for (const QString& name : {u"exchange_whole_day_moved_recurrence.ics"_qs,
                              u"exchange_whole_day_moved_recurrence_offset_tz.ics"_qs}) {
    open(name);
    const QStringList days = shown(u"2026-02-01"_qs, u"2026-03-05"_qs);
    ASSERT_EQ(days.size(), 5) << qPrintable(name);
    EXPECT_TRUE(days[0].startsWith(u"2026-02-19 - 2026-02-20 all day"_qs));
    EXPECT_TRUE(days[1].startsWith(u"2026-02-24"_qs));
    EXPECT_TRUE(days[2].startsWith(u"2026-02-27"_qs));
    EXPECT_TRUE(days[3].startsWith(u"2026-03-03"_qs));
    EXPECT_TRUE(days[4].startsWith(u"2026-03-05"_qs));
    EXPECT_TRUE(expanded(u"2026-08-18"_qs, u"2026-08-18"_qs).size() == 1) << qPrintable(name);
    EXPECT_TRUE(expanded(u"2026-08-19"_qs, u"2026-12-31"_qs).isEmpty()) << qPrintable(name);
    EXPECT_EQ(single().body, QString());
  }
}

TEST_F(SamplesTest, DisplayNamesOfOutlookWebAreZones) {
  open(u"Office-2012-owa.ics"_qs);
  EXPECT_EQ(shown(u"2020-10-27"_qs, u"2020-11-05"_qs, "UTC"),
            (QStringList{u"2020-10-28 02:30 - 04:00  TEST Syd"_qs, u"2020-10-28 17:30 - 19:00  TEST"_qs,
                         u"2020-11-02 18:30 - 20:00  TEST 3"_qs, u"2020-11-02 18:30 - 20:00  TEST2"_qs,
                         u"2020-11-05 18:30 - 20:00  TEST2"_qs}));
  EXPECT_EQ(shown(u"2021-08-26"_qs, u"2021-12-31"_qs, "UTC"),
            (QStringList{u"2021-08-26 17:30 - 19:00  TEST2"_qs, u"2021-08-27 17:30 - 19:00  TEST2"_qs}));
  for (const Item& item : plain()) EXPECT_FALSE(item.zoneUnknown);
}

TEST_F(SamplesTest, ACustomZoneWithoutDefinitionIsUnknownAndOneWithIsNot) {
  open(u"bad_custom_ms_tz.ics"_qs);
  const QList<Item> items = plain();
  ASSERT_EQ(items.size(), 3);
  EXPECT_TRUE(items[0].zoneUnknown);
  EXPECT_EQ(described(items), (QStringList{u"2021-03-25 10:35 - 11:50 [private]"_qs,
                                           u"2021-04-01 - 2021-04-02 all day *masked-away2*"_qs,
                                           u"2021-04-01 21:30 - 21:30 *masked-away*"_qs}));
  open(u"bad_ms_tz.ics"_qs);
  const QStringList lessons = shown(u"2020-08-01"_qs, u"2021-12-31"_qs, "America/New_York");
  ASSERT_EQ(lessons.size(), 34);
  for (const QString& lesson : lessons)
    EXPECT_TRUE(lesson.contains(u"10:35 - 11:50"_qs)) << qPrintable(lesson);
  EXPECT_TRUE(lessons.last().startsWith(u"2020-12-17"_qs));
}

TEST_F(SamplesTest, CategoriesAreReadInEveryForm) {
  open(u"event-with-category.ics"_qs);
  const QList<Item> items = plain();
  ASSERT_EQ(items.size(), 5);
  const QStringList three{u"cat1"_qs, u"cat2"_qs, u"cat3"_qs};
  for (const Item& item : items)
    EXPECT_EQ(item.categories, item.key.uid == u"3"_qs   ? QStringList()
                               : item.key.uid == u"4"_qs ? QStringList{u"lonely-cat"_qs}
                                                         : three);
}

TEST_F(SamplesTest, AZoneWithCommasInItsNameIsFound) {
  open(u"exchange-custom-tz.ics"_qs);
  EXPECT_EQ(described(plain("UTC")), QStringList{u"2019-04-30 02:00 - 05:00 Test event"_qs});
  EXPECT_EQ(single().body, QString());
}

TEST_F(SamplesTest, AnOddlyFoldedInvitationIsRead) {
  open(u"horde-exchange.ics"_qs);
  EXPECT_EQ(described(plain("America/New_York")),
            QStringList{u"2001-11-16 14:00 - 14:30 internal final review of mmc site changes"_qs});
  EXPECT_EQ(single().body,
            u"Let's get together to finalize. Way to go team in the final hom estretch!\r\n"_qs);
  EXPECT_EQ(single().sensitivity, Sensitivity::Normal);
  EXPECT_TRUE(store->problems(folder).isEmpty());
}

TEST_F(SamplesTest, EveryWindowsZoneOfOneFileIsKnown) {
  open(u"ms_timezones.ics"_qs);
  ASSERT_FALSE(plain().isEmpty());
  for (const Item& item : plain()) EXPECT_FALSE(item.zoneUnknown);
  EXPECT_TRUE(described(plain("UTC")).contains(u"2020-09-10 07:00 - 07:30 test"_qs));
}

TEST_F(SamplesTest, ASeriesWithEverythingIsRead) {
  open(u"own-caldav-test-input.ics"_qs);
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-03-31"_qs),
            (QStringList{u"2024-02-05 09:00 - 10:30 Projekt, größer"_qs, u"2024-02-19 11:00 - 12:00 moved"_qs,
                         u"2024-02-26 09:00 - 10:30 Projekt, größer"_qs}));
  const Item first = expanded(u"2024-02-05"_qs, u"2024-02-05"_qs).at(0);
  EXPECT_EQ(first.categories, (QStringList{u"Customer A"_qs, u"Büro"_qs}));
  EXPECT_EQ(first.sensitivity, Sensitivity::Confidential);
  EXPECT_EQ(first.body, u"line1\r\nline2"_qs);
}

TEST_F(SamplesTest, ExclusionsUnderTheWrongZoneAreMeantOnTheSeriesOwnClock) {
  open(u"windows-quoted-tz-rrule.ics"_qs);
  const QStringList hunts = shown(u"2015-07-01"_qs, u"2015-07-31"_qs, "America/New_York");
  EXPECT_EQ(hunts.size(), 8);
  EXPECT_EQ(hunts.value(0), u"2015-07-06 12:00 - 16:00 Treasure Hunting"_qs);
  EXPECT_TRUE(hunts.filter(u"2015-07-08"_qs).isEmpty());
  EXPECT_TRUE(hunts.filter(u"2015-07-10"_qs).isEmpty());
}

TEST_F(SamplesTest, ReadingAnyFileChangesNoByteOfItAndComesToAnEnd) {
  const QStringList names = namesUnder(u"icalendar"_qs) + namesUnder(u"ics-corpus"_qs);
  ASSERT_GT(names.size(), 200);
  int items = 0, problems = 0;
  for (const QString& name : names) {
    SCOPED_TRACE(qPrintable(name));
    const QByteArray bytes = sample(name);
    writeOne(bytes);
    items += static_cast<int>(plain().size());
    for (const int year : {1997, 2007, 2015, 2020, 2024, 2038}) {
      const QString y = QString::number(year);
      minutesOf(expanded(y + u"-01-01"_qs, y + u"-12-31"_qs));
    }
    problems += static_cast<int>(store->problems(folder).size());
    EXPECT_EQ(readOne(), bytes);
  }
  std::cout << names.size() << " files, " << items << " items, " << problems << " problems\n";
}

TEST_F(SamplesTest, OneEditOfAnyItemOfAnyFileChangesTheLinesOfThatItemAlone) {
  Change change;
  change.subject = u"Edited, by us"_qs;
  change.categoriesText = u";Acme;Phone"_qs;
  change.billingInformation = u"2024-05-15 10:00"_qs;
  for (const QString& name : namesUnder(u"icalendar"_qs) + namesUnder(u"ics-corpus"_qs)) {
    SCOPED_TRACE(qPrintable(name));
    const QByteArray bytes = sample(name);
    writeOne(bytes);
    const QList<Item> items = plain();
    for (const qsizetype position : {qsizetype(0), items.size() / 2, items.size() - 1}) {
      if (position < 0 || position >= items.size()) continue;
      writeOne(bytes);
      const Item saved = save(items[position], change);
      EXPECT_EQ(saved.subject, *change.subject);
      EXPECT_EQ(saved.categoriesText, *change.categoriesText);
      EXPECT_EQ(saved.billingInformation, *change.billingInformation);
      const QByteArray now = readOne();
      const QByteArrayList before = bytes.split('\n'), after = now.split('\n');
      QByteArrayList rest = after;
      for (const QByteArray& line : before)
        if (!rest.removeOne(line)) {
          const QByteArray text = line.trimmed().toUpper();
          const bool own = text.startsWith("SUMMARY") || text.startsWith("CATEGORIES") ||
                           text.startsWith("DTSTAMP") || text.startsWith("LAST-MODIFIED") ||
                           line.startsWith(' ') || line.startsWith('\t') || !bytes.endsWith('\n');
          EXPECT_TRUE(own) << line.constData();
        }
      EXPECT_LE(rest.size(), 8);
      QList<Item> others = plain();
      ASSERT_EQ(others.size(), items.size());
      int changedItems = 0;
      for (const Item& item : items)
        changedItems += std::none_of(others.begin(), others.end(), [&](const Item& other) {
          return other.key == item.key && other.tag == item.tag;
        });
      EXPECT_EQ(changedItems, 1);
    }
  }
}

TEST_F(SamplesTest, AnOccurrenceOfAnySeriesBecomesAnExceptionAndNothingElseChanges) {
  Change change;
  change.subject = u"Edited"_qs;
  int edited = 0;
  for (const QString& name : namesUnder(u"icalendar"_qs) + namesUnder(u"ics-corpus"_qs)) {
    SCOPED_TRACE(qPrintable(name));
    const QByteArray bytes = sample(name);
    writeOne(bytes);
    QList<Item> items;
    for (const int year : {1997, 2005, 2015, 2020, 2024}) {
      const QString y = QString::number(year);
      for (const Item& item : expanded(y + u"-01-01"_qs, y + u"-03-31"_qs))
        if (item.kind == Kind::Occurrence && !item.key.uid.startsWith(u"no-uid"_qs)) items.append(item);
    }
    if (items.isEmpty()) continue;
    const Item item = items.at(items.size() / 2);
    const Item saved = save(item, change);
    ++edited;
    EXPECT_EQ(saved.kind, Kind::Exception);
    EXPECT_EQ(saved.key.recurrenceId, item.key.recurrenceId);
    EXPECT_EQ(saved.start.toUTC(), item.start.toUTC());
    EXPECT_EQ(saved.durationMinutes(), item.durationMinutes());
    const QByteArray now = readOne();
    qsizetype common = 0;
    while (common < bytes.size() && common < now.size() && now[common] == bytes[common]) ++common;
    EXPECT_EQ(now.right(bytes.size() - common), bytes.mid(common));
    const QString day = item.start.toString(u"yyyy-MM-dd"_qs);
    int there = 0;
    for (const Item& other : expanded(day, day))
      if (other.key.uid == item.key.uid && other.key.recurrenceId == item.key.recurrenceId) ++there;
    EXPECT_EQ(there, 1);
  }
  std::cout << edited << " occurrences edited\n";
}
