#pragma once
#include "database/DatabaseValues.h"
#include "outlook/OutlookValues.h"
#include "platform/calendar/failing/failingstore.h"
#include "platform/calendar/memory/memorystore.h"
#include "reporting/ReportingValues.h"
#include "settings/cPersonalSettings.h"
#include "shell/ShellValues.h"
#include "tests/support/testworld.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace tests {

using namespace hourbook;
using platform::basic::Date;

/// What the form asked of its screen.
class NotedScreen : public ReportFormScreen {
 public:
  explicit NotedScreen(ReportForm& form) : form_(form) {}
  void setMousePointer(int pointer) override { pointers.append(pointer); }
  void Refresh() override {
    ++refreshes;
    if (onRefresh) onRefresh();
  }
  void Show() override { ++shows; }
  void Unload() override {
    ++unloads;
    form_.windowClosed();
  }
  qint32 GetPixel(int, int) const override { return pixel; }
  bool UserIsBusy() const override { return busy; }

  QList<int> pointers;
  int refreshes = 0, shows = 0, unloads = 0;
  qint32 pixel = -1;
  bool busy = false;
  std::function<void()> onRefresh;

 private:
  ReportForm& form_;
};

/// A user with a calendar in memory, settings with three meta lists and English phrases. It is Wednesday, 15
/// May 2024, and the list separator is a semicolon.
class WorkspaceWorld {
 public:
  WorkspaceWorld();

  /// The lists in use, each "Name:value;value;".
  void setLists(const QStringList& lists);
  void withDatePickers();
  /// Makes the form of a generation, connects its events and puts it in force; it is not loaded.
  ReportForm& makeForm(qint16 generation = 11);
  /// The same, loaded.
  ReportForm& loadForm(qint16 generation = 11);
  /// Shows this period, without fetching. Needs the date pickers.
  void setPeriod(const QDate& first, const QDate& last);

  /// A single appointment, times on the wall clock of the user.
  platform::calendar::Item appointment(const QString& subject, const QDateTime& start, int minutes = 60,
                                       const QString& categories = {}) const;
  platform::calendar::ItemKey add(const QString& subject, const QDateTime& start, int minutes = 60,
                                  const QString& categories = {});
  platform::calendar::ItemKey addAllDay(const QString& subject, const QDate& day, int days = 1,
                                        const QString& categories = {});

  QString cell(const QString& address) const;
  /// Column A of the rows of the list.
  QStringList subjects();
  /// From here on the log goes to a file, which `logged` reads.
  void startLog();
  /// The texts logged since, in order.
  QStringList logged() const;

  TestWorld world;
  Shared<ShellValues>::Scope shell;
  Shared<OutlookValues>::Scope outlook;
  Shared<DatabaseValues>::Scope database;
  Shared<SettingsValues>::Scope settings;
  Shared<ReportingValues>::Scope reporting;
  Shared<WorkspaceValues>::Scope workspace;

  std::shared_ptr<platform::calendar::MemoryStore> calendar =
      std::make_shared<platform::calendar::MemoryStore>();
  QString folder;
  std::shared_ptr<ReportForm> form;
  std::unique_ptr<NotedScreen> screen;
  cPersonalSettings& personal() { return *settings->gPersonalSettings; }
};

inline QDateTime at(int day, int hour, int minute = 0, int month = 5) {
  return QDateTime(QDate(2024, month, day), QTime(hour, minute), QTimeZone("Europe/Stockholm"));
}

}  // namespace tests
