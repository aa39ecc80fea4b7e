#pragma once
#include "companions/settings/common/commonbuffer.h"
#include "companions/settings/common/problemlabel.h"

#include <QWidget>

class QComboBox;
class QLineEdit;

namespace hourbook {

/// How costs are counted, and where reports go.
class CommonCostPane : public QWidget {
  Q_OBJECT

 public:
  explicit CommonCostPane(CommonBuffer& buffer, QWidget* parent = nullptr);
  void reload();
  /// The lists' names have changed, by which the rules are called.
  void reloadRules();
  void showProblem(const CommonProblem& problem);
  void focusProblem(const CommonProblem& problem);
  void clearProblems();

 Q_SIGNALS:
  void edited();

 private:
  void makeControls();
  void takeTarget();
  void showTarget();

  CommonBuffer& buffer_;
  QComboBox* cmbCostCarrier;
  QComboBox* cmbReportTo;
  QLabel* lblReportToValue;
  QLineEdit* txtReportToValue;
  ProblemLabel* lblCostProblem;
  ProblemLabel* lblReportToProblem;
  ProblemLabel* lblValueProblem;
};

}  // namespace hourbook
