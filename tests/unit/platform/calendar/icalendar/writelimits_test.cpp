#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/limits.h"
#include "platform/calendar/icalendar/writer.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace icalendar_tests;
using namespace platform::calendar;

// Nothing is written that would not be read again.

TEST_F(IcalendarTest, AFileIsNotWrittenThatWouldBeTooLargeToBeRead) {
  icalendar::FileCache source(path(QString()).chopped(1), u"Work"_qs);
  icalendar::FileWriter writer(source, u"Work"_qs);
  icalendar::Snapshot snapshot;
  snapshot.name = u"a.ics"_qs;
  snapshot.fingerprint.size = icalendar::maxItemFileBytes;
  try {
    writer.put(snapshot, u"a"_qs, {{10, "old", "old!"}}, {});
    FAIL() << "it was written";
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.number(), errStoreBroken);
    EXPECT_TRUE(failure.description().endsWith(u"a.ics\" would become larger than 67108864 bytes."_qs))
        << qPrintable(failure.description());
  }
  EXPECT_FALSE(writer.put(snapshot, u"a"_qs, {{10, "old", "new"}}, {})) << "there is no such file";
}

TEST_F(IcalendarTest, ATextIsNotWrittenThatIsLongerThanAPropertyMayBe) {
  const QByteArray bytes = calendar(event({"UID:a", "SUMMARY:Old", "DTSTART:20240205T080000Z"}));
  write(u"a.ics"_qs, bytes);
  const Item item = single();
  Change fits, tooLong;
  fits.body = QString(1000 * 1000, u'x');
  tooLong.body = QString(1020 * 1000, u'x');  // with its folds it is more than a megabyte
  try {
    save(item, tooLong);
    FAIL() << "it was written";
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.number(), errStoreBroken);
    EXPECT_TRUE(failure.description().contains(u"The text is longer than 1048576 bytes."_qs));
  }
  EXPECT_EQ(read(u"a.ics"_qs), bytes);
  EXPECT_EQ(save(item, fits).body, fits.body);
  EXPECT_EQ(single().body, fits.body);
}
