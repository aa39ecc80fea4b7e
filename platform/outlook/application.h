#pragma once
#include "platform/outlook/items.h"

namespace platform::outlook {

/// What the platform is configured with: the calendars, which of them is open, and the mailbox's name.
struct Profile {
  QList<std::shared_ptr<calendar::Store>> stores;
  QString openFolder;  // id of the folder that is open in the window; empty: no window is open
  QString version = QStringLiteral("11.0.0.8169");
  QString draftFolder;  // where `MailItem.Save` keeps drafts
};

/// An appointment whose `Save` was accepted while saves were held, and then could not be written.
struct UnsavedItem {
  QString folder;   // its id
  QString entryId;  // as it was when it was saved
  Failure failure;
};

class MAPIFolder {
 public:
  MAPIFolder(std::shared_ptr<calendar::Store> store, calendar::FolderInfo info,
             std::shared_ptr<const Session> session = {});
  int DefaultItemType() const;  // olAppointmentItem or olMailItem
  QString Name() const { return info_.name; }
  QString ParentName() const { return info_.storeName; }  // Parent.Name
  /// As it is at this moment: what the folder lies on may change while the program runs.
  bool ReadOnly() const;
  QString Id() const { return info_.id; }
  outlook::Items Items() const;
  /// The item as it stands in the calendar now. Failure errNotFound when it is not there (any more).
  std::shared_ptr<AppointmentItem> GetItemFromID(const QString& entryId) const;
  /// Differs from its last value when somebody else may have changed what the folder shows; what was saved
  /// here does not count. See calendar::Store.
  QString OthersTag(calendar::Look look) const { return store_->othersTag(info_.id, look); }
  /// From here to `FlushSaves` the calendar may keep saved appointments back, to write those of one file in
  /// one step. Reading sees them as saved.
  void HoldSaves() const { store_->hold(); }
  /// Writes what was kept back and comes back with what could not be written; the rest outlives a power cut.
  QList<UnsavedItem> FlushSaves() const;
  std::shared_ptr<calendar::Store> store() const { return store_; }

 private:
  std::shared_ptr<calendar::Store> store_;
  calendar::FolderInfo info_;
  std::shared_ptr<const Session> session_;
};

class Explorer {
 public:
  explicit Explorer(std::shared_ptr<MAPIFolder> folder) : folder_(std::move(folder)) {}
  virtual ~Explorer() = default;
  std::shared_ptr<MAPIFolder> CurrentFolder() const { return folder_; }
  virtual void Activate() { active = true; }
  bool active = false;

 private:
  std::shared_ptr<MAPIFolder> folder_;
};

/// May outlive the application that it comes from.
class NameSpace {
 public:
  NameSpace(QList<std::shared_ptr<calendar::Store>> stores, std::shared_ptr<const Session> session)
      : stores_(std::move(stores)), session_(std::move(session)) {}
  /// olFolderCalendar: the first folder that holds appointments; olFolderInbox: the first that does not.
  /// Failure errNotFound when there is none.
  std::shared_ptr<MAPIFolder> GetDefaultFolder(int type) const;
  /// The folder of that id. Failure errNotFound when no store has it.
  std::shared_ptr<MAPIFolder> GetFolderFromID(const QString& id) const;

 private:
  QList<std::shared_ptr<calendar::Store>> stores_;
  std::shared_ptr<const Session> session_;
};

/// The open windows. Positions count from 1.
class Explorers {
 public:
  int Count() const { return static_cast<int>(list.size()); }
  std::shared_ptr<Explorer> Item(int position) const;
  std::shared_ptr<Explorer> Add(std::shared_ptr<MAPIFolder> folder, int displayMode);
  QList<std::shared_ptr<Explorer>> list;
};

class Application {
 public:
  /// Failure errNotFound when the folder that is open in the window is in none of the stores.
  explicit Application(Profile profile);
  virtual ~Application() = default;
  virtual QString Version() const;
  std::shared_ptr<NameSpace> GetNamespace(const QString& type) const;  // "MAPI"
  /// nullptr when no window is open or none has been activated.
  virtual std::shared_ptr<Explorer> ActiveExplorer() const;
  outlook::Explorers& Explorers() { return explorers_; }
  std::shared_ptr<MailItem> CreateItem(int type) const;  // olMailItem
  const Profile& profile() const { return profile_; }
  std::shared_ptr<const Session> session() const { return session_; }

 private:
  Profile profile_;
  std::shared_ptr<const Session> session_;
  outlook::Explorers explorers_;
};

}  // namespace platform::outlook
