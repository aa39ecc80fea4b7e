// The form that asks for the kind of database, without its window.
#include "database/frmChooseConnection.h"
#include "windows.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

/// Notes what the form asks of its window.
class NotedWindow : public FormWindow {
 public:
  qint32 ExtendedStyle() const override { return 0; }
  void setExtendedStyle(qint32) override {}
  void Activate() override {
    ++activated;
    if (fails) throw platform::Failure(5, u"Invalid procedure call or argument"_s);
  }
  bool Visible() const override { return true; }
  void SetFocus() override {}
  void SetWindowPos(int insertAfter, quint32 flags) override { positions.append({insertAfter, flags}); }

  QList<std::pair<int, quint32>> positions;
  int activated = 0;
  bool fails = false;
};

class ChooseConnection : public DatabaseForms {
 protected:
  ChooseConnection() { form.strSQLScriptFileName = u"CreateDBHB.sql"_s; }
  frmChooseConnection form;
};

TEST_F(ChooseConnection, BearsThePhrasesOfItsControls) {
  form.Load(nullptr);
  EXPECT_EQ(form.Name(), u"frmChooseConnection"_s);
  EXPECT_EQ(form.Caption(), u"Database connection"_s);
  EXPECT_EQ(form.lblChooseDB.Caption(),
            u"Choose which kind of database connection is to be used for reported data."_s);
  EXPECT_EQ(form.optNewAccessDatabase.Caption(), u"Create new Access database"_s);
  EXPECT_EQ(form.optCreateSQLDataBase.Caption(), u"Create a new database on a MS SQL Server"_s);
  EXPECT_EQ(form.optSelectExistingSQLDB.Caption(),
            u"Choose an existing MS SQL database, which has already been created from CreateDBHB.sql"_s);
  EXPECT_EQ(form.chkExampleData.Caption(), u"Load Example Data"_s);
  EXPECT_EQ(form.cmdOK.Caption(), u"OK"_s);
}

TEST_F(ChooseConnection, NamesTheScriptThatItWasGiven) {
  form.strSQLScriptFileName = u"Other.sql"_s;
  form.Load(nullptr);
  EXPECT_EQ(form.optSelectExistingSQLDB.Caption(),
            u"Choose an existing MS SQL database, which has already been created from Other.sql"_s);
}

TEST_F(ChooseConnection, NamesTheScriptInEveryLanguage) {
  for (qint16 language = 1; language <= lastLanguage; ++language) {
    LoadLanguages(language);
    frmChooseConnection other;
    other.strSQLScriptFileName = u"Other.sql"_s;
    other.Load(nullptr);
    EXPECT_TRUE(other.optSelectExistingSQLDB.Caption().contains(u"Other.sql"_s)) << language;
  }
}

TEST_F(ChooseConnection, BeginsWithTheNewAccessDatabaseAndWithoutExampleData) {
  form.Load(nullptr);
  EXPECT_TRUE(form.optNewAccessDatabase.Value());
  EXPECT_FALSE(form.optCreateSQLDataBase.Value());
  EXPECT_FALSE(form.optSelectExistingSQLDB.Value());
  EXPECT_EQ(form.chkExampleData.Value(), 0);
  EXPECT_TRUE(form.chkExampleData.Visible());
}

TEST_F(ChooseConnection, HidesTheExampleDataOnRequest) {
  form.blnHideExampleDataOption = true;
  form.Load(nullptr);
  EXPECT_FALSE(form.chkExampleData.Visible());
}

TEST_F(ChooseConnection, GivesTheNumberOfTheOptionWithOk) {
  form.Load(nullptr);
  EXPECT_EQ(form.intConnectionOption, 0);
  form.cmdOK.click();
  EXPECT_EQ(form.intConnectionOption, 1);
  EXPECT_FALSE(form.Visible());
  form.optCreateSQLDataBase.setValue(true);
  form.cmdOK.click();
  EXPECT_EQ(form.intConnectionOption, 2);
  form.optSelectExistingSQLDB.setValue(true);
  form.cmdOK.click();
  EXPECT_EQ(form.intConnectionOption, 3);
}

TEST_F(ChooseConnection, GivesTheExampleDataOnlyWithOkAndItsBox) {
  form.Load(nullptr);
  form.cmdOK.click();
  EXPECT_FALSE(form.blnLoadExampleData);
  form.chkExampleData.setValue(1);
  EXPECT_FALSE(form.blnLoadExampleData);
  form.cmdOK.click();
  EXPECT_TRUE(form.blnLoadExampleData);
}

TEST_F(ChooseConnection, LiesOnTopOfAllWindowsFromTheLoad) {
  NotedWindow window;
  form.Load(&window);
  const QList<std::pair<int, quint32>> topMost{{-1, 3}};
  EXPECT_EQ(window.positions, topMost);
}

TEST_F(ChooseConnection, ActivatesItsWindowOnceByATimer) {
  NotedWindow window;
  form.Load(&window);
  EXPECT_EQ(window.activated, 0);
  EXPECT_TRUE(form.timSetFocus.TimerEnabled());
  EXPECT_GT(form.timSetFocus.Interval(), 0);
  ASSERT_TRUE(QTest::qWaitFor([&] { return window.activated > 0; }, 60000));
  EXPECT_EQ(window.activated, 1);
  EXPECT_FALSE(form.timSetFocus.TimerEnabled());
}

TEST_F(ChooseConnection, AWindowThatCannotBeActivatedIsPassedOver) {
  NotedWindow window;
  window.fails = true;
  form.Load(&window);
  Q_EMIT form.timSetFocus.Tick();
  EXPECT_EQ(window.activated, 1);
  EXPECT_FALSE(form.timSetFocus.TimerEnabled());
}

}  // namespace
}  // namespace hourbook::tests
