#pragma once
#include "companions/settings/settingswindow.h"
#include "settingshome.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace hourbook::tests {

/// The settings window on a machine, used by keyboard alone.
class WindowHome : public SettingsHome {
 protected:
  /// What the desktop's dialogs are to answer, in order; a question that nobody announced fails the test.
  struct Answers {
    QStringList paths;
    QList<int> choices;
    QStringList asked;
  };

  void open(bool withCommon = false, bool hasServerDriver = false);
  void close() { window.reset(); }

  template <class Widget = QWidget>
  Widget* control(const char* name) {
    auto* found = window->findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << "There is no " << name;
    return found;
  }
  /// By Ctrl+PageDown and Ctrl+PageUp.
  void goTo(const QString& page);
  QString page() { return control<QListWidget>("lstPages")->currentItem()->text(); }
  /// Tab until the control has the focus.
  void tabTo(const char* name);
  /// Replaces what stands in a field.
  void type(const char* field, const QString& text);
  /// Tabs to a button, check box or option and presses the space bar.
  void press(const char* name);
  void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
  /// Tabs to OK and presses it.
  void ok() { press("cmdOK"); }
  QString message(const char* label) {
    auto* found = control<QLabel>(label);
    return found && found->isVisible() ? found->text() : QString();
  }
  QString focused() const {
    return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
  }
  bool isOpen() const { return window && window->isVisible(); }

  Answers answers;
  /// What asks for a database; nobody may, unless a test says so.
  std::function<void(DatabaseValues&)> databaseForms = [](DatabaseValues&) {
    ADD_FAILURE() << "not announced";
  };
  std::unique_ptr<SettingsStore> store;
  std::unique_ptr<SettingsWindow> window;
};

}  // namespace hourbook::tests
