#include "shell/modErrorReport.h"

#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "platform/outlook/application.h"
#include "platform/process/process.h"
#include "platform/scripting/filesystem.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

#include <QSysInfo>

#include <cstdlib>

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::dialogs;
using platform::basic::vbCrLf;
using platform::basic::vbTab;

namespace {

QString heading() {
  return phrases().LNGERRINAPP + u' ' + gTitle + u" ("_s + fncOSName() + u')' + vbCrLf + QString(70, u'-') +
         vbCrLf + vbCrLf;
}

QString errorBody(const QString& description, qint32 number, qint16 line, const QString& procedure) {
  const ShellValues& values = shellValues();
  return QStringList{values.LNGERRTHISERROR + u" :"_s,
                     values.gLastLogText,
                     QString(),
                     values.LNGERRSYSTEMERROR + u" :"_s,
                     description,
                     u'#' + QString::number(number),
                     QString(),
                     values.LNGSUBROUTINE + u" : "_s + procedure + u' ',
                     values.LNGERRLINE + u": "_s + QString::number(line)}
      .join(vbCrLf);
}

std::shared_ptr<platform::outlook::Application> outlookApp() {
  const auto& ask = shellValues().outlook.gOutlookApp;
  return ask ? ask() : nullptr;
}

platform::outlook::Application& connectedOutlook() {
  return present(outlookApp());
}

[[noreturn]] void sendReport() {
  tolerate([] {
    const auto& connect = shellValues().outlook.fncConnectOutlook;
    if (!outlookApp() && connect) connect(platform::outlook::olFolderInbox);
  });
  tolerate([] {
    shellValues().gErrorBody +=
        vbCrLf + QStringLiteral("Outlook Version: ") + connectedOutlook().Version() + vbCrLf;
  });
  subSendErrorMail();
}

}  // namespace

void subLog(const QString& text, std::source_location where) {
  ShellValues& values = shellValues();
  values.gLastLogText = text;
  values.lastLogLine = static_cast<qint16>(where.line());
  if (values.gLogToFile) subWriteLogLine(text);
}

QString fncLastLogText() {
  return shellValues().gLastLogText;
}

void subWriteLogLine(const QString& text) {
  if (text.isEmpty()) return;
  tolerate([&] {
    // A file-system object of its own: the shared one logs while it is being made.
    platform::scripting::FileSystemObject files;
    const QString path = platform::process::Process::current().programFolder() + u"\\NorrdalenLog.txt"_s;
    constexpr int forAppending = 8;
    const auto stream = files.OpenTextFile(path, forAppending, true);
    stream->Write(gTitle + vbTab + platform::basic::CStr(platform::basic::Now()) + vbTab + text + vbCrLf);
    stream->Close();
  });
}

void subHandleError(const QString& description, qint32 number, qint16 line, const QString& procedure) {
  // A failure in here is passed over: what counts is that the process ends.
  tolerate([&] {
    ShellValues& values = shellValues();
    if (values.gInErrorReport) return;
    QString question;
    tolerate([&] { question = heading(); });
    tolerate([&] { values.gErrorBody = errorBody(description, number, line, procedure); });
    question += values.gErrorBody + vbCrLf + vbCrLf + values.LNGERRSENDREPORT + u'?';
    values.gInErrorReport = true;
    int answer = vbNo;
    tolerate([&] { answer = Dialogs::current().MsgBox(question, vbYesNo, gTitle); });
    if (answer == vbYes) sendReport();
  });
  subEndProcess();
}

void subHandleError(const platform::Failure& failure, const QString& procedure) {
  const qint16 line = Shared<ShellValues>::exists() ? shellValues().lastLogLine : qint16(0);
  subHandleError(failure.description(), failure.number(), line, procedure);
}

void subEndProcess() {
  platform::process::Process::current().end();
  std::abort();  // not reached: the compiler does not see through a virtual function
}

void subSendErrorMail() {
  std::shared_ptr<platform::outlook::MailItem> mail;
  bool failed = false;
  const auto step = [&failed](const auto& statement) { failed |= tolerate(statement).has_value(); };
  step([&] { mail = connectedOutlook().CreateItem(platform::outlook::olMailItem); });
  if (mail) {
    step([&] { mail->To = fncSupportMailbox(); });
    step([&] {
      mail->Subject =
          QStringLiteral("Error in ") + gTitle + u' ' + fncProgramVersion() + u" ("_s + fncOSName() + u')';
    });
    step([&] { mail->Body = shellValues().gErrorBody; });
    step([&] { mail->Save(); });
    step([&] { mail->Display(); });
  }
  if (failed || !mail) {
    tolerate([] {
      Dialogs::current().MsgBox(QStringLiteral("Failed to send error email using MS Outlook!"), vbCritical,
                                gTitle);
    });
  }
  subEndProcess();
}

QString fncOSName() {
  const QString kernel = QSysInfo::kernelType();
  const QString major = QSysInfo::kernelVersion().section(u'.', 0, 0);
  const QString minor = QSysInfo::kernelVersion().section(u'.', 1, 1);
  constexpr qint32 windowsNt = 2;
  if (kernel == u"winnt"_s) return fncWindowsName(windowsNt, major.toInt(), minor.toInt());
  return kernel.left(1).toUpper() + kernel.mid(1) + u' ' + major + u'.' + minor;
}

QString fncWindowsName(qint32 platformId, qint32 majorVersion, qint32 minorVersion) {
  if (platformId == 2)
    return QStringLiteral("Windows NT ") + QString::number(majorVersion) + u'.' +
           QString::number(minorVersion);
  if (platformId != 1) return {};
  switch (minorVersion) {
    case 0:
      return QStringLiteral("Windows 95");
    case 10:
      return QStringLiteral("Windows 98");
    case 90:
      return QStringLiteral("Windows Me");
    default:
      return {};
  }
}

QString fncProgramVersion() {
  return QStringLiteral(HOURBOOK_VERSION);
}

QString fncSupportMailbox() {
  return QStringLiteral(HOURBOOK_SUPPORT_MAILBOX);
}

}  // namespace hourbook
