#include "platform/basic/failure.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <QDir>
#include <QFile>

using namespace icalendar_tests;
using namespace platform::calendar;

/// A calendar that had many events and shows none.
class EmptiedTest : public IcalendarTest {
 protected:
  EmptiedTest() {
    QFile::remove(onePath());
    start();
  }
  void start() {
    IcalendarSafety safety;
    safety.stateFolder = state;
    safety.mayWriteEmptied = [this](const QString& text) {
      asked.append(text);
      return answer;
    };
    store = std::make_unique<IcalendarStore>(
        QList<IcalendarFolder>{{u"cal"_qs, u"Work"_qs, u"Mailbox"_qs, path(QString()).chopped(1), false},
                               {u"one"_qs, u"Archive"_qs, u"Mailbox"_qs, onePath(), false}},
        QString(), safety);
  }
  void fill(int count) {
    for (int i = 0; i < count; ++i)
      write(QString::number(i) + u".ics"_qs,
            calendar(event({"UID:" + QByteArray::number(i), "DTSTART:20240205T080000Z"})));
  }
  void emptyByAnother() {
    for (const QString& name : fileNames()) ASSERT_TRUE(QFile::remove(path(name)));
  }
  qint32 add() {
    Change change;
    change.subject = u"New"_qs;
    change.start = moment(u"2024-02-05 09:00"_qs);
    try {
      store->save(folder, {}, {}, change);
    } catch (const platform::Failure& failure) {
      text = failure.description();
      return failure.number();
    }
    return 0;
  }

  QTemporaryDir state_;
  QString state = state_.path() + u"/hourbook"_qs;
  QStringList asked;
  bool answer = false;
  QString text;
};

TEST_F(EmptiedTest, IsNotWrittenToUntilThatIsConfirmed) {
  fill(21);
  EXPECT_EQ(plain().size(), 21);
  emptyByAnother();
  EXPECT_EQ(add(), errSuddenlyEmpty);
  EXPECT_EQ(
      text,
      u"Calendar \"Work\": \"%1\" had more than 20 appointments and shows none now. Nothing was written to it."_qs
          .arg(path(QString()).chopped(1)));
  EXPECT_EQ(
      asked,
      QStringList{u"\"%1\" had more than 20 appointments and shows none now. May it be written to?"_qs.arg(
          path(QString()).chopped(1))});
  EXPECT_TRUE(fileNames().isEmpty());
  answer = true;
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(asked.size(), 2) << "the answer holds";
}

TEST_F(EmptiedTest, IsKnownAfterAStartOfTheProgramToo) {
  fill(21);
  plain();
  emptyByAnother();
  start();
  EXPECT_EQ(add(), errSuddenlyEmpty);
  start();
  answer = true;
  EXPECT_EQ(add(), 0);
  emptyByAnother();
  start();
  answer = false;
  EXPECT_EQ(add(), 0) << "it had one appointment only";
}

TEST_F(EmptiedTest, IsKnownUntilTheEndOfTheProgramWithoutAStateFolder) {
  state.clear();
  start();
  fill(21);
  plain();
  emptyByAnother();
  EXPECT_EQ(add(), errSuddenlyEmpty);
  start();
  EXPECT_EQ(add(), 0);
}

TEST_F(EmptiedTest, IsNothingOddWithTwentyOrFewer) {
  fill(20);
  plain();
  emptyByAnother();
  EXPECT_EQ(add(), 0);
  EXPECT_TRUE(asked.isEmpty());
}

TEST_F(EmptiedTest, IsNothingOddWhenItBecameSmallBefore) {
  fill(30);
  plain();
  for (int i = 5; i < 30; ++i) QFile::remove(path(QString::number(i) + u".ics"_qs));
  start();
  const Item item = plain().value(0);
  store->remove(folder, item.key, item.tag);
  emptyByAnother();
  start();
  EXPECT_EQ(add(), 0);
}

TEST_F(EmptiedTest, ByThisProgramItselfAsksNothing) {
  fill(22);
  for (int i = 22; i > 0; --i) {
    const Item item = plain().value(0);
    store->remove(folder, item.key, item.tag);
  }
  EXPECT_EQ(add(), 0);
  EXPECT_TRUE(asked.isEmpty());
}

TEST_F(EmptiedTest, HoldsForACalendarInOneFileAndWhileHolding) {
  folder = u"one"_qs;
  QByteArray events;
  for (int i = 0; i < 25; ++i)
    events += event({"UID:" + QByteArray::number(i), "DTSTART:20240205T080000Z", "SUMMARY:Meeting"});
  writeOne(calendar(events));
  EXPECT_EQ(plain().size(), 25);
  writeOne("");
  EXPECT_EQ(add(), errSuddenlyEmpty);
  store->hold();
  EXPECT_EQ(add(), errSuddenlyEmpty);
  EXPECT_TRUE(store->flush().isEmpty());
  EXPECT_EQ(readOne(), "");
}

TEST_F(EmptiedTest, WhileChangesAreHeldKeepsThemOutOfTheFile) {
  folder = u"one"_qs;
  QByteArray events;
  for (int i = 0; i < 25; ++i)
    events += event({"UID:" + QByteArray::number(i), "DTSTART:20240205T080000Z", "SUMMARY:Meeting"});
  writeOne(calendar(events));
  store->hold();
  Change change;
  change.subject = u"Mine"_qs;
  save(plain().value(0), change);
  writeOne("");
  ASSERT_EQ(store->flush().size(), 1);
  EXPECT_EQ(readOne(), "");
}

/// A calendar file so large that a copy of it is kept before it is first changed.
class CopyTest : public EmptiedTest {
 protected:
  CopyTest() {
    folder = u"one"_qs;
    writeOne(bytes);
  }
  void change(const QString& subject) {
    Change change;
    change.subject = subject;
    save(plain().value(0), change);
  }
  QStringList copies() const {
    return QDir(state + u"/backups"_qs).entryList(QDir::Files | QDir::Hidden, QDir::Name);
  }
  QByteArray copy(int number) const {
    QFile file(state + u"/backups/"_qs + copies().value(number));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }
  const QByteArray bytes =
      calendar(event({"UID:1", "DTSTART:20240205T080000Z", "SUMMARY:Old"}) +
               event({"UID:2", "DTSTART:20240206T080000Z", "DESCRIPTION:" + QByteArray(600'000, 'x')}) +
               event({"UID:3", "DTSTART:20240207T080000Z", "DESCRIPTION:" + QByteArray(600'000, 'x')}));
};

TEST_F(CopyTest, IsKeptOnceASessionAndForItsOwnerOnly) {
  change(u"First"_qs);
  change(u"Second"_qs);
  ASSERT_EQ(copies().size(), 1);
  EXPECT_EQ(copy(0), bytes);
  const QFile::Permissions others =
      QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
  EXPECT_FALSE(QFile::permissions(state + u"/backups/"_qs + copies().value(0)) & others);
  start();
  change(u"Third"_qs);
  ASSERT_EQ(copies().size(), 2);
  EXPECT_TRUE(copy(1).contains("SUMMARY:Second"));
  EXPECT_TRUE(problemTexts().isEmpty());
}

TEST_F(CopyTest, IsNotMadeOfASmallFileNorByReading) {
  plain();
  EXPECT_TRUE(copies().isEmpty());
  writeOne(calendar(event({"UID:1", "DTSTART:20240205T080000Z"})));
  change(u"First"_qs);
  EXPECT_TRUE(copies().isEmpty());
}

TEST_F(CopyTest, ThatCannotBeMadeIsNamedAndTheChangeIsStored) {
  ASSERT_TRUE(QDir().mkpath(state_.path()));
  QFile file(state);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  change(u"First"_qs);
  EXPECT_TRUE(readOne().contains("SUMMARY:First"));
  ASSERT_EQ(problemTexts().size(), 1);
  EXPECT_TRUE(problemTexts().value(0).startsWith(u"one.ics:0: No copy was kept of it: "_qs))
      << qPrintable(problemTexts().value(0));
}
