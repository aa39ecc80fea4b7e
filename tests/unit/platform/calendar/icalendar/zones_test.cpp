#include "platform/calendar/icalendar/zones.h"

#include "platform/calendar/icalendar/values.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace platform::calendar::icalendar;
using namespace icalendar_tests;

namespace {

QString named(const QString& name) {
  const auto zone = zoneByName(name);
  return zone ? QString::fromLatin1(zone->id()) : QString();
}

const QByteArray customDefinition = joined(
    {"BEGIN:VTIMEZONE", "TZID:Customized Time Zone", "BEGIN:STANDARD", "DTSTART:16010101T020000",
     "TZOFFSETFROM:-0400", "TZOFFSETTO:-0500", "RRULE:FREQ=YEARLY;INTERVAL=1;BYDAY=1SU;BYMONTH=11",
     "END:STANDARD", "BEGIN:DAYLIGHT", "DTSTART:16010101T020000", "TZOFFSETFROM:-0500", "TZOFFSETTO:-0400",
     "RRULE:FREQ=YEARLY;INTERVAL=1;BYDAY=2SU;BYMONTH=3", "END:DAYLIGHT", "END:VTIMEZONE"});

/// Hours ahead of UTC at a moment of the clock.
double hoursAhead(const Zone& zone, const QString& local) {
  const QDateTime time = QDateTime::fromString(local, u"yyyy-MM-dd HH:mm"_qs);
  const qint64 wall = wallOf(time.date(), time.time());
  return static_cast<double>(wall - zone.toInstant(wall)) / hourMs;
}

std::optional<Zone> found(const QByteArray& definitions, const QString& tzid) {
  const Document document = scan(calendar(definitions), {});
  const ZoneIndex index(document);
  return ZoneBook().find(document, &index, &document.components.at(0), tzid);
}

}  // namespace

TEST(ZoneNames, AreFoundByTheirIanaName) {
  EXPECT_EQ(named(u"Europe/Stockholm"_qs), u"Europe/Stockholm"_qs);
  EXPECT_EQ(named(u" \"America/New_York\" "_qs), u"America/New_York"_qs);
  EXPECT_EQ(named(u"US-Eastern"_qs), u"US/Eastern"_qs);
}

TEST(ZoneNames, AreFoundBehindAPath) {
  EXPECT_EQ(named(u"/softwarestudio.org/Olson_20011030_5/America/New_York"_qs), u"America/New_York"_qs);
  EXPECT_EQ(named(u"/freeassociation.sourceforge.net/Europe/Berlin"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"/freeassociation.sourceforge.net/America/Argentina/Salta"_qs),
            u"America/Argentina/Salta"_qs);
}

TEST(ZoneNames, ThatStandForOneOfTheMachinesFilesAreFound) {
  for (const char* name : {"EST5EDT", "GB-Eire", "W-SU", "Zulu", "UTC", "Etc/GMT+2", "Etc/GMT-11", "Etc/GMT0",
                           "America/Port-au-Prince", "America/Argentina/Buenos_Aires"})
    EXPECT_EQ(named(QString::fromLatin1(name)), QString::fromLatin1(name));
}

TEST(ZoneNames, ThatAreFilesOfNoMachineAreNot) {
  for (const char* name :
       {"Nowhere", "Etc/GMT+222", "Etc/GMT+", "EST5EST", "utc5", "Europe/", "/", "Euro2/Berlin"})
    EXPECT_EQ(named(QString::fromLatin1(name)), QString()) << name;
}

TEST(ZoneNames, OfWindowsAreFound) {
  EXPECT_EQ(named(u"W. Europe Standard Time"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"Eastern Standard Time"_qs), u"America/New_York"_qs);
  EXPECT_EQ(named(u"Mid-Atlantic Standard Time"_qs), u"Etc/GMT+2"_qs);
  EXPECT_EQ(named(u"Kamchatka Standard Time"_qs), u"Asia/Kamchatka"_qs);
}

TEST(ZoneNames, ThatWindowsShowsAreFoundWithAndWithoutTheirOffset) {
  for (const char16_t* name :
       {u"(UTC-05:00) Eastern Time (US & Canada)", u"(GMT-05:00) Eastern Time (US & Canada)",
        u"(UTC-05:00) Eastern Time (US and Canada)", u"Eastern Time (US & Canada)"})
    EXPECT_EQ(named(QString::fromUtf16(name)), u"America/New_York"_qs);
  EXPECT_EQ(named(u"(GMT+10:00) Canberra, Melbourne, Sydney"_qs), u"Australia/Sydney"_qs);
  EXPECT_EQ(named(u"(UTC+07:00) Bangkok\\, Hanoi\\, Jakarta"_qs), u"Asia/Bangkok"_qs);
  EXPECT_EQ(named(u"(UTC+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"(GMT) Greenwich Mean Time : Dublin, Edinburgh, Lisbon, London"_qs), u"Europe/London"_qs);
  EXPECT_EQ(named(u"Kuala Lumpur, Singapore"_qs), u"Asia/Singapore"_qs);
}

TEST(ZoneNames, InOtherLanguagesAreFound) {
  EXPECT_EQ(named(u"Westeuropäische Normalzeit"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"(GMT+0100) Westeuropäische Normalzeit"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"West-Europa (standaardtijd)"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"Västeuropa, normaltid"_qs), u"Europe/Berlin"_qs);
}

TEST(ZoneNames, EveryNameOfTheTablesLeadsToAZoneOfThisMachine) {
  for (const char16_t* name : {u"hawaii", u"greenland", u"yukon", u"marquesas islands", u"gaza, hebron",
                               u"juba", u"astana", u"hovd", u"coordinated universal time-09",
                               u"coordinated universal time+13", u"chokurdakh", u"bougainville island"})
    EXPECT_FALSE(named(QString::fromUtf16(name)).isEmpty()) << qPrintable(QString::fromUtf16(name));
}

TEST(ZoneNames, ThatSayNothingAreNone) {
  for (const char16_t* name :
       {u"", u"Customized Time Zone", u"tzone://Microsoft/Custom", u"Missing timezone id", u"Germany/Berlin",
        u"../../etc/passwd", u"15", u"custom_America/New_York"})
    EXPECT_EQ(named(QString::fromUtf16(name)), QString()) << qPrintable(QString::fromUtf16(name));
  EXPECT_EQ(named(u"tzone://Microsoft/Utc"_qs), u"UTC"_qs);
}

TEST(ZoneOffsets, AreReadFromNamesThatConsistOfThem) {
  const auto offset = [](const QString& name) {
    const auto zone = zoneByOffset(name);
    return zone ? zone->offsetFromUtc(QDateTime::currentDateTimeUtc()) / 60 : -9999;
  };
  EXPECT_EQ(offset(u"UTC+01"_qs), 60);
  EXPECT_EQ(offset(u"GMT-0330"_qs), -210);
  EXPECT_EQ(offset(u"UTC+5:45"_qs), 345);
  EXPECT_EQ(offset(u"utc"_qs), 0);
  EXPECT_EQ(offset(u"(UTC+08:45) A place in no table"_qs), 525);
  EXPECT_EQ(offset(u"UTC+99"_qs), -9999);
  EXPECT_EQ(offset(u"GMT -0800 (Standard) / GMT -0700 (Daylight)"_qs), -9999);
  EXPECT_EQ(offset(u"Customized Time Zone"_qs), -9999);
}

TEST(ZoneDefinitions, OfAFileAreEvaluatedFromTheirRules) {
  const auto zone = found(customDefinition, u"Customized Time Zone"_qs);
  ASSERT_TRUE(zone);
  for (const int year : {1995, 2020, 2024, 2050}) {
    const QString y = QString::number(year);
    EXPECT_EQ(hoursAhead(*zone, y + u"-01-15 12:00"_qs), -5) << year;
    EXPECT_EQ(hoursAhead(*zone, y + u"-07-15 12:00"_qs), -4) << year;
  }
  EXPECT_EQ(hoursAhead(*zone, u"2024-03-10 01:59"_qs), -5);
  EXPECT_EQ(hoursAhead(*zone, u"2024-03-10 03:00"_qs), -4);
  EXPECT_EQ(hoursAhead(*zone, u"2024-11-03 00:59"_qs), -4);
  EXPECT_EQ(hoursAhead(*zone, u"2024-11-03 01:30"_qs), -4);  // comes twice: the first
  EXPECT_EQ(hoursAhead(*zone, u"2024-11-03 02:00"_qs), -5);
}

TEST(ZoneDefinitions, WithoutChangesOfTheClocksHaveOneOffset) {
  const auto zone = found(joined({"BEGIN:VTIMEZONE", "TZID:", "BEGIN:STANDARD", "DTSTART:16010101T000000",
                                  "TZOFFSETFROM:+0530", "TZOFFSETTO:+0530", "END:STANDARD", "END:VTIMEZONE"}),
                          QString());
  ASSERT_TRUE(zone);
  EXPECT_EQ(hoursAhead(*zone, u"2024-07-01 12:00"_qs), 5.5);
}

TEST(ZoneDefinitions, MayEndTheirRulesAndNameDates) {
  const auto zone = found(joined({"BEGIN:VTIMEZONE",
                                  "TZID:Changed",
                                  "BEGIN:DAYLIGHT",
                                  "DTSTART:19960331T020000",
                                  "TZOFFSETFROM:+0100",
                                  "TZOFFSETTO:+0200",
                                  "RRULE:FREQ=YEARLY;UNTIL=20100328T010000Z;BYMONTH=3;BYDAY=-1SU",
                                  "END:DAYLIGHT",
                                  "BEGIN:STANDARD",
                                  "DTSTART:19961027T030000",
                                  "TZOFFSETFROM:+0200",
                                  "TZOFFSETTO:+0100",
                                  "RRULE:FREQ=YEARLY;COUNT=15;BYMONTH=10;BYDAY=-1SU",
                                  "END:STANDARD",
                                  "BEGIN:STANDARD",
                                  "DTSTART:20140601T000000",
                                  "RDATE:20140601T000000",
                                  "TZOFFSETFROM:+0100",
                                  "TZOFFSETTO:+0300",
                                  "END:STANDARD",
                                  "END:VTIMEZONE"}),
                          u"Changed"_qs);
  ASSERT_TRUE(zone);
  EXPECT_EQ(hoursAhead(*zone, u"2010-07-01 12:00"_qs), 2);
  EXPECT_EQ(hoursAhead(*zone, u"2011-07-01 12:00"_qs), 1);
  EXPECT_EQ(hoursAhead(*zone, u"2015-01-01 12:00"_qs), 3);
  EXPECT_EQ(hoursAhead(*zone, u"1990-01-01 12:00"_qs), 1);
}

TEST(ZoneDefinitions, GiveWayToANameThatIsKnownEverywhere) {
  QByteArray wrong = customDefinition;
  wrong.replace("Customized Time Zone", "Asia/Tokyo");
  const auto zone = found(wrong, u"Asia/Tokyo"_qs);
  ASSERT_TRUE(zone);
  EXPECT_EQ(hoursAhead(*zone, u"2024-07-01 12:00"_qs), 9);
}

TEST(ZoneDefinitions, MayNameTheirPlace) {
  QByteArray placed = customDefinition;
  placed.replace("TZID:Customized Time Zone\r\n",
                 "TZID:Customized Time Zone\r\nX-LIC-LOCATION:Asia/Tokyo\r\n");
  EXPECT_EQ(hoursAhead(*found(placed, u"Customized Time Zone"_qs), u"2024-07-01 12:00"_qs), 9);
}

TEST(ZoneNames, InOtherLanguagesAreFoundByTheirPlaces) {
  EXPECT_EQ(named(u"(GMT+01:00) Amsterdam, Berlin, Bern, Rom, Stockholm, Wien"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"(UTC+01:00) Amsterdam, Berlin, Berne, Rome, Stockholm, Vienne"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"(GMT+01.00) Amsterdam / Berlin / Bern / Rom / Stockholm / Wien"_qs), u"Europe/Berlin"_qs);
  EXPECT_EQ(named(u"(UTC+01:00) Brüssel, Kopenhagen, Madrid, Paris"_qs), u"Europe/Paris"_qs);
  EXPECT_EQ(named(u"(UTC+01:00) Belgrad, Bratislava (Pressburg), Budapest, Ljubljana, Prag"_qs),
            u"Europe/Budapest"_qs);
  EXPECT_EQ(named(u"(UTC+02:00) Helsingfors, Kiev, Riga, Sofia, Tallinn, Vilnius"_qs), u"Europe/Kiev"_qs);
  EXPECT_EQ(named(u"(UTC) Dublin, Edinburgh, Lissabon, London"_qs), u"Europe/London"_qs);
  // one place alone, or places of two zones, say too little
  EXPECT_EQ(named(u"(UTC+01:00) Berlin, somewhere"_qs), QString());
  EXPECT_EQ(named(u"(UTC+01:00) Berlin, Paris"_qs), QString());
}

TEST(ZoneNames, ThatAreEndlessCostNothing) {
  EXPECT_EQ(named(QString(500'000, u'a').replace(u"aa"_qs, u"a/"_qs)), QString());
}

/// What a file's own definition says, when the name is an abbreviation that means something else elsewhere.
TEST(ZoneDefinitions, OfAnAbbreviationComeBeforeIt) {
  QByteArray own = customDefinition;
  own.replace("Customized Time Zone", "EST");
  EXPECT_EQ(hoursAhead(*found(own, u"EST"_qs), u"2024-07-01 12:00"_qs), -4);
  EXPECT_EQ(hoursAhead(*found("", u"EST"_qs), u"2024-07-01 12:00"_qs), -5);
}

TEST(ZoneDefinitions, ComeAheadOfAnOffsetInTheNameAndBehindEveryNameThatIsKnown) {
  const auto under = [](const QByteArray& name) {
    QByteArray definition = customDefinition;
    definition.replace("Customized Time Zone", name);
    return hoursAhead(*found(definition, QString::fromUtf8(name)), u"2024-07-01 12:00"_qs);
  };
  EXPECT_EQ(under("Europe/Stockholm"), 2);
  EXPECT_EQ(under("/softwarestudio.org/Olson_20011030_5/Europe/Stockholm"), 2);
  EXPECT_EQ(under("W. Europe Standard Time"), 2);
  EXPECT_EQ(under("(UTC+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna"), 2);
  EXPECT_EQ(under("Westeurop\xC3\xA4ische Normalzeit"), 2);
  EXPECT_EQ(under("tzone://Microsoft/Utc"), 0);
  EXPECT_EQ(under("tzone://Microsoft/Custom"), -4);
  EXPECT_EQ(under("(UTC+08:45) A place in no table"), -4);
  EXPECT_EQ(hoursAhead(*found("", u"(UTC+08:45) A place in no table"_qs), u"2024-07-01 12:00"_qs), 8.75);
}

TEST(ZoneDefinitions, ByTheDayOfTheMonthOrTheDayOfTheYearAreEvaluatedToo) {
  const auto at = [](const QByteArray& rule, const QString& local) {
    QByteArray definition = customDefinition;
    definition.replace("RRULE:FREQ=YEARLY;INTERVAL=1;BYDAY=2SU;BYMONTH=3", "RRULE:" + rule);
    return hoursAhead(*found(definition, u"Customized Time Zone"_qs), local);
  };
  const QByteArray second = "FREQ=YEARLY;BYMONTH=3;BYDAY=SU;BYMONTHDAY=8,9,10,11,12,13,14";
  EXPECT_EQ(at(second, u"2024-03-10 01:59"_qs), -5);
  EXPECT_EQ(at(second, u"2024-03-10 03:00"_qs), -4);
  EXPECT_EQ(at("FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU", u"2024-03-30 12:00"_qs), -5);
  EXPECT_EQ(at("FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU", u"2024-03-31 03:00"_qs), -4);
  EXPECT_EQ(at("FREQ=YEARLY;BYMONTH=3;BYDAY=5SU", u"2023-07-01 12:00"_qs), -5);  // none in 2023
  EXPECT_EQ(at("FREQ=YEARLY;BYMONTH=3;BYDAY=5SU", u"2024-07-01 12:00"_qs), -4);
}

TEST(ZoneDefinitions, BeyondAllMeasureAreRefused) {
  const auto refused = [](const QByteArrayList& lines) {
    QByteArrayList part{"BEGIN:VTIMEZONE", "TZID:Hostile"};
    part += lines;
    part += QByteArray("END:VTIMEZONE");
    const Document document = scan(calendar(joined(part)), {});
    const ZoneIndex index(document);
    ZoneBook book;
    const bool none = !book.find(document, &index, &document.components.at(0), u"Hostile"_qs);
    return none && book.wasTooMuch(u"Hostile"_qs);
  };
  QByteArray dates = "RDATE:19700101T000000";
  for (int i = 0; i < 3000; ++i) dates += ",19700101T000000";
  const QByteArrayList one{"BEGIN:STANDARD", "DTSTART:19700101T000000", "TZOFFSETFROM:+0100",
                           "TZOFFSETTO:+0200", "END:STANDARD"};
  QByteArrayList twice{"BEGIN:STANDARD", "DTSTART:19700101T000000", "TZOFFSETFROM:+0100", "TZOFFSETTO:+0200"};
  for (int i = 0; i < 20; ++i) twice.append("RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU");
  twice.append("END:STANDARD");
  QByteArrayList many;
  for (int i = 0; i < 1001; ++i) many += {"BEGIN:STANDARD", "END:STANDARD"};
  EXPECT_TRUE(refused(QByteArrayList(one) << "BEGIN:STANDARD" << dates << dates << "END:STANDARD"));
  EXPECT_TRUE(refused(many + one));
  EXPECT_TRUE(refused(QByteArrayList(70'000, "X:1") + one));
  EXPECT_TRUE(refused(twice + twice));
  EXPECT_FALSE(refused(one));
}

TEST(ZoneDefinitions, WhoseRuleIsNotAboutClocksCountFromTheirStart) {
  QByteArray odd = customDefinition;
  odd.replace("RRULE:FREQ=YEARLY;INTERVAL=1;BYDAY=2SU;BYMONTH=3", "RRULE:FREQ=SECONDLY");
  odd.replace("RRULE:FREQ=YEARLY;INTERVAL=1;BYDAY=1SU;BYMONTH=11", "RRULE:FREQ=YEARLY;BYDAY=1SU");
  EXPECT_TRUE(found(odd, u"Customized Time Zone"_qs));
}

class ZonesOfFiles : public IcalendarTest {};

TEST_F(ZonesOfFiles, AZoneBeyondAllMeasureIsNamedAndTheViewersIsTaken) {
  QByteArrayList lines{"BEGIN:VTIMEZONE",         "TZID:Hostile",       "BEGIN:STANDARD",
                       "DTSTART:19700101T000000", "TZOFFSETFROM:+0100", "TZOFFSETTO:+0200"};
  for (int i = 0; i < 40; ++i) lines.append("RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU");
  lines += {"END:STANDARD", "END:VTIMEZONE"};
  write(u"a.ics"_qs,
        calendar(joined(lines) + event({"UID:1", "SUMMARY:x", "DTSTART;TZID=Hostile:20240219T090000"})));
  EXPECT_EQ(described(plain()), QStringList{u"2024-02-19 09:00 - 09:00 x"_qs});
  EXPECT_TRUE(single().zoneUnknown);
  EXPECT_EQ(problemTexts(), QStringList{u"a.ics:52: The definition of the time zone \"Hostile\" is too long; "
                                        "the times are taken in the viewer's zone."_qs});
}

TEST_F(ZonesOfFiles, ThousandsOfCalendarsWithDefinitionsOfTheirOwnAreReadAllTheSame) {
  // each event looks for its own definition and finds it; were all looked through for each, this would not
  // end
  QByteArray all;
  constexpr int many = 2000;
  for (int i = 0; i < many; ++i) {
    QByteArray definition = customDefinition;
    definition.replace("Customized Time Zone", "Own " + QByteArray::number(i));
    const QByteArray tzid = i % 2 ? "Own " + QByteArray::number(i) : "Nobody's " + QByteArray::number(i);
    all += calendar(definition +
                    event({"UID:" + QByteArray::number(i), "DTSTART;TZID=" + tzid + ":20240701T120000"}));
  }
  writeOne(all);
  folder = u"one"_qs;
  const QList<Item> items = plain("UTC");
  ASSERT_EQ(items.size(), many);
  int unknown = 0, atFour = 0;
  for (const Item& item : items) {
    unknown += item.zoneUnknown;
    atFour += item.start.time() == QTime(16, 0);
  }
  EXPECT_EQ(unknown, many / 2);
  EXPECT_EQ(atFour, many / 2);
}

TEST_F(ZonesOfFiles, AnEditNeverChangesTheNameOfAZone) {
  Change change;
  change.start = moment(u"2024-07-02 10:00"_qs);
  change.durationMinutes = 45;
  for (const QByteArray& name :
       {QByteArray("\"(UTC-05:00) Eastern Time (US & Canada)\""), QByteArray("Customized Time Zone"),
        QByteArray("tzone://Microsoft/Custom"), QByteArray("Nobody knows this"), QByteArray("\"GMT+0530\""),
        QByteArray("/freeassociation.sourceforge.net/Europe/Berlin")}) {
    QByteArray definition = customDefinition;
    write(u"a.ics"_qs, calendar(definition + event({"UID:1", "DTSTART;TZID=" + name + ":20240701T090000",
                                                    "DTEND;TZID=" + name + ":20240701T100000"})));
    const Item saved = save(single(), change);
    EXPECT_EQ(saved.start, *change.start) << name.constData();
    EXPECT_EQ(saved.durationMinutes(), 45) << name.constData();
    const QByteArray bytes = read(u"a.ics"_qs);
    EXPECT_TRUE(bytes.contains("DTSTART;TZID=" + name + ":20240702T")) << bytes.constData();
    EXPECT_TRUE(bytes.contains("DTEND;TZID=" + name + ":20240702T")) << bytes.constData();
    EXPECT_TRUE(bytes.contains(definition));
  }
}

TEST(ZoneDefinitions, ThatDefineNothingAreNone) {
  EXPECT_FALSE(found("", u"Customized Time Zone"_qs));
  EXPECT_FALSE(found(joined({"BEGIN:VTIMEZONE", "TZID:Empty", "END:VTIMEZONE"}), u"Empty"_qs));
  EXPECT_FALSE(found(joined({"BEGIN:VTIMEZONE", "TZID:Bad", "BEGIN:STANDARD", "DTSTART:20241799T000000",
                             "TZOFFSETTO:+9900", "END:STANDARD", "END:VTIMEZONE"}),
                     u"Bad"_qs));
}

TEST(Zones, ATimeThatTheClocksSkipIsTheLaterOne) {
  const Zone stockholm(QTimeZone("Europe/Stockholm"));
  const qint64 skipped = wallOf(QDate(2024, 3, 31), QTime(2, 30));
  EXPECT_EQ(timeOfWall(stockholm.toWall(stockholm.toInstant(skipped))), QTime(3, 30));
  EXPECT_EQ(hoursAhead(stockholm, u"2024-10-27 02:30"_qs), 2);
  EXPECT_EQ(hoursAhead(stockholm, u"2024-10-27 03:00"_qs), 1);
  const Zone howe(QTimeZone("Australia/Lord_Howe"));
  const qint64 half = wallOf(QDate(2024, 10, 6), QTime(2, 15));
  EXPECT_EQ(timeOfWall(howe.toWall(howe.toInstant(half))), QTime(2, 45));
}
