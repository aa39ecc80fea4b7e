#include "companions/settings/guarded.h"

#include "platform/dialogs/dialogs.h"
#include "settingshome.h"
#include "shell/modErrorReport.h"

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::dialogs::Dialogs;

namespace hourbook::tests {
namespace {

class Guarded : public SettingsHome {};

TEST_F(Guarded, AProcedureThatReportsItsFailureGivesItInstead) {
  subLog(u"The step before"_s);
  try {
    guarded([] { subHandleError(Failure(70, u"Two\r\nlines of it"_s), u"subWrite"_s); });
    ADD_FAILURE() << "It went on.";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number(), 70);
    EXPECT_EQ(failure.description(), u"Two\r\nlines of it"_s);
  }
  EXPECT_TRUE(world.dialogs.shown.isEmpty());
  EXPECT_EQ(world.process.ends, 0);
}

TEST_F(Guarded, TheNextFailureIsGivenLikeTheFirst) {
  for (int i = 1; i <= 2; ++i) {
    try {
      guarded([i] { subHandleError(Failure(i, u"failure %1"_s.arg(i)), u"sub"_s); });
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.description(), u"failure %1"_s.arg(i));
      EXPECT_EQ(failure.number(), i);
    }
  }
}

TEST_F(Guarded, AnEndWithoutAReportNamesTheStep) {
  try {
    guarded([] {
      subLog(u"Looking for something"_s);
      subEndProcess();
    });
    ADD_FAILURE() << "It went on.";
  } catch (const Failure& failure) {
    EXPECT_TRUE(failure.description().contains(u"Looking for something"_s));
  }
}

TEST_F(Guarded, OtherQuestionsAndFailuresPass) {
  world.dialogs.expect(u"Really?"_s, platform::dialogs::vbYes);
  int answer = 0;
  guarded([&] { answer = Dialogs::current().MsgBox(u"Really?"_s, platform::dialogs::vbYesNo, gTitle); });
  EXPECT_EQ(answer, platform::dialogs::vbYes);
  EXPECT_THROW(guarded([] { throw Failure(5, u"plain"_s); }), Failure);
}

}  // namespace
}  // namespace hourbook::tests
