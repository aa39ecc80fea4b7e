#pragma once
#include "platform/automation/components.h"
#include "platform/basic/clock.h"
#include "platform/dialogs/scripted.h"
#include "platform/locale/locale.h"
#include "platform/process/process.h"
#include "platform/registry/memory/memory.h"

#include <QDateTime>
#include <QTemporaryDir>

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace tests {

/// The outside world of one test, in force for the life of the object; one line at the top of a test or a
/// member of its fixture. A question that the test did not script fails it, and so do an answer that nobody
/// asked for and an end of the process that was not announced (EXPECT_ENDS_PROCESS, or expectEnds()).
class TestWorld {
 public:
  TestWorld();
  ~TestWorld();
  TestWorld(const TestWorld&) = delete;
  TestWorld& operator=(const TestWorld&) = delete;

  /// "sv_SE"; at the start it is en_US.
  void setLocale(const QString& name);
  /// A wall-clock time of a zone; at the start it is 2024-05-15 10:00 in Europe/Stockholm. The new clock is
  /// in `clock`, and stands still until advanced.
  void setTime(const QDateTime& local, const QByteArray& zoneId = "Europe/Stockholm");
  /// Announces ends that no EXPECT_ENDS_PROCESS sees, such as one in a timer's event.
  void expectEnds(int count) { announcedEnds_ += count; }
  /// The folder that stands as the program's own; it goes with the object.
  QString programFolder() const { return folder_.path(); }

  platform::dialogs::ScriptedDialogs dialogs;
  platform::process::CatchingProcess process;
  platform::registry::MemoryRegistry registry;
  platform::automation::Components components;
  std::shared_ptr<platform::basic::FixedClock> clock;

 private:
  QTemporaryDir folder_;
  int announcedEnds_ = 0;
  platform::dialogs::ScopedDialogs dialogsScope_;
  platform::process::ScopedProcess processScope_;
  platform::registry::ScopedRegistry registryScope_;
  platform::automation::ScopedComponents componentsScope_;
  std::optional<platform::basic::ScopedClock> clockScope_;
  std::optional<platform::locale::ScopedLocale> localeScope_;
};

/// Runs the statement and tells whether it ended the process, by a signal that came out of it or by one that
/// an event handler's guard took. Such ends count as announced.
bool endsProcess(const std::function<void()>& statement);

}  // namespace tests

/// The statement must end the process; the test goes on behind it.
#define EXPECT_ENDS_PROCESS(...)                                    \
  EXPECT_TRUE(::tests::endsProcess([&]() -> void { __VA_ARGS__; })) \
      << "The process was not ended by: " #__VA_ARGS__
