#pragma once
#include "platform/basic/failure.h"

#include <QString>

#include <source_location>

namespace hourbook {

/// Notes the step that begins: the newest text, and the line it came from, are quoted when a failure ends the
/// program. An empty text is noted too.
void subLog(const QString& text, std::source_location where = std::source_location::current());
QString fncLastLogText();
/// Appends a line to `NorrdalenLog.txt` in the program's folder. Does nothing for an empty text; failures are
/// passed over.
void subWriteLogLine(const QString& text);

/// The end of every failed procedure: tells the user, offers an error mail, and ends the process whatever the
/// answer. A second failure while the dialog is up ends the process without a word.
[[noreturn]] void subHandleError(const QString& description, qint32 number, qint16 line,
                                 const QString& procedure);
/// Likewise; the line is that of the newest log step.
[[noreturn]] void subHandleError(const platform::Failure& failure, const QString& procedure);

/// Ends the process at once: no form is unloaded, nothing is saved.
[[noreturn]] void subEndProcess();

/// Saves and shows a mail with `gErrorBody` to the support mailbox. Ends the process.
[[noreturn]] void subSendErrorMail();

/// Name and version of the operating system: "Linux 6.1", "Windows NT 10.0".
QString fncOSName();
/// How Windows is called by its platform number (2: the NT line, 1: the 95 line); empty for any other.
QString fncWindowsName(qint32 platformId, qint32 majorVersion, qint32 minorVersion);

/// "major.minor.revision" of the program.
QString fncProgramVersion();
/// Where error mails go. Fixed when the program is built (HOURBOOK_SUPPORT_MAILBOX).
QString fncSupportMailbox();

}  // namespace hourbook
