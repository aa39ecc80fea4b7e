#include "platform/outlook/vcalendar.h"

#include "tests/unit/platform/outlook/calendarfixture.h"

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::outlook;

namespace {

/// The body as a reader takes it that knows no escape but the soft line break and "=0D=0A".
QString bodyOf(const QByteArray& vcalendar) {
  const QString text = QString::fromUtf8(vcalendar);
  const qsizetype start = text.indexOf(u"DESCRIPTION;ENCODING=QUOTED-PRINTABLE:"_s) + 38;
  const qsizetype end = text.indexOf(u"=0D=0A\r\n"_s, start);
  if (end < 0) return {};
  QString body = text.mid(start, end - start);
  return body.remove(u"=\r\n"_s).replace(u"=0D=0A"_s, u"\r\n"_s);
}

class VcalendarTest : public tests::CalendarTest {
 protected:
  QByteArray forwarded(const QString& body) {
    calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:00"_s);
    item.key.uid = u"uid-1"_s;
    item.body = body;
    return AppointmentItem(store, folder, item).ForwardAsVcal()->Attachments.at(0).content();
  }
  QString roundTrip(const QString& body) { return bodyOf(forwarded(body)); }
};

QList<QByteArray> linesOf(const QByteArray& text) {
  QList<QByteArray> lines = text.split('\n');
  EXPECT_EQ(lines.takeLast(), QByteArray());
  for (QByteArray& line : lines) {
    EXPECT_TRUE(line.endsWith('\r'));
    line.chop(1);
  }
  return lines;
}

}  // namespace

TEST_F(VcalendarTest, TheWholeObjectStandsInTheOrderOfItsModel) {
  calendar::Item item = appointment(u"Möte"_s, u"2024-05-15 09:00"_s, 90);
  item.key.uid = u"uid-1"_s;
  item.body = u"First\r\n\r\nlast\r\n"_s;
  item.categories = {u"Acme"_s, u"Phone"_s};
  AppointmentItem forwarded(store, folder, item);
  EXPECT_EQ(QString::fromUtf8(forwarded.ForwardAsVcal()->Attachments.at(0).content()),
            u"BEGIN:VCALENDAR\r\n"
            u"PRODID:-//Microsoft Corporation//Outlook 11.0 MIMEDIR//EN\r\n"
            u"VERSION:1.0\r\n"
            u"BEGIN:VEVENT\r\n"
            u"DTSTART:20240515T070000Z\r\n"
            u"DTEND:20240515T083000Z\r\n"
            u"CATEGORIES;ENCODING=QUOTED-PRINTABLE:Acme;Phone\r\n"
            u"UID:uid-1\r\n"
            u"DESCRIPTION;ENCODING=QUOTED-PRINTABLE:First=0D=0A=\r\n"
            u"=0D=0A=\r\n"
            u"last=0D=0A\r\n"
            u"SUMMARY;ENCODING=QUOTED-PRINTABLE:Möte\r\n"
            u"PRIORITY:3\r\n"
            u"END:VEVENT\r\n"
            u"END:VCALENDAR\r\n"_s);
}

TEST_F(VcalendarTest, TheProductNamesTheVersion) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:00"_s);
  EXPECT_TRUE(vcalendarOf(item, u"9.0.0.2711"_s)
                  .contains("PRODID:-//Microsoft Corporation//Outlook 9.0 MIMEDIR//EN\r\n"));
}

TEST_F(VcalendarTest, AnAllDayEventIsItsMidnightsInUniversalTime) {
  const auto item = add(wholeDay(u"A"_s, QDate(2024, 3, 31)));
  const QByteArray text = item->ForwardAsVcal()->Attachments.at(0).content();
  EXPECT_TRUE(text.contains("DTSTART:20240330T230000Z\r\nDTEND:20240331T220000Z\r\n"));
}

TEST_F(VcalendarTest, PendingChangesGoAlong) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  item->setBody(u"new"_s);
  item->setStart(basic::Date::of(QDate(2024, 1, 15), QTime(9, 0)));
  item->setCategories(u",Acme"_s);
  const QByteArray text = item->ForwardAsVcal()->Attachments.at(0).content();
  EXPECT_EQ(bodyOf(text), u"new"_s);
  EXPECT_TRUE(text.contains("DTSTART:20240115T080000Z\r\nDTEND:20240115T090000Z\r\n"));
  EXPECT_TRUE(text.contains("CATEGORIES;ENCODING=QUOTED-PRINTABLE:Acme\r\n"));
}

TEST_F(VcalendarTest, ABodyComesBackAsItWasWithoutItsLastLineBreak) {
  for (const QString& body : {u"one line"_s, u"two\r\nlines"_s, u"an empty\r\n\r\n\r\none between"_s,
                              u" blanks \r\n  around  "_s, u"tab\there"_s, u"åäö ß é 会議 🙂"_s,
                              u"a=b; c = d, =x"_s, u"\r\nbegins with a break"_s, u"."_s}) {
    EXPECT_EQ(roundTrip(body + u"\r\n"_s), body) << qPrintable(body);
    EXPECT_EQ(roundTrip(body), body) << qPrintable(body);
  }
}

TEST_F(VcalendarTest, OfSeveralLineBreaksAtTheEndOnlyTheClosingOneIsLost) {
  EXPECT_EQ(roundTrip(u"text\r\n\r\n"_s), u"text\r\n"_s);
  EXPECT_EQ(roundTrip(u"\r\n"_s), QString());
}

TEST_F(VcalendarTest, AnEmptyBodyGivesNoDescription) {
  EXPECT_FALSE(forwarded(QString()).contains("DESCRIPTION"));
  EXPECT_EQ(roundTrip(QString()), QString());
}

TEST_F(VcalendarTest, SingleReturnsAndFeedsAreLineBreaksToo) {
  EXPECT_EQ(roundTrip(u"a\nb\rc"_s), u"a\r\nb\r\nc"_s);
}

TEST_F(VcalendarTest, LongTextsAreBrokenSoftlyAndComeBackWhole) {
  QString words, accents, faces, equals;
  for (int i = 0; i < 400; ++i) {
    words += u"word%1 "_s.arg(i);
    accents += QChar(0xE5);
    faces += u"🙂"_s;
    equals += u"="_s;
  }
  for (int shift = 0; shift < 8; ++shift)
    for (const QString& text : {words, accents, faces, accents + u"\r\n"_s + words, equals + u"x"_s}) {
      const QString body = QString(shift, u'x') + text;
      EXPECT_EQ(roundTrip(body), body);
    }
}

TEST_F(VcalendarTest, NoLineIsLongerThan76OctetsOrCutInsideACharacterOrAnEscape) {
  QString body;
  for (int i = 0; i < 200; ++i) body += u"åß会🙂 =4711 a=b"_s + QString(i % 60, u'é') + u"\r\n"_s;
  calendar::Item item = appointment(QString(50, u'会'), u"2024-05-15 09:00"_s);
  item.body = body;
  item.key.uid = QString(200, u'u');
  item.categories = QStringList(20, u"Kategorie"_s);
  for (const QByteArray& line : linesOf(vcalendarOf(item, u"11.0"_s))) {
    EXPECT_LE(line.size(), 76);
    EXPECT_EQ(QString::fromUtf8(line).toUtf8(), line);
    EXPECT_FALSE(QString::fromUtf8(line).contains(QChar::ReplacementCharacter));
    for (const char* cut : {"=0=", "=0D==", "=3=", "=0D=0="})
      EXPECT_FALSE(line.endsWith(cut)) << line.constData();
  }
}

TEST_F(VcalendarTest, AnEqualsSignIsEscapedOnlyWhereItWouldReadAsAnEscape) {
  EXPECT_TRUE(forwarded(u"a=b"_s).contains(":a=b=0D=0A\r\n"));
  EXPECT_TRUE(forwarded(u"a=0Db"_s).contains(":a=3D0Db=0D=0A\r\n"));
  EXPECT_TRUE(forwarded(u"a=ff"_s).contains(":a=3Dff=0D=0A\r\n"));
  EXPECT_TRUE(forwarded(u"a=f"_s).contains(":a=f=0D=0A\r\n"));
  EXPECT_TRUE(forwarded(u"a=\r\nb="_s).contains(":a=3D=0D=0A=\r\nb=3D=0D=0A\r\n"));
}

TEST_F(VcalendarTest, ABodyThatTalksOfEscapesHasNoLineBreakMoreThanItHad) {
  EXPECT_FALSE(roundTrip(u"the mark =0D=0A stands for a break"_s).contains(u"\r\n"_s));
}

TEST_F(VcalendarTest, ASubjectOrCategoryWithALineBreakCannotPassForABody) {
  calendar::Item item = appointment(u"A\r\nB\r\n"_s, u"2024-05-15 09:00"_s);
  item.categories = {u"x=0D=0A"_s, u"y\n"_s};
  item.key.uid = u"uid\r\nDESCRIPTION;ENCODING=QUOTED-PRINTABLE:z"_s;
  const QByteArray text = vcalendarOf(item, u"11.0"_s);
  EXPECT_FALSE(text.contains("=0D=0A\r\n"));
  EXPECT_TRUE(text.contains("SUMMARY;ENCODING=QUOTED-PRINTABLE:A B \r\n"));
}

TEST_F(VcalendarTest, TheMailNamesTheAppointment) {
  const auto mail = add(appointment(u"A"_s, u"2024-05-15 09:00"_s))->ForwardAsVcal();
  EXPECT_EQ(mail->Subject, u"FW: A"_s);
  ASSERT_EQ(mail->Attachments.size(), 1u);
  EXPECT_EQ(mail->Attachments[0].FileName(), u"appointment.vcs"_s);
}
