#include "platform/calendar/icalendar/expansion.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "tests/contract/icalendar/differences.h"
#include "tests/support/testworld.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <iostream>

// Files of other programs: what python3-icalendar and recurring-ical-events find in them (events.py), we find
// too, before an edit and after it. Where we differ, differences.cpp says why.
using namespace platform::calendar;
using namespace platform::calendar::icalendar;

namespace {

/// What the other reader says of one file.
struct Found {
  bool failed = false;
  QList<QStringList> events;  // UID, RECURRENCE-ID, start, subject
  QDate countedFrom;
  int count = -1;  // without: it could not follow the series
};

QHash<QString, Found> othersView(const QString& root, const QStringList& names) {
  QProcess process;
  process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process.setWorkingDirectory(root);
  process.start(u"/usr/bin/python3"_qs,
                QStringList{u"-B"_qs, u"-W"_qs, u"ignore"_qs, QStringLiteral(EVENTS)} + names);
  process.waitForFinished(-1);
  EXPECT_EQ(process.exitCode(), 0);
  QHash<QString, Found> all;
  Found* file = nullptr;
  for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
    if (line.startsWith("FILE ")) {
      file = &all[QString::fromUtf8(line.mid(5))];
    } else if (line.startsWith("FAILED") && file) {
      file->failed = true;
    } else if (line.startsWith("COUNT ") && file) {
      file->countedFrom = QDate::fromString(QString::fromLatin1(line.mid(6, 10)), Qt::ISODate);
      file->count = line.mid(17).toInt();
    } else if (line.count('\t') == 3 && file) {
      file->events.append(QString::fromUtf8(line).split(u'\t'));
    }
  }
  return all;
}

QString oneLine(const QString& text) {
  return text.simplified();
}

/// The forms in which a date may be told: as it is written, and as a moment.
QStringList formsOf(ZoneBook& book, const CalendarFile& file, const Event& event,
                    const std::optional<DateValue>& value) {
  if (!value) return {QString()};
  const QString day = QString::fromLatin1(dateText(value->date));
  if (value->form == DateValue::Form::Date) return {day};
  const qint64 instant = Reader(book, QTimeZone::utc()).instantOf(file, event, *value);
  return {QString::fromLatin1(dateTimeText(value->date, value->time)),
          u'@' + QString::number(instant / 1000)};
}

bool same(ZoneBook& book, const CalendarFile& file, const Event& event, const QStringList& other) {
  Item texts;
  readTexts(file.document, *event.component, texts, event.old);
  return other[0].simplified() == (event.hasUid ? oneLine(event.uid) : QString()) &&
         formsOf(book, file, event, event.recurrenceId).contains(other[1]) &&
         formsOf(book, file, event, event.start).contains(other[2]) &&
         oneLine(other[3]) == oneLine(texts.subject);
}

/// What one side has and the other has not.
QStringList differing(const CalendarFile& file, const Found& other) {
  ZoneBook book;
  QList<QStringList> rest = other.events;
  QStringList result;
  for (const Event& event : file.events) {
    const auto twin = std::find_if(rest.begin(), rest.end(),
                                   [&](const QStringList& one) { return same(book, file, event, one); });
    if (twin != rest.end())
      rest.erase(twin);
    else
      result.append(
          QStringLiteral("ours: %1 %2").arg(event.uid, formsOf(book, file, event, event.start).join(u'/')));
  }
  for (const QStringList& one : rest) result.append(u"theirs: "_qs + one.join(u' '));
  return result;
}

int countFrom(const std::shared_ptr<const CalendarFile>& file, const QDate& day) {
  ZoneBook book;
  QList<Problem> problems;
  Query query;
  query.zone = QTimeZone::utc();
  query.expandSeries = true;
  query.startFrom = QDateTime(day, QTime(0, 0), Qt::UTC);
  query.startTo = query.startFrom.addDays(400).addSecs(-1);
  Expansion expansion(book, query, &problems);
  QHash<QString, Group> groups;
  for (const Event& event : file->events) {
    Group& group = groups[event.uid];
    (event.isOverride() ? group.overrides : group.masters).append({file, &event});
  }
  QList<Item> items;
  for (const Group& group : std::as_const(groups)) expansion.add(group, items);
  return static_cast<int>(items.size());
}

}  // namespace

class CorpusTest : public testing::Test {
 protected:
  void SetUp() override {
    samples_ = qEnvironmentVariable("HOURBOOK_SAMPLES");
    if (samples_.isEmpty())
      GTEST_SKIP() << "HOURBOOK_SAMPLES is not set: the files of other programs are not read.";
    for (const char* folder : {"icalendar", "ics-corpus"}) {
      QDirIterator all(samples_ + u'/' + QString::fromLatin1(folder), {u"*.ics"_qs}, QDir::Files,
                       QDirIterator::Subdirectories);
      while (all.hasNext()) names_.append(all.next().mid(samples_.size() + 1));
    }
    names_.sort();
    ASSERT_GT(names_.size(), 200);
  }
  QByteArray bytes(const QString& name) const {
    QFile file(samples_ + u'/' + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    return file.readAll();
  }

  tests::TestWorld world;
  QString samples_;
  QStringList names_;
};

TEST_F(CorpusTest, AnotherReaderFindsTheSameEventsAndAsManyOccurrences) {
  const QHash<QString, Found> others = othersView(samples_, names_);
  int read = 0, events = 0, counted = 0;
  for (const QString& name : std::as_const(names_)) {
    const auto file = calendarFile(name, bytes(name));
    const Found other = others.value(name);
    if (other.failed) continue;  // whatever it cannot read; we say what we make of it below
    ++read;
    events += static_cast<int>(file->events.size());
    const QStringList differences = differing(*file, other);
    if (!whyEventsDiffer(name).isEmpty()) {
      EXPECT_FALSE(differences.isEmpty()) << qPrintable(name) << " agrees now: strike it off the list";
    } else {
      EXPECT_TRUE(differences.isEmpty()) << qPrintable(name + u":\n"_qs + differences.join(u'\n'));
    }
    if (other.count < 0) continue;
    ++counted;
    const int ours = countFrom(file, other.countedFrom);
    if (!whyCountsDiffer(name).isEmpty()) {
      EXPECT_NE(ours, other.count) << qPrintable(name) << " agrees now: strike it off the list";
    } else {
      EXPECT_EQ(ours, other.count) << qPrintable(name) << " occurrences from "
                                   << qPrintable(other.countedFrom.toString(Qt::ISODate));
    }
  }
  EXPECT_GT(read, 180);
  std::cout << read << " files, " << events << " events, occurrences counted in " << counted << " files\n";
}

TEST_F(CorpusTest, AnotherReaderFindsAnEditAndNothingElseChanged) {
  QTemporaryDir root;
  Change change;
  change.subject = u"Edited by us"_qs;
  change.billingInformation = u"2024-05-15 10:00"_qs;
  QStringList edited;
  QHash<QString, QString> uids;
  for (const QString& name : std::as_const(names_)) {
    const QString copy = QString(name).replace(u'/', u'_');
    QFile file(root.filePath(copy));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes(name));
    file.close();
    IcalendarStore store({{u"one"_qs, u"One"_qs, u"Mailbox"_qs, root.filePath(copy), false}});
    Query query;
    query.zone = QTimeZone("Europe/Stockholm");
    const QList<Item> items = store.items(u"one"_qs, query);
    if (items.isEmpty()) continue;
    const Item& item = items.at(items.size() / 2);
    store.save(u"one"_qs, item.key, item.tag, change);
    store.flush();
    edited.append(copy);
    uids.insert(copy, item.key.uid);
  }
  const QHash<QString, Found> before = othersView(samples_, names_), after = othersView(root.path(), edited);
  int seen = 0;
  for (const QString& name : std::as_const(names_)) {
    const QString copy = QString(name).replace(u'/', u'_');
    if (!edited.contains(copy) || before.value(name).failed || before.value(name).events.isEmpty()) continue;
    ++seen;
    const Found was = before.value(name), is = after.value(copy);
    EXPECT_FALSE(is.failed) << qPrintable(name);
    EXPECT_EQ(is.count, was.count) << qPrintable(name);
    QList<QStringList> gone = was.events, come = is.events;
    for (const QStringList& event : was.events) come.removeOne(event);
    for (const QStringList& event : is.events) gone.removeOne(event);
    EXPECT_EQ(gone.size(), 1) << qPrintable(name);
    EXPECT_EQ(come.size(), 1) << qPrintable(name);
    if (gone.size() != 1 || come.size() != 1) continue;
    EXPECT_EQ(come[0][3], *change.subject);
    EXPECT_EQ(come[0].mid(0, 3), gone[0].mid(0, 3)) << qPrintable(name);
  }
  EXPECT_GT(seen, 150);
}

TEST_F(CorpusTest, WhatIsBrokenIsNamedByFileAndLineAndStopsNothingElse) {
  for (const QString& name : std::as_const(names_)) {
    SCOPED_TRACE(qPrintable(name));
    const QByteArray all = bytes(name);
    const auto file = calendarFile(name, all);
    for (const Problem& problem : file->problems) {
      EXPECT_EQ(problem.place, name);
      EXPECT_GE(problem.line, 0);
      EXPECT_LE(problem.line, all.count('\n') + all.count('\r') + 1);
      EXPECT_FALSE(problem.text.isEmpty());
    }
    // each event that the bytes announce is there, or something is said about it
    int announced = 0;
    for (const QByteArray& line : QByteArray(all).replace('\r', '\n').split('\n'))
      announced += line.trimmed().toUpper() == "BEGIN:VEVENT";
    if (static_cast<int>(file->events.size()) < announced) {
      EXPECT_FALSE(file->problems.isEmpty());
    }
  }
}
