#include "companions/settings/guarded.h"

#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "platform/process/process.h"
#include "shell/ShellValues.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::dialogs::Dialogs;
using platform::process::EndSignal;
using platform::process::Process;

namespace {

/// The process as it is, but for its end.
class Unending : public Process {
 public:
  explicit Unending(Process& real) : real_(real) {}
  [[noreturn]] void end() override { throw EndSignal{}; }
  bool start(const QString& program, const QStringList& arguments, QString* error) override {
    return real_.start(program, arguments, error);
  }
  bool open(const QString& urlOrPath, QString* error) override { return real_.open(urlOrPath, error); }
  QString expandEnvironment(const QString& text) override { return real_.expandEnvironment(text); }
  QString programFolder() const override { return real_.programFolder(); }

 private:
  Process& real_;
};

/// The dialogs as they are, but for the failure report.
class WithoutReport : public Dialogs {
 public:
  explicit WithoutReport(Dialogs& real) : real_(real) {}
  int MsgBox(const QString& text, int options, const QString& title) override {
    return shellValues().gInErrorReport ? platform::dialogs::vbNo : real_.MsgBox(text, options, title);
  }
  QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) override {
    return real_.InputBox(prompt, title, defaultText);
  }
  int DoAlert(const QString& title, const QString& text, int buttons, int icon) override {
    return real_.DoAlert(title, text, buttons, icon);
  }

 private:
  Dialogs& real_;
};

/// What the failure report would have told, taken out of its text.
platform::Failure reported() {
  const QString& line = platform::basic::vbCrLf;
  const QString marker = phrases().LNGERRSYSTEMERROR + u" :"_s + line;
  const QString body = shellValues().gErrorBody;
  const qsizetype from = body.indexOf(marker);
  const qsizetype to = body.lastIndexOf(line + u'#');
  if (from < 0 || to < from) return platform::Failure(0, body);
  const qint32 number = body.mid(to + line.size() + 1).section(line, 0, 0).toInt();
  return platform::Failure(number, body.mid(from + marker.size(), to - from - marker.size()));
}

}  // namespace

void guarded(const std::function<void()>& work) {
  Unending process(Process::current());
  WithoutReport dialogs(Dialogs::current());
  const platform::process::ScopedProcess processInForce(process);
  const platform::dialogs::ScopedDialogs dialogsInForce(dialogs);
  ShellValues& values = shellValues();
  try {
    work();
  } catch (const EndSignal&) {
    const bool wasReport = values.gInErrorReport;
    values.gInErrorReport = false;
    if (wasReport) throw reported();
    throw StepEnded(0, u"The step was ended: "_s + values.gLastLogText);
  }
}

}  // namespace hourbook
