#include "platform/dialogs/scripted.h"

#include "platform/basic/failure.h"

#include <gtest/gtest.h>

using namespace platform::dialogs;

namespace {
const QString title = QStringLiteral("Title");
}

TEST(Dialogs, FailBeforeAnyAreInForce) {
  try {
    Dialogs::current();
    FAIL() << "there are no dialogs";
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.number(), 91);
    EXPECT_EQ(failure.description(), QStringLiteral("Object variable or With block variable not set"));
  }
}

TEST(Dialogs, AreInForceForTheLifeOfTheirScopeAndNest) {
  ScriptedDialogs outer;
  ScriptedDialogs inner;
  const ScopedDialogs outerScope(outer);
  {
    const ScopedDialogs innerScope(inner);
    EXPECT_EQ(&Dialogs::current(), &inner);
  }
  EXPECT_EQ(&Dialogs::current(), &outer);
}

TEST(ScriptedDialogs, AnswerInOrderAndRecordWhatWasShown) {
  ScriptedDialogs dialogs;
  dialogs.expect(QStringLiteral("sure"), vbYes);
  dialogs.expectInput(QStringLiteral("name"), QStringLiteral("Ann"));
  dialogs.expect(QStringLiteral("website"), vbNo);
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("Are you sure?"), vbYesNo + vbQuestion, title), vbYes);
  EXPECT_EQ(dialogs.InputBox(QStringLiteral("Your name:"), title, QStringLiteral("Bob")),
            QStringLiteral("Ann"));
  EXPECT_EQ(
      dialogs.DoAlert(title, QStringLiteral("Go to the website?"), msoAlertButtonYesNo, msoAlertIconQuestion),
      vbNo);
  EXPECT_TRUE(dialogs.outstanding().isEmpty());

  ASSERT_EQ(dialogs.shown.size(), 3);
  EXPECT_EQ(dialogs.shown[0].kind, Shown::Kind::MsgBox);
  EXPECT_EQ(dialogs.shown[0].options, vbYesNo + vbQuestion);
  EXPECT_EQ(dialogs.shown[0].answer, QStringLiteral("Yes"));
  EXPECT_EQ(dialogs.shown[1].kind, Shown::Kind::InputBox);
  EXPECT_EQ(dialogs.shown[1].defaultText, QStringLiteral("Bob"));
  EXPECT_EQ(dialogs.shown[1].answer, QStringLiteral("Ann"));
  EXPECT_EQ(dialogs.shown[2].kind, Shown::Kind::Alert);
  EXPECT_EQ(dialogs.shown[2].title, title);
  EXPECT_EQ(dialogs.shown[2].text, QStringLiteral("Go to the website?"));
  EXPECT_EQ(dialogs.shown[2].icon, msoAlertIconQuestion);
}

TEST(ScriptedDialogs, AnswerAnUnexpectedQuestionAsAClosedBoxAndTell) {
  ScriptedDialogs dialogs;
  QStringList told;
  dialogs.onUnexpected = [&](const Shown& box) { told.append(box.text); };
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("a"), vbYesNo + vbCritical, title), vbNo);
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("b"), vbInformation, title), vbOK);
  EXPECT_EQ(dialogs.DoAlert(title, QStringLiteral("c"), msoAlertButtonYesNo, 0), vbNo);
  EXPECT_EQ(dialogs.DoAlert(title, QStringLiteral("d"), msoAlertButtonOK, 0), vbOK);
  EXPECT_EQ(dialogs.InputBox(QStringLiteral("e"), title, QStringLiteral("default")), QString());
  EXPECT_EQ(told.join(u""), QStringLiteral("abcde"));
}

TEST(ScriptedDialogs, TakeAnotherTextOrKindThanExpectedForUnexpected) {
  ScriptedDialogs dialogs;
  int told = 0;
  dialogs.onUnexpected = [&](const Shown&) { ++told; };
  dialogs.expect(QStringLiteral("first"), vbYes);
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("second"), vbYesNo, title), vbNo);
  EXPECT_EQ(dialogs.InputBox(QStringLiteral("first"), title, {}), QString());
  EXPECT_EQ(told, 2);
  EXPECT_EQ(dialogs.outstanding(), QStringList{QStringLiteral("first")}) << "it may still come";
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("the first"), vbYesNo, title), vbYes);
}
