#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <QDir>
#include <QFile>

namespace icalendar_tests {

QByteArray joined(const QByteArrayList& lines, const QByteArray& lineEnd) {
  QByteArray text;
  for (const QByteArray& line : lines) text += line + lineEnd;
  return text;
}

QByteArray event(const QByteArrayList& lines, const QByteArray& lineEnd) {
  return "BEGIN:VEVENT" + lineEnd + joined(lines, lineEnd) + "END:VEVENT" + lineEnd;
}

QByteArray calendar(const QByteArray& content, const QByteArray& lineEnd) {
  return joined({"BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//Another//Program//EN"}, lineEnd) + content +
         "END:VCALENDAR" + lineEnd;
}

QByteArrayList differences(const QByteArray& before, const QByteArray& after) {
  QByteArrayList was = before.split('\n'), is = after.split('\n'), result;
  while (!was.isEmpty() && !is.isEmpty() && was.first() == is.first()) {
    was.removeFirst();
    is.removeFirst();
  }
  while (!was.isEmpty() && !is.isEmpty() && was.last() == is.last()) {
    was.removeLast();
    is.removeLast();
  }
  // between the first and the last difference: what the other side has not
  for (const QByteArray& line : was)
    if (!is.contains(line)) result.append('-' + line.trimmed());
  for (const QByteArray& line : is)
    if (!was.contains(line)) result.append('+' + line.trimmed());
  return result;
}

IcalendarTest::IcalendarTest() {
  QDir(root_.path()).mkdir(QStringLiteral("cal"));
  reopen();
}

void IcalendarTest::reopen(bool readOnly) {
  store.reset();  // as the end of a program does before the next one starts
  store = std::make_unique<platform::calendar::IcalendarStore>(
      QList<platform::calendar::IcalendarFolder>{
          {QStringLiteral("cal"), QStringLiteral("Work"), QStringLiteral("Mailbox - Jane Doe"),
           root_.filePath(QStringLiteral("cal")), readOnly},
          {QStringLiteral("one"), QStringLiteral("Archive"), QStringLiteral("Mailbox - Jane Doe"), onePath(),
           readOnly}},
      qEnvironmentVariableIsSet("HOURBOOK_TEST_INDEX") ? root_.filePath(QStringLiteral("index")) : QString());
}

QString IcalendarTest::path(const QString& name) const {
  return root_.filePath(QStringLiteral("cal/") + name);
}

namespace {

void writeFile(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
  ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray readFile(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
  return file.readAll();
}

}  // namespace

void IcalendarTest::write(const QString& name, const QByteArray& bytes) {
  writeFile(path(name), bytes);
}
QByteArray IcalendarTest::read(const QString& name) const {
  return readFile(path(name));
}
void IcalendarTest::writeOne(const QByteArray& bytes) {
  writeFile(onePath(), bytes);
}
QByteArray IcalendarTest::readOne() const {
  return readFile(onePath());
}

QStringList IcalendarTest::fileNames() const {
  return QDir(root_.filePath(QStringLiteral("cal")))
      .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

QDateTime moment(const QString& text, const QByteArray& zone) {
  const QDateTime local = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm"));
  return QDateTime(local.date(), local.time(), QTimeZone(zone));
}

QStringList described(const QList<Item>& items) {
  QStringList result;
  for (const Item& item : items) {
    const QString day = item.start.toString(QStringLiteral("yyyy-MM-dd"));
    result.append(item.allDay ? QStringLiteral("%1 - %2 all day %3")
                                    .arg(day, item.end.toString(QStringLiteral("yyyy-MM-dd")), item.subject)
                              : QStringLiteral("%1 %2 - %3 %4")
                                    .arg(day, item.start.toString(QStringLiteral("HH:mm")),
                                         item.end.toString(QStringLiteral("HH:mm")), item.subject));
  }
  return result;
}

QList<Item> IcalendarTest::expanded(const QString& from, const QString& to, const QByteArray& zone) {
  Query query;
  query.zone = QTimeZone(zone);
  query.expandSeries = true;
  query.startFrom = QDateTime(QDate::fromString(from, Qt::ISODate), QTime(0, 0), query.zone);
  query.startTo = QDateTime(QDate::fromString(to, Qt::ISODate), QTime(23, 59, 59), query.zone);
  return store->items(folder, query);
}

QStringList IcalendarTest::shown(const QString& from, const QString& to, const QByteArray& zone) {
  return described(expanded(from, to, zone));
}

QList<Item> IcalendarTest::plain(const QByteArray& zone) {
  Query query;
  query.zone = QTimeZone(zone);
  return store->items(folder, query);
}

Item IcalendarTest::single() {
  const QList<Item> items = plain();
  EXPECT_EQ(items.size(), 1);
  return items.value(0);
}

QStringList IcalendarTest::problemTexts() {
  QStringList result;
  for (const Problem& problem : store->problems(folder))
    result.append(QStringLiteral("%1:%2: %3").arg(problem.place).arg(problem.line).arg(problem.text));
  return result;
}

}  // namespace icalendar_tests
