#include "platform/calendar/icalendar/vcalendar.h"

#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/text.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <gmock/gmock.h>

// Calendars of version 1.0: what they mean, and what an edit does to them.
using namespace platform::calendar::icalendar;
using namespace icalendar_tests;

namespace {

QByteArray old(const QByteArray& content, const QByteArrayList& head = {}) {
  return joined(QByteArrayList{"BEGIN:VCALENDAR", "PRODID:-//Microsoft Corporation//Outlook 11.0 MIMEDIR//EN",
                               "VERSION:1.0"} +
                head) +
         content + joined({"END:VCALENDAR"});
}

QString text(const QByteArray& line) {
  return oldText(parsed(unfolded(line, false)));
}

}  // namespace

class OldCalendars : public IcalendarTest {
 protected:
  void SetUp() override { folder = u"one"_qs; }
  void open(const QByteArrayList& lines, const QByteArrayList& head = {}) {
    writeOne(old(event(lines), head));
  }
};

TEST(OldTexts, AreReadInQuotedPrintableInEveryForm) {
  EXPECT_EQ(text("SUMMARY;ENCODING=QUOTED-PRINTABLE:A=3DB"), u"A=B"_qs);
  EXPECT_EQ(text("SUMMARY;QUOTED-PRINTABLE:A=3db"), u"A=b"_qs);
  EXPECT_EQ(text("summary;encoding=quoted-printable:one=\r\n two=0D=0A=\r\nthree"), u"one two\nthree"_qs);
  EXPECT_EQ(text("SUMMARY;ENCODING=QUOTED-PRINTABLE:=\r\n=0D=0A\r\n"), u"\n"_qs);
  EXPECT_EQ(text("SUMMARY;ENCODING=QUOTED-PRINTABLE:50 = half =Q= =4"), u"50 = half =Q= =4"_qs);
  EXPECT_EQ(text("SUMMARY;ENCODING=BASE64:QfY="), u"Aö"_qs);
  EXPECT_EQ(text("SUMMARY:C:\\new\\; and more"), u"C:\\new; and more"_qs);
}

TEST(OldTexts, AreReadInTheirCharacterSet) {
  EXPECT_EQ(text("SUMMARY;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:B=C3=BCro"), u"Büro"_qs);
  EXPECT_EQ(text("SUMMARY;ENCODING=QUOTED-PRINTABLE:B=FCro =80"),
            u"Büro €"_qs);  // Windows-1252, where none is told
  EXPECT_EQ(text("SUMMARY;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:=C3=BC"), u"Ã¼"_qs);
  EXPECT_EQ(text("SUMMARY;CHARSET=X-UNHEARD-OF;ENCODING=QUOTED-PRINTABLE:B=FCro"), u"Büro"_qs);
  EXPECT_EQ(text("SUMMARY:B\xFCro"), u"Büro"_qs);
}

TEST(OldTexts, AreWrittenSoThatTheyComeBack) {
  for (const QString& written :
       {u"plain"_qs, u"Büro; A=B, C:\\new"_qs, u"first\nsecond \nthird"_qs, QString(300, u'='),
        QString(300, u'ö'), u"ends with a blank "_qs, QString(200, u'x') + u'\t' + QString(200, u'y')}) {
    const OldLine line = oldLine("SUMMARY", written);
    const QByteArray lines = folded(line.head + ':' + line.value, "\r\n");
    for (const QByteArray& physical : lines.split('\n')) EXPECT_LE(physical.size(), 76);
    EXPECT_EQ(text(lines), written) << lines.constData();
    const Document document = scan("BEGIN:VEVENT\r\n" + lines + "END:VEVENT\r\n", {});
    EXPECT_TRUE(document.problems.isEmpty());
    ASSERT_EQ(document.components.at(0).lines.size(), 1);
  }
}

TEST(OldTexts, ListsAreJoinedBySemicolonsOrCommas) {
  const auto list = [](const QByteArray& line) { return oldTextList(parsed(line)); };
  EXPECT_EQ(list("CATEGORIES:Foo,Bar"), (QStringList{u"Foo"_qs, u"Bar"_qs}));
  EXPECT_EQ(list("CATEGORIES:Foo;Bar, and more"), (QStringList{u"Foo"_qs, u"Bar, and more"_qs}));
  EXPECT_EQ(list("CATEGORIES;ENCODING=QUOTED-PRINTABLE:B=FCro;A"), (QStringList{u"Büro"_qs, u"A"_qs}));
  const QStringList odd{u"A;B"_qs, u"C, D"_qs, u"ö"_qs};
  const OldLine line = oldListLine("CATEGORIES", odd);
  EXPECT_EQ(list(line.head + ':' + line.value), odd);
  const OldLine one = oldListLine("CATEGORIES", {u"C, D"_qs});
  EXPECT_EQ(list(one.head + ':' + one.value), QStringList{u"C, D"_qs});
}

TEST(OldRules, AreUnderstood) {
  const QList<QPair<QByteArray, QByteArray>> rules{
      {"D1 #5", "FREQ=DAILY;INTERVAL=1;COUNT=5"},
      {"D3 20050630T000000", "FREQ=DAILY;INTERVAL=3;UNTIL=20050630"},
      {"D2 20050630T120000Z", "FREQ=DAILY;INTERVAL=2;UNTIL=20050630T120000Z"},
      {"W2 MO WE FR 20050630T000000", "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE,FR;UNTIL=20050630"},
      {"w1 #0", "FREQ=WEEKLY;INTERVAL=1"},
      {"W1", "FREQ=WEEKLY;INTERVAL=1;COUNT=2"},
      {"MP3 2- FR #17", "FREQ=MONTHLY;INTERVAL=3;BYDAY=-2FR;COUNT=17"},
      {"MP1 1+ 3+ MO TU 1- WE #0", "FREQ=MONTHLY;INTERVAL=1;BYDAY=1MO,3MO,1TU,3TU,-1WE"},
      {"MD1 15 #0", "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=15"},
      {"MD1 1 LD 2- #4", "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=1,-1,-2;COUNT=4"},
      {"YM1 6 #3", "FREQ=YEARLY;INTERVAL=1;BYMONTH=6;COUNT=3"},
      {"YD1 141 #17", "FREQ=YEARLY;INTERVAL=1;BYYEARDAY=141;COUNT=17"}};
  for (const auto& [written, meant] : rules) EXPECT_EQ(ruleFromOld(written), meant) << written.constData();
  for (const char* odd :
       {"", "X1", "D", "W1 1200", "W1 MO 0900", "MP1 MO", "MP1 1+", "M15 #4", "D1 #x", "D1 MO"})
    EXPECT_EQ(ruleFromOld(odd), QByteArray()) << odd;
}

TEST_F(OldCalendars, OfOutlookAreRead) {
  writeOne(old(joined(
      {"BEGIN:VEVENT", "DTSTART:20120515T110000Z", "DTEND:20120515T113000Z",
       "LOCATION;ENCODING=QUOTED-PRINTABLE:R=FCckseite", "CATEGORIES;ENCODING=QUOTED-PRINTABLE:A;B",
       "UID:040000008200E00074C5B7101A82E00800000000", "\t12345678",
       "DESCRIPTION;ENCODING=QUOTED-PRINTABLE:first line=0D=0A=", "second: line=0D=0A=", "=0D=0A=",
       "last line=0D=0A", "SUMMARY;ENCODING=QUOTED-PRINTABLE:Gespr=E4ch", "PRIORITY:3", "END:VEVENT"})));
  const Item item = single();
  EXPECT_EQ(described({item}), QStringList{u"2012-05-15 13:00 - 13:30 Gespräch"_qs});
  EXPECT_EQ(item.body, u"first line\r\nsecond: line\r\n\r\nlast line"_qs);
  EXPECT_EQ(item.categories, (QStringList{u"A"_qs, u"B"_qs}));
  EXPECT_EQ(item.key.uid, u"040000008200E00074C5B7101A82E0080000000012345678"_qs);
  EXPECT_TRUE(problemTexts().isEmpty());
}

TEST_F(OldCalendars, MidnightsAreWholeDays) {
  open({"UID:1", "SUMMARY:trip", "DTSTART:20240330T230000Z", "DTEND:20240331T220000Z"});  // a day of 23 hours
  EXPECT_EQ(shown(u"2024-03-01"_qs, u"2024-04-30"_qs),
            QStringList{u"2024-03-31 - 2024-04-01 all day trip"_qs});
  EXPECT_EQ(described(plain("UTC")), QStringList{u"2024-03-30 23:00 - 22:00 trip"_qs});
  open({"UID:1", "SUMMARY:days", "DTSTART:20240215T000000", "DTEND:20240217T000000"});
  EXPECT_EQ(described(plain()), QStringList{u"2024-02-15 - 2024-02-17 all day days"_qs});
  open({"UID:1", "SUMMARY:shift", "DTSTART:20240215T080000Z", "DTEND:20240216T080000Z"});
  EXPECT_EQ(described(plain()), QStringList{u"2024-02-15 09:00 - 09:00 shift"_qs});
}

TEST_F(OldCalendars, SeriesAreFollowed) {
  open({"UID:1", "SUMMARY:x", "DTSTART:20240219T080000Z", "DTEND:20240219T090000Z", "RRULE:W1 MO WE #4",
        "EXDATE:20240221T080000Z;20240226T080000Z"});
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-12-31"_qs),
            (QStringList{u"2024-02-19 09:00 - 10:00 x"_qs, u"2024-02-28 09:00 - 10:00 x"_qs}));
  open({"UID:1", "SUMMARY:x", "DTSTART:20240219T080000Z", "RRULE:M15 #4"});
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-12-31"_qs), QStringList{u"2024-02-19 09:00 - 09:00 x"_qs});
  EXPECT_THAT(problemTexts().join(u'\n').toStdString(), testing::HasSubstr("one.ics:8: The part \"M15 #4\""));
}

TEST_F(OldCalendars, TimesWithoutZoneAreInTheOneThatTheCalendarNames) {
  open({"UID:1", "SUMMARY:x", "DTSTART:20240715T090000"},
       {"TZ:-05", "DAYLIGHT:TRUE;-04;20240310T020000;20241103T020000;EST;EDT"});
  EXPECT_EQ(described(plain("UTC")), QStringList{u"2024-07-15 13:00 - 13:00 x"_qs});
  open({"UID:1", "SUMMARY:x", "DTSTART:20240115T090000"},
       {"TZ:-05:00", "DAYLIGHT:TRUE;-04;20240310T020000;20241103T020000;EST;EDT"});
  EXPECT_EQ(described(plain("UTC")), QStringList{u"2024-01-15 14:00 - 14:00 x"_qs});
  // the viewer's own zone, as far as can be told: also in years of which nothing is told
  open({"UID:1", "SUMMARY:x", "DTSTART:20100715T090000"},
       {"TZ:+01", "DAYLIGHT:TRUE;+02;20240331T010000Z;20241027T010000Z;CET;CEST"});
  EXPECT_EQ(described(plain()), QStringList{u"2010-07-15 09:00 - 09:00 x"_qs});
  open({"UID:1", "SUMMARY:x", "DTSTART:20240715T090000"});
  EXPECT_EQ(described(plain()), QStringList{u"2024-07-15 09:00 - 09:00 x"_qs});
}

TEST_F(OldCalendars, AnEditWritesItsLinesInTheFilesOwnForm) {
  open({"UID:1", "DTSTART:20240219T080000Z", "DTEND:20240219T090000Z",
        "DESCRIPTION;ENCODING=QUOTED-PRINTABLE:a=0D=0A=", "b=0D=0A",
        "SUMMARY;ENCODING=QUOTED-PRINTABLE:B=FCro", "CATEGORIES:One;Two"});
  const QByteArray before = readOne();
  Change change;
  change.subject = u"Büro; neu"_qs;
  change.body = u"größer\r\nund mehr\r\n"_qs;
  change.categories = QStringList{u"Küche"_qs, u"Two"_qs};
  change.durationMinutes = 90;
  const Item saved = save(single(), change);
  EXPECT_EQ(saved.subject, *change.subject);
  EXPECT_EQ(saved.body, *change.body);
  EXPECT_EQ(saved.categories, *change.categories);
  EXPECT_EQ(saved.durationMinutes(), 90);
  EXPECT_EQ(differences(before, readOne()),
            (QByteArrayList{
                "-DTEND:20240219T090000Z", "-DESCRIPTION;ENCODING=QUOTED-PRINTABLE:a=0D=0A=", "-b=0D=0A",
                "-SUMMARY;ENCODING=QUOTED-PRINTABLE:B=FCro", "-CATEGORIES:One;Two", "+DTEND:20240219T093000Z",
                "+DESCRIPTION;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:gr=C3=B6=C3=9Fer=0D=0A=",
                "+und mehr=0D=0A=0D=0A", "+SUMMARY;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:B=C3=BCro\\; neu",
                "+CATEGORIES;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:K=C3=BCche;Two"}));
}

TEST_F(OldCalendars, AStampChangesNoOtherLine) {
  open({"UID:1", "DTSTART:20240219T080000Z", "DTEND:20240219T090000Z",
        "SUMMARY;ENCODING=QUOTED-PRINTABLE:B=FCro=", "=20"});
  const QByteArray before = readOne();
  Change change;
  change.billingInformation = u"2024-05-15 10:00"_qs;
  EXPECT_EQ(save(single(), change).billingInformation, *change.billingInformation);
  EXPECT_EQ(differences(before, readOne()),
            QByteArrayList{"+X-HOURBOOK-BILLINGINFORMATION:2024-05-15 10:00"});
}

TEST_F(OldCalendars, AnAppointmentBecomesAWholeDayAndNoMidnightsOneOfHours) {
  open({"UID:1", "DTSTART:20240219T080000Z", "DTEND:20240219T090000Z", "SUMMARY:x"});
  Change change;
  change.allDay = true;
  change.start = moment(u"2024-02-20 00:00"_qs);
  EXPECT_TRUE(save(single(), change).allDay);
  EXPECT_THAT(readOne().toStdString(),
              testing::HasSubstr("DTSTART:20240219T230000Z\r\nDTEND:20240220T230000Z\r\n"));
  change.allDay = false;
  EXPECT_THROW(save(single(), change), platform::Failure);
  change.durationMinutes = 60;
  EXPECT_EQ(described({save(single(), change)}), QStringList{u"2024-02-20 00:00 - 01:00 x"_qs});
}

TEST_F(OldCalendars, AnOccurrenceIsNotChangedAndNothingIsAdded) {
  open({"UID:1", "SUMMARY:x", "DTSTART:20240219T080000Z", "RRULE:D1 #3"});
  const QByteArray before = readOne();
  Change change;
  change.subject = u"y"_qs;
  try {
    save(expanded(u"2024-02-20"_qs, u"2024-02-20"_qs).at(0), change);
    ADD_FAILURE() << "it was changed";
  } catch (const platform::Failure& failure) {
    EXPECT_THAT(failure.description().toStdString(), testing::HasSubstr("vCalendar 1.0"));
  }
  change.start = moment(u"2024-02-20 00:00"_qs);
  EXPECT_THROW(store->save(folder, {}, {}, change), platform::Failure);
  EXPECT_EQ(readOne(), before);
  store->remove(folder, expanded(u"2024-02-20"_qs, u"2024-02-20"_qs).at(0).key, {});
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-12-31"_qs),
            (QStringList{u"2024-02-19 09:00 - 09:00 x"_qs, u"2024-02-21 09:00 - 09:00 x"_qs}));
}

TEST_F(OldCalendars, QuotedPrintableIsReadInICalendarToo) {
  writeOne(calendar(
      event({"UID:1", "DTSTART:20240219T080000Z", "SUMMARY;ENCODING=QUOTED-PRINTABLE:B=C3=BC=", "ro"})));
  EXPECT_EQ(single().subject, u"Büro"_qs);
  EXPECT_TRUE(problemTexts().isEmpty());
}
