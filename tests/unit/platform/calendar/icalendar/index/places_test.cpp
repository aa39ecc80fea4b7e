#include "platform/calendar/icalendar/index/indexfile.h"
#include "tests/support/privatemounts.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QDir>
#include <QFile>

#include <functional>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

// Cache folders in which no index can stand: what is shown is right all the same.
using namespace index_tests;

namespace {

constexpr int stepKb = 8;
constexpr quint32 sizes = 64;
constexpr int skipped = 77;
enum Code {
  FromIndex = 0,
  FromFiles = 1,
  WrongAtFirst = 10,
  WrongBehindAChange = 11,
  WrongAtTheNextStart = 12
};

/// Runs `work` in a process of its own that sees a disk with these options at `folder`; nobody else does, and
/// it is gone with the process.
int onDisk(const QString& folder, const QByteArray& options, const std::function<int()>& work) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(tests::mountsSmallDisk(folder, options) ? work() : skipped);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1000;
}

}  // namespace

class IndexPlaces : public IndexTest {
 protected:
  void SetUp() override {
    IndexTest::SetUp();
    QDir().mkpath(cache());
    Chance chance(17);
    before_ = someCalendar(chance, 2);
    for (int i = 0; i < 8; ++i)
      write(path(u"%1.ics"_qs.arg(i)), i == 0 ? someCalendar(chance, 220) : before_);
    after_ = someCalendar(chance, 60, true);
    expected_ = seen();
    write(path(u"1.ics"_qs), after_);
    expectedAfter_ = seen();
    write(path(u"1.ics"_qs), before_);
  }
  static QStringList seenBy(EventSource& source) {
    QStringList lines;
    for (const int month : {0, 30, 60}) {
      const QDate day = QDate(2020, 1, 1).addMonths(month);
      lines += shownBy(source, day, day.addDays(30));
    }
    for (const Problem& problem : source.problems()) lines.append(problem.place + problem.text);
    return lines;
  }
  QStringList seen() const {
    FileCache plain(folder(), u"Test"_qs);
    return seenBy(plain);
  }
  /// A session with a change in its midst, and the next one.
  int twoSessions() const {
    write(path(u"1.ics"_qs), before_);
    bool fromIndex = false;
    {
      const auto index = open(folder());
      if (seenBy(*index) != expected_) return WrongAtFirst;
      write(path(u"1.ics"_qs), after_);
      if (seenBy(*index) != expectedAfter_) return WrongBehindAChange;
      fromIndex = index->answeredFromIndex();
    }
    const auto next = open(folder());
    if (seenBy(*next) != expectedAfter_) return WrongAtTheNextStart;
    return fromIndex && next->answeredFromIndex() ? FromIndex : FromFiles;
  }
  /// Of a disk with these options: a code that tells that what was shown is right. Where nothing can be
  /// mounted the test is skipped, and nothing comes back.
  std::optional<int> rightCode(const QByteArray& options, const std::function<int()>& work) const {
    const int code = onDisk(cache(), options, work);
    if (code == skipped) {
      [] { GTEST_SKIP() << tests::noMounts; }();
      return std::nullopt;
    }
    EXPECT_LE(code, static_cast<int>(FromFiles));
    return code;
  }

  QByteArray before_, after_;
  QStringList expected_, expectedAfter_;
};

TEST_F(IndexPlaces, ADiskThatFillsUpAtAnyMomentCostsTheIndexAlone) {
  int with = 0, without = 0;
  for (quint32 step = 1; step <= sizes; ++step) {
    SCOPED_TRACE(step * stepKb);
    const QByteArray size = "size=" + QByteArray::number(step * stepKb) + "k";
    const auto code = rightCode(size, [&] { return twoSessions(); });
    if (!code || HasFailure()) return;
    (code == FromIndex ? with : without) += 1;
  }
  std::printf("    %d with an index, %d without\n", with, without);
  EXPECT_GT(with, 0);
  EXPECT_GT(without, 0);
}

TEST_F(IndexPlaces, ADiskOnWhichNoMoreFilesCanBeMadeCostsTheIndexAlone) {
  for (int files = 1; files <= 7; ++files) {
    SCOPED_TRACE(files);
    if (!rightCode("nr_inodes=" + QByteArray::number(files), [&] { return twoSessions(); })) return;
  }
}

TEST_F(IndexPlaces, ADiskThatMayOnlyBeReadCostsTheIndexAlone) {
  for (const bool hasIndex : {false, true}) {
    const auto code = rightCode("size=8m", [&] {
      if (hasIndex) seenBy(*open(folder()));
      if (::mount("none", qPrintable(cache()), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) return skipped;
      return twoSessions();
    });
    if (!code) return;
    EXPECT_EQ(*code, FromFiles);
  }
}

TEST_F(IndexPlaces, ADiskThatBecomesReadOnlyWhileItIsInUseCostsTheIndexAlone) {
  rightCode("size=8m", [&] {
    const auto index = open(folder());
    if (seenBy(*index) != expected_) return int(WrongAtFirst);
    // as a disk does that fails: what is open stays open, and cannot be written to
    if (::mount("none", qPrintable(cache()), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
      if (::umount2(qPrintable(cache()), MNT_DETACH) != 0) return int(skipped);
    write(path(u"1.ics"_qs), after_);
    if (seenBy(*index) != expectedAfter_) return int(WrongBehindAChange);
    return seenBy(*index) == expectedAfter_ ? int(FromFiles) : int(WrongAtTheNextStart);
  });
}

TEST_F(IndexPlaces, AFolderThatCannotBeMadeCostsTheIndexAlone) {
  QFile::link(u"/nowhere/at/all"_qs, cache() + u"-link"_qs);
  write(cache() + u"-file"_qs, "a file");
  for (const QString& place : {u"/proc/none/cache"_qs, u"/dev/null"_qs, u"/dev/null/cache"_qs,
                               cache() + u"-link"_qs, cache() + u"-file"_qs, cache() + u"-file/below"_qs}) {
    SCOPED_TRACE(qPrintable(place));
    IndexOptions odd = options();
    odd.cacheFolder = place;
    IndexedSource index(folder(), u"Test"_qs, odd);
    EXPECT_EQ(seenBy(index), expected_);
    EXPECT_FALSE(index.answeredFromIndex());
    write(path(u"1.ics"_qs), after_);
    EXPECT_EQ(seenBy(index), expectedAfter_);
    write(path(u"1.ics"_qs), before_);
    expectSame(index, folder());
  }
}

TEST_F(IndexPlaces, ACacheFolderThatComesAndGoesIsMadeUseOfWhenItIsThere) {
  const auto index = open(folder());
  EXPECT_EQ(seenBy(*index), expected_);
  QDir(cache()).removeRecursively();
  write(cache(), "a file in its place");
  EXPECT_EQ(seenBy(*index), expected_);
  write(path(u"1.ics"_qs), after_);
  EXPECT_EQ(seenBy(*index), expectedAfter_);
  QFile::remove(cache());
  const auto next = open(folder());
  EXPECT_EQ(seenBy(*next), expectedAfter_);
  EXPECT_TRUE(next->answeredFromIndex());
}
