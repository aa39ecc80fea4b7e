#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

namespace index_tests {

using namespace platform::calendar;
using namespace platform::calendar::icalendar;

namespace {

QByteArray stamp(Chance& chance) {
  const QDate day = QDate(2020, 1, 1).addDays(chance.below(2000));
  return day.toString(QStringLiteral("yyyyMMdd")).toLatin1() + 'T' +
         QByteArray::number(chance.below(24)).rightJustified(2, '0') +
         QByteArray::number(chance.below(60)).rightJustified(2, '0') + "00";
}

QByteArray dateLine(Chance& chance, const QByteArray& name, int form) {
  switch (form) {
    case 0:
      return name + ":" + stamp(chance) + "Z\r\n";
    case 1:
      return name + ":" + stamp(chance) + "\r\n";
    case 2:
      return name + ";VALUE=DATE:" + stamp(chance).left(8) + "\r\n";
    case 3:
      return name + ";TZID=Europe/Stockholm:" + stamp(chance) + "\r\n";
    case 4:
      return name + ";TZID=Our own zone:" + stamp(chance) + "\r\n";
    case 5:
      return name + ";TZID=\"(UTC-05:00) Eastern Time (US & Canada)\":" + stamp(chance) + "\r\n";
    default:
      return name + ";VALUE=DATE-TIME;TZID=Nowhere at all:" + stamp(chance) + "\r\n";
  }
}

QByteArray zone(const QByteArray& name, int offset) {
  const QByteArray hours = "+" + QByteArray::number(offset).rightJustified(2, '0') + "00";
  return "BEGIN:VTIMEZONE\r\nTZID:" + name +
         "\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\nTZOFFSETFROM:" + hours +
         "\r\nTZOFFSETTO:" + hours + "\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
}

const QList<QByteArray> oddLines{"no property at all\r\n",
                                 "DTSTART:19990101T000000\r\n",
                                 "DTEND:20209999\r\n",
                                 "RRULE:FREQ=NEVER\r\n",
                                 "DURATION:later\r\n",
                                 "EXDATE:20200101T000000,nothing\r\n",
                                 "RDATE:20210101T000000/PT1H,what\r\n",
                                 "SUMMARY;LANGUAGE=sv:Möte\\, långt\r\n och  vikt\r\n",
                                 "UID\r\n :folded behind its name\r\n",
                                 "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE\r\n",
                                 "dtstart:20200505T101010\r\n",
                                 "uid:small\r\n",
                                 "DTSTART ;TZID=x:20200101T000000\r\n",
                                 "\r\n",
                                 "DESCRIPTION:a\r\n\r\n b\r\n",
                                 "COMMENT:\xFF\xFE bytes\r\n",
                                 "STATUS:CANCELLED\r\n"};

}  // namespace

quint32 many(quint32 trials) {
  return trials * static_cast<quint32>(qMax(1, qEnvironmentVariableIntValue("HOURBOOK_SOAK")));
}

QByteArray someEvent(Chance& chance, int number, bool odd) {
  QByteArray text = "BEGIN:VEVENT\r\n";
  const int uid = odd && chance.oneIn(6) ? chance.below(5) : number;
  if (!odd || !chance.oneIn(9)) text += "UID:event-" + QByteArray::number(uid) + "@example.com\r\n";
  const int form = chance.below(7);
  const bool isOverride = chance.oneIn(12);
  if (isOverride) text += dateLine(chance, "RECURRENCE-ID", chance.oneIn(2) ? form : 3);
  if (!odd || !chance.oneIn(12)) text += dateLine(chance, "DTSTART", form);
  if (chance.oneIn(2))
    text += chance.oneIn(2) ? QByteArray("DURATION:PT45M\r\n") : dateLine(chance, "DTEND", form);
  if (chance.oneIn(9) && !isOverride) {
    const QList<QByteArray> rules{"FREQ=DAILY;COUNT=30", "FREQ=WEEKLY;BYDAY=MO,TH", "FREQ=MONTHLY",
                                  "FREQ=WEEKLY;UNTIL=20220101T000000Z", "FREQ=YEARLY"};
    text += "RRULE:" + chance.of(rules) + "\r\n";
    if (chance.oneIn(2)) text += dateLine(chance, "EXDATE", form);
    if (chance.oneIn(4)) text += dateLine(chance, "RDATE", form);
  }
  if (!chance.oneIn(20)) {
    const QList<QByteArray> subjects{"Plain", "Möte", "With\\, escape", "",
                                     "A long one that is folded\r\n  here"};
    text += "SUMMARY:" + chance.of(subjects) + "\r\n";
  }
  if (chance.oneIn(3)) text += "DESCRIPTION:" + QByteArray(chance.below(900), 'x') + "\r\n";
  if (chance.oneIn(8))
    text += "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT5M\r\nUID:alarm\r\nEND:VALARM\r\n";
  if (odd && chance.oneIn(4)) text += chance.of(oddLines);
  return text + "END:VEVENT\r\n";
}

QByteArray someCalendar(Chance& chance, int events, bool odd, bool broken) {
  QByteArray text = odd && chance.oneIn(8) ? "\xEF\xBB\xBF" : "";
  const auto begin = [&] {
    text += "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Somebody//EN\r\n";
    if (chance.oneIn(3)) text += "X-WR-TIMEZONE:America/New_York\r\n";
    if (chance.oneIn(2)) text += zone("Our own zone", 1 + chance.below(9));
    if (chance.oneIn(8)) text += "METHOD:CANCEL\r\n";
  };
  begin();
  for (int i = 0; i < events; ++i) {
    text += someEvent(chance, i, odd);
    if (odd && chance.oneIn(60)) {
      text += "END:VCALENDAR\r\n";
      begin();
    }
    if (odd && chance.oneIn(20))
      text += "BEGIN:VTODO\r\nUID:todo\r\nSUMMARY:Do\r\nnot a line\r\nEND:VTODO\r\n";
    if (odd && chance.oneIn(40)) text += zone("Nowhere at all", chance.below(9));
    if (odd && chance.oneIn(30)) text += "X-CALENDAR-LINE:between events\r\n";
    if (odd && chance.oneIn(30)) text += "\r\n";
    if (broken && chance.oneIn(20))
      text += chance.of<QByteArray>({"END:VEVENT\r\n", "BEGIN:VEVENT\r\n", "words\r\n", "BEGIN:X\r\n",
                                     "END:VCALENDAR\r\n", "BEGIN:VCALENDAR\r\n", " continued\r\n"});
  }
  return text + "END:VCALENDAR\r\n";
}

namespace {

QString described(const EventRef& ref, const char* kind) {
  const Event& event = *ref.event;
  return QStringLiteral("%1 %2 %3 %4 at %5 line %6 tag %7 from %8 to %9 cancelled %10")
      .arg(QLatin1String(kind), ref.file->name, event.uid, event.place)
      .arg(ref.file->base + event.component->offset)
      .arg(event.component->line)
      .arg(ref.file->tag(event))
      .arg(event.earliest())
      .arg(event.latest())
      .arg(event.cancelled);
}

QStringList described(const QList<Group>& groups) {
  QStringList lines;
  for (const Group& group : groups) {
    QStringList events;
    for (const EventRef& ref : group.masters) events.append(described(ref, "master"));
    for (const EventRef& ref : group.overrides) events.append(described(ref, "override"));
    lines.append(events.join(u" | "_qs));
  }
  lines.sort();
  return lines;
}

qint64 ms(const QDate& day) {
  return day.startOfDay(Qt::UTC).toMSecsSinceEpoch();
}

void appendItems(EventSource& source, const Query& query, QStringList& lines) {
  ZoneBook book;
  QList<Problem> noted;
  QList<Item> items;
  Expansion expansion(book, query, &noted);
  const auto groups = source.between(query.startFrom.toMSecsSinceEpoch(), query.startTo.toMSecsSinceEpoch());
  for (const Group& group : groups) expansion.add(group, items);
  QStringList these;
  for (const Item& item : std::as_const(items))
    these.append(QStringLiteral("%1 %2 %3 %4 %5 %6 %7")
                     .arg(item.start.toString(Qt::ISODate), item.end.toString(Qt::ISODate), item.subject,
                          item.key.uid, item.key.place, item.key.recurrenceId, item.tag));
  for (const Problem& problem : std::as_const(noted))
    these.append(QStringLiteral("%1:%2 %3").arg(problem.place).arg(problem.line).arg(problem.text));
  these.sort();
  lines += these;
}

}  // namespace

QStringList shownBy(EventSource& source, const QDate& from, const QDate& to) {
  return described(source.between(ms(from), ms(to)));
}

QStringList allShownBy(EventSource& source) {
  QStringList lines =
      described(source.between(std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()));
  for (const Problem& problem : source.problems())
    lines.append(QStringLiteral("%1:%2: %3").arg(problem.place).arg(problem.line).arg(problem.text));
  return lines;
}

QStringList itemsOf(EventSource& source) {
  QStringList lines;
  Query query;
  query.expandSeries = true;
  query.zone = QTimeZone("Europe/Stockholm");
  for (const int month : {1, 30, 63}) {
    const QDate day = QDate(2020, 1, 1).addMonths(month);
    query.startFrom = QDateTime(day, QTime(0, 0), query.zone);
    query.startTo = query.startFrom.addDays(9);
    appendItems(source, query, lines);
  }
  return lines;
}

IndexOptions IndexTest::options() const {
  IndexOptions options;
  options.cacheFolder = cache();
  return options;
}

void IndexTest::SetUp() {
  QDir().mkpath(folder());
}

std::unique_ptr<IndexedSource> IndexTest::open(const QString& calendar) const {
  return std::make_unique<IndexedSource>(calendar, QStringLiteral("Test"), options());
}

void IndexTest::expectSame(IndexedSource& index, const QString& calendar) {
  FileCache plain(calendar, QStringLiteral("Test"));
  for (const int month : {0, 40, 90}) {
    const QDate day = QDate(2020, 1, 1).addMonths(month);
    EXPECT_EQ(shownBy(index, day, day.addDays(7)), shownBy(plain, day, day.addDays(7)));
  }
  EXPECT_EQ(itemsOf(index), itemsOf(plain));
  EXPECT_EQ(allShownBy(index), allShownBy(plain));
  for (const char* uid :
       {"event-1@example.com", "event-3@example.com", "nobody", "no-uid:one.ics", "no-uid:one.ics#2"}) {
    const QString wanted = QString::fromLatin1(uid);
    EXPECT_EQ(described({index.withUid(wanted)}), described({plain.withUid(wanted)})) << uid;
  }
  for (const QString& subject :
       {u"Plain"_qs, u"Möte"_qs, u"With, escape"_qs, QString(), u"A long one that is folded here"_qs}) {
    const auto of = [&](EventSource& source) {
      QStringList lines;
      ZoneBook book;
      QList<Problem> noted;
      QList<Item> items;
      Query query;
      query.zone = QTimeZone("Europe/Stockholm");
      query.subject = subject;
      Expansion expansion(book, query, &noted);
      for (const Group& group : source.withSubject(subject)) expansion.add(group, items);
      for (const Item& item : std::as_const(items))
        lines.append(item.key.uid + u' ' + item.key.place + u' ' + item.tag);
      lines.sort();
      return lines;
    };
    EXPECT_EQ(of(index), of(plain)) << qPrintable(subject);
  }
}

void write(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
  ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray contentOf(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
  return file.readAll();
}

void makeOld(const QString& path) {
  const struct timespec times[2] = {{1'500'000'000, 0}, {1'500'000'000, 123}};
  ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

}  // namespace index_tests
