// A report is killed at every kind of moment, and begun again: no row is lost, none is there twice, no stamp
// is without its row and no row without its stamp. The moments are the statements that reach the database and
// the system calls of every file that is written, up to the compaction that follows. HOURBOOK_SOAK=1 kills
// 199 rows at every one of them.
#include "journalworld.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/support/quickfolder.h"

#include <csignal>
#include <functional>
#include <sys/wait.h>

using namespace hourbook;
using namespace Qt::StringLiterals;
using platform::files::SystemCalls;

namespace {

constexpr int pointsOnAServer = 12;  // which takes its time for each connection

QByteArray eventText(int number) {
  return u"BEGIN:VEVENT\r\nUID:row-%1\r\nDTSTAMP:20240401T000000Z\r\nSUMMARY:Row %1\r\n"
         "DTSTART:20240513T%2%3%4Z\r\nDURATION:PT1H\r\nEND:VEVENT\r\n"_s.arg(number)
             .arg(number / 60, 2, 10, QChar(u'0'))
             .arg(number % 60, 2, 10, QChar(u'0'))
             .arg(u"00"_s)
             .toUtf8();
}

QByteArray calendarText(const QByteArray& events) {
  return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another maker//Calendar 7//EN\r\n" + events +
         "END:VCALENDAR\r\n";
}

void writeFile(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write(bytes), bytes.size());
}

/// A user with a calendar of files, so that a new process finds what the old one left.
class CrashWorld : public tests::ReportingWorld {
 public:
  explicit CrashWorld(bool oneFile, int rows) : oneFile_(oneFile), rows_(rows) {
    reporting->journalFolder = disk_.filePath(u"state/reports"_s);
    path_ = disk_.filePath(oneFile ? u"calendar.ics"_s : u"calendar"_s);
    reset();
  }

  /// Nothing has been reported yet.
  void reset() {
    other()->execute(u"delete from tblReports"_s);
    QByteArray all;
    if (!oneFile_) QDir().mkpath(path_);
    for (int number = 1; number <= rows_; ++number) {
      all += eventText(number);
      if (!oneFile_) writeFile(path_ + u"/row-%1.ics"_s.arg(number), calendarText(eventText(number)));
    }
    if (oneFile_) writeFile(path_, calendarText(all));
  }

  /// As a new process: nothing of the calendar is known yet, and the list shows what is in it.
  void begin() {
    plan->clear();
    shell->gInErrorReport = false;
    database->gConnection.reset();
    auto store = std::make_shared<platform::calendar::IcalendarStore>(
        QList<platform::calendar::IcalendarFolder>{{u"files"_s, u"Calendar"_s, u"Mailbox"_s, path_, false}});
    outlook->gCalendarFolder =
        std::make_shared<platform::outlook::MAPIFolder>(store, store->folders().first());
    subFinishReportsAtStart();
    outlook->gRowItems = {};
    lastRow = 1;
    auto items = outlook->gCalendarFolder->Items();
    items.setIncludeRecurrences(true);
    for (auto item = items.Find(u"[Start] >= \"5/12/2024 00:00\" and [Start] <= \"5/15/2024 23:59\""_s); item;
         item = items.FindNext())
      list(item);
  }

  int unstamped() { return static_cast<int>(statuses().filter(shell->LNGNOTPOSTED).size()); }
  void reportTheRest() {
    if (unstamped() == 0) return;
    expectDone();
    report();
  }

  /// Each row once, and each stamped.
  void expectAllIsWell() {
    QStringList subjects;
    for (const auto& value : stored(u"strSubject"_s)) subjects.append(std::get<QString>(value));
    EXPECT_EQ(subjects.size(), rows_);
    EXPECT_EQ(QSet<QString>(subjects.cbegin(), subjects.cend()).size(), rows_);
    begin();
    EXPECT_EQ(unstamped(), 0);
    EXPECT_EQ(cReportJournal(reporting->journalFolder).Files(), QStringList());
  }

  /// No appointment is stamped whose row is not stored.
  void expectNoStampWithoutARow() {
    QSet<QString> subjects;
    for (const auto& value : stored(u"strSubject"_s)) subjects.insert(std::get<QString>(value));
    for (int row = 2; row <= lastRow; ++row)
      if (platform::basic::Value(sheet.value(row, 7)) != platform::basic::Value(shell->LNGNOTPOSTED)) {
        EXPECT_TRUE(subjects.contains(std::get<QString>(sheet.value(row, 1))));
      }
  }

 private:
  void list(const std::shared_ptr<platform::outlook::AppointmentItem>& item) {
    ++lastRow;
    outlook->gRowItems.Add(item, QString::number(lastRow));
    sheet.Cell(lastRow, 1).setValue(item->Subject());
    const QStringList metas{u"Acme"_s, u"Website"_s, u"Design"_s};
    for (int n = 0; n < 3; ++n) sheet.Cell(lastRow, 2 + n).setValue(metas[n]);
    sheet.Cell(lastRow, 6).setValue(u"1"_s);
    sheet.Cell(lastRow, 7)
        .setValue(item->BillingInformation().isEmpty() ? shell->LNGNOTPOSTED : u"2024-05-15"_s);
  }

  bool oneFile_;
  int rows_;
  QString path_;
  QTemporaryDir disk_{tests::quickFolder(u"crash"_s)};
};

/// Every system call of a save, and every statement, counts; the one of the given number kills the process
/// before it is done. 0: none does.
class Moments {
 public:
  Moments(CrashWorld& world, int fatal) : fatal_(fatal) {
    const SystemCalls real = SystemCalls::ofTheSystem();
    calls_ = real;
    calls_.openat = [this, real](int at, const char* n, int flags, mode_t mode) {
      if (flags & (O_CREAT | O_WRONLY | O_RDWR)) step();
      return real.openat(at, n, flags, mode);
    };
    calls_.write = [this, real](int file, const void* bytes, size_t size) {
      step();
      return real.write(file, bytes, size);
    };
    calls_.fsync = [this, real](int file) {
      step();
      return real.fsync(file);
    };
    calls_.renameat = [this, real](int at, const char* from, const char* to) {
      step();
      return real.renameat(at, from, to);
    };
    calls_.renameatNoReplace = [this, real](int at, const char* from, const char* to) {
      step();
      return real.renameatNoReplace(at, from, to);
    };
    calls_.renameatExchange = [this, real](int at, const char* a, const char* b) {
      step();
      return real.renameatExchange(at, a, b);
    };
    calls_.unlinkat = [this, real](int at, const char* name) {
      step();
      return real.unlinkat(at, name);
    };
    scope_.emplace(calls_);
    world.plan->rules.append({u"compact "_s, 0, -1, false, std::nullopt, [this] { over_ = true; }});
    world.plan->rules.append({{}, 0, -1, false, std::nullopt, [this] { step(); }});
  }
  int count() const { return count_; }

 private:
  void step() {
    if (!over_ && ++count_ == fatal_) ::kill(::getpid(), SIGKILL);
  }
  int fatal_;
  int count_ = 0;
  bool over_ = false;  // the report is done; the database is compacted
  SystemCalls calls_;
  std::optional<platform::files::ScopedSystemCalls> scope_;
};

int momentsOfAReport(bool oneFile, int rows) {
  CrashWorld world(oneFile, rows);
  world.begin();
  int count = 0;
  {
    const Moments moments(world, 0);
    world.reportTheRest();
    count = moments.count();
  }
  world.expectAllIsWell();
  return count;
}

/// Does that in a process that is killed at that moment; false when it has got to its end before.
bool isKilledAt(CrashWorld& world, int moment, const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    int code = 1;
    try {
      const Moments moments(world, moment);
      work();
      code = 0;
    } catch (...) {  // or the tests would go on here as well
    }
    ::_exit(code);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) != 0) << "it has failed";
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

bool reportKilledAt(CrashWorld& world, int moment) {
  return isKilledAt(world, moment, [&] { world.reportTheRest(); });
}

class Killed : public testing::TestWithParam<bool> {};

TEST_P(Killed, AtAnyMomentAReportLosesNoRowAndStoresNoneTwice) {
  const bool thorough = qEnvironmentVariableIntValue("HOURBOOK_SOAK") > 0;
  const int rows = thorough ? 199 : 20;
  const int moments = momentsOfAReport(GetParam(), rows);
  ASSERT_GT(moments, 2 * rows / 2);
  CrashWorld world(GetParam(), rows);
  const int points = thorough ? 100000 : world.road ? pointsOnAServer : 40;
  const int stride = qMax(1, moments / points);
  int finished = 0, killed = 0;
  for (int moment = 1; moment <= moments; moment += stride) {
    SCOPED_TRACE(moment);
    world.reset();
    world.begin();
    killed += reportKilledAt(world, moment);
    world.begin();
    world.expectNoStampWithoutARow();
    finished += world.unstamped() == 0;
    world.reportTheRest();
    world.expectAllIsWell();
    if (HasFailure()) return;
  }
  EXPECT_GT(killed, moments / stride * 9 / 10) << "a file more or less to be made is no matter";
  EXPECT_GT(finished, 0) << "some were killed after their last row";
}

TEST_P(Killed, TheProgramThatFinishesAReportMayBeKilledAsWell) {
  const int rows = 6;
  const int moments = momentsOfAReport(GetParam(), rows);
  CrashWorld world(GetParam(), rows);
  for (int moment = 1; moment <= 12; moment += world.road ? 4 : 1) {
    SCOPED_TRACE(moment);
    world.reset();
    world.begin();
    reportKilledAt(world, moments / 2);
    isKilledAt(world, moment, [] { subFinishReportsAtStart(); });
    world.begin();
    world.expectNoStampWithoutARow();
    world.reportTheRest();
    world.expectAllIsWell();
  }
}

INSTANTIATE_TEST_SUITE_P(Calendars, Killed, testing::Values(false, true),
                         [](const auto& info) { return info.param ? "OneFile" : "ManyFiles"; });

}  // namespace
