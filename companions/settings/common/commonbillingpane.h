#pragma once
#include "companions/settings/common/billingdownload.h"
#include "companions/settings/common/commonbuffer.h"
#include "companions/settings/common/problemlabel.h"

#include <QWidget>

class QComboBox;
class QLineEdit;
class QPushButton;

namespace hourbook {

/// The settings of the billing roads.
class CommonBillingPane : public QWidget {
  Q_OBJECT

 public:
  /// `download` may be null: then the button says why it can do nothing.
  CommonBillingPane(CommonBuffer& buffer, std::shared_ptr<BillingDownload> download,
                    QWidget* parent = nullptr);
  void reload();
  /// Whether a download is possible hangs on the whole page being saved.
  void setPageChanged(bool changed);
  void showProblem(const CommonProblem& problem);
  void focusProblem(const CommonProblem& problem);
  void clearProblems();

 Q_SIGNALS:
  void edited();
  /// The lists have been downloaded into the database: what is shown is out of date.
  void downloaded();

 private:
  void makeControls();
  void layOut();
  void takeText(QLineEdit* edit, QString BillingRow::*member);
  void takeRoad();
  void showRoad();
  void checkFields();
  void reloadRoads();
  void download();

  CommonBuffer& buffer_;
  std::shared_ptr<BillingDownload> download_;
  ProblemLabel* lblUnavailable;
  QComboBox* cmbRoad;
  QLabel* lblLocation;
  QLineEdit* txtLocation;
  ProblemLabel* lblLocationProblem;
  QLabel* lblUser;
  QLineEdit* txtUser;
  ProblemLabel* lblUserProblem;
  QLabel* lblPassword;
  QLineEdit* txtPassword;
  ProblemLabel* lblPasswordProblem;
  ProblemLabel* lblHint;
  QLineEdit* txtLastDownload;
  QPushButton* cmdDownload;
  ProblemLabel* lblDownload;
};

}  // namespace hourbook
