#pragma once
#include "companions/settings/page.h"
#include "companions/settings/session.h"

#include <QDialog>

#include <memory>

class QListWidget;
class QPushButton;
class QStackedWidget;

namespace hourbook {

class ProblemLabel;

/// The window of the settings: its pages in a list, and OK, which saves all of them or nothing.
class SettingsWindow : public QDialog {
  Q_OBJECT

 public:
  using CommonPage = std::function<std::unique_ptr<SettingsPage>(std::function<ReportPlace()> place)>;

  /// Reads the settings; throws platform::Failure when that is not possible. Without `common` the window has
  /// no page for the settings that all share. `hasDriver`: is there one for this provider?
  SettingsWindow(SettingsStore& store, SettingsQuestions questions,
                 std::function<bool(const QString& provider)> hasDriver, const CommonPage& common);

  SettingsSession& session() { return session_; }
  void accept() override;
  void reject() override;

 private:
  void addPage(std::unique_ptr<SettingsPage> page);
  void layOut();
  void showPage(int row);
  void step(int by);
  void loadPages();
  bool isChanged() const;
  /// The first page that has a problem is shown; true when there is one.
  bool showProblem();
  bool tellProblem(int row, const QString& text);
  /// False: another program's changes were to be read, or nothing was to be done.
  bool mayOverwrite();
  /// False: settings that the calendar holds were taken over, or nothing was to be done.
  bool mayReplaceKept();
  void readAnew();
  void save();

  SettingsSession session_;
  QList<SettingsPage*> pages_;
  SettingsPage* common_ = nullptr;
  QListWidget* lstPages;
  QStackedWidget* stack_;
  ProblemLabel* lblProblem;
  QPushButton *cmdOK, *cmdCancel;
};

}  // namespace hourbook
