#pragma once
#include "app/components.h"
#include "companions/settings/common/commonpage.h"
#include "companions/settings/connectiontest.h"
#include "companions/settings/settingswindow.h"
#include "companions/settings/texts.h"
#include "database/DatabaseValues.h"
#include "database/forms/modDatabaseForms.h"
#include "journey.h"
#include "outlook/OutlookValues.h"
#include "platform/registry/ini/inifile.h"
#include "settings/SettingsValues.h"
#include "shell/modAPI.h"
#include "shell/modLanguage.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QTest>
#include <QTimer>

namespace tests {

using namespace Qt::StringLiterals;
using namespace hourbook;

/// The settings program as its main() sets it up, used by keys alone.
class Settings {
 public:
  explicit Settings(const Journey& journey) : store_(journey.configuration()) {
    registerComponents(components_, {});
    LoadLanguages(fncGetlocalLanguage());
    shellValues().gListSeparator = fncGetListSeparator();
    SettingsQuestions questions;
    questions.folder = [this](QWidget*, const QString&, const QString&) { return folderAnswer; };
    questions.databaseForms = subUseDatabaseForms;
    window_ = std::make_unique<SettingsWindow>(
        store_, questions, hasDriver,
        [](std::function<ReportPlace()> place) { return makeCommonSettingsPage(std::move(place)); });
    window_->show();
    window_->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  }

  void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QWidget* focused = QApplication::focusWidget();
    QTest::keyClick(focused ? focused : window_.get(), key, modifiers);
  }
  void nextPage() { key(Qt::Key_PageDown, Qt::ControlModifier); }
  void tabTo(const char* name) {
    constexpr int most = 200;
    const auto focused = [] {
      return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
    };
    for (int i = 0; i < most && focused() != QLatin1String(name); ++i) key(Qt::Key_Tab);
    EXPECT_EQ(focused(), QLatin1String(name));
  }
  void type(const char* field, const QString& text) {
    tabTo(field);
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_Delete);
    QTest::keyClicks(QApplication::focusWidget(), text);
  }
  void press(const char* name) {
    tabTo(name);
    key(Qt::Key_Space);
  }
  /// As soon as a dialog of this name is in front, `act` does in it what the user does.
  static void whenShown(const QString& dialog, const std::function<void()>& act) {
    auto* look = new QTimer(qApp);
    QObject::connect(look, &QTimer::timeout, look, [look, dialog, act] {
      QWidget* box = QApplication::activeModalWidget();
      if (!box || box->objectName() != dialog || !box->isActiveWindow()) return;
      look->deleteLater();
      look->stop();
      act();
      if (!box->isVisible()) return;
      ADD_FAILURE() << qPrintable(dialog) << " is still open";
      box->close();
    });
    look->start(0);
  }
  /// Presses a button that shows dialogs; behind them the window comes to the front again, as a desktop has
  /// it.
  void pressForDialogs(const char* name) {
    press(name);
    window_->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
  }
  QString text(const char* label) const {
    return window_->findChild<QLabel*>(QString::fromLatin1(label))->text();
  }
  bool isOpen() const { return window_->isVisible(); }
  QString problem() const { return window_->findChild<QLabel*>(u"lblProblem"_s)->text(); }

  QString folderAnswer;

 private:
  platform::automation::Components components_;
  platform::automation::ScopedComponents componentsInForce_{components_};
  Shared<ShellValues>::Scope shell_;
  Shared<OutlookValues>::Scope outlook_;
  Shared<DatabaseValues>::Scope database_;
  Shared<SettingsValues>::Scope settings_;
  SettingsStore store_;
  std::unique_ptr<SettingsWindow> window_;
};

/// A calendar with one marked appointment, and nothing else.
inline void empty(Journey& j) {
  for (const QString& folder : {j.calendar(), j.configuration(), j.folder() + u"/database"_s})
    ASSERT_TRUE(QDir(folder).removeRecursively());
  ASSERT_TRUE(QDir().mkpath(j.calendar()));
  j.add(u"visit"_s, {u"Visit at the customer's"_s, u"20240514T090000"_s, 90, {u"Acme"_s, u"Support"_s}});
}

/// Up to the page of the target.
inline void chooseCalendar(const Journey& j, Settings& settings) {
  settings.type("txtPersonName", u"Jane Doe"_s);
  settings.folderAnswer = j.calendar();
  settings.press("cmdAddFolder");
  settings.nextPage();
}

/// From the page of the target on to the end.
inline void chooseListsAndSave(Settings& settings) {
  settings.nextPage();
  settings.tabTo("cmbCostCarrier");
  settings.key(Qt::Key_Down);  // each person's own rate
  for (const QString& value : {u"Acme"_s, u"Support"_s}) {
    settings.tabTo("tabSectionsBar");
    settings.key(Qt::Key_Right);
    settings.type("txtNewValue", value);
    settings.key(Qt::Key_Return);
  }
  settings.nextPage();  // which begins with the common lists
  settings.type("txtPersonalRate", u"450.5"_s);
  settings.press("cmdOK");
  EXPECT_FALSE(settings.isOpen()) << qPrintable(settings.problem());
}

}  // namespace tests
