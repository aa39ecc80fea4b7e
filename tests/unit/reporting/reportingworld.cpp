#include "reportingworld.h"

#include "platform/basic/convert.h"

namespace tests {

using namespace hourbook;
using platform::basic::Value;
namespace calendar = platform::calendar;

namespace {

/// A store whose calendars may only be read.
class ReadOnlyStore : public calendar::FailingStore {
 public:
  using FailingStore::FailingStore;
  QList<calendar::FolderInfo> folders() override {
    QList<calendar::FolderInfo> list = FailingStore::folders();
    for (calendar::FolderInfo& folder : list) folder.readOnly = true;
    return list;
  }
};

}  // namespace

ReportingWorld::ReportingWorld() {
  createCurrent();
  const auto file = other();
  file->execute(u"insert into tblMeta1 (strName, curRate, blnEnabled) values ('Acme', 100, -1)"_qs);
  file->execute(u"insert into tblMeta1 (strName, curRate, blnEnabled) values ('Beta', 50.5, -1)"_qs);
  file->execute(u"insert into tblMeta2 (strName, curRate, blnEnabled) values ('Website', 80, -1)"_qs);
  file->execute(u"insert into tblMeta2 (strName, curRate, blnEnabled) values ('A', 100, -1)"_qs);
  file->execute(u"insert into tblMeta3 (strName, curRate, blnEnabled) values ('Design', 33.3333, -1)"_qs);
  file->execute(
      u"insert into tblSettings (intCostCarrier, intReportTo, strReportToValue) values (2, ?, ?)"_qs,
      {qint16(road ? 3 : 2), road ? road->connectionText() : shownPath()});

  shell->documentsFolder = world.programFolder();
  shell->gListSeparator = u";"_qs;
  settings->gPersonalSettings = std::make_shared<cPersonalSettings>();
  personal().subPopulateMetadataList(
      u"Customer:Acme;Beta;Gone;\r\nProject:Website;A;\r\nTask:Design;\r\n"_qs);
  settings->gGlobalSettings = std::make_shared<cGlobalSettings>();
  common().ReadGlobalSettings(2, folder.path());

  outlook->gCurrentUser = u"Jane Doe"_qs;
  calendar::FolderInfo info;
  info.id = u"cal"_qs;
  info.name = u"Calendar"_qs;
  info.storeName = u"Mailbox - Jane Doe"_qs;
  folderId = memory->addFolder(info);
  outlook->gCalendarFolder = std::make_shared<platform::outlook::MAPIFolder>(calendar, info);
  plan->clear();
}

void ReportingWorld::add(const Row& row) {
  calendar::Item item;
  item.subject = row.subject;
  item.body = row.body;
  item.start = row.start;
  item.end = row.start.addSecs(3600);
  if (row.posted) item.billingInformation = u"5/1/2024"_qs;
  const calendar::ItemKey key = memory->add(folderId, item);
  calendar::Query query;
  query.uid = key.uid;
  query.zone = QTimeZone("Europe/Stockholm");
  const auto appointment = std::make_shared<platform::outlook::AppointmentItem>(
      calendar, folderId, memory->items(folderId, query).first());
  ++lastRow;
  outlook->gRowItems.Add(appointment, QString::number(lastRow));
  sheet.Cell(lastRow, 1).setValue(row.subject);
  for (int n = 0; n < row.metas.size(); ++n)
    if (!row.metas[n].isEmpty()) sheet.Cell(lastRow, 2 + n).setValue(row.metas[n]);
  sheet.Cell(lastRow, 5).setValue(u"Mon 5/13/2024"_qs);
  sheet.Cell(lastRow, 6).setValue(row.hours);
  sheet.Cell(lastRow, 7).setValue(row.posted ? u"2024-05-01"_qs : shell->LNGNOTPOSTED);
}

void ReportingWorld::report(qint32 target) {
  rowsOfReport = std::make_unique<cReportRows>();
  rowsOfReport->ReportsRange = sheet.Range(u"a2:g%1"_qs.arg(lastRow));
  rowsOfReport->ReadReportsFromRange();
  if (road && target == 2) target = 3;
  if (rowsOfReport->Reports.Count() >= 1) rowsOfReport->Report(target, *this);
}

QString ReportingWorld::stamp(int row) const {
  const QString subject = platform::basic::CStr(sheet.value(row + 1, 1));
  calendar::Query query;
  query.subject = subject;
  const auto found = memory->items(folderId, query);
  return found.isEmpty() ? u"(no appointment)"_qs : found.first().billingInformation;
}

QStringList ReportingWorld::statuses() const {
  QStringList texts;
  for (int row = 2; row <= lastRow; ++row) texts.append(platform::basic::CStr(sheet.value(row, 7)));
  return texts;
}

QList<Value> ReportingWorld::stored(const QString& column) const {
  QList<Value> values;
  const auto result = other()->execute(u"select [%1] from tblReports order by intReportID"_qs.arg(column));
  for (const auto& row : result.rows) values.append(row.first());
  return values;
}

void ReportingWorld::setReadOnlyCalendar() {
  calendar::FolderInfo info;
  info.id = folderId;
  info.name = u"Team"_qs;
  info.readOnly = true;
  outlook->gCalendarFolder =
      std::make_shared<platform::outlook::MAPIFolder>(std::make_shared<ReadOnlyStore>(calendar), info);
}

}  // namespace tests
