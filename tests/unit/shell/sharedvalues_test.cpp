#include "shell/Tolerate.h"
#include "tests/unit/shell/shellworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::Failure;

TEST(SharedValues, UseBeforeTheyAreMadeIsAnObjectThatIsNotSet) {
  try {
    shellValues();
    FAIL() << "nothing was thrown";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number(), 91);
    EXPECT_EQ(failure.description(), u"Object variable or With block variable not set"_s);
  }
}

TEST(SharedValues, AScopePutsFreshValuesInForceAndTheOldOnesBack) {
  const Shared<ShellValues>::Scope outer;
  shellValues().gListSeparator = u";"_s;
  {
    const Shared<ShellValues>::Scope inner;
    EXPECT_EQ(shellValues().gListSeparator, QString());
  }
  EXPECT_EQ(shellValues().gListSeparator, u";"_s);
}

TEST(Tolerate, HandsOutWhatItCaughtAndNothingWhenAllWentWell) {
  EXPECT_FALSE(tolerate([] {}).has_value());
  const auto caught = tolerate([] { throw Failure(13, u"Type mismatch"_s); });
  ASSERT_TRUE(caught.has_value());
  EXPECT_EQ(caught->number(), 13);
}

TEST(Tolerate, LetsAnEndOfTheProcessThrough) {
  EXPECT_THROW(tolerate([] { throw platform::process::EndSignal(); }), platform::process::EndSignal);
}

}  // namespace hourbook::tests
