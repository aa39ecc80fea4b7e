#include "platform/calendar/icalendar/index/indexfile.h"
#include "platform/calendar/icalendar/index/indexlock.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QDir>
#include <QFile>

#include <atomic>
#include <barrier>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Several programs, and several calendars of one program, that want the same index at the same time.
using namespace index_tests;
using namespace platform::calendar::icalendar::index;

namespace {

constexpr unsigned secondsForAChild = 240;  // then it hangs

}  // namespace

class Sharing : public IndexTest {
 protected:
  void fill(quint32 seed) {
    Chance chance(seed);
    for (int i = 0; i < 60; ++i)
      write(path(u"%1.ics"_qs.arg(i)),
            i % 30 == 0 ? someCalendar(chance, 220) : someCalendar(chance, 2, true));
  }
  static QStringList seenBy(EventSource& source) {
    QStringList lines;
    for (const int month : {0, 30, 60}) {
      const QDate day = QDate(2020, 1, 1).addMonths(month);
      lines += shownBy(source, day, day.addDays(40));
    }
    for (const Problem& problem : source.problems()) lines.append(problem.place + problem.text);
    return lines;
  }
  QStringList expected() const {
    FileCache plain(folder(), u"Test"_qs);
    return seenBy(plain);
  }
  /// As somebody does who empties his cache.
  void emptyCache() const {
    QDir all(cache());
    for (const QString& name : all.entryList(QDir::Files | QDir::Hidden)) all.remove(name);
  }
};

TEST_F(Sharing, ProcessesThatMakeTheIndexAtTheSameMomentAllShowWhatIsThere) {
  fill(1);
  const QStringList right = expected();
  int gate[2];
  ASSERT_EQ(::pipe(gate), 0);
  QList<pid_t> children;
  std::fflush(nullptr);
  for (int number = 0; number < 3; ++number) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ::alarm(secondsForAChild);
      ::close(gate[1]);
      char none = 0;
      static_cast<void>(::read(gate[0], &none, 1));  // until all are there
      bool fromIndex = false, same = true;
      for (int round = 0; round < 6 && same; ++round) {
        if (number == 0 && round > 0) emptyCache();
        const auto index = open(folder());
        for (int question = 0; question < 2; ++question) same = same && seenBy(*index) == right;
        fromIndex = fromIndex || index->answeredFromIndex();
      }
      ::_exit(!same ? 1 : fromIndex ? 0 : 2);
    }
    children.append(child);
  }
  ::close(gate[0]);
  ::close(gate[1]);
  bool anyFromIndex = false;
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
    EXPECT_NE(WEXITSTATUS(status), 1) << "wrong rows";
    anyFromIndex = anyFromIndex || WEXITSTATUS(status) == 0;
  }
  EXPECT_TRUE(anyFromIndex);
  EXPECT_EQ(seenBy(*open(folder())), right);
}

TEST_F(Sharing, CalendarsInSeveralThreadsKeepInStepWhileTheIndexIsTakenAwayAndMadeAnew) {
  constexpr int threads = 3;
  fill(2);
  QStringList right = expected();
  std::atomic<int> wrong = 0, served = 0;
  std::barrier step(threads + 1);
  std::vector<std::thread> all;
  const int rounds = 8;
  for (int number = 0; number < threads; ++number)
    all.emplace_back([&] {
      auto index = open(folder());
      for (int round = 0; round < rounds; ++round) {
        step.arrive_and_wait();  // the files are as they are to be
        for (int question = 0; question < 2; ++question)
          if (seenBy(*index) != right) ++wrong;
        if (index->answeredFromIndex()) ++served;
        if (round % 3 == 2) index = open(folder());
        step.arrive_and_wait();
      }
    });
  for (int round = 0; round < rounds; ++round) {
    Chance chance(100 + static_cast<quint32>(round));
    write(path(u"%1.ics"_qs.arg(round)), someCalendar(chance, round % 2 ? 240 : 3, true));
    if (round % 2 == 1) emptyCache();
    right = expected();
    step.arrive_and_wait();
    step.arrive_and_wait();
  }
  for (std::thread& thread : all) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_GT(served, 0);
}

TEST_F(Sharing, AnIndexThatSomebodyUsesIsNeitherReplacedNorTakenAway) {
  fill(3);
  const IndexFile other(cache(), QDir::cleanPath(folder()));
  {
    const auto index = open(folder());
    seenBy(*index);
    ASSERT_EQ(index->indexPath(), other.path());
    EXPECT_FALSE(other.remove());
    bool busy = false;
    try {
      other.make([](Database&) {});
    } catch (const IndexFailure& failure) {
      busy = failure.isBusy();
    }
    EXPECT_TRUE(busy);
    EXPECT_TRUE(QFile::exists(other.path()));
    EXPECT_EQ(seenBy(*index), expected());
    EXPECT_TRUE(index->answeredFromIndex());
  }
  EXPECT_TRUE(other.remove());
  EXPECT_FALSE(QFile::exists(other.path()));
}

TEST_F(Sharing, WhoFindsTheIndexBeingMadeReadsTheFilesMeanwhile) {
  fill(4);
  const QStringList right = expected();
  const auto index = open(folder());
  {
    IndexLock maker(index->indexPath());
    ASSERT_TRUE(QDir().mkpath(cache()));
    ASSERT_EQ(maker.take(IndexLock::Kind::Alone, 0), IndexLock::Result::Had);
    EXPECT_EQ(seenBy(*index), right);
    EXPECT_FALSE(index->answeredFromIndex());
  }
  EXPECT_EQ(seenBy(*index), right);
  const auto next = open(folder());
  EXPECT_EQ(seenBy(*next), right);
  EXPECT_TRUE(next->answeredFromIndex());
}

TEST_F(Sharing, ADamagedIndexThatSomebodyElseUsesIsDoneWithoutForAWhile) {
  fill(5);
  const QStringList right = expected();
  seenBy(*open(folder()));
  const QString path = open(folder())->indexPath();
  IndexLock user(path);
  ASSERT_EQ(user.take(IndexLock::Kind::Shared, 0), IndexLock::Result::Had);
  QByteArray bytes = contentOf(path);
  for (qsizetype at = 2000; at < bytes.size(); at += 4096) bytes[at] = static_cast<char>(~bytes[at]);
  write(path, bytes);
  const auto index = open(folder());
  EXPECT_EQ(seenBy(*index), right);
  EXPECT_FALSE(index->answeredFromIndex());
  EXPECT_EQ(contentOf(path), bytes);
}

TEST_F(Sharing, AnIndexThatIsNotAtItsPlaceAnyMoreIsLetGo) {
  fill(6);
  const auto one = open(folder());
  seenBy(*one);
  emptyCache();
  const auto other = open(folder());
  seenBy(*other);
  EXPECT_EQ(seenBy(*one), expected());
  EXPECT_TRUE(one->answeredFromIndex());
  for (const QFileInfo& held : QDir(u"/proc/self/fd"_qs).entryInfoList(QDir::Files | QDir::System)) {
    char target[4096];
    const ssize_t got = ::readlink(qPrintable(held.filePath()), target, sizeof target);
    const QByteArray name(target, qMax<ssize_t>(0, got));
    EXPECT_FALSE(name.contains(".sqlite") && name.endsWith("(deleted)")) << name.constData();
  }
}
