#include "companions/settings/connectiontest.h"

#include "companions/settings/buffer.h"
#include "companions/settings/places.h"
#include "companions/settings/texts.h"
#include "platform/ado/connection.h"
#include "platform/automation/components.h"
#include "platform/basic/convert.h"
#include "platform/sql/errors.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

#include <mutex>
#include <thread>

namespace hourbook {

using platform::Failure;
using platform::ado::Connection;
using Answer = ConnectionTest::Answer;

/// Shared by the window's thread and the work's; whoever is the last lets it go.
struct ConnectionTest::Run {
  std::mutex mutex;
  ConnectionTest* waiting = nullptr;
};

ConnectionTest::ConnectionTest(QObject* parent) : QObject(parent) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, [this] {
    constexpr int second = 1000;
    end({false, phrases().LNGCONNECTIONFAILED + u'\n' + texts::noAnswer.arg(patienceMs / second)});
  });
}

ConnectionTest::~ConnectionTest() {
  if (!run_) return;
  const std::lock_guard lock(run_->mutex);
  run_->waiting = nullptr;
}

void ConnectionTest::end(const Answer& answer) {
  timer_.stop();
  {
    const std::lock_guard lock(run_->mutex);
    run_->waiting = nullptr;
  }
  run_.reset();
  Q_EMIT finished(answer.succeeded, answer.text);
}

void ConnectionTest::start(Work work) {
  if (run_) {
    const std::lock_guard lock(run_->mutex);
    run_->waiting = nullptr;
  }
  run_ = std::make_shared<Run>();
  run_->waiting = this;
  timer_.start(patienceMs);
  std::thread([run = run_, work = std::move(work)] {
    const Answer answer = work();
    const std::lock_guard lock(run->mutex);
    if (!run->waiting) return;
    QMetaObject::invokeMethod(
        run->waiting,
        [run, answer] {
          // given up, or another one begun, between the answer and its arrival
          ConnectionTest* waiting = run->waiting;
          if (waiting && waiting->run_ == run) waiting->end(answer);
        },
        Qt::QueuedConnection);
  }).detach();
}

namespace {

QString reasonOf(const Failure& failure, const QString& connectionText) {
  return failure.number() == platform::sql::errors::providerNotFound
             ? noDriverText(providerOf(connectionText))
             : failure.description();
}

}  // namespace

ConnectionTest::Work connectionWork(const QString& connectionText, const QString& databaseFolder) {
  const QString failed = phrases().LNGCONNECTIONFAILED + u'\n';
  const QString succeeded = phrases().LNGCONNECTIONSUCCEEDED + u'\n';
  const auto connection = platform::automation::CreateObject<Connection>(QStringLiteral("ADODB.Connection"));
  return [=]() -> Answer {
    try {
      if (!databaseFolder.isEmpty()) {
        const PlaceLook look = lookAtDatabase(databaseFolder, false);
        if (!look.problem.isEmpty()) return {false, failed + look.problem};
      }
      connection->setConnectionString(connectionText);
      connection->Open();
      const auto result = connection->session().execute(QStringLiteral("select count(*) from tblReports"));
      connection->Close();
      const auto count = result.rows.value(0).value(0);
      return {true, succeeded + texts::testReports.arg(platform::basic::CLng(count))};
    } catch (const Failure& failure) {
      return {false, failed + reasonOf(failure, connectionText)};
    }
  };
}

/// A text without a server never gets as far as one, but it does find out who would have to try.
bool hasDriver(const QString& provider) {
  const auto connection = platform::automation::CreateObject<Connection>(QStringLiteral("ADODB.Connection"));
  connection->setConnectionString(QStringLiteral("Provider=") + provider);
  const auto failure = tolerate([&] { connection->Open(); });
  return !failure || failure->number() != platform::sql::errors::providerNotFound;
}

ConnectionTest::Work newDatabaseWork(const QString& databaseFolder) {
  const QString failed = phrases().LNGCONNECTIONFAILED + u'\n';
  return [=]() -> Answer {
    const PlaceLook look = lookAtDatabase(databaseFolder, true);
    return look.problem.isEmpty() ? Answer{true, texts::notMadeYet} : Answer{false, failed + look.problem};
  };
}

}  // namespace hourbook
