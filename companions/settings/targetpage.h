#pragma once
#include "companions/settings/connectiontest.h"
#include "companions/settings/personalpage.h"

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QVBoxLayout;

namespace hourbook {

struct ReportTarget;

/// Where the reports go, with a test of that connection.
class TargetPage : public PersonalPage {
  Q_OBJECT

 public:
  explicit TargetPage(SettingsSession& session);
  QString title() const override;
  void reload() override;
  void aboutToShow() override;
  ConnectionTest& test() { return test_; }

 protected:
  QList<FieldText> problems() override;

 private:
  void makeControls();
  void layOut();
  void addUnavailable(QVBoxLayout* column, QRadioButton* button, const QString& reason);
  QWidget* accessGroup();
  QWidget* serverGroup();
  QWidget* loginPanel();
  QWidget* textPanel();
  void connectControls();
  void follow(QLineEdit* edit, QString SqlServerLogin::*member, Field field);
  void choose(int target);
  void chooseServerKind(bool byText);
  void chooseFolder();
  void setUp();
  void take(const ReportTarget& target);
  void lookAtFolder();
  void showLook(bool usable, const QString& text);
  void showChoice();
  void startTest();
  void showTest(const QString& text, bool isProblem);

  QButtonGroup *optTargets, *optServerKinds;
  QRadioButton *optAccess, *optServer, *optAsp, *optBilling, *optByLogin, *optByText;
  QGroupBox *fraAccess, *fraServer;
  QWidget *pnlLogin, *pnlText;
  QLineEdit *txtFolder, *txtServer, *txtDatabase, *txtUserName, *txtPassword, *txtConnection;
  QCheckBox *chkMakeDatabase, *chkIntegratedSecurity;
  QPushButton *cmdChooseFolder, *cmdSetUp, *cmdTest;
  ProblemLabel *lblResult, *lblFurtherNote, *lblPasswordNote;
  ConnectionTest test_;
  ConnectionTest look_;  // at a folder that was not typed just now
  QString looked_;
};

}  // namespace hourbook
