#pragma once
#include "database/frmSQLLogon.h"
#include "databaseworld.h"
#include "recordingdriver.h"
#include "sqlserverdouble.h"

namespace tests {

/// The world of the database code beside a server "server" of its own, with the creation script in the
/// program's folder.
class ServerWorld : public DatabaseWorld {
 public:
  ServerWorld() {
    using namespace platform::sql;
    const auto recording = std::make_shared<RecordingDriver>(server, sent);
    drivers->add(QStringLiteral("SQLOLEDB.1"), std::make_shared<FailingDriver>(recording, plan));
    database->frmSQLLogon = [this](hourbook::frmSQLLogon& form) {
      form.Show([this](hourbook::frmSQLLogon& shown) {
        ++asked;
        if (!answers.isEmpty()) answers.takeFirst()(shown);
      });
    };
  }

  static QString connectionTo(const QString& catalog) {
    return QStringLiteral(
               "Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data "
               "Source=server;Initial Catalog=") +
           catalog;
  }
  /// An answer to the logon dialog: the trusted connection to "server", or the user and password.
  static std::function<void(hourbook::frmSQLLogon&)> logOn(const QString& database,
                                                           const QString& password = {},
                                                           const QString& server = QStringLiteral("server")) {
    return [=](hourbook::frmSQLLogon& form) {
      form.txtServer.setText(server);
      form.txtDatabase.setText(database);
      form.chkIntegratedSecurity.setValue(password.isEmpty() ? 1 : 0);
      form.txtUserName.setText(QStringLiteral("ann"));
      form.txtPassword.setText(password);
      form.cmdOK.click();
    };
  }
  static void cancel(hourbook::frmSQLLogon& form) { form.cmdCancel.click(); }
  void installScript(const QByteArray& text) const {
    QFile file(world.process.folder + u'/' + hourbook::creationScriptName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }
  static QByteArray shippedScript() {
    QFile file(QStringLiteral(HOURBOOK_RESOURCES "/CreateDBHB.sql"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  /// A database of the first release: what an Access one of that age has, but on the server.
  void createOldOnServer(const QString& name = QStringLiteral("hours")) const {
    server->create(name);
    const auto session = server->open(name);
    for (const hourbook::SchemaTable& table : hourbook::fncSchemaTables()) {
      QStringList columns;
      for (const auto& column : table.columnsOf(hourbook::SchemaState::First)) columns.append(column.strName);
      if (columns.isEmpty()) continue;
      columns.first() += QStringLiteral(" INTEGER PRIMARY KEY AUTOINCREMENT");
      session->execute(QStringLiteral("CREATE TABLE %1 (%2)").arg(table.strName, columns.join(u", ")));
    }
  }

  std::shared_ptr<SqlServerDouble> server = std::make_shared<SqlServerDouble>();
  RecordingDriver::Record sent = std::make_shared<QStringList>();
  QList<std::function<void(hourbook::frmSQLLogon&)>> answers;
  int asked = 0;
};

}  // namespace tests
