#include "platform/process/process.h"

#include "platform/process/environment.h"

namespace platform::process {

namespace {

Process*& inForce() {
  static Process* process = nullptr;
  return process;
}

}  // namespace

Process& Process::current() {
  return inForce() ? *inForce() : systemProcess();
}

ScopedProcess::ScopedProcess(Process& process) : previous_(inForce()) {
  inForce() = &process;
}

ScopedProcess::~ScopedProcess() {
  inForce() = previous_;
}

void CatchingProcess::end() {
  ++ends;
  throw EndSignal();
}

bool CatchingProcess::start(const QString& program, const QStringList& arguments, QString* error) {
  if (!startFailure.isEmpty()) {
    if (error) *error = startFailure;
    return false;
  }
  started.append(QStringList{program} + arguments);
  return true;
}

bool CatchingProcess::open(const QString& urlOrPath, QString* error) {
  if (!startFailure.isEmpty()) {
    if (error) *error = startFailure;
    return false;
  }
  opened.append(urlOrPath);
  return true;
}

QString CatchingProcess::expandEnvironment(const QString& text) {
  return expandNames(text, [this](const QString& name) -> std::optional<QString> {
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
      if (it.key().compare(name, Qt::CaseInsensitive) == 0) return it.value();
    return std::nullopt;
  });
}

void guardEvent(const std::function<void()>& work) {
  try {
    work();
  } catch (const EndSignal&) {
    // The process counts as ended; the loop that called the handler runs on until the test leaves it.
  }
}

}  // namespace platform::process
