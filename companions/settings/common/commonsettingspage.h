#pragma once
#include "companions/settings/common/commonbuffer.h"
#include "companions/settings/common/commonpage.h"
#include "companions/settings/common/commonstore.h"
#include "companions/settings/common/problemlabel.h"

#include <array>
#include <optional>

class QCheckBox;
class QPushButton;
class QTabWidget;

namespace hourbook {

class CommonBillingPane;
class CommonCostPane;
class CommonListPane;

class CommonSettingsPage : public SettingsPage {
  Q_OBJECT

 public:
  CommonSettingsPage(std::function<ReportPlace()> place, std::shared_ptr<BillingDownload> download);

  ~CommonSettingsPage() override;

  QString title() const override;
  bool isChanged() const override;
  QString problem() override;
  void apply() override;
  void aboutToShow() override;
  QList<NamedList> commonLists() override;

 private:
  void makeControls(const std::shared_ptr<BillingDownload>& download);
  void layOut();
  void connectPanes();
  QWidget* makeOtherPane();
  /// Reads anew, and shows what was read or why it could not be.
  void read();
  /// Goes with the other page to another database. False when what was changed here keeps it from that.
  bool followPlace();
  void reload();
  void readAgain();
  void showMessage(const QString& text);
  void showTabs();
  void noteEdit();
  QString leftOver();
  void showProblems(const QList<CommonProblem>& problems);
  void clearProblems();
  int tabOf(const CommonProblem& problem) const;
  QList<RemovedAnswer> askRemoved() const;
  QStringList unanswered(const QList<RemovedAnswer>& answers) const;

  std::function<ReportPlace()> place_;
  std::optional<ReportPlace> readPlace_;  // what the buffer was read from
  CommonBuffer buffer_;
  bool reached_ = false;
  QLabel* lblPlace;
  QPushButton* cmdReadAgain;
  ProblemLabel* lblMessage;
  QTabWidget* tabSections;
  CommonCostPane* costPane_;
  std::array<CommonListPane*, 3> listPanes_;
  QCheckBox* chkDepartment;
  CommonBillingPane* billingPane_;
};

}  // namespace hourbook
