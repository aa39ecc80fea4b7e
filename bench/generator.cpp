#include "bench/generator.h"

#include "platform/files/atomicfile.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <functional>
#include <random>
#include <sys/stat.h>

namespace bench {

namespace {

class Generator {
 public:
  explicit Generator(const CalendarSize& size) : size_(size), engine_(size.seed) {}

  void each(const std::function<void(int, const QByteArray&)>& take) {
    for (int i = 0; i < size_.items; ++i) take(i, i % 200 == 7 ? series(i) : single(i));
  }

 private:
  int below(int n) { return static_cast<int>(engine_() % static_cast<quint32>(n)); }

  QByteArray stamp(const QDate& day, int minute) const {
    return day.toString(QStringLiteral("yyyyMMdd")).toLatin1() + 'T' +
           QByteArray::number(minute / 60).rightJustified(2, '0') +
           QByteArray::number(minute % 60).rightJustified(2, '0') + "00";
  }

  QByteArray moment(const char* property, int zone, const QDate& day, int minute) const {
    switch (zone) {
      case 0:
        return QByteArray(property) + ":" + stamp(day, minute) + "Z\r\n";
      case 1:
        return QByteArray(property) + ":" + stamp(day, minute) + "\r\n";
      case 2:
        return QByteArray(property) + ";TZID=America/New_York:" + stamp(day, minute) + "\r\n";
      default:
        return QByteArray(property) + ";TZID=Europe/Stockholm:" + stamp(day, minute) + "\r\n";
    }
  }

  QByteArray head(int i) {
    QByteArray text = "BEGIN:VEVENT\r\nUID:bench-" + QByteArray::number(size_.seed) + '-' +
                      QByteArray::number(i) + "@hourbook.invalid\r\nDTSTAMP:20240101T000000Z\r\n";
    text += "SUMMARY:Mötesserie Ärende Συνάντηση " + QByteArray::number(i) + "\r\n";
    if (below(3) == 0) text += "CATEGORIES:Customer " + QByteArray::number(below(20)) + ",Task\r\n";
    if (below(4) == 0) {
      QByteArray body;
      for (int n = below(28); n >= 0; --n)
        body += "DESCRIPTION line with some words and a number\\, folded here and\r\n  there\\n\r\n ";
      text += "DESCRIPTION:" + body + "end\r\n";
    }
    return text;
  }

  QByteArray single(int i) {
    const QDate day = size_.middle.addDays(below(12 * 365) - 6 * 365);
    QByteArray text = head(i);
    const int kind = below(20);
    if (kind == 0) {
      text += "DTSTART;VALUE=DATE:" + day.toString(QStringLiteral("yyyyMMdd")).toLatin1() + "\r\n";
      text +=
          "DTEND;VALUE=DATE:" + day.addDays(1 + below(4)).toString(QStringLiteral("yyyyMMdd")).toLatin1() +
          "\r\n";
    } else {
      const int zone = below(6), minute = 7 * 60 + 15 * below(40);
      text += moment("DTSTART", zone, day, minute);
      text += moment("DTEND", zone, day, minute + 15 * (1 + below(10)));
    }
    return text + "END:VEVENT\r\n";
  }

  QByteArray series(int i) {
    const QDate day = size_.middle.addDays(below(10 * 365) - 6 * 365);
    const int zone = below(6), minute = 8 * 60 + 15 * below(30);
    QByteArray text = head(i);
    text += moment("DTSTART", zone, day, minute) + "DURATION:PT45M\r\n";
    static const char* rules[] = {"FREQ=DAILY;COUNT=200", "FREQ=WEEKLY;BYDAY=MO,WE,FR", "FREQ=MONTHLY",
                                  "FREQ=WEEKLY;INTERVAL=2;COUNT=80", "FREQ=MONTHLY;BYDAY=-1FR"};
    const int rule = below(6);
    text += "RRULE:";
    text += rule < 5 ? QByteArray(rules[rule])
                     : "FREQ=WEEKLY;UNTIL=" + stamp(day.addDays(500), 600) + (zone == 1 ? "" : "Z");
    text += "\r\n" + moment("EXDATE", zone, day.addDays(14), minute) + "END:VEVENT\r\n";
    text += head(i) + moment("RECURRENCE-ID", zone, day.addDays(28), minute) +
            moment("DTSTART", zone, day.addDays(28), minute + 60) + "DURATION:PT30M\r\nEND:VEVENT\r\n";
    return text;
  }

  CalendarSize size_;
  std::mt19937 engine_;
};

const QByteArray opening = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Hourbook//Bench//EN\r\n";
const QByteArray closing = "END:VCALENDAR\r\n";

}  // namespace

QByteArray bigFile(const CalendarSize& size) {
  QByteArray all = opening;
  Generator(size).each([&](int, const QByteArray& item) { all += item; });
  return all + closing;
}

void folderOfFiles(const CalendarSize& size, const QString& folder) {
  QDir().mkpath(folder);
  // at rest, as a calendar is: what was written just now is read more often
  const struct timespec old[2] = {{1'700'000'000, 0}, {1'700'000'000, 0}};
  Generator(size).each([&](int i, const QByteArray& item) {
    const QString path = folder + QStringLiteral("/bench-%1.ics").arg(i);
    platform::files::replaceFile(path, opening + item + closing);
    ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), old, 0);
  });
}

QByteArray markedWeek(int count, const QDate& monday, const QString& separator) {
  QByteArray all = opening;
  const QByteArray mark = (separator == QStringLiteral(";") ? "\\;" : "\\,");
  for (int i = 0; i < count; ++i) {
    const QDate day = monday.addDays(i % 5);
    const QByteArray at = day.toString(QStringLiteral("yyyyMMdd")).toLatin1() + 'T' +
                          QByteArray::number(8 + i % 9).rightJustified(2, '0') +
                          QByteArray::number(i % 60).rightJustified(2, '0') + "00";
    all += "BEGIN:VEVENT\r\nUID:week-" + QByteArray::number(i) + "@hourbook.invalid\r\nSUMMARY:Row " +
           QByteArray::number(i) + "\r\nDTSTART:" + at + "\r\nDURATION:PT1H\r\nCATEGORIES:Acme,Phone\r\n" +
           "X-HOURBOOK-CATEGORIES:" + mark + "Acme" + mark +
           "Phone\r\nDESCRIPTION:Some notes\r\nEND:VEVENT\r\n";
  }
  return all + closing;
}

}  // namespace bench
