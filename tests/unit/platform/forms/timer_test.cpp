#include "platform/basic/failure.h"
#include "platform/forms/controls.h"
#include "platform/process/process.h"
#include "tests/support/testworld.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <QSignalSpy>

using namespace platform::forms;
using namespace Qt::StringLiterals;

namespace {

/// A tick by hand: what the event loop does when the time has come.
void letTick(Timer& timer) {
  QSignalSpy ticks(&timer, &Timer::Tick);
  ASSERT_TRUE(ticks.wait());
}

}  // namespace

TEST(Timer, TicksWhileItIsOnAndHasAnInterval) {
  Timer timer(u"timCheckDateChange"_s);
  timer.setInterval(1);
  timer.setTimerEnabled(true);
  letTick(timer);
  letTick(timer);
}

TEST(Timer, IsQuietWithoutAnIntervalOrSwitchedOff) {
  Timer idle(u"idle"_s), off(u"off"_s), beat(u"beat"_s);
  QSignalSpy ofIdle(&idle, &Timer::Tick), ofOff(&off, &Timer::Tick);
  idle.setTimerEnabled(true);
  off.setInterval(1);
  off.setTimerEnabled(true);
  off.setTimerEnabled(false);
  beat.setInterval(1);
  beat.setTimerEnabled(true);
  for (int i = 0; i < 3; ++i) letTick(beat);
  EXPECT_EQ(ofIdle.count(), 0);
  EXPECT_EQ(ofOff.count(), 0);
}

TEST(Timer, AnIntervalOfNothingStopsIt) {
  Timer timer(u"tim"_s), beat(u"beat"_s);
  timer.setInterval(1);
  timer.setTimerEnabled(true);
  timer.setInterval(0);
  QSignalSpy ticks(&timer, &Timer::Tick);
  beat.setInterval(1);
  beat.setTimerEnabled(true);
  for (int i = 0; i < 3; ++i) letTick(beat);
  EXPECT_EQ(ticks.count(), 0);
  EXPECT_TRUE(timer.TimerEnabled());
}

TEST(Timer, RefusesANegativeInterval) {
  Timer timer(u"tim"_s);
  EXPECT_THROW(timer.setInterval(-1), platform::Failure);
  EXPECT_EQ(timer.Interval(), 0);
}

TEST(Timer, DoesNotTickAgainWhileItsHandlerIsAtWork) {
  Timer timer(u"tim"_s), beat(u"beat"_s);
  timer.setInterval(1);
  beat.setInterval(1);
  beat.setTimerEnabled(true);
  int depth = 0, deepest = 0;
  QObject context;
  QObject::connect(&timer, &Timer::Tick, &context, [&] {
    deepest = std::max(deepest, ++depth);
    for (int i = 0; i < 3; ++i) letTick(beat);  // as a question would, which lets events through
    --depth;
  });
  timer.setTimerEnabled(true);
  letTick(timer);
  EXPECT_EQ(deepest, 1);
  letTick(timer);
}

TEST(Timer, AHandlerMayDestroyIt) {
  QPointer<Timer> timer = new Timer(u"tim"_s);
  Timer beat(u"beat"_s);
  QObject context;
  QObject::connect(timer, &Timer::Tick, &context, [&] { delete timer; });
  timer->setInterval(1);
  timer->setTimerEnabled(true);
  beat.setInterval(1);
  beat.setTimerEnabled(true);
  for (int i = 0; i < 100 && timer; ++i) letTick(beat);
  EXPECT_FALSE(timer);
}

TEST(Timer, AnEndOfTheProcessInItsHandlerStopsAtTheTimer) {
  tests::TestWorld world;
  world.expectEnds(1);
  Timer timer(u"tim"_s);
  QObject context;
  QObject::connect(&timer, &Timer::Tick, &context, [&] {
    timer.setTimerEnabled(false);
    platform::process::Process::current().end();
  });
  Timer beat(u"beat"_s);
  timer.setInterval(1);
  timer.setTimerEnabled(true);
  beat.setInterval(1);
  beat.setTimerEnabled(true);
  for (int i = 0; i < 100 && world.process.ends == 0; ++i) letTick(beat);
  EXPECT_EQ(world.process.ends, 1);
}
