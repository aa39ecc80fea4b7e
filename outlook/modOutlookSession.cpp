#include "outlook/modOutlookSession.h"

#include "platform/automation/components.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "platform/scripting/shell.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace platform::outlook;
using platform::Failure;
using platform::automation::CreateObject;
using platform::basic::vbCrLf;
using ItemPointer = std::shared_ptr<AppointmentItem>;

namespace {

const QString mapi = QStringLiteral("MAPI");
inline constexpr qint16 oldestVersion = 9;

/// What was caught last; the pending error of a stretch that goes on through failures.
class Pending {
 public:
  template <class Statement>
  void step(Statement&& statement) {
    if (auto failure = tolerate(statement)) last_ = std::move(failure);
  }
  const std::optional<Failure>& failure() const { return last_; }

 private:
  std::optional<Failure> last_;
};

void attachOrCreate(Pending& pending) {
  auto& application = outlookValues().gOutlookApp;
  const QString progId = QStringLiteral("Outlook.Application");
  pending.step([&] { application = platform::automation::GetObject<Application>(progId); });
  // First the way through the type library, then by name, newest version first.
  for (const QString& version : {QString(), QStringLiteral(".12"), QStringLiteral(".11"),
                                 QStringLiteral(".10"), QStringLiteral(".9"), QString()}) {
    if (application) return;
    pending.step([&] { application = CreateObject<Application>(progId + version); });
  }
}

[[noreturn]] void endWith(const QString& text, int icon) {
  tolerate([&] { platform::dialogs::Dialogs::current().MsgBox(text, icon, gTitle); });
  subEndProcess();
}

void refuseMissing(const Pending& pending) {
  const Failure failure = pending.failure().value_or(Failure(0, QString()));
  endWith(phrases().LNGO2KNEEDED + vbCrLf + QString::number(failure.number()) + u' ' + failure.description() +
              vbCrLf + QString::number(shellValues().lastLogLine),
          platform::dialogs::vbCritical);
}

void refuseOld(qint16 version) {
  endWith(phrases().LNGO2KNEEDED + vbCrLf + QString::number(version), platform::dialogs::vbCritical);
}

void seeToWindow(Pending& pending, qint32 folderType) {
  OutlookValues& values = outlookValues();
  std::shared_ptr<Explorer> active;
  pending.step([&] { active = values.gOutlookApp->ActiveExplorer(); });
  if (active) return;
  auto& explorers = values.gOutlookApp->Explorers();
  pending.step([&] {
    if (explorers.Count() != 0) return;
    explorers.Add(present(values.gNameSpace).GetDefaultFolder(folderType), olFolderDisplayNormal);
  });
  pending.step([&] { explorers.Item(1)->Activate(); });
}

void useNamespace(Pending& pending) {
  OutlookValues& values = outlookValues();
  qint16 version = 0;
  pending.step([&] { version = fncGetOutlookVersion(); });
  if (version < oldestVersion) refuseOld(version);
  pending.step([&] { values.gNameSpace = values.gOutlookApp->GetNamespace(mapi); });
}

/// kept: the last item is never looked at, and a walk without a match leaves the item it looked at last.
ItemPointer walkForSettings(const Items& items, ItemPointer found) {
  constexpr int walkLimit = 500;
  const int count = items.Count();
  if (count >= walkLimit) return found;
  for (int i = 1; i <= count - 1; ++i) {
    bool matches = false;
    tolerate([&] { found = items.Item(i); });
    tolerate([&] { matches = present(found).Subject() == settingAppointmentName; });
    if (matches) break;
  }
  return found;
}

}  // namespace

void fncConnectOutlook(qint32 folderType) {
  subLog(QStringLiteral("Attempting to start MS Outlook 2000 or later"));
  OutlookValues& values = outlookValues();
  if (values.gOutlookApp) return;
  Pending pending;
  attachOrCreate(pending);
  if (!values.gOutlookApp)
    endWith(QStringLiteral("Please start Outlook manually before you execute this application!"),
            platform::dialogs::vbOKOnly);
  if (!values.gOutlookApp) refuseMissing(pending);
  useNamespace(pending);
  seeToWindow(pending, folderType);
}

qint16 fncGetOutlookVersion() {
  OutlookValues& values = outlookValues();
  if (values.outlookMajorVersion != 0) return values.outlookMajorVersion;
  if (!values.gOutlookApp) fncConnectOutlook(olFolderInbox);
  if (values.outlookMajorVersion != 0) return values.outlookMajorVersion;  // read by the connection
  const QString version = values.gOutlookApp->Version();
  values.outlookMajorVersion = platform::basic::CInt(version.left(version.indexOf(u'.')));
  return values.outlookMajorVersion;
}

QString fncGetUserName() {
  tolerate([] { subGetSafeMailboxName(); });
  if (outlookValues().gCurrentUser.isEmpty()) tolerate([] { subGetUserFromEnvironment(); });
  return outlookValues().gCurrentUser;
}

void subGetSafeMailboxName() try {
  subLog(QStringLiteral("Getting current user full name from mailbox name"));
  OutlookValues& values = outlookValues();
  if (!values.gOutlookApp) fncConnectOutlook(olFolderInbox);
  if (!values.gOutlookApp) subEndProcess();
  const QString store =
      values.gOutlookApp->GetNamespace(mapi)->GetDefaultFolder(olFolderCalendar)->ParentName();
  const QString separator = QStringLiteral(" - ");
  const qsizetype found = store.indexOf(separator);
  if (found >= 0)
    values.gCurrentUser = platform::basic::Trim(store.mid(found + separator.size()));
  else if (store.contains(u','))
    values.gCurrentUser = store;
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subGetSafeMailboxName"));
}

void subGetUserFromEnvironment() {
  const auto shell = CreateObject<platform::scripting::WshShell>(QStringLiteral("Wscript.Shell"));
  // The domain is asked for as well; nothing uses it.
  tolerate([&] { shell->ExpandEnvironmentStrings(QStringLiteral("%USERDOMAIN%")); });
  outlookValues().gCurrentUser = shell->ExpandEnvironmentStrings(QStringLiteral("%USERNAME%"));
}

ItemPointer fncGetSettingAppointment() {
  ItemPointer found;
  Pending pending;
  std::optional<Items> items;
  pending.step([&] {
    const auto& folder = outlookValues().gCalendarFolder;
    if (folder) items = folder->Items();
  });
  if (!items) return nullptr;
  pending.step([&] { found = items->Item(settingAppointmentName); });
  if (pending.failure() && pending.failure()->number() == RPC_E_SERVERFAULT)
    pending.step([&] { found = walkForSettings(*items, found); });
  return found;
}

void subSetOutlookHooks() {
  shellValues().outlook.gOutlookApp = [] { return outlookValues().gOutlookApp; };
  shellValues().outlook.fncConnectOutlook = [](qint32 folderType) { fncConnectOutlook(folderType); };
}

}  // namespace hourbook
