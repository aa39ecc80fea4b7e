#include "platform/outlook/application.h"

#include "platform/basic/failure.h"
#include "platform/outlook/entryid.h"

using namespace Qt::StringLiterals;

namespace platform::outlook {

namespace {

/// The first folder of all stores that suits, or nullptr.
std::shared_ptr<MAPIFolder> firstFolder(const QList<std::shared_ptr<calendar::Store>>& stores,
                                        const std::shared_ptr<const Session>& session,
                                        const std::function<bool(const calendar::FolderInfo&)>& suits) {
  for (const std::shared_ptr<calendar::Store>& store : stores)
    for (const calendar::FolderInfo& info : store->folders())
      if (suits(info)) return std::make_shared<MAPIFolder>(store, info, session);
  return nullptr;
}

}  // namespace

MAPIFolder::MAPIFolder(std::shared_ptr<calendar::Store> store, calendar::FolderInfo info,
                       std::shared_ptr<const Session> session)
    : store_(std::move(store)), info_(std::move(info)), session_(std::move(session)) {}

int MAPIFolder::DefaultItemType() const {
  return info_.holdsAppointments ? olAppointmentItem : olMailItem;
}

bool MAPIFolder::ReadOnly() const {
  for (const calendar::FolderInfo& now : store_->folders())
    if (now.id == info_.id) return now.readOnly;
  return info_.readOnly;
}

Items MAPIFolder::Items() const {
  return outlook::Items(store_, info_.id, session_);
}

std::shared_ptr<AppointmentItem> MAPIFolder::GetItemFromID(const QString& entryId) const {
  const auto key = keyOfEntryId(entryId);
  const auto item = key ? itemOfKey(*store_, info_.id, *key) : std::nullopt;
  if (!item)
    throw Failure(calendar::errNotFound,
                  u"The appointment is no longer in the calendar \"%1\"."_s.arg(Name()), u"MAPIFolder"_s);
  return std::make_shared<AppointmentItem>(store_, info_.id, *item, session_);
}

QList<UnsavedItem> MAPIFolder::FlushSaves() const {
  QList<UnsavedItem> unsaved;
  for (const calendar::Unwritten& change : store_->flush())
    unsaved.append({change.folder, entryIdOf(change.key), change.failure});
  return unsaved;
}

std::shared_ptr<MAPIFolder> NameSpace::GetFolderFromID(const QString& id) const {
  const auto folder =
      firstFolder(stores_, session_, [&](const calendar::FolderInfo& info) { return info.id == id; });
  if (!folder)
    throw Failure(calendar::errNotFound, u"The calendar \"%1\" cannot be found."_s.arg(id), u"NameSpace"_s);
  return folder;
}

std::shared_ptr<MAPIFolder> NameSpace::GetDefaultFolder(int type) const {
  if (type != olFolderCalendar && type != olFolderInbox)
    throw Failure(failure::invalidProcedureCall, u"There is no default folder of type %1."_s.arg(type),
                  u"NameSpace"_s);
  const bool appointments = type == olFolderCalendar;
  const auto folder = firstFolder(stores_, session_, [&](const calendar::FolderInfo& info) {
    return info.holdsAppointments == appointments;
  });
  if (!folder)
    throw Failure(calendar::errNotFound,
                  appointments ? u"No calendar is set up."_s : u"No mail folder is set up."_s,
                  u"NameSpace"_s);
  return folder;
}

std::shared_ptr<Explorer> Explorers::Item(int position) const {
  if (position < 1 || position > Count())
    throw Failure(failure::subscriptOutOfRange, u"Array index out of bounds."_s, u"Explorers"_s);
  return list.at(position - 1);
}

std::shared_ptr<Explorer> Explorers::Add(std::shared_ptr<MAPIFolder> folder, int displayMode) {
  if (!folder || displayMode != olFolderDisplayNormal)
    throw Failure(failure::invalidProcedureCall, u"A window needs a folder and the normal way to show it."_s,
                  u"Explorers"_s);
  list.append(std::make_shared<Explorer>(std::move(folder)));
  return list.last();
}

Application::Application(Profile profile)
    : profile_(std::move(profile)),
      session_(std::make_shared<const Session>(Session{profile_.version, profile_.draftFolder})) {
  if (profile_.openFolder.isEmpty()) return;
  const auto folder = firstFolder(profile_.stores, session_, [this](const calendar::FolderInfo& info) {
    return info.id == profile_.openFolder;
  });
  if (!folder)
    throw Failure(calendar::errNotFound, u"The calendar \"%1\" cannot be found."_s.arg(profile_.openFolder),
                  u"Application"_s);
  explorers_.Add(folder, olFolderDisplayNormal)->Activate();
}

QString Application::Version() const {
  return profile_.version;
}

std::shared_ptr<NameSpace> Application::GetNamespace(const QString& type) const {
  if (type.compare(u"MAPI"_s, Qt::CaseInsensitive) != 0)
    throw Failure(failure::invalidProcedureCall, u"The namespace \"%1\" is not known."_s.arg(type),
                  u"Application"_s);
  return std::make_shared<NameSpace>(profile_.stores, session_);
}

std::shared_ptr<Explorer> Application::ActiveExplorer() const {
  for (const std::shared_ptr<Explorer>& explorer : explorers_.list)
    if (explorer->active) return explorer;
  return nullptr;
}

std::shared_ptr<MailItem> Application::CreateItem(int type) const {
  if (type != olMailItem)
    throw Failure(failure::invalidProcedureCall, u"Items of type %1 cannot be made here."_s.arg(type),
                  u"Application"_s);
  return std::make_shared<MailItem>(profile_.draftFolder);
}

}  // namespace platform::outlook
