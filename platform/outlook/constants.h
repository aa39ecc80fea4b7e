#pragma once
#include <QString>

namespace platform::outlook {
inline constexpr int olMailItem = 0;
inline constexpr int olAppointmentItem = 1;
inline constexpr int olFolderInbox = 6;
inline constexpr int olFolderCalendar = 9;
inline constexpr int olFolderDisplayNormal = 0;
inline constexpr int olNormal = 0;
inline constexpr int olText = 1;
inline constexpr int olNumber = 3;
inline constexpr int olDateTime = 5;
inline constexpr int olYesNo = 6;
inline constexpr int olSave = 0;
inline constexpr int olDiscard = 1;
inline constexpr qint32 RPC_E_SERVERFAULT = static_cast<qint32>(0x80010105);

inline const QString classAppointment = QStringLiteral("IPM.Appointment");
/// An occurrence of a series that was changed by itself.
inline const QString classException = QStringLiteral("IPM.OLE.CLASS.{00061055-0000-0000-C000-000000000046}");
inline const QString classMeetingRequest = QStringLiteral("IPM.Schedule.Meeting.Request");
}  // namespace platform::outlook
