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
  void connectControls();
  void follow(QLineEdit* edit, QString SqlServerLogin::*member, Field field);
  void choose(int target);
  void chooseFolder();
  void lookAtFolder();
  void showLook(bool usable, const QString& text);
  void showChoice();
  void startTest();
  void showTest(const QString& text, bool isProblem);

  QButtonGroup* optTargets;
  QRadioButton *optAccess, *optServer, *optAsp, *optBilling;
  QGroupBox *fraAccess, *fraServer;
  QLineEdit *txtFolder, *txtServer, *txtDatabase, *txtUserName, *txtPassword;
  QCheckBox *chkMakeDatabase, *chkIntegratedSecurity;
  QPushButton *cmdChooseFolder, *cmdTest;
  ProblemLabel *lblResult, *lblPasswordNote;
  ConnectionTest test_;
  ConnectionTest look_;  // at a folder that was not typed just now
  QString looked_;
};

}  // namespace hourbook
