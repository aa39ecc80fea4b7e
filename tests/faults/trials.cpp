#include "tests/faults/trials.h"

#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "tests/support/quickfolder.h"

#include <QBuffer>
#include <QDataStream>
#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {

namespace {

/// As if it had been written long ago: of what was written this very moment some readers make sure twice.
void settle(const QString& path) {
  const timespec past[2] = {{1'700'000'000, 0}, {1'700'000'000, 0}};
  EXPECT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), past, 0), 0);
}

std::shared_ptr<platform::basic::FixedClock> clockOfTrials() {
  return std::make_shared<platform::basic::FixedClock>(QDateTime(QDate(2024, 5, 15), QTime(10, 0)),
                                                       "Europe/Stockholm");
}

/// Comes back with what went wrong; null for success.
QString messageOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const platform::Failure& failure) {
    return failure.description().isEmpty() ? QStringLiteral("(no words)") : failure.description();
  } catch (const std::exception& error) {
    return QStringLiteral("not a Failure: ") + QString::fromLocal8Bit(error.what());
  }
  return {};
}

void work(Saver& saver, const Plan& plan, Then then, QDataStream& out) {
  Trial trial;
  if (plan.first) plan.first();
  arm(plan);
  trial.message = messageOf([&] { saver.save(); });
  disarm();
  trial.succeeded = trial.message.isNull();
  trial.calls = calls();
  trial.struck = struck();
  if (!plan.record.isEmpty()) trial.operations = recorded();
  trial.after = saver.contents();
  trial.names = saver.names();
  if (then == Then::Retry && !trial.succeeded) {
    const QString again = messageOf([&] { saver.save(); });
    trial.retried = again.isNull();
    if (!trial.retried) trial.message += QStringLiteral(" - and again: ") + again;
    trial.afterRetry = saver.contents();
  }
  out << trial.succeeded << trial.message << trial.struck << trial.calls << trial.operations << trial.after
      << trial.names << trial.retried << trial.afterRetry;
}

}  // namespace

Trial tried(Saver& saver, const Plan& plan, Then then, const std::function<void()>& whileStopped) {
  int ends[2];
  EXPECT_EQ(::pipe(ends), 0);
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(ends[0]);
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) {});  // of what fails on purpose
    QByteArray report;
    {
      const platform::basic::ScopedClock clock(clockOfTrials());
      QBuffer buffer(&report);
      buffer.open(QIODevice::WriteOnly);
      QDataStream out(&buffer);
      work(saver, plan, then, out);
    }
    for (qsizetype done = 0; done < report.size();) {
      const ssize_t wrote = ::write(ends[1], report.constData() + done, size_t(report.size() - done));
      if (wrote <= 0) ::_exit(3);
      done += wrote;
    }
    ::_exit(0);
  }
  ::close(ends[1]);
  int status = 0;
  if (plan.effect == Effect::Stop) {
    EXPECT_EQ(::waitpid(child, &status, WUNTRACED), child);
    EXPECT_TRUE(WIFSTOPPED(status));
    whileStopped();
    EXPECT_EQ(::kill(child, SIGCONT), 0);
  }
  QByteArray report;
  char piece[65536];
  for (ssize_t got = 0; (got = ::read(ends[0], piece, sizeof piece)) > 0;) report.append(piece, got);
  ::close(ends[0]);
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  Trial trial;
  trial.killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  if (trial.killed) return trial;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the saver has crashed: " << status;
  QDataStream in(report);
  in >> trial.succeeded >> trial.message >> trial.struck >> trial.calls >> trial.operations >> trial.after >>
      trial.names >> trial.retried >> trial.afterRetry;
  return trial;
}

Course courseOf(Saver& saver) {
  Course course;
  course.before = saver.contents();
  course.names = saver.names();
  const Trial trial = tried(saver, Plan{});
  EXPECT_TRUE(trial.succeeded) << saver.name() << ": " << qPrintable(trial.message);
  course.after = trial.after;
  course.namesAfter = trial.names;
  course.calls = trial.calls;
  EXPECT_NE(course.before, course.after);
  return course;
}

Place::Place(size_t which)
    : Place([which](const QString& folder) { return std::move(savers(folder)[which]); }) {}

Place::Place(const Making& make) {
  QTemporaryDir made(tests::quickFolder(QStringLiteral("faults")));
  made.setAutoRemove(false);
  folder_ = made.path();
  temporary_ = qgetenv("TMPDIR");
  QDir().mkpath(folder_ + QStringLiteral("/temporary"));
  qputenv("TMPDIR", QFile::encodeName(folder_) + "/temporary");
  saver_ = make(folder_);
}

QStringList Place::files() const {
  QStringList found;
  QDirIterator entries(saver_->folder(), QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
  while (entries.hasNext()) found.append(entries.next());
  return found;
}

void Place::renew() {
  if (prepared_.isEmpty()) {
    saver_->prepare();
    for (const QString& path : files()) {
      QFile file(path);
      EXPECT_TRUE(file.open(QIODevice::ReadOnly));
      prepared_.insert(path, file.readAll());
    }
    // What is read once in a process, such as the zones, is read now and so is no call of any trial.
    EXPECT_NO_THROW(saver_->startAgain());
  }
  for (const QString& path : files()) EXPECT_TRUE(QFile::remove(path)) << qPrintable(path);
  for (auto each = prepared_.cbegin(); each != prepared_.cend(); ++each) {
    QFile file(each.key());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(each.value()) == each.value().size());
    file.close();
    settle(each.key());
  }
}

Place::~Place() {
  qputenv("TMPDIR", temporary_);
  QDir(folder_).removeRecursively();
}

size_t saverCount() {
  static const size_t count = [] {
    QTemporaryDir folder;
    return savers(folder.path()).size();
  }();
  return count;
}

std::string text(const Contents& now, const Contents& before, const Contents& after) {
  std::string result;
  QStringList names = now.keys() + before.keys();
  names.removeDuplicates();
  for (const QString& name : names) {
    const QByteArray is = now.value(name, "(missing)");
    if (is == before.value(name)) continue;
    result += qPrintable(name);
    result +=
        is == after.value(name) ? ": new\n" : ": neither old nor new: " + is.left(300).toStdString() + "\n";
  }
  return result.empty() ? "all old" : result;
}

int soak() {
  return qMax(1, qEnvironmentVariableIntValue("HOURBOOK_SOAK"));
}

}  // namespace faults
