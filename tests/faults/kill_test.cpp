// The process is killed before every call of every save, and in the middle of every write.
#include "tests/faults/trials.h"

#include <gtest/gtest.h>

namespace faults {
namespace {

struct KilledSave : testing::TestWithParam<size_t> {};

TEST_P(KilledSave, LeavesTheOldStateOrTheNewAndNothingBesideItAfterTheNextSave) {
  Place place(GetParam());
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  int old = 0, done = 0;
  for (const Effect effect : {Effect::Kill, Effect::KillHalf}) {
    for (int at = 0; at < course.calls.size(); ++at) {
      const QByteArray& call = course.calls[at];
      if (effect == Effect::KillHalf && !call.startsWith("write") && !call.startsWith("pwrite") &&
          call != "copy_file_range")
        continue;
      place.renew();
      SCOPED_TRACE(testing::Message()
                   << saver.name() << ", killed " << (effect == Effect::Kill ? "before" : "within")
                   << " call " << at << ", " << call.constData());
      const Trial trial = tried(saver, Plan{effect, at, 0, {}});
      if (saver.isVarying() && !trial.killed) continue;  // it has made fewer calls this time
      ASSERT_TRUE(trial.killed);
      const Contents now = saver.contents();
      EXPECT_TRUE(now == course.before || now == course.after ||
                  saver.isBetween(now, course.before, course.after))
          << text(now, course.before, course.after);
      (now == course.before ? old : done) += 1;
      saver.age();
      ASSERT_NO_THROW(saver.startAgain());
      const QStringList names = saver.names();
      EXPECT_TRUE(names == course.names || names.size() == course.namesAfter.size())
          << qPrintable(names.join(u", "));
      EXPECT_TRUE(saver.litter().isEmpty()) << qPrintable(saver.litter().join(u", "));
    }
  }
  EXPECT_GT(old, 0);
  EXPECT_GT(done, 0);
  RecordProperty("points", old + done);
  std::printf("    %d points\n", old + done);
}

INSTANTIATE_TEST_SUITE_P(EverySaver, KilledSave, testing::Range(size_t{0}, saverCount()));

}  // namespace
}  // namespace faults
