// From a machine on which nothing is set up, through the settings program's window, to the first report.
#include "app/components.h"
#include "companions/settings/common/commonpage.h"
#include "companions/settings/connectiontest.h"
#include "companions/settings/settingswindow.h"
#include "companions/settings/texts.h"
#include "database/DatabaseValues.h"
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

namespace tests {
namespace {

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
void empty(Journey& j) {
  for (const QString& folder : {j.calendar(), j.configuration(), j.folder() + u"/database"_s})
    ASSERT_TRUE(QDir(folder).removeRecursively());
  ASSERT_TRUE(QDir().mkpath(j.calendar()));
  j.add(u"visit"_s, {u"Visit at the customer's"_s, u"20240514T090000"_s, 90, {u"Acme"_s, u"Support"_s}});
}

void setUp(const Journey& j) {
  Settings settings(j);
  settings.type("txtPersonName", u"Jane Doe"_s);
  settings.folderAnswer = j.calendar();
  settings.press("cmdAddFolder");
  settings.nextPage();
  settings.type("txtFolder", j.folder() + u"/database"_s);
  settings.press("chkMakeDatabase");
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

TEST(SettingsJourney, WhoSetsUpANewMachineReportsTheFirstRowAtTheRateTyped) {
  Journey j;
  empty(j);
  setUp(j);
  j.start();
  ASSERT_TRUE(j.hasWindow());
  j.fetch(may(13), may(19));
  ASSERT_EQ(j.rows().size(), 1);
  EXPECT_TRUE(j.rows().first().startsWith(u"Visit at the customer's|Acme|Support"_s))
      << qPrintable(j.rows().first());
  j.reportAndStay();
  EXPECT_EQ(j.sql(u"select strSubject, numHours, curCost, strPersonName from tblReports "
                  "inner join tblPersons on tblReports.intPersonID = tblPersons.intPersonID"_s),
            QStringList{u"Visit at the customer's|1.5|675.75|Jane Doe"_s});
  EXPECT_FALSE(j.event(u"visit"_s).stamp.isEmpty());
}

TEST(SettingsJourney, WhoCancelsLeavesTheMachineAsItWas) {
  Journey j;
  empty(j);
  const auto before = outside::files(j.calendar());
  {
    Settings settings(j);
    EXPECT_TRUE(settings.isOpen());
    settings.key(Qt::Key_Escape);
    EXPECT_FALSE(settings.isOpen());
  }
  EXPECT_EQ(outside::changed(before, outside::files(j.calendar())), QStringList());
  EXPECT_FALSE(QDir(j.configuration()).exists());
}

}  // namespace
}  // namespace tests
