#include "database/modCreateSQLDB.h"

#include "database/DatabaseValues.h"
#include "database/frmSQLLogon.h"
#include "platform/automation/components.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "platform/process/process.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::ado::Command;
using platform::ado::Connection;
using platform::automation::CreateObject;

namespace {

constexpr qint32 errNotSupported = 445;  // "Object doesn't support this action"

/// The failure that stands: the newest one. kept: nothing takes it away again, so that after a failed attempt
/// each further one counts as failed too.
class StandingError {
 public:
  template <class Statements>
  void tryTo(Statements&& statements) {
    if (auto failure = tolerate(statements)) standing_ = std::move(failure);
  }
  bool stands() const { return standing_.has_value(); }

 private:
  std::optional<Failure> standing_;
};

void stopBox(const QString& text) {
  platform::dialogs::Dialogs::current().MsgBox(text, platform::dialogs::vbCritical, gTitle);
}

QString readScript(const QString& path) {
  const auto stream = shellValues().gFileSystem->OpenTextFile(path, 1, false);
  QString script = stream->ReadAll();
  stream->Close();
  return script;
}

/// kept: wherever the two letters stand next to each other, a word or name included, a piece ends.
void runPieces(const QString& script, const std::shared_ptr<Connection>& connection, StandingError& error) {
  std::shared_ptr<Command> command;
  error.tryTo([&] {
    command = CreateObject<Command>(u"ADODB.Command"_s);
    command->setActiveConnection(connection);
    command->CommandType = platform::ado::adCmdText;
  });
  for (const QString& piece : platform::basic::Split(script, u"GO"_s)) {
    if (command)
      error.tryTo([&] {
        command->CommandText = piece;
        command->Execute();
      });
    if (!error.stands()) continue;
    stopBox(u"Failed to run sql command "_s + platform::basic::vbCrLf + piece);
    return;
  }
}

}  // namespace

QString fncCreateSQLDB(const QString& strDBName) {
  const auto& ask = databaseValues().frmSQLLogon;
  if (!ask)
    throw Failure(errNotSupported,
                  u"A database on a server cannot be made here: there is no dialog to ask for the server."_s);
  subSetupFS();
  const QString path =
      fncStripSlash(platform::process::Process::current().programFolder()) + u'\\' + creationScriptName;
  if (!shellValues().gFileSystem->FileExists(path)) {
    stopBox(u"Failed to find file "_s + path);
    return {};
  }
  StandingError error;
  QString script;
  error.tryTo([&] { script = readScript(path); });
  frmSQLLogon form;  // for all attempts: what was typed stands when it is shown again
  while (true) {
    form.blnNewDB = true;
    ask(form);
    const QString text = form.strConnection;
    if (text.isEmpty()) continue;
    std::shared_ptr<Connection> connection;
    error.tryTo([&] {
      connection = CreateObject<Connection>(u"ADODB.Connection"_s);
      connection->setConnectionString(text);
      connection->Open();
    });
    if (error.stands()) {
      // kept: with the password, which the one who reads this has just typed
      stopBox(u"Connection failed with connection string "_s + text);
      continue;
    }
    const QString typed = form.txtDatabase.Text();
    if (!typed.isEmpty()) script.replace(strDBName, typed);
    runPieces(script, connection, error);
    if (!error.stands()) return text + u";Initial Catalog="_s + typed;
  }
}

}  // namespace hourbook
