#include "tests/support/messages.h"

#include <QMutex>

#include <cstdio>
#include <gtest/gtest.h>

namespace tests {

namespace {

// Messages may come from a back end's own threads.
QMutex& mutex() {
  static QMutex only;
  return only;
}

QList<ExpectedWarning*>& announced() {
  static QList<ExpectedWarning*> all;
  return all;
}

/// What the screenless platform plugin says about itself, whatever the code under test does.
bool isPlatformNoise(const QString& text) {
  return text.startsWith(QStringLiteral("This plugin does not support"));
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  const bool bad = type == QtWarningMsg || type == QtCriticalMsg;
  if (bad && (isPlatformNoise(text) || takeAnnounced(text))) return;
  std::fprintf(stderr, "%s\n", qUtf8Printable(qFormatLogMessage(type, context, text)));
  if (bad && ::testing::UnitTest::GetInstance()->current_test_info())
    ADD_FAILURE_AT(context.file ? context.file : "unknown", context.line)
        << "An unannounced message: " << qUtf8Printable(text);
  if (type == QtFatalMsg) std::abort();
}

}  // namespace

bool takeAnnounced(const QString& text) {
  const QMutexLocker lock(&mutex());
  for (ExpectedWarning* warning : announced()) {
    if (!text.contains(warning->part_)) continue;
    ++warning->count_;
    return true;
  }
  return false;
}

ExpectedWarning::ExpectedWarning(QString part, int atLeast) : part_(std::move(part)), atLeast_(atLeast) {
  const QMutexLocker lock(&mutex());
  announced().append(this);
}

ExpectedWarning::~ExpectedWarning() {
  {
    const QMutexLocker lock(&mutex());
    announced().removeOne(this);
  }
  if (count_ < atLeast_)
    ADD_FAILURE() << "The announced message did not come: " << qUtf8Printable(part_) << " (" << count_
                  << " of " << atLeast_ << ")";
}

int ExpectedWarning::count() const {
  const QMutexLocker lock(&mutex());
  return count_;
}

void installMessageHandler() {
  qInstallMessageHandler(handleMessage);
}

}  // namespace tests
