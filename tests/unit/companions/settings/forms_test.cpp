#include "formcheck.h"
#include "windowhome.h"

#include <QTimer>

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

class Forms : public WindowHome {
 protected:
  QStringList pageNames() {
    QStringList names;
    auto* pages = control<QListWidget>("lstPages");
    for (int i = 0; i < pages->count(); ++i) names.append(pages->item(i)->text());
    return names;
  }
  void check() {
    for (const QString& name : pageNames()) {
      goTo(name);
      picture(name);
      EXPECT_EQ(formFaults(*window).join(u'\n'), QString()) << qPrintable(name);
    }
  }
  /// For who wants to see the pages: in the folder that HOURBOOK_PICTURES names.
  void picture(const QString& name) {
    const QString folder = qEnvironmentVariable("HOURBOOK_PICTURES");
    if (folder.isEmpty()) return;
    const QString title = folder + u'/' + name.toLower().replace(u' ', u'-') + u'-' +
                          QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name());
    QApplication::processEvents();
    window->grab().save(title + u"-light.png"_s);
    QPalette dark(QColor(0x35, 0x35, 0x35));
    dark.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
      dark.setColor(QPalette::Disabled, role, QColor(0x90, 0x90, 0x90));
    QApplication::setPalette(dark);
    QApplication::processEvents();
    window->grab().save(title + u"-dark.png"_s);
    QApplication::setPalette(QPalette());
    QApplication::processEvents();
  }
};

TEST_F(Forms, OfAnEmptyMachineCanBeUsedByKeyboardAndAreNamed) {
  open(true);
  EXPECT_EQ(pageNames().size(), 5);
  check();
}

TEST_F(Forms, FilledInCanBeUsedByKeyboardAndAreNamed) {
  SettingsStore first(config());
  first.save(filledIn(first));
  open(true);
  check();
}

TEST_F(Forms, OfAServerCanBeUsedByKeyboardAndAreNamed) {
  SettingsStore first(config());
  SettingsBuffer buffer = filledIn(first);
  buffer.reportChoice = reportToSqlServer;
  buffer.sqlServer = {u"box"_s, u"Hours"_s, false, u"jane"_s, u"x"_s};
  first.save(buffer);
  open(false, true);
  check();
}

TEST_F(Forms, OfAConnectionTextCanBeUsedByKeyboardAndAreNamed) {
  SettingsStore first(config());
  SettingsBuffer buffer = filledIn(first);
  buffer.reportChoice = reportToSqlServer;
  buffer.serverByText = true;
  buffer.serverText = u"Provider=PostgreSQL;Data Source=db.example.org;Initial Catalog=hours;Password=x"_s;
  first.save(buffer);
  open(false, true);
  check();
}

TEST_F(Forms, ThatAskCanBeUsedByKeyboardAndAreNamed) {
  int answer = -2;
  QStringList faults;
  const auto ask = [&](Qt::Key key) {
    QTimer::singleShot(0, qApp, [&, key] {
      QWidget* box = QApplication::activeModalWidget();
      ASSERT_TRUE(QTest::qWaitForWindowActive(box));
      faults = formFaults(*box);
      box->findChild<QWidget*>(u"cmdAnswer2"_s)->setFocus();
      QTest::keyClick(QApplication::focusWidget(), key);
    });
    answer = desktopQuestions().choice(nullptr, u"Which?"_s, {u"One"_s, u"Other"_s});
  };
  ask(Qt::Key_Space);
  EXPECT_EQ(answer, 1);
  EXPECT_EQ(faults.join(u'\n'), QString());
  ask(Qt::Key_Escape);
  EXPECT_EQ(answer, -1);
}

TEST_F(Forms, WithProblemsInThemCanBeUsedByKeyboardAndAreNamed) {
  open();
  ok();
  check();
}

}  // namespace
}  // namespace hourbook::tests
