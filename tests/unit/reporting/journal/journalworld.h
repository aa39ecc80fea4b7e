#pragma once
#include "reporting/cReportJournal.h"
#include "reporting/modFinishReports.h"
#include "tests/unit/reporting/reportingworld.h"

#include <QDir>

namespace tests {

inline const platform::Failure diskFull(platform::sql::errors::diskFull,
                                        QStringLiteral("Not enough space on disk."));
inline const platform::Failure denied(platform::calendar::errAccessDenied,
                                      QStringLiteral("The file cannot be written."));

/// Keeps changes back as a store over big files may, and writes them one by one at the end.
class HoldingStore : public platform::calendar::Store {
 public:
  explicit HoldingStore(std::shared_ptr<platform::calendar::Store> inner) : inner_(std::move(inner)) {}
  QList<platform::calendar::FolderInfo> folders() override { return inner_->folders(); }
  QList<platform::calendar::Item> items(const QString& folder,
                                        const platform::calendar::Query& query) override {
    return inner_->items(folder, query);
  }
  platform::calendar::Item save(const QString& folder, const platform::calendar::ItemKey& key,
                                const QString& tag, const platform::calendar::Change& change) override {
    if (!holding) return inner_->save(folder, key, tag, change);
    platform::calendar::Query query;
    query.uid = key.uid;
    platform::calendar::Item item = inner_->items(folder, query).first();
    kept_.append({folder, key, tag, change});
    item.billingInformation = change.billingInformation.value_or(item.billingInformation);
    return item;
  }
  void remove(const QString& folder, const platform::calendar::ItemKey& key, const QString& tag) override {
    inner_->remove(folder, key, tag);
  }
  QString changeTag(const QString& folder) override { return inner_->changeTag(folder); }
  QString othersTag(const QString& folder, platform::calendar::Look look) override {
    return inner_->othersTag(folder, look);
  }
  QList<platform::calendar::Problem> problems(const QString& folder) override {
    return inner_->problems(folder);
  }
  void hold() override {
    ++holds;
    holding = true;
  }
  QList<platform::calendar::Unwritten> flush() override {
    ++flushes;
    holding = false;
    if (failFlush) throw platform::Failure(*failFlush);
    QList<platform::calendar::Unwritten> unwritten;
    for (const Kept& kept : std::as_const(kept_)) {
      try {
        inner_->save(kept.folder, kept.key, kept.tag, kept.change);
      } catch (const platform::Failure& failure) {
        unwritten.append({kept.folder, kept.key, failure});
      }
    }
    kept_.clear();
    return unwritten;
  }
  bool holding = false;
  int holds = 0, flushes = 0;
  std::optional<platform::Failure> failFlush;

 private:
  struct Kept {
    QString folder;
    platform::calendar::ItemKey key;
    QString tag;
    platform::calendar::Change change;
  };
  std::shared_ptr<platform::calendar::Store> inner_;
  QList<Kept> kept_;
};

/// A user whose reports are interrupted.
class JournalWorld : public ReportingWorld {
 public:
  JournalWorld() {
    reporting->journalFolder = stateFolder.filePath(QStringLiteral("hourbook/reports"));
    // the person is there already, so that the rows of the plan are rows of reports
    other()->execute(QStringLiteral("insert into tblPersons (strPersonName) values ('Jane Doe')"));
  }

  QString journalFolder() { return reporting->journalFolder; }
  QStringList journals() { return hourbook::cReportJournal(journalFolder()).Files(); }
  hourbook::ReportRun run() { return hourbook::cReportJournal::Read(journals().value(0)); }
  void rewrite(const std::function<void(hourbook::ReportRun&)>& change) {
    hourbook::ReportRun changed = run();
    change(changed);
    hourbook::cReportJournal::Write(journals().value(0), changed);
  }

  /// The rows are stored, and the process is gone before the first stamp.
  void crashBeforeTheStamps() {
    calendar->failAlways(platform::calendar::FailingStore::Operation::Save, denied);
    expectFailure(QStringLiteral("Report"), denied.description(), [&] { report(); });
    restart();
  }
  /// So many rows are stored, and the process is gone then.
  void crashAfterRows(int rows) {
    plan->failAfterRows(rows, diskFull);
    calendar->failAlways(platform::calendar::FailingStore::Operation::Save, denied);
    expectFailure(QString(), QString(), [&] { report(); });
    restart();
  }
  /// The causes are gone, and the list shows what the calendar has.
  void restart() {
    plan->clear();
    calendar->heal();
    shell->gInErrorReport = false;
    fetchAgain();
  }
  void fetchAgain() {
    const auto subjectsOf = outlook->gRowItems;
    outlook->gRowItems = {};
    for (int row = 2; row <= lastRow; ++row) {
      const auto before = subjectsOf.Item(row - 1);
      std::shared_ptr<platform::outlook::AppointmentItem> item = before;
      try {
        item = outlook->gCalendarFolder->GetItemFromID(before->EntryID());
      } catch (const platform::Failure&) {  // gone; the list is older
      }
      outlook->gRowItems.Add(item, QString::number(row));
      sheet.Cell(row, 7).setValue(item->BillingInformation().isEmpty() ? shell->LNGNOTPOSTED
                                                                       : QStringLiteral("2024-05-15"));
    }
  }
  void start() { hourbook::subFinishReportsAtStart(); }
  /// By position of the row, since appointments may be equal.
  QList<bool> stamped() {
    QList<bool> flags;
    for (const auto& item : outlook->gRowItems) {
      platform::calendar::Query query;
      query.uid = item->stored().key.uid;
      const auto found = memory->items(folderId, query);
      flags.append(!found.isEmpty() && !found.first().billingInformation.isEmpty());
    }
    return flags;
  }
  platform::calendar::ItemKey keyOf(int row) { return outlook->gRowItems.Item(row)->stored().key; }
  void holdStamps() {
    holding = std::make_shared<HoldingStore>(calendar);
    platform::calendar::FolderInfo info;
    info.id = folderId;
    info.name = QStringLiteral("Calendar");
    outlook->gCalendarFolder = std::make_shared<platform::outlook::MAPIFolder>(holding, info);
    fetchAgain();
  }
  QTemporaryDir stateFolder;
  std::shared_ptr<HoldingStore> holding;
};

}  // namespace tests
