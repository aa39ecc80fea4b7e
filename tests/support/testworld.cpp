#include "tests/support/testworld.h"

namespace tests {

using platform::process::CatchingProcess;
using platform::process::EndSignal;

namespace {

TestWorld*& inForce() {
  static TestWorld* world = nullptr;
  return world;
}

int& announcedByMacro() {
  static int count = 0;
  return count;
}

const char* kindName(platform::dialogs::Shown::Kind kind) {
  using Kind = platform::dialogs::Shown::Kind;
  return kind == Kind::MsgBox ? "message box" : kind == Kind::InputBox ? "input box" : "assistant message";
}

}  // namespace

TestWorld::TestWorld()
    : dialogsScope_(dialogs), processScope_(process), registryScope_(registry), componentsScope_(components) {
  EXPECT_EQ(inForce(), nullptr) << "A test has one world.";
  inForce() = this;
  announcedByMacro() = 0;
  process.folder = folder_.path();
  dialogs.onUnexpected = [](const platform::dialogs::Shown& box) {
    ADD_FAILURE() << "An unexpected " << kindName(box.kind) << " \"" << qUtf8Printable(box.title)
                  << "\": " << qUtf8Printable(box.text);
  };
  setLocale(QStringLiteral("en_US"));
  setTime(QDateTime(QDate(2024, 5, 15), QTime(10, 0)));
}

TestWorld::~TestWorld() {
  inForce() = nullptr;
  for (const QString& part : dialogs.outstanding())
    ADD_FAILURE() << "A scripted answer was never asked for: " << qUtf8Printable(part);
  EXPECT_EQ(process.ends, announcedEnds_ + announcedByMacro())
      << "Ends of the process that were not announced, "
         "or announced ends that did not come.";
}

void TestWorld::setLocale(const QString& name) {
  localeScope_.reset();
  localeScope_.emplace(name);
}

void TestWorld::setTime(const QDateTime& local, const QByteArray& zoneId) {
  clockScope_.reset();
  clock = std::make_shared<platform::basic::FixedClock>(local, zoneId);
  clockScope_.emplace(clock);
}

bool endsProcess(const std::function<void()>& statement) {
  auto* process = dynamic_cast<CatchingProcess*>(&platform::process::Process::current());
  const int before = process ? process->ends : 0;
  bool caught = false;
  try {
    statement();
  } catch (const EndSignal&) {
    caught = true;
  }
  const int ended = process ? process->ends - before : 0;
  announcedByMacro() += ended;
  return caught || ended > 0;
}

}  // namespace tests
