#include "platform/calendar/icalendar/index/indexfile.h"
#include "platform/calendar/icalendar/limits.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

// Changes of others, while the program runs and while it does not.
using namespace index_tests;
using platform::calendar::Look;
using platform::calendar::icalendar::index::Database;
using platform::calendar::icalendar::index::DiskState;
using platform::calendar::icalendar::index::IndexFile;

namespace {

QByteArray item(const QByteArray& uid, const QByteArray& subject, const QByteArray& day = "20200205") {
  return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:" + uid + "\r\nDTSTART:" + day +
         "T100000Z\r\nSUMMARY:" + subject + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

/// What some editor does to a file with events: takes some bytes of it away, or puts an event or a line in.
QByteArray edited(Chance& chance, QByteArray text, int number) {
  const auto somewhere = [&](const QByteArray& mark) {
    QList<qsizetype> places;
    for (qsizetype at = text.indexOf(mark); at >= 0; at = text.indexOf(mark, at + 1)) places.append(at);
    return places.isEmpty() ? qsizetype(-1) : chance.of(places);
  };
  const qsizetype at = somewhere("BEGIN:VEVENT\r\n");
  const qsizetype end = text.indexOf("END:VEVENT\r\n", at);
  if (at < 0) return text;
  switch (chance.below(7)) {
    case 0:
      return text.insert(at, someEvent(chance, number, true));
    case 1:
      return text.remove(at, end + 12 - at);
    case 2:
      return text.insert(end, "X-NOTE:" + QByteArray(chance.below(300), 'n') + "\r\n");
    case 3:
      return text.insert(at, "X-CALENDAR-LINE:new\r\n");
    case 4:
      return text.insert(end, "not a line\r\n");
    case 5:
      return text.insert(at, text.mid(at, end + 12 - at));  // the same event twice
    default:
      return text.insert(somewhere("END:VCALENDAR"), someEvent(chance, number, false));
  }
}

/// No file can be opened as long as it lives; what is open already can be read on.
class NoMoreFiles {
 public:
  NoMoreFiles() {
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0);
    struct rlimit none = before_;
    none.rlim_cur = 0;
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  }
  ~NoMoreFiles() { ::setrlimit(RLIMIT_NOFILE, &before_); }
  NoMoreFiles(const NoMoreFiles&) = delete;
  NoMoreFiles& operator=(const NoMoreFiles&) = delete;

 private:
  struct rlimit before_ {};
};

/// No thread can be had as long as it lives: each would want more memory than there is.
class NoMoreThreads {
 public:
  NoMoreThreads() {
    pthread_attr_t attributes;
    EXPECT_EQ(::pthread_getattr_default_np(&attributes), 0);
    EXPECT_EQ(::pthread_attr_getstacksize(&attributes, &before_), 0);
    setSize(size_t{1} << 47);  // more than there are addresses, however much may be promised
    ::pthread_attr_destroy(&attributes);
  }
  ~NoMoreThreads() { setSize(before_); }
  NoMoreThreads(const NoMoreThreads&) = delete;
  NoMoreThreads& operator=(const NoMoreThreads&) = delete;

 private:
  static void setSize(size_t bytes) {
    pthread_attr_t attributes;
    EXPECT_EQ(::pthread_getattr_default_np(&attributes), 0);
    EXPECT_EQ(::pthread_attr_setstacksize(&attributes, bytes), 0);
    EXPECT_EQ(::pthread_setattr_default_np(&attributes), 0);
    ::pthread_attr_destroy(&attributes);
  }
  size_t before_ = 0;
};

}  // namespace

class KeepingStep : public IndexTest {
 protected:
  /// What reading everything shows in the month of the items above.
  void expectMonth(IndexedSource& index, const QString& calendar) {
    FileCache plain(calendar, u"Test"_qs);
    EXPECT_EQ(shownBy(index, QDate(2020, 2, 1), QDate(2020, 3, 1)),
              shownBy(plain, QDate(2020, 2, 1), QDate(2020, 3, 1)));
  }
  void fill(int files) {
    for (int i = 0; i < files; ++i) {
      write(path(u"%1.ics"_qs.arg(i)),
            item("u" + QByteArray::number(i), "one", i % 2 ? "20200205" : "20230301"));
      makeOld(path(u"%1.ics"_qs.arg(i)));
    }
    makeOld(folder());
  }
  std::unique_ptr<IndexedSource> openWith(IndexOptions with, const QString& calendar) {
    return std::make_unique<IndexedSource>(calendar, u"Test"_qs, with);
  }
};

TEST_F(KeepingStep, ChangesOfFilesAreSeenAtTheNextQuestion) {
  write(path(u"a.ics"_qs), item("a", "one"));
  const auto index = open(folder());
  EXPECT_EQ(allShownBy(*index).size(), 1);
  const QString tag = index->changeTag();
  EXPECT_EQ(index->changeTag(), tag);
  write(path(u"a.ics"_qs), item("a", "two"));  // of the same size, and maybe of the same time
  EXPECT_NE(index->changeTag(), tag);
  expectSame(*index, folder());
  write(path(u"b.ics"_qs), item("b", "three"));
  expectSame(*index, folder());
  QFile::rename(path(u"a.ics"_qs), path(u"c.ics"_qs));
  expectSame(*index, folder());
  QFile::remove(path(u"b.ics"_qs));
  expectSame(*index, folder());
  write(path(u"c.ics"_qs), "no calendar\r\n");
  expectSame(*index, folder());
  EXPECT_TRUE(index->answeredFromIndex());
}

TEST_F(KeepingStep, AnyEditOfALargeFileIsSeenAndOnlyWhatItTouchedIsLookedThroughAgain) {
  for (quint32 seed = 1; seed <= many(2); ++seed) {
    Chance chance(seed);
    QByteArray text = someCalendar(chance, 620, seed % 2 == 0);
    write(file(), text);
    const auto index = open(file());
    expectMonth(*index, file());
    for (int step = 0; step < 9; ++step) {
      SCOPED_TRACE(QStringLiteral("seed %1 step %2").arg(seed).arg(step).toStdString());
      for (int i = chance.below(3); i >= 0; --i) text = edited(chance, text, 1000 + 10 * step + i);
      write(file(), text);
      FileCache plain(file(), u"Test"_qs);
      EXPECT_EQ(allShownBy(*index), allShownBy(plain));
      expectMonth(*index, file());
      EXPECT_TRUE(index->answeredFromIndex());
    }
    expectSame(*index, file());
    expectSame(*open(file()), file());
  }
}

TEST_F(KeepingStep, WhatChangedWhileTheProgramDidNotRunIsSeenByTheSecondQuestionAtTheLatest) {
  fill(40);
  expectMonth(*open(folder()), folder());
  // edits in place, of which the folder's own time tells nothing
  write(path(u"2.ics"_qs), item("u2", "moved into the month"));
  write(path(u"3.ics"_qs), item("u3", "moved out of it", "20230404"));
  const auto index = open(folder());
  const QString tag = index->changeTag();
  const QStringList first = shownBy(*index, QDate(2020, 2, 1), QDate(2020, 3, 1));
  expectMonth(*index, folder());
  if (first != shownBy(*index, QDate(2020, 2, 1), QDate(2020, 3, 1))) {
    EXPECT_NE(index->changeTag(), tag);
  }
  EXPECT_TRUE(index->answeredFromIndex());
}

TEST_F(KeepingStep, WhereTheFolderIsNotAsItWasTheFirstAnswerWaitsForALookAtItsFiles) {
  fill(40);
  expectMonth(*open(folder()), folder());
  write(path(u"2.ics"_qs), item("u2", "moved into the month"));
  write(path(u"new.ics"_qs), item("new", "new"));
  IndexOptions patient = options();
  patient.firstAnswerMs = 60'000;
  expectMonth(*openWith(patient, folder()), folder());
}

TEST_F(KeepingStep, WhoAsksOnceOfAFolderThatIsAsItWasDoesNotWaitForALookAtEveryFile) {
  fill(40);
  {
    const auto index = open(folder());
    expectMonth(*index, folder());
    expectMonth(*index, folder());
  }
  write(path(u"2.ics"_qs), item("u2", "moved into the month"));
  const auto index = open(folder());
  EXPECT_EQ(shownBy(*index, QDate(2020, 2, 1), QDate(2020, 3, 1)).filter(u"2.ics u2"_qs).size(), 0);
  EXPECT_TRUE(index->answeredFromIndex());
  expectMonth(*index, folder());
}

TEST_F(KeepingStep, WhatIsWrittenInPlaceBetweenTheFirstTwoQuestionsIsSeen) {
  for (const QString& calendar : {folder(), file()}) {
    fill(4);
    write(file(), item("u", "one"));  // young: its times prove nothing
    expectMonth(*open(calendar), calendar);
    const auto index = open(calendar);
    expectMonth(*index, calendar);
    const QString name = calendar == file() ? file() : path(u"1.ics"_qs);
    const DiskState was = platform::calendar::icalendar::index::stateOf(name);
    write(name, item(calendar == file() ? "u" : "u1", "two"));
    const struct timespec time { was.mtimeNs / 1'000'000'000, was.mtimeNs % 1'000'000'000 };
    const struct timespec times[2] = {time, time};
    ASSERT_EQ(::utimensat(AT_FDCWD, qPrintable(name), times, 0), 0);
    expectMonth(*index, calendar);
  }
}

namespace {

/// By a copy that keeps times, or a clock that went wrong.
void dateAhead(const QString& path) {
  const struct timespec times[2] = {{4'000'000'000, 0}, {4'000'000'000, 123}};  // in 2096
  ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

}  // namespace

TEST_F(KeepingStep, FilesDatedAheadAreShownAsTheyAreHoweverTheyAreChanged) {
  IndexOptions deaf = options();
  deaf.watches = false;
  deaf.checkEveryMs = 0;
  fill(20);
  for (int i = 0; i < 20; ++i) dateAhead(path(u"%1.ics"_qs.arg(i)));
  dateAhead(folder());
  write(file(), item("u1", "zero"));
  dateAhead(file());
  for (const QString& calendar : {folder(), file()}) {
    const QString name = calendar == file() ? file() : path(u"1.ics"_qs);
    std::vector<std::unique_ptr<EventSource>> sources;
    sources.push_back(std::make_unique<FileCache>(calendar, u"Test"_qs));
    sources.push_back(open(calendar));
    sources.push_back(openWith(deaf, calendar));
    const auto expectShown = [&](const QByteArray& subject) {
      for (const auto& source : sources) {
        FileCache plain(calendar, u"Test"_qs);
        const QStringList shown = allShownBy(*source);
        EXPECT_EQ(shown, allShownBy(plain)) << subject.constData();
        EXPECT_EQ(shown, allShownBy(*source)) << subject.constData();
      }
    };
    expectShown("as it was");
    for (const QByteArray subject : {"one ", "two ", "four", "five"}) {
      write(name, item("u1", subject));  // of the same size
      dateAhead(name);
      expectShown(subject);
    }
    write(path(u"x"_qs), item("u1", "six "));  // another file
    dateAhead(path(u"x"_qs));
    ASSERT_EQ(::rename(qPrintable(path(u"x"_qs)), qPrintable(name)), 0);
    expectShown("six ");
    write(name, item("u1", "now "));  // with its true time
    expectShown("now ");
  }
}

TEST_F(KeepingStep, AFileDatedAheadThatStaysAsItIsIsNoNews) {
  fill(10);
  for (int i = 0; i < 10; ++i) dateAhead(path(u"%1.ics"_qs.arg(i)));
  FileCache cache(folder(), u"Test"_qs);
  const auto index = open(folder());
  for (EventSource* source : {static_cast<EventSource*>(&cache), static_cast<EventSource*>(index.get())}) {
    const auto groups = source->between(0, std::numeric_limits<qint64>::max());
    const QString tag = source->changeTag(), others = source->othersTag(Look::Thorough);
    for (int i = 0; i < 3; ++i) {
      const auto again = source->between(0, std::numeric_limits<qint64>::max());
      ASSERT_EQ(again.size(), groups.size());
      EXPECT_EQ(source->changeTag(), tag);
      EXPECT_EQ(source->othersTag(Look::Thorough), others);
    }
  }
}

TEST(Settled, IsAFileThatWasWrittenLongAgoWhateverDateItBears) {
  using platform::calendar::icalendar::isSettled;
  constexpr qint64 second = 1'000'000'000, now = 1'700'000'000 * second, year = 31'536'000 * second;
  EXPECT_TRUE(isSettled(now, now - 3 * second, now));
  EXPECT_FALSE(isSettled(now, now - second, now - second));
  EXPECT_FALSE(isSettled(now, now - second, now - year)) << "of a time that is past the time itself decides";
  EXPECT_TRUE(isSettled(now, now + year, now - 3 * second));
  EXPECT_FALSE(isSettled(now, now + year, now - second));
  EXPECT_FALSE(isSettled(now, now + year, now + year))
      << "by a clock that is ahead, and may stand still there";
  EXPECT_FALSE(isSettled(now, now + year, 0)) << "where nothing is known of the last change";
}

TEST_F(KeepingStep, WhoFindsNothingOfASubjectHasLookedAtEveryFile) {
  fill(40);
  {
    const auto index = open(folder());
    expectMonth(*index, folder());
    expectMonth(*index, folder());
  }
  write(path(u"2.ics"_qs), item("u2", "The settings"));
  EXPECT_EQ(open(folder())->withSubject(u"The settings"_qs).size(), 1);
}

TEST_F(KeepingStep, AGlanceTellsOfOthersSoonAndOfNothingElse) {
  fill(40);
  expectMonth(*open(folder()), folder());
  write(path(u"2.ics"_qs), item("u2", "moved into the month"));
  const auto index = open(folder());
  index->othersTag(Look::Glance);
  QString tag = index->othersTag(Look::Thorough);
  expectMonth(*index, folder());
  EXPECT_EQ(index->othersTag(Look::Glance), tag);
  const auto expectTold = [&](const char* what) {
    EXPECT_NE(index->othersTag(Look::Glance), tag) << what << ": what the system tells is known at once";
    tag = index->othersTag(Look::Thorough);
    EXPECT_EQ(index->othersTag(Look::Glance), tag) << what;
  };
  write(path(u"3.ics"_qs), item("u3", "in place"));
  expectTold("written");
  write(path(u"new.ics"_qs), item("new", "new"));
  expectTold("new");
  QFile::remove(path(u"new.ics"_qs));
  expectTold("removed");
  QFile::rename(path(u"3.ics"_qs), path(u"moved.ics"_qs));
  expectTold("renamed");
}

TEST_F(KeepingStep, WhereTheSystemTellsNothingAGlanceNeverLooksAtTheFilesItself) {
  IndexOptions deaf = options();
  deaf.watches = false;
  deaf.checkEveryMs = 0;
  fill(40);
  write(file(), item("u", "one"));
  makeOld(file());
  for (const QString& calendar : {folder(), file()}) {
    const auto index = openWith(deaf, calendar);
    expectMonth(*index, calendar);
    expectMonth(*index, calendar);
    while (index->othersTag(Look::Glance).isEmpty()) std::this_thread::yield();
    const QString tag = index->othersTag(Look::Thorough);
    write(calendar == file() ? file() : path(u"3.ics"_qs), item("u3", "in place"));
    EXPECT_EQ(index->othersTag(Look::Glance), tag) << "whoever looks here and now sees another file";
    while (index->othersTag(Look::Glance) == tag) std::this_thread::yield();
    expectMonth(*index, calendar);
  }
}

TEST_F(KeepingStep, ASecondQuestionForASubjectWaitsForTheWholeCheck) {
  fill(400);
  expectMonth(*open(folder()), folder());
  write(path(u"2.ics"_qs), item("u2", "written meanwhile"));
  IndexOptions hasty = options();
  hasty.firstAnswerMs = 0;
  const auto index = openWith(hasty, folder());
  index->withSubject(u"written meanwhile"_qs);
  EXPECT_EQ(index->withSubject(u"written meanwhile"_qs).size(), 1);
}

TEST_F(KeepingStep, AnEventThatIsShownIsNeverAnOldOne) {
  fill(10);
  expectMonth(*open(folder()), folder());
  write(path(u"1.ics"_qs), item("u1", "edited in place"));
  IndexOptions hasty = options();
  hasty.firstAnswerMs = 0;
  expectMonth(*openWith(hasty, folder()), folder());
}

TEST_F(KeepingStep, FilesThatCameAndWentWhileTheProgramDidNotRunAreSeenByTheFirstQuestion) {
  fill(10);
  expectMonth(*open(folder()), folder());
  QFile::remove(path(u"1.ics"_qs));
  write(path(u"new.ics"_qs), item("new", "new"));
  IndexOptions patient = options();
  patient.firstAnswerMs = 60'000;
  expectMonth(*openWith(patient, folder()), folder());
}

TEST_F(KeepingStep, AFileReplacedByOneOfTheSameSizeAndTimeIsSeen) {
  fill(4);
  write(file(), item("u", "one"));
  makeOld(file());
  expectMonth(*open(folder()), folder());
  expectMonth(*open(file()), file());
  write(path(u"x"_qs), item("u1", "two"));
  makeOld(path(u"x"_qs));
  ASSERT_EQ(::rename(qPrintable(path(u"x"_qs)), qPrintable(path(u"1.ics"_qs))), 0);
  write(file(), item("u", "two"));
  makeOld(file());
  makeOld(folder());
  expectMonth(*open(folder()), folder());
  expectMonth(*open(file()), file());
}

TEST_F(KeepingStep, WithoutWordFromTheSystemEveryFileIsLookedAt) {
  fill(10);
  IndexOptions deaf = options();
  deaf.watches = false;
  deaf.checkEveryMs = 0;
  const auto index = openWith(deaf, folder());
  expectMonth(*index, folder());
  const QString tag = index->changeTag();
  write(path(u"1.ics"_qs), item("u1", "two"));
  EXPECT_NE(index->changeTag(), tag);
  expectMonth(*index, folder());
  write(path(u"1.ics"_qs), item("u1", "six"));  // at once, of the same size
  expectMonth(*index, folder());
  QFile::remove(path(u"3.ics"_qs));
  expectMonth(*index, folder());
  EXPECT_TRUE(index->answeredFromIndex());
}

TEST_F(KeepingStep, MoreChangesThanTheSystemCanTellAreFoundAllTheSame) {
  fill(6);
  const auto index = open(folder());
  expectMonth(*index, folder());
  for (int i = 0; i < 9000; ++i)
    for (const char* name : {"1.ics", "3.ics"}) {
      const int number = ::open(qPrintable(path(QLatin1String(name))), O_WRONLY | O_CLOEXEC);
      ASSERT_EQ(::pwrite(number, "B", 1, 0), 1);
      ::close(number);
    }
  write(path(u"5.ics"_qs), item("u5", "behind the flood"));
  expectMonth(*index, folder());
}

TEST_F(KeepingStep, FilesThatHaveAnotherNameElsewhereAreLookedAtEachTime) {
  const QString elsewhere = file() + u".elsewhere"_qs;
  write(elsewhere, item("a", "one"));
  write(elsewhere + u'2', item("b", "one"));
  QFile::link(elsewhere, path(u"a.ics"_qs));
  ASSERT_EQ(::link(qPrintable(QString(elsewhere + u'2')), qPrintable(path(u"b.ics"_qs))), 0);
  const auto index = open(folder());
  expectMonth(*index, folder());
  write(elsewhere, item("a", "another text"));
  write(elsewhere + u'2', item("b", "another text"));
  expectMonth(*index, folder());
  QFile::remove(elsewhere);
  expectSame(*index, folder());
}

TEST_F(KeepingStep, AFolderThatIsTakenAwayAndComesBackIsReadAnew) {
  fill(5);
  const auto index = open(folder());
  expectMonth(*index, folder());
  QDir().rename(folder(), folder() + u"-old"_qs);
  try {
    shownBy(*index, QDate(2020, 2, 1), QDate(2020, 3, 1));
    FAIL() << "a missing folder showed something";
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.number(), platform::calendar::errNotFound);
    EXPECT_TRUE(failure.description().contains(u"does not exist"_qs)) << qPrintable(failure.description());
  }
  QDir().mkpath(folder());
  write(path(u"other.ics"_qs), item("other", "other"));
  expectMonth(*index, folder());
  EXPECT_TRUE(index->answeredFromIndex());
}

TEST_F(KeepingStep, AFileThatBecomesAFolderIsReadAsOne) {
  write(file(), item("a", "one"));
  const auto index = open(file());
  expectMonth(*index, file());
  QFile::remove(file());
  EXPECT_THROW(shownBy(*index, QDate(2020, 2, 1), QDate(2020, 3, 1)), platform::Failure);
  QDir().mkpath(file());
  write(file() + u"/b.ics"_qs, item("b", "in a folder"));
  expectMonth(*index, file());
}

TEST_F(KeepingStep, TwoProgramsShareAnIndex) {
  fill(20);
  const auto one = open(folder());
  expectMonth(*one, folder());
  const auto other = open(folder());
  expectMonth(*other, folder());
  for (int i = 0; i < 6; ++i) {
    write(path(u"%1.ics"_qs.arg(i)), item("u" + QByteArray::number(i), "round " + QByteArray::number(i)));
    IndexedSource& first = i % 2 ? *one : *other;
    expectMonth(first, folder());
    expectMonth(i % 2 ? *other : *one, folder());
    EXPECT_TRUE(first.answeredFromIndex());
  }
}

TEST_F(KeepingStep, AnEndInTheMidstOfACheckWaitsForIt) {
  fill(200);
  expectMonth(*open(folder()), folder());
  for (int i = 0; i < 20; ++i) {
    const auto index = open(folder());
    index->changeTag();
  }
  expectMonth(*open(folder()), folder());
}

TEST_F(KeepingStep, AReadThatFailsOnceHidesNothingForGood) {
  fill(4);
  const auto index = open(folder());
  expectMonth(*index, folder());
  write(path(u"1.ics"_qs), item("u1", "edited"));
  makeOld(path(u"1.ics"_qs));
  {
    const NoMoreFiles none;
    EXPECT_EQ(index->problems().size(), 1);
    const QString tag = index->changeTag();
    EXPECT_EQ(index->problems().size(), 1);
    EXPECT_EQ(index->changeTag(), tag) << "what cannot be read still was told as a change";
  }
  EXPECT_TRUE(index->answeredFromIndex());
  const auto next = open(folder());
  expectMonth(*next, folder());
  EXPECT_TRUE(next->problems().isEmpty());
  expectMonth(*index, folder());
  EXPECT_TRUE(index->problems().isEmpty());
}

TEST_F(KeepingStep, AFileThatCouldNotBeReadOnceIsReadByTheNextQuestionWithoutAnIndex) {
  write(path(u"a.ics"_qs), item("a", "one"));
  makeOld(path(u"a.ics"_qs));
  FileCache plain(folder(), u"Test"_qs);
  ASSERT_EQ(::rename(qPrintable(path(u"a.ics"_qs)), qPrintable(folder() + u".kept"_qs)), 0);
  ASSERT_EQ(::symlink(qPrintable(path(u"a.ics"_qs)), qPrintable(path(u"a.ics"_qs))), 0);  // to itself
  EXPECT_EQ(plain.problems().size(), 1);
  EXPECT_EQ(plain.countUpTo(9), 0);
  ASSERT_EQ(::rename(qPrintable(folder() + u".kept"_qs), qPrintable(path(u"a.ics"_qs))), 0);
  EXPECT_TRUE(plain.problems().isEmpty());
  EXPECT_EQ(plain.countUpTo(9), 1);
}

TEST_F(KeepingStep, WhatChangedWhileAnotherProgramHeldTheIndexIsSeenBehindThat) {
  fill(6);
  makeOld(folder());
  const auto index = open(folder());
  expectMonth(*index, folder());
  {
    Database other(index->indexPath(), IndexFile(cache(), folder()).identity(), Database::Access::ReadWrite);
    other.script("BEGIN IMMEDIATE");
    write(path(u"1.ics"_qs), item("u1", "edited"));
    write(path(u"2.ics"_qs), item("u2", "moved into the month"));
    expectMonth(*index, folder());
    EXPECT_FALSE(index->answeredFromIndex());
    other.script("ROLLBACK");
  }
  expectMonth(*index, folder());
  EXPECT_TRUE(index->answeredFromIndex());
}

TEST_F(KeepingStep, WhereNoThreadCanBeHadTheFilesAreLookedAtAllTheSame) {
  fill(40);
  expectMonth(*open(folder()), folder());
  write(path(u"2.ics"_qs), item("u2", "moved into the month"));
  write(path(u"3.ics"_qs), item("u3", "moved out of it", "20230404"));
  {
    const NoMoreThreads none;
    EXPECT_THROW(std::thread([] {}).join(), std::system_error);
    const auto index = open(folder());
    index->othersTag(Look::Glance);
    expectMonth(*index, folder());
    EXPECT_TRUE(index->answeredFromIndex());
    expectSame(*index, folder());
  }
  expectMonth(*open(folder()), folder());
}

TEST_F(KeepingStep, WhatWasLostBehindAFloodOfNewsIsNotTakenForSure) {
  fill(6);
  write(path(u"2.ics"_qs), item("u2", "out", "20230301"));
  const auto index = open(folder());
  expectMonth(*index, folder());
  for (int i = 0; i < 20'000; ++i) {
    const int number = ::open(qPrintable(path(i % 2 == 0 ? u"1.ics"_qs : u"3.ics"_qs)), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(::pwrite(number, "B", 1, 0), 1);
    ::close(number);
  }
  write(path(u"2.ics"_qs), item("u2", "new", "20200206"));
  {  // as it is where the clock of the files did not go on between the two
    Database other(index->indexPath(), IndexFile(cache(), folder()).identity(), Database::Access::ReadWrite);
    other.run("UPDATE file SET settled = 0, stamp = ? WHERE name = '2.ics'",
              platform::calendar::icalendar::index::stateOf(path(u"2.ics"_qs)).stamp);
  }
  expectMonth(*index, folder());
  EXPECT_TRUE(index->answeredFromIndex());
}

TEST_F(KeepingStep, AFileWrittenAgainWithinOneStepOfACoarseClockIsSeen) {
  using platform::calendar::icalendar::index::stateOf;
  constexpr qint64 second = 1'000'000'000;
  const auto now = [] {
    return qint64{std::chrono::system_clock::now().time_since_epoch() / std::chrono::nanoseconds(1)};
  };
  // the clock of the files stands still between the two writes, as where it counts in steps of two seconds
  const auto writeAt = [&](const QString& file, const QByteArray& bytes, qint64 moment) {
    write(file, bytes);
    const struct timespec time { static_cast<time_t>(moment / second), static_cast<long>(moment % second) };
    const struct timespec times[2] = {time, time};
    ASSERT_EQ(::utimensat(AT_FDCWD, qPrintable(file), times, 0), 0);
  };
  const auto stampIs = [&](const IndexedSource& index, const QString& calendar, const QString& name) {
    Database other(index.indexPath(), IndexFile(cache(), calendar).identity(), Database::Access::ReadWrite);
    other.run("UPDATE file SET stamp = ? WHERE name = ?", stateOf(path(name)).stamp, name);
  };
  fill(4);
  IndexOptions deaf = options();
  deaf.watches = false;
  deaf.checkEveryMs = 0;
  for (const bool again : {false, true}) {
    SCOPED_TRACE(again ? "another start" : "the same source");
    FileCache plain(folder(), u"Test"_qs);
    auto index = openWith(deaf, folder());
    qint64 moment = 0;
    do {  // both must have looked while the file was young, however slow the machine is
      moment = now() - 3 * second / 10;
      writeAt(path(u"2.ics"_qs), item("u2", "one", "20230301"), moment);
      expectMonth(*index, folder());
      plain.countUpTo(1);
    } while (now() - moment >= 2 * second);
    writeAt(path(u"2.ics"_qs), item("u2", "two", "20200206"), moment);
    stampIs(*index, folder(), u"2.ics"_qs);
    if (again) index = openWith(deaf, folder());
    expectMonth(*index, folder());
    EXPECT_TRUE(index->answeredFromIndex());
    const QStringList seen = shownBy(plain, QDate(2020, 2, 1), QDate(2020, 3, 1));
    EXPECT_EQ(seen.filter(u"u2"_qs).size(), 1) << "without an index";
  }
}

TEST_F(KeepingStep, FilesThatWereYoungAreNotAskedAboutForEver) {
  fill(30);
  expectMonth(*open(folder()), folder());
  const auto index = open(folder());
  expectMonth(*index, folder());
  Database other(index->indexPath(), IndexFile(cache(), folder()).identity(), Database::Access::ReadWrite);
  other.script("UPDATE file SET settled = 0");
  expectMonth(*index, folder());
  EXPECT_EQ(other.number("SELECT count(*) FROM file WHERE settled = 0"), 0);
}
