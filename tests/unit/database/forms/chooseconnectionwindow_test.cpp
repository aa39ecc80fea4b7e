// The form that asks for the kind of database, as the user sees it.
#include "database/forms/modDatabaseForms.h"
#include "windows.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

class ChooseConnectionWindow : public DatabaseForms {
 protected:
  ChooseConnectionWindow() { form.strSQLScriptFileName = u"CreateDBHB.sql"_s; }
  void show(const std::function<void(QDialog&)>& act) {
    use([this] { subShowChooseConnection(form); }, act);
  }
  frmChooseConnection form;
};

TEST_F(ChooseConnectionWindow, ShowsEachControl) {
  show([](QDialog& window) {
    EXPECT_EQ(window.objectName(), u"frmChooseConnection"_s);
    EXPECT_EQ(window.windowTitle(), u"Database connection"_s);
    EXPECT_EQ(part<QLabel>(window, "lblChooseDB")->text(),
              u"Choose which kind of database connection is to be used for reported data."_s);
    EXPECT_TRUE(part<QRadioButton>(window, "optNewAccessDatabase")->isChecked());
    EXPECT_FALSE(part<QRadioButton>(window, "optCreateSQLDataBase")->isChecked());
    EXPECT_FALSE(part<QRadioButton>(window, "optSelectExistingSQLDB")->isChecked());
    EXPECT_EQ(part<QRadioButton>(window, "optSelectExistingSQLDB")->accessibleName(),
              u"Choose an existing MS SQL database, which has already been created from CreateDBHB.sql"_s);
    EXPECT_TRUE(part<QCheckBox>(window, "chkExampleData")->isVisible());
    EXPECT_TRUE(part<QPushButton>(window, "cmdOK")->isDefault());
    EXPECT_TRUE(window.windowFlags() & Qt::WindowStaysOnTopHint);
    expectLetters(window, 5);
    expectRoom(window);
  });
}

TEST_F(ChooseConnectionWindow, GoesRoundByTab) {
  show([](QDialog& window) {
    part<QRadioButton>(window, "optNewAccessDatabase")->setFocus();
    EXPECT_EQ(tabRound(window), (QStringList{u"optNewAccessDatabase"_s, u"chkExampleData"_s, u"cmdOK"_s}));
  });
}

TEST_F(ChooseConnectionWindow, IsAnsweredWithTheKeyboardAlone) {
  show([](QDialog& window) {
    part<QRadioButton>(window, "optNewAccessDatabase")->setFocus();
    press(window, Qt::Key_Down);
    press(window, Qt::Key_Down);
    EXPECT_TRUE(part<QRadioButton>(window, "optSelectExistingSQLDB")->isChecked());
    press(window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
  });
  EXPECT_EQ(form.intConnectionOption, 3);
}

TEST_F(ChooseConnectionWindow, IsAnsweredByTheLetters) {
  show([](QDialog& window) {
    // a button shows that it is pressed before it acts
    const auto letter = [&](const char* name, const std::function<bool()>& acted) {
      const QKeySequence keys = QKeySequence::mnemonic(part<QAbstractButton>(window, name)->text());
      QTest::keyClick(window.focusWidget(), keys[0].key(), keys[0].keyboardModifiers());
      EXPECT_TRUE(QTest::qWaitFor(acted, 60000)) << name;
    };
    letter("optCreateSQLDataBase",
           [&] { return part<QRadioButton>(window, "optCreateSQLDataBase")->isChecked(); });
    letter("chkExampleData", [&] { return part<QCheckBox>(window, "chkExampleData")->isChecked(); });
    letter("cmdOK", [&] { return !window.isVisible(); });
  });
  EXPECT_EQ(form.intConnectionOption, 2);
  EXPECT_TRUE(form.blnLoadExampleData);
}

TEST_F(ChooseConnectionWindow, EscapeAndTheFrameChooseNothing) {
  for (const auto& act : QList<std::function<void(QDialog&)>>{
           [](QDialog& window) { press(window, Qt::Key_Escape); }, [](QDialog& window) { window.close(); }}) {
    show([&](QDialog& window) {
      act(window);
      EXPECT_FALSE(window.isVisible());
    });
    EXPECT_EQ(form.intConnectionOption, 0);
  }
}

TEST_F(ChooseConnectionWindow, EveryTextFitsInEveryLanguageAndInLargeLetters) {
  const QFont usual = QApplication::font();
  for (const int size : {9, 20}) {
    QFont font = usual;
    font.setPointSize(size);
    QApplication::setFont(font);
    for (qint16 language = 1; language <= lastLanguage; ++language) {
      LoadLanguages(language);
      show([](QDialog& window) {
        expectLetters(window, 5);
        expectRoom(window);
        EXPECT_LE(window.width(), window.screen()->availableGeometry().width());
      });
    }
  }
  QApplication::setFont(usual);
}

TEST_F(ChooseConnectionWindow, LongOptionsStandInSeveralLinesAndAreNamedInOne) {
  QFont font = QApplication::font();
  const QFont usual = font;
  font.setPointSize(20);
  QApplication::setFont(font);
  show([](QDialog& window) {
    const auto* option = part<QRadioButton>(window, "optSelectExistingSQLDB");
    EXPECT_TRUE(option->text().contains(u'\n'));
    EXPECT_FALSE(option->accessibleName().contains(u'\n'));
  });
  QApplication::setFont(usual);
}

TEST_F(ChooseConnectionWindow, IsWhatTheDatabaseCodeShows) {
  EXPECT_FALSE(database->blnMayCreateDatabase);
  subUseDatabaseForms(*database);
  EXPECT_TRUE(database->blnMayCreateDatabase);
  ConnectionChoice choice;
  use([&] { choice = database->frmChooseConnection(u"Some.sql"_s); },
      [](QDialog& window) {
        EXPECT_TRUE(
            part<QRadioButton>(window, "optSelectExistingSQLDB")->accessibleName().endsWith(u"Some.sql"_s));
        EXPECT_TRUE(part<QCheckBox>(window, "chkExampleData")->isVisible());
        expectLetters(window, 5);
        part<QRadioButton>(window, "optCreateSQLDataBase")->click();
        part<QPushButton>(window, "cmdOK")->click();
      });
  EXPECT_EQ(choice.intConnectionOption, 2);
  EXPECT_FALSE(choice.blnLoadExampleData);
}

}  // namespace
}  // namespace hourbook::tests
