#include "companions/sampledata/icstext.h"

namespace sampledata {
namespace {

using namespace Qt::StringLiterals;

QByteArray linesOf(const std::function<void(IcsText&)>& fill) {
  IcsText ics;
  fill(ics);
  QByteArray text = ics.finish();
  const QByteArray head = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Hourbook//Sample data//EN\r\n";
  const QByteArray foot = "END:VCALENDAR\r\n";
  EXPECT_TRUE(text.startsWith(head) && text.endsWith(foot)) << text.constData();
  return text.mid(head.size(), text.size() - head.size() - foot.size());
}

TEST(IcsText, EscapesWhatSeparatesValues) {
  EXPECT_EQ(escapedText(u"a,b;c\\d\r\ne"_s), "a\\,b\\;c\\\\d\\ne");
  EXPECT_EQ(linesOf([](IcsText& ics) { ics.text("SUMMARY", u"Größe, Maß"_s); }),
            QByteArray("SUMMARY:Größe\\, Maß\r\n"));
}

TEST(IcsText, FoldsLongLinesBetweenCharacters) {
  for (const QString& character : {u"x"_s, u"ö"_s, u"週"_s, u"😀"_s})
    for (int before = 0; before < 4; ++before) {
      const QString value = QString(before, u'x') + character.repeated(100);
      const QByteArray lines = linesOf([&](IcsText& ics) { ics.text("SUMMARY", value); });
      QByteArray unfolded;
      for (const QByteArray& line : lines.split('\n')) {
        EXPECT_LE(line.size(), 76) << "75 octets and the CR";
        EXPECT_FALSE(QString::fromUtf8(line).contains(QChar::ReplacementCharacter)) << line.constData();
      }
      unfolded = QByteArray(lines).replace("\r\n ", "");
      EXPECT_EQ(unfolded, "SUMMARY:" + value.toUtf8() + "\r\n");
    }
}

TEST(IcsText, WritesMomentsInTheirZone) {
  const QDateTime wall(QDate(2024, 5, 7), QTime(8, 5), Qt::UTC);
  EXPECT_EQ(linesOf([&](IcsText& ics) { ics.moment("DTSTART", wall, "Europe/Stockholm"); }),
            "DTSTART;TZID=Europe/Stockholm:20240507T080500\r\n");
  EXPECT_EQ(linesOf([&](IcsText& ics) { ics.moment("DTSTART", wall, "UTC"); }),
            "DTSTART:20240507T080500Z\r\n");
  EXPECT_EQ(linesOf([&](IcsText& ics) { ics.moment("DTSTART", wall, {}); }), "DTSTART:20240507T080500\r\n");
  EXPECT_EQ(linesOf([&](IcsText& ics) { ics.day("DTSTART", wall.date()); }),
            "DTSTART;VALUE=DATE:20240507\r\n");
}

}  // namespace
}  // namespace sampledata
