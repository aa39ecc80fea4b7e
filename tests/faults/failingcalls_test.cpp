// Every call of every save fails, with everything that a disk may answer.
#include "tests/faults/trials.h"

#include <gtest/gtest.h>
#include <system_error>

namespace faults {
namespace {

constexpr int codes[] = {EIO, ENOSPC, EDQUOT, EROFS, EACCES, EINTR, EMFILE};

struct FailingSave : testing::TestWithParam<size_t> {};

TEST_P(FailingSave, DamagesNothingNeverClaimsSuccessNamesThePlaceAndMayBeRepeated) {
  Place place(GetParam());
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  const bool fewer = course.heavy() || saver.isVarying();
  int trials = 0, failed = 0;
  for (int at = 0; at < course.calls.size(); ++at) {
    for (size_t which = 0; which < std::size(codes); ++which) {
      // each call of what costs much fails in one way only, unless somebody has the time
      if (fewer && soak() == 1 && which != size_t(at) % std::size(codes)) continue;
      const int code = codes[which];
      place.renew();
      SCOPED_TRACE(testing::Message()
                   << saver.name() << ", call " << at << ", " << course.calls[at].constData() << ": "
                   << std::generic_category().message(code));
      const Trial trial = tried(saver, Plan{Effect::Fail, at, code, {}}, Then::Retry);
      ++trials;
      if (trial.succeeded) {
        EXPECT_EQ(trial.after, course.after) << text(trial.after, course.before, course.after);
      } else {
        ++failed;
        EXPECT_TRUE(trial.after == course.before || trial.after == course.after ||
                    saver.isBetween(trial.after, course.before, course.after))
            << text(trial.after, course.before, course.after);
        bool named = false;
        for (const QString& each : saver.places()) named = named || trial.message.contains(each);
        EXPECT_TRUE(named) << qPrintable(trial.message);
        EXPECT_FALSE(trial.message.startsWith(u"not a Failure")) << qPrintable(trial.message);
        EXPECT_TRUE(trial.retried) << qPrintable(trial.message);
      }
      EXPECT_TRUE(saver.litter().isEmpty()) << qPrintable(saver.litter().join(u", "));
    }
  }
  std::printf("    %d trials, %d failed saves\n", trials, failed);
  EXPECT_GT(failed, fewer ? 5 : 30);
}

INSTANTIATE_TEST_SUITE_P(EverySaver, FailingSave, testing::Range(size_t{0}, saverCount()));

}  // namespace
}  // namespace faults
