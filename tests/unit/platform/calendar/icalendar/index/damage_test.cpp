#include "platform/calendar/icalendar/index/indexfile.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

// Whatever happens to the index file: what is shown stays right, and nobody is told.
using namespace index_tests;
using namespace platform::calendar::icalendar::index;

class Damage : public IndexTest {
 protected:
  void SetUp() override {
    IndexTest::SetUp();
    Chance chance(21);
    for (int i = 0; i < 12; ++i) {
      write(path(u"%1.ics"_qs.arg(i)),
            i == 3 ? someCalendar(chance, 240) : someCalendar(chance, 2, i % 3 == 0));
      makeOld(path(u"%1.ics"_qs.arg(i)));
    }
    makeOld(folder());
    FileCache plain(folder(), u"Test"_qs);
    expected_ = seenBy(plain);
    index_ = open(folder())->indexPath();
    seenBy(*open(folder()));
    whole_ = contentOf(index_);
  }
  static QStringList seenBy(EventSource& source) {
    QStringList lines;
    for (int month = 0; month < 70; month += 12) {
      const QDate day = QDate(2020, 1, 1).addMonths(month);
      lines += shownBy(source, day, day.addDays(20));
    }
    for (const Problem& problem : source.problems()) lines.append(problem.place + problem.text);
    return lines;
  }
  void expectRight() {
    const auto index = open(folder());
    const QStringList seen = seenBy(*index);
    EXPECT_EQ(seen, expected_);
    fromIndex_ = index->answeredFromIndex();
  }
  void put(const QByteArray& bytes) {
    for (const char* tail : {"-wal", "-shm"}) QFile::remove(index_ + QLatin1String(tail));
    write(index_, bytes);
    ASSERT_EQ(::chmod(qPrintable(index_), 0600), 0);
  }

  QStringList expected_;
  QString index_;
  QByteArray whole_;
  bool fromIndex_ = false;
};

TEST_F(Damage, AnUndamagedIndexIsUsedAsItIs) {
  expectRight();
  EXPECT_TRUE(fromIndex_);
  EXPECT_EQ(contentOf(index_), whole_);
}

TEST_F(Damage, TwoHundredKindsOfDamageShowNothingWrong) {
  const quint32 trials = many(200);
  for (quint32 trial = 0; trial < trials; ++trial) {
    SCOPED_TRACE(trial);
    Chance chance(trial);
    QByteArray bytes = whole_;
    const int at = chance.below(static_cast<int>(bytes.size()));
    switch (trial % 8) {
      case 0:  // one bit
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << chance.below(8)));
        break;
      case 1:  // several bytes
        for (int i = 0; i < 30; ++i)
          bytes[chance.below(static_cast<int>(bytes.size()))] = static_cast<char>(chance.below(256));
        break;
      case 2:  // cut
        bytes.truncate(at);
        break;
      case 3:  // a page of nothing
        bytes.replace(at / 4096 * 4096, 4096, QByteArray(4096, '\0'));
        break;
      case 4: {  // two pages changed places
        const int one = at / 4096 * 4096, other = chance.below(static_cast<int>(bytes.size())) / 4096 * 4096;
        const QByteArray page = bytes.mid(one, 4096);
        bytes.replace(one, 4096, bytes.mid(other, 4096));
        bytes.replace(other, 4096, page);
        break;
      }
      case 5:  // something put in
        bytes.insert(at, QByteArray(1 + chance.below(5000), 'x'));
        break;
      case 6:  // a bit in the head
        bytes[at % 100] = static_cast<char>(bytes[at % 100] ^ (1 << chance.below(8)));
        break;
      default:  // longer
        bytes += QByteArray(4096 * (1 + chance.below(3)), static_cast<char>(chance.below(256)));
        break;
    }
    put(bytes);
    expectRight();
    EXPECT_TRUE(fromIndex_);
  }
}

TEST_F(Damage, AnotherCalendarsIndexIsNotBelieved) {
  Chance chance(5);
  write(file(), someCalendar(chance, 400));
  const auto other = open(file());
  seenBy(*other);
  const QByteArray foreign = contentOf(other->indexPath());
  put(foreign);
  expectRight();
  EXPECT_TRUE(fromIndex_);
}

TEST_F(Damage, AnIndexOfAnotherVersionIsMadeAnew) {
  {
    Database database(index_, IndexFile(cache(), folder()).identity(), Database::Access::ReadWrite);
    database.script("PRAGMA user_version = 99; DELETE FROM run; DELETE FROM pack");
  }
  expectRight();
  EXPECT_TRUE(fromIndex_);
}

TEST_F(Damage, AnIndexThatWasNotFinishedIsMadeAnew) {
  {
    Database database(index_, IndexFile(cache(), folder()).identity(), Database::Access::ReadWrite);
    database.script("UPDATE calendar SET complete = 0; DELETE FROM run; DELETE FROM pack");
  }
  expectRight();
}

TEST_F(Damage, TheLogOfAnotherIndexIsNotTakenForItsOwn) {
  Chance chance(6);
  write(file(), someCalendar(chance, 400));
  QByteArray log;
  {
    const auto other = open(file());
    seenBy(*other);
    write(file(), someCalendar(chance, 380));
    seenBy(*other);
    log = contentOf(other->indexPath() + u"-wal"_qs);
  }
  ASSERT_GT(log.size(), 4096);
  put(whole_);
  write(index_ + u"-wal"_qs, log);
  write(index_ + u"-shm"_qs, QByteArray(32768, 'x'));
  expectRight();
  EXPECT_TRUE(fromIndex_);
}

TEST_F(Damage, ALogThatWasCutOrDamagedShowsNothingWrong) {
  QByteArray log, database;
  {
    const auto index = open(folder());
    seenBy(*index);
    write(path(u"new.ics"_qs), contentOf(path(u"1.ics"_qs)));
    seenBy(*index);
    QFile::remove(path(u"new.ics"_qs));
    seenBy(*index);
    log = contentOf(index_ + u"-wal"_qs);
    database = contentOf(index_);
  }
  ASSERT_GT(log.size(), 4096);
  for (quint32 trial = 0; trial < many(20); ++trial) {
    SCOPED_TRACE(trial);
    Chance chance(trial);
    put(database);
    QByteArray bytes = log;
    const int at = chance.below(static_cast<int>(bytes.size()));
    if (chance.oneIn(2))
      bytes.truncate(at);
    else
      bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
    write(index_ + u"-wal"_qs, bytes);
    expectRight();
  }
}

TEST_F(Damage, ALockedIndexIsDoneWithout) {
  {
    Database database(index_, IndexFile(cache(), folder()).identity(), Database::Access::ReadWrite);
    database.script("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; UPDATE calendar SET stamp = 0");
    expectRight();
    EXPECT_FALSE(fromIndex_);
  }
  expectRight();
  EXPECT_TRUE(fromIndex_);
}

TEST_F(Damage, AnIndexThatCannotBeWrittenIsMadeAnew) {
  ASSERT_EQ(::chmod(qPrintable(index_), 0400), 0);
  expectRight();
}

TEST_F(Damage, AnIndexThatOthersMayReadIsMadeAnewForItsOwnerAlone) {
  ASSERT_EQ(::chmod(qPrintable(index_), 0644), 0);
  expectRight();
  struct stat found {};
  ASSERT_EQ(::stat(qPrintable(index_), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0600U);
  ASSERT_EQ(::stat(qPrintable(cache()), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0700U);
}

TEST_F(Damage, WhatStandsInTheIndexesPlaceIsNotFollowed) {
  QFile::remove(index_);
  write(file(), whole_);
  QFile::link(file(), index_);
  expectRight();
  EXPECT_EQ(contentOf(file()), whole_);
  QFile::remove(index_);
  QDir().mkpath(index_ + u"/full"_qs);
  expectRight();
  EXPECT_FALSE(fromIndex_);
}

TEST_F(Damage, WithoutAFolderForItTheCalendarIsReadInFull) {
  QDir(cache()).removeRecursively();
  write(cache(), "a file in its place");
  expectRight();
  EXPECT_FALSE(fromIndex_);
}

TEST_F(Damage, AnIndexThatIsTakenAwayWhileItIsInUseIsMadeAnew) {
  const auto index = open(folder());
  EXPECT_EQ(seenBy(*index), expected_);
  QDir(cache()).removeRecursively();
  EXPECT_EQ(seenBy(*index), expected_);
  Chance chance(77);
  write(path(u"new.ics"_qs), someCalendar(chance, 3));
  FileCache plain(folder(), u"Test"_qs);
  EXPECT_EQ(seenBy(*index), seenBy(plain));
  EXPECT_EQ(seenBy(*open(folder())), seenBy(plain));
}
