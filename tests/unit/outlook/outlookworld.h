#pragma once
#include "outlook/OutlookValues.h"
#include "platform/calendar/failing/failingstore.h"
#include "platform/calendar/memory/memorystore.h"
#include "tests/unit/shell/shellworld.h"

namespace hourbook::tests {

/// A calendar in memory behind a store that can be told to fail. Nothing is connected at the start.
class OutlookWorld : public ShellWorld {
 protected:
  OutlookWorld() {
    folderInfo.id = QStringLiteral("calendar");
    folderInfo.name = QStringLiteral("Calendar");
    folderInfo.storeName = QStringLiteral("Mailbox - Jane Doe");
    profile.stores = {store};
    profile.openFolder = folderInfo.id;
  }

  /// Makes the folder and the application as the profile says.
  std::shared_ptr<platform::outlook::Application> makeOutlook() {
    if (memory->folders().isEmpty()) memory->addFolder(folderInfo);
    return std::make_shared<platform::outlook::Application>(profile);
  }
  /// What a run finds after start-up.
  void connect() {
    outlook.gOutlookApp = makeOutlook();
    outlook.gNameSpace = outlook.gOutlookApp->GetNamespace(QStringLiteral("MAPI"));
    outlook.gCalendarFolder = outlook.gNameSpace->GetDefaultFolder(platform::outlook::olFolderCalendar);
  }

  std::shared_ptr<platform::outlook::AppointmentItem> addAppointment(const QString& subject,
                                                                     const QString& body = {}) {
    platform::calendar::Item item;
    item.subject = subject;
    item.body = body;
    item.start = QDateTime(QDate(2024, 5, 13), QTime(9, 0), QTimeZone("Europe/Stockholm")).addDays(added_++);
    item.end = item.start.addSecs(3600);
    memory->add(folderInfo.id, item);
    return platform::outlook::Items(store, folderInfo.id).Item(added_);
  }
  /// The item of that subject as the store holds it now.
  platform::calendar::Item stored(const QString& subject) {
    platform::calendar::Query query;
    query.subject = subject;
    const auto found = memory->items(folderInfo.id, query);
    return found.isEmpty() ? platform::calendar::Item() : found.first();
  }

  platform::calendar::FolderInfo folderInfo;
  std::shared_ptr<platform::calendar::MemoryStore> memory =
      std::make_shared<platform::calendar::MemoryStore>();
  std::shared_ptr<platform::calendar::FailingStore> store =
      std::make_shared<platform::calendar::FailingStore>(memory);
  platform::outlook::Profile profile;
  Shared<OutlookValues>::Scope outlookScope;
  OutlookValues& outlook = *outlookScope;

 private:
  int added_ = 0;
};

}  // namespace hourbook::tests
