#include "bench/generator.h"
#include "bench/pairs.h"
#include "bench/roads.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/calendar/icalendar/index/indexedsource.h"
#include "platform/files/atomicfile.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <fcntl.h>
#include <libical/ical.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// Opening large calendars with an index, and keeping in step with them. HOURBOOK_BENCH_ITEMS gives the
// largest number of items (10000; up to 200000 takes some minutes).
namespace bench {

using namespace Qt::StringLiterals;
using platform::calendar::IcalendarStore;
using platform::calendar::Query;
using platform::calendar::icalendar::IndexedSource;
using platform::calendar::icalendar::IndexOptions;

namespace {

Query week(int weeks = 0) {
  Query query;
  query.zone = QTimeZone("Europe/Stockholm");
  query.startFrom = QDateTime(QDate(2024, 6, 10), QTime(0, 0), query.zone).addDays(7 * weeks);
  query.startTo = query.startFrom.addDays(7);
  query.expandSeries = true;
  return query;
}

/// One calendar of so many items as one file and, where asked for, as a folder, with its index.
class Calendar {
 public:
  explicit Calendar(int items, bool asFolder) {
    if (asFolder)
      folderOfFiles({items}, path());
    else
      platform::files::replaceFile(path(), bigFile({items}));
  }
  QString path() const { return root_.filePath(u"calendar.ics"_s); }
  QString cache() const { return root_.filePath(u"cache"_s); }
  std::unique_ptr<IcalendarStore> open() const {
    return std::make_unique<IcalendarStore>(
        QList<platform::calendar::IcalendarFolder>{{u"bench"_s, u"Bench"_s, u"Bench"_s, path(), true}},
        cache());
  }
  qsizetype openAndAsk() const {
    const qsizetype rows = open()->items(u"bench"_s, week()).size();
    if (rows == 0) qFatal("the week is empty");
    return rows;
  }
  /// Without what closing costs, which nobody waits for: the store is kept.
  void openAndAskOnly(std::vector<std::unique_ptr<IcalendarStore>>& stores) const {
    stores.push_back(open());
    if (stores.back()->items(u"bench"_s, week()).isEmpty()) qFatal("the week is empty");
  }
  void forget() const { QDir(cache()).removeRecursively(); }
  QStringList files() const {
    QStringList files;
    if (QFileInfo(path()).isFile()) return {path()};
    QDirIterator all(path(), QDir::Files);
    while (all.hasNext()) files.append(all.next());
    return files;
  }

 private:
  QTemporaryDir root_;
};

QByteArray contentOf(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
  return file.readAll();
}

void parseWithLibical(const QStringList& files) {
  for (const QString& file : files) icalcomponent_free(icalparser_parse_string(contentOf(file).constData()));
}

QString named(const char* what, int items) {
  return u"%1, %2 items"_s.arg(QLatin1String(what)).arg(items);
}

void measureOneFile(int items) {
  const Calendar calendar(items, false);
  const QStringList files = calendar.files();
  const int rounds = items > 50'000 ? 3 : 7;
  compare(
      named("one file, first opening / libical", items), rounds,
      [&] {
        calendar.forget();
        calendar.openAndAsk();
      },
      [&] { parseWithLibical(files); });
  std::vector<std::unique_ptr<IcalendarStore>> stores;
  compare(
      named("one file, opening with its index / libical", items), rounds,
      [&] { calendar.openAndAskOnly(stores); }, [&] { parseWithLibical(files); });
}

/// The same week over and over, by the row.
double warmRow(int items) {
  const Calendar calendar(items, false);
  const auto store = calendar.open();
  qsizetype rows = 0;
  QElapsedTimer timer;
  for (int i = 0; i < 3; ++i) store->items(u"bench"_s, week(i));
  timer.start();
  for (int i = 0; i < 40; ++i) rows += store->items(u"bench"_s, week(i % 3)).size();
  return static_cast<double>(timer.nsecsElapsed()) / 1e3 / static_cast<double>(rows);
}

void measureWarm(int most) {
  const double small = warmRow(1000), large = warmRow(most);
  std::printf("%-52s %10.2f us   at 1000  %10.2f us   ratio %6.3f\n",
              qPrintable(named("warm question, by the row shown", most)), large, small, large / small);
}

/// Another program's own cache of the same folder, asked for the same week in a process of its own.
class Khal {
 public:
  explicit Khal(const Calendar& calendar) : home_(calendar.cache() + u"-khal"_s) {
    QDir().mkpath(home_);
    platform::files::replaceFile(home_ + u"/config"_s,
                                 u"[calendars]\n[[bench]]\npath = %1\n[locale]\ntimeformat = %H:%M\n"
                                 "dateformat = %Y-%m-%d\nlongdateformat = %Y-%m-%d\ndatetimeformat = "
                                 "%Y-%m-%d %H:%M\nlongdatetimeformat = %Y-%m-%d %H:%M\n[sqlite]\npath = "
                                 "%2/khal.db\n"_s.arg(calendar.path(), home_)
                                     .toUtf8());
  }
  bool isThere() const { return !QStandardPaths::findExecutable(u"khal"_s).isEmpty(); }
  void list() const {
    constexpr int patienceMs = 300'000;
    QProcess process;
    process.start(u"khal"_s, {u"-c"_s, home_ + u"/config"_s, u"list"_s, u"2024-06-10"_s, u"2024-06-16"_s});
    if (!process.waitForFinished(patienceMs) || process.readAllStandardOutput().isEmpty())
      qFatal("khal: %s", process.readAllStandardError().constData());
  }

 private:
  QString home_;
};

/// Our side as a process of its own as well.
void openInAProcess(const Calendar& calendar) {
  constexpr int patienceMs = 300'000;
  QProcess process;
  process.start(QCoreApplication::applicationFilePath(),
                {u"--open-week"_s, calendar.path() + u'\n' + calendar.cache()});
  if (!process.waitForFinished(patienceMs) || process.exitCode() != 0) qFatal("the week is empty");
}

void statAll(const QStringList& files) {
  struct stat found {};
  for (const QString& file : files) ::stat(qPrintable(file), &found);
}

void measureFolder(int items) {
  const Calendar calendar(items, true);
  const QStringList files = calendar.files();
  calendar.openAndAsk();
  // the folder's own time proves nothing while it is young
  const struct timespec old[2] = {{1'500'000'000, 0}, {1'500'000'000, 0}};
  ::utimensat(AT_FDCWD, qPrintable(calendar.path()), old, 0);
  calendar.openAndAsk();
  std::vector<std::unique_ptr<IcalendarStore>> stores;
  compare(
      named("folder, opening with its index / libical", items), 3, [&] { calendar.openAndAskOnly(stores); },
      [&] { parseWithLibical(files); });
  if (const Khal khal(calendar); khal.isThere())
    compare(
        named("folder, process that opens it / khal with its cache", items), 7,
        [&] { openInAProcess(calendar); }, [&] { khal.list(); });
  IndexOptions options;
  options.cacheFolder = calendar.cache();
  options.watches = false;
  options.checkEveryMs = 0;
  IndexedSource deaf(calendar.path(), u"Bench"_s, options);
  deaf.changeTag();
  compare(
      named("folder, all files looked at / stat of each", items), 7, [&] { deaf.changeTag(); },
      [&] { statAll(files); });
}

/// From the change of one file to the next answer.
double oneChange(int items) {
  const Calendar calendar(items, true);
  const auto store = calendar.open();
  const QString changed = calendar.files().first();
  const QByteArray bytes = contentOf(changed);
  store->items(u"bench"_s, week());
  QList<double> times;
  for (int i = 0; i < 15; ++i) {
    QFile file(changed);
    if (!file.open(QIODevice::WriteOnly)) qFatal("cannot write");
    file.write(QByteArray(bytes).replace("SUMMARY:", "SUMMARY:" + QByteArray::number(i)));
    file.close();
    QElapsedTimer timer;
    timer.start();
    store->changeTag(u"bench"_s);
    times.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);
  }
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

void measureOneChange(int most) {
  const double small = oneChange(1000), large = oneChange(most);
  std::printf("%-52s %10.2f ms   at 1000  %10.2f ms   ratio %6.3f\n",
              qPrintable(named("one file changed by another program", most)), large, small, large / small);
}

/// What the process takes more than with a calendar of a few items.
void measureMemory(int most) {
  const auto peak = [](int items) {
    const Calendar calendar(items, false);
    calendar.openAndAsk();
    constexpr int patienceMs = 300'000;
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {u"--open-week"_s, calendar.path() + u'\n' + calendar.cache()});
    if (!process.waitForFinished(patienceMs) || process.exitCode() != 0) qFatal("the week is empty");
    return process.readAllStandardOutput().trimmed().toDouble() / 1024;
  };
  const double small = peak(1000), large = peak(most);
  std::printf("%-52s %10.2f MB   at 1000  %10.2f MB   more %6.1f MB\n",
              qPrintable(named("memory of a process that opens it", most)), large, small, large - small);
}

}  // namespace

bool openedAs(const QStringList& arguments) {
  if (arguments.size() != 3 || arguments[1] != u"--open-week") return false;
  const QStringList places = arguments[2].split(u'\n');
  IcalendarStore store({{u"bench"_s, u"Bench"_s, u"Bench"_s, places.value(0), true}}, places.value(1));
  if (store.items(u"bench"_s, week()).isEmpty()) qFatal("the week is empty");
  // its own peak: that of the system's count of resources begins with the parent's
  for (const QByteArray& line : contentOf(u"/proc/self/status"_s).split('\n'))
    if (line.startsWith("VmHWM:"))
      std::printf("%lld\n", line.mid(6).replace("kB", "").trimmed().toLongLong());
  return true;
}

void measureIndex() {
  const int most = qMax(1000, qEnvironmentVariableIntValue("HOURBOOK_BENCH_ITEMS") > 0
                                  ? qEnvironmentVariableIntValue("HOURBOOK_BENCH_ITEMS")
                                  : 10'000);
  for (int items = 1000; items <= most; items *= items == 10'000 ? 20 : 10) measureOneFile(items);
  measureWarm(most);
  measureFolder(qMin(most, 50'000));
  measureOneChange(qMin(most, 50'000));
  measureMemory(most);
}

}  // namespace bench
