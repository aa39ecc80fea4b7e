#include "companions/console/consoledialogs.h"

namespace companions {
namespace {

using namespace Qt::StringLiterals;
namespace dialogs = platform::dialogs;

TEST(ConsoleDialogs, AnswersAQuestionAsTold) {
  ConsoleDialogs console;
  console.answer(u"sure"_s, dialogs::vbYes);
  EXPECT_EQ(console.MsgBox(u"Are you sure?"_s, dialogs::vbYesNo, u"Title"_s), dialogs::vbYes);
  EXPECT_EQ(console.unforeseen, QStringList());
}

TEST(ConsoleDialogs, AnswersEachQuestionOnce) {
  ConsoleDialogs console;
  console.answer(u"sure"_s, dialogs::vbYes);
  console.MsgBox(u"Are you sure?"_s, dialogs::vbYesNo, {});
  EXPECT_EQ(console.MsgBox(u"Are you sure?"_s, dialogs::vbYesNo, {}), dialogs::vbNo);
  EXPECT_EQ(console.unforeseen, QStringList{u"Are you sure?"_s});
}

TEST(ConsoleDialogs, AnswersNoToWhatNobodyForesawAndNotesIt) {
  ConsoleDialogs console;
  EXPECT_EQ(console.MsgBox(u"Delete everything?"_s, dialogs::vbYesNo + dialogs::vbQuestion, {}),
            dialogs::vbNo);
  EXPECT_EQ(console.DoAlert({}, u"Really?"_s, dialogs::msoAlertButtonYesNo, 0), dialogs::vbNo);
  EXPECT_EQ(console.MsgBox(u"A failure"_s, dialogs::vbCritical, {}), dialogs::vbOK);
  EXPECT_EQ(console.InputBox(u"Which?"_s, {}, u"that"_s), u"that"_s);
  EXPECT_EQ(console.unforeseen,
            (QStringList{u"Delete everything?"_s, u"Really?"_s, u"A failure"_s, u"Which?"_s}));
}

}  // namespace
}  // namespace companions
