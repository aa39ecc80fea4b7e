#include "formcheck.h"
#include "windowhome.h"

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

TEST_F(Forms, WithProblemsInThemCanBeUsedByKeyboardAndAreNamed) {
  open();
  ok();
  check();
}

}  // namespace
}  // namespace hourbook::tests
