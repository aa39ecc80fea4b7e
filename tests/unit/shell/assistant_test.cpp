#include "platform/calendar/memory/memorystore.h"
#include "platform/outlook/application.h"
#include "shell/modAssistant.h"
#include "shell/modErrorReport.h"
#include "tests/unit/shell/shellworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::Failure;
using platform::outlook::Application;
using namespace platform::dialogs;

namespace {

/// A machine without the assistant.
class NoAssistant : public ScriptedDialogs {
 public:
  int DoAlert(const QString&, const QString&, int, int) override {
    throw Failure(429, u"ActiveX component can't create object"_s);
  }
};

}  // namespace

class Assistant : public ShellWorld {
 protected:
  Assistant() {
    platform::outlook::Profile profile;
    const auto store = std::make_shared<platform::calendar::MemoryStore>();
    profile.openFolder = store->addFolder({{}, u"Calendar"_s, u"Mailbox"_s, true, false});
    profile.stores = {store};
    application = std::make_shared<Application>(profile);
  }
  std::shared_ptr<Application> application;
};

TEST_F(Assistant, AMessageIsShownInTheAssistantsBalloon) {
  world.dialogs.expect(u"Check this!"_s, vbOK);
  fncShowAssistantMessage(application, u"Check this!"_s);
  const Shown& shown = world.dialogs.shown.first();
  EXPECT_EQ(shown.kind, Shown::Kind::Alert);
  EXPECT_EQ(shown.title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_EQ(shown.text, u"Check this!"_s);
  EXPECT_EQ(shown.options, msoAlertButtonOK);
  EXPECT_EQ(shown.icon, msoAlertIconInfo);
  EXPECT_EQ(fncLastLogText(), u"Creating Assistant to display message Check this!"_s);
}

TEST_F(Assistant, AMessageWithoutAnApplicationIsAPlainBox) {
  world.dialogs.expect(u"Check this!"_s, vbOK);
  fncShowAssistantMessage(nullptr, u"Check this!"_s);
  const Shown& shown = world.dialogs.shown.first();
  EXPECT_EQ(shown.kind, Shown::Kind::MsgBox);
  EXPECT_EQ(shown.title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_EQ(shown.options, vbInformation);
}

TEST_F(Assistant, AMessageThatTheAssistantCannotShowIsAPlainBox) {
  NoAssistant dialogs;
  const ScopedDialogs scope(dialogs);
  dialogs.expect(u"Check this!"_s, vbOK);
  fncShowAssistantMessage(application, u"Check this!"_s);
  ASSERT_EQ(dialogs.shown.size(), 1);
  EXPECT_EQ(dialogs.shown.first().options, vbInformation);
}

TEST_F(Assistant, AQuestionGivesTheAnswersCode) {
  world.dialogs.expect(u"Go?"_s, vbYes);
  EXPECT_EQ(fncAskAssistant(application, u"Go?"_s), 6);
  EXPECT_EQ(fncLastLogText(), u"Creating Assistant to display message Go?"_s);
  world.dialogs.expect(u"Go?"_s, vbNo);
  EXPECT_EQ(fncAskAssistant(application, u"Go?"_s), 7);
  const Shown& shown = world.dialogs.shown.first();
  EXPECT_EQ(shown.kind, Shown::Kind::Alert);
  EXPECT_EQ(shown.options, msoAlertButtonYesNo);
  EXPECT_EQ(shown.icon, msoAlertIconQuestion);
}

TEST_F(Assistant, AQuestionWithoutAnApplicationIsAPlainBox) {
  world.dialogs.expect(u"Go?"_s, vbYes);
  EXPECT_EQ(fncAskAssistant(nullptr, u"Go?"_s), 6);
  EXPECT_EQ(world.dialogs.shown.first().kind, Shown::Kind::MsgBox);
  EXPECT_EQ(world.dialogs.shown.first().options, vbYesNo + vbQuestion);
}

TEST_F(Assistant, AQuestionThatTheAssistantCannotAskIsLeftToTheCaller) {
  NoAssistant dialogs;
  const ScopedDialogs scope(dialogs);
  EXPECT_THROW(fncAskAssistant(application, u"Go?"_s), Failure);
}

TEST_F(Assistant, AMessageAndAQuestionBringOutlooksWindowToTheFrontFirst) {
  class Window : public platform::outlook::Explorer {
   public:
    using Explorer::Explorer;
    void Activate() override { ++activations; }
    int activations = 0;
  };
  const auto window = std::make_shared<Window>(nullptr);
  window->active = true;
  application->Explorers().list = {window};
  world.dialogs.expect(u"Check this!"_s, vbOK);
  fncShowAssistantMessage(application, u"Check this!"_s);
  EXPECT_EQ(window->activations, 1);
  world.dialogs.expect(u"Go?"_s, vbYes);
  fncAskAssistant(application, u"Go?"_s);
  EXPECT_EQ(window->activations, 2);
}

TEST_F(Assistant, AWindowThatCannotBeBroughtToTheFrontKeepsNothingFromBeingShown) {
  class Window : public platform::outlook::Explorer {
   public:
    using Explorer::Explorer;
    void Activate() override { throw Failure(5, u"no such window"_s); }
  };
  const auto window = std::make_shared<Window>(nullptr);
  window->active = true;
  application->Explorers().list = {window};
  world.dialogs.expect(u"Check this!"_s, vbOK);
  fncShowAssistantMessage(application, u"Check this!"_s);
  world.dialogs.expect(u"Go?"_s, vbYes);
  EXPECT_EQ(fncAskAssistant(application, u"Go?"_s), 6);
  EXPECT_EQ(world.dialogs.shown.last().kind, Shown::Kind::Alert);
}

}  // namespace hourbook::tests
