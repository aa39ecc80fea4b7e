#pragma once
#include "outlook/OutlookValues.h"

namespace hourbook {

/// Subject of the appointment that carries the personal settings.
inline const QString settingAppointmentName = QStringLiteral("Outlook Hourbook 3 Personal Settings");

/// Fills `gOutlookApp` and `gNameSpace` and sees to an open Outlook window; does nothing when connected
/// already. The folder type (9 calendar, 6 inbox) says which folder a newly opened window shows. Ends the
/// process after a message when there is no Outlook, or one older than major version 9.
void fncConnectOutlook(qint32 folderType);
/// Major version of Outlook; read at most once a run. 0 when it cannot be read.
qint16 fncGetOutlookVersion();
/// The user's name, from the mailbox or else from the environment; also stored in `gCurrentUser`.
QString fncGetUserName();
/// Fills `gCurrentUser` from the mailbox's name, or leaves it as it was.
void subGetSafeMailboxName();
/// Fills `gCurrentUser` from the log-on name.
void subGetUserFromEnvironment();
/// The settings appointment of `gCalendarFolder`, or null.
std::shared_ptr<platform::outlook::AppointmentItem> fncGetSettingAppointment();

/// Lets the failure report reach Outlook. Called once, by `Main`.
void subSetOutlookHooks();

}  // namespace hourbook
