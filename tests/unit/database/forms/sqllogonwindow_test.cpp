// The logon dialog, as the user sees it.
#include "database/forms/modDatabaseForms.h"
#include "windows.h"

#include <QCheckBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

class SQLLogonWindow : public DatabaseForms {
 protected:
  void show(const std::function<void(QDialog&)>& act) {
    use([this] { subShowSQLLogon(form); }, act);
  }
  frmSQLLogon form;
};

TEST_F(SQLLogonWindow, ShowsEachControl) {
  show([](QDialog& window) {
    EXPECT_EQ(window.objectName(), u"frmSQLLogon"_s);
    EXPECT_EQ(window.windowTitle(), u"Database connection"_s);
    const QMap<QString, QString> fields{{u"txtServer"_s, u"Server"_s},
                                        {u"txtDatabase"_s, u"Database"_s},
                                        {u"txtUserName"_s, u"User name"_s},
                                        {u"txtPassword"_s, u"Password"_s}};
    for (auto it = fields.cbegin(); it != fields.cend(); ++it)
      EXPECT_EQ(part<QLineEdit>(window, qPrintable(it.key()))->accessibleName(), it.value());
    EXPECT_EQ(part<QLineEdit>(window, "txtPassword")->echoMode(), QLineEdit::Password);
    EXPECT_TRUE(part<QLineEdit>(window, "txtServer")->toolTip().contains(u"sql.example.net,1433"_s));
    EXPECT_TRUE(part<QCheckBox>(window, "chkIntegratedSecurity")->isChecked());
    EXPECT_FALSE(part<QLineEdit>(window, "txtPassword")->isEnabled());
    EXPECT_TRUE(part<QPushButton>(window, "cmdOK")->isDefault());
    EXPECT_EQ(window.focusWidget(), part<QLineEdit>(window, "txtServer"));
    expectLetters(window, 8);
    expectRoom(window);
  });
}

TEST_F(SQLLogonWindow, GoesRoundByTab) {
  show([](QDialog& window) {
    part<QLineEdit>(window, "txtServer")->setFocus();
    EXPECT_EQ(tabRound(window), (QStringList{u"txtServer"_s, u"txtDatabase"_s, u"chkIntegratedSecurity"_s,
                                             u"cmdTest"_s, u"cmdOK"_s, u"cmdCancel"_s}));
    part<QCheckBox>(window, "chkIntegratedSecurity")->setChecked(false);
    part<QLineEdit>(window, "txtServer")->setFocus();
    EXPECT_EQ(tabRound(window),
              (QStringList{u"txtServer"_s, u"txtDatabase"_s, u"chkIntegratedSecurity"_s, u"txtUserName"_s,
                           u"txtPassword"_s, u"cmdTest"_s, u"cmdOK"_s, u"cmdCancel"_s}));
  });
}

TEST_F(SQLLogonWindow, IsFilledInWithTheKeyboardAlone) {
  show([](QDialog& window) {
    const auto type = [&](const QString& text) {
      QTest::keyClicks(window.focusWidget(), text);
      press(window, Qt::Key_Tab);
    };
    type(u"box"_s);
    type(u"Hours"_s);
    press(window, Qt::Key_Space);
    press(window, Qt::Key_Tab);
    type(u"jane"_s);
    type(u"secret"_s);
    part<QLineEdit>(window, "txtPassword")->setFocus();
    press(window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
  });
  EXPECT_EQ(form.strConnection,
            u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=jane;Password=secret;"
            "Data Source=box;Initial Catalog=Hours"_s);
}

TEST_F(SQLLogonWindow, ForANewDatabaseHasNoTest) {
  form.blnNewDB = true;
  show([](QDialog& window) {
    EXPECT_FALSE(part<QPushButton>(window, "cmdTest")->isVisible());
    expectLetters(window, 7);
    part<QPushButton>(window, "cmdOK")->click();
  });
}

TEST_F(SQLLogonWindow, CancelEscapeAndTheFrameGiveNoConnection) {
  for (const auto& act : QList<std::function<void(QDialog&)>>{
           [](QDialog& window) { part<QPushButton>(window, "cmdCancel")->click(); },
           [](QDialog& window) { press(window, Qt::Key_Escape); }, [](QDialog& window) { window.close(); }}) {
    form.strConnection = u"Data Source=box"_s;
    show([&](QDialog& window) {
      act(window);
      EXPECT_FALSE(window.isVisible());
    });
    EXPECT_EQ(form.strConnection, QString());
  }
  form.blnNewDB = true;
  EXPECT_ENDS_PROCESS(show([](QDialog& window) { press(window, Qt::Key_Escape); }));
}

TEST_F(SQLLogonWindow, ATestLeavesTheWindowOpen) {
  world.dialogs.expect(u"Connection succeeded!"_s, platform::dialogs::vbOK);
  show([](QDialog& window) {
    QTest::keyClicks(part<QLineEdit>(window, "txtServer"), u"box"_s);
    part<QPushButton>(window, "cmdTest")->click();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  });
  EXPECT_EQ(notes->opened.size(), 1);
}

TEST_F(SQLLogonWindow, WhileAConnectionIsTriedThePointerSaysSo) {
  bool waits = false;
  QObject::connect(&form, &frmSQLLogon::testing, &form, [&](bool on) {
    if (on) waits = QApplication::overrideCursor() != nullptr;
  });
  world.dialogs.expect(u"Connection succeeded!"_s, platform::dialogs::vbOK);
  show([&](QDialog& window) {
    QObject::connect(&form, &frmSQLLogon::testing, &window, [&](bool on) {
      if (on) waits = QApplication::overrideCursor() != nullptr;
    });
    part<QPushButton>(window, "cmdTest")->click();
  });
  EXPECT_TRUE(waits);
}

TEST_F(SQLLogonWindow, IsWhatTheDatabaseCodeShows) {
  subUseDatabaseForms(*database);
  use([this] { database->frmSQLLogon(form); },
      [](QDialog& window) {
        QTest::keyClicks(part<QLineEdit>(window, "txtServer"), u"box"_s);
        part<QPushButton>(window, "cmdOK")->click();
      });
  EXPECT_TRUE(form.strConnection.endsWith(u"Data Source=box;Initial Catalog="_s));
}

TEST_F(SQLLogonWindow, TheNamesOfFieldsThatAreOffAreGrey) {
  show([](QDialog& window) {
    for (const auto* label : window.findChildren<QLabel*>()) {
      const bool off = label->buddy()->objectName() == u"txtUserName"_s ||
                       label->buddy()->objectName() == u"txtPassword"_s;
      EXPECT_EQ(label->isEnabled(), !off) << qPrintable(label->text());
    }
    part<QCheckBox>(window, "chkIntegratedSecurity")->click();
    for (const auto* label : window.findChildren<QLabel*>()) EXPECT_TRUE(label->isEnabled());
  });
}

TEST_F(SQLLogonWindow, EveryTextFitsInEveryLanguageAndInLargeLetters) {
  const QFont usual = QApplication::font();
  for (const int size : {9, 20}) {
    QFont font = usual;
    font.setPointSize(size);
    QApplication::setFont(font);
    for (qint16 language = 1; language <= lastLanguage; ++language) {
      LoadLanguages(language);
      use(
          [] {
            frmSQLLogon other;
            subShowSQLLogon(other);
          },
          [](QDialog& window) {
            expectLetters(window, 8);
            expectRoom(window);
          });
    }
  }
  QApplication::setFont(usual);
}

}  // namespace
}  // namespace hourbook::tests
