#pragma once
#include "outlook/OutlookValues.h"
#include "platform/calendar/failing/failingstore.h"
#include "platform/calendar/memory/memorystore.h"
#include "platform/owc/spreadsheet.h"
#include "reporting/cReportRows.h"
#include "reporting/ReportingValues.h"
#include "settings/cGlobalSettings.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "tests/unit/database/databaseworld.h"

namespace tests {

/// A user with three meta lists, a calendar, a list of rows over it, and a database of the same lists.
class ReportingWorld : public DatabaseWorld, public hourbook::ReportHost {
 public:
  ReportingWorld();

  struct Row {
    QString subject;
    QStringList metas;  // of list 1 to 3; an empty text where nothing is chosen
    QString hours = QStringLiteral("1");
    QString body = {};
    QDateTime start = QDateTime(QDate(2024, 5, 13), QTime(9, 30), QTimeZone("Europe/Stockholm"));
    bool posted = false;
  };
  /// A row of the list and its appointment.
  void add(const Row& row);
  /// A complete row of the first value of each list.
  void addComplete(const QString& subject) {
    add({subject, {QStringLiteral("Acme"), QStringLiteral("Website"), QStringLiteral("Design")}});
  }

  /// Reads the list and reports as the form does; the form's question about another period is answered with
  /// yes.
  void report(qint32 target = 2);
  void expectDone(int answer = platform::dialogs::vbYes) {
    world.dialogs.expect(shell->LNGREPORTINGDONE, answer);
  }
  /// Is the appointment of the row stamped in the calendar?
  QString stamp(int row) const;
  QStringList statuses() const;
  /// One column of tblReports, in the order in which the rows were stored.
  QList<platform::basic::Value> stored(const QString& column) const;
  int storedRows() const { return rows(QStringLiteral("select * from tblReports")); }
  void setOtherSetting(const QString& name, const QString& value) {
    settings->gGlobalSettings->OtherSettings->SetValue(name, value);
  }
  void setReadOnlyCalendar();
  hourbook::cPersonalSettings& personal() { return *settings->gPersonalSettings; }
  hourbook::cGlobalSettings& common() { return *settings->gGlobalSettings; }

  bool GridTicked() override { return gridTicked; }
  bool gridTicked = false;

  hourbook::Shared<hourbook::OutlookValues>::Scope outlook;
  hourbook::Shared<hourbook::SettingsValues>::Scope settings;
  hourbook::Shared<hourbook::ReportingValues>::Scope reporting;
  std::shared_ptr<platform::calendar::MemoryStore> memory =
      std::make_shared<platform::calendar::MemoryStore>();
  std::shared_ptr<platform::calendar::FailingStore> calendar =
      std::make_shared<platform::calendar::FailingStore>(memory);
  QString folderId;
  platform::owc::Spreadsheet sheet;
  int lastRow = 1;
  std::unique_ptr<hourbook::cReportRows> rowsOfReport;
};

}  // namespace tests
