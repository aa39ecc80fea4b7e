#include "windowhome.h"

#include "companions/settings/common/commonpage.h"

namespace hourbook::tests {

void WindowHome::open(bool withCommon, bool hasServerDriver) {
  SettingsQuestions questions;
  const auto path = [this](QWidget*, const QString& title, const QString&) {
    answers.asked.append(title);
    EXPECT_FALSE(answers.paths.isEmpty()) << qPrintable(title);
    return answers.paths.isEmpty() ? QString() : answers.paths.takeFirst();
  };
  questions.folder = path;
  questions.calendarFile = path;
  questions.choice = [this](QWidget*, const QString& text, const QStringList&) {
    answers.asked.append(text);
    EXPECT_FALSE(answers.choices.isEmpty()) << qPrintable(text);
    return answers.choices.isEmpty() ? -1 : answers.choices.takeFirst();
  };
  questions.databaseForms = databaseForms;
  store = std::make_unique<SettingsStore>(config());
  SettingsWindow::CommonPage common;
  if (withCommon)
    common = [](std::function<ReportPlace()> place) { return makeCommonSettingsPage(std::move(place)); };
  window = std::make_unique<SettingsWindow>(
      *store, questions, [hasServerDriver](const QString&) { return hasServerDriver; }, common);
  window->show();
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
}

void WindowHome::pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QWidget* target = QApplication::focusWidget();
  QTest::keyClick(target ? target : window.get(), key, modifiers);
}

void WindowHome::goTo(const QString& wanted) {
  auto* pages = control<QListWidget>("lstPages");
  for (int i = 0; i < pages->count() && page() != wanted; ++i) pressKey(Qt::Key_PageUp, Qt::ControlModifier);
  for (int i = 0; i < pages->count() && page() != wanted; ++i)
    pressKey(Qt::Key_PageDown, Qt::ControlModifier);
  ASSERT_EQ(page(), wanted);
}

void WindowHome::tabTo(const char* name) {
  constexpr int most = 200;
  for (int i = 0; i < most && focused() != QLatin1String(name); ++i) pressKey(Qt::Key_Tab);
  ASSERT_EQ(focused(), QLatin1String(name)) << "Tab does not lead there";
}

void WindowHome::type(const char* field, const QString& text) {
  tabTo(field);
  QWidget* edit = QApplication::focusWidget();
  QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(edit, Qt::Key_Delete);
  QTest::keyClicks(edit, text);
}

void WindowHome::press(const char* name) {
  tabTo(name);
  pressKey(Qt::Key_Space);
}

}  // namespace hourbook::tests
