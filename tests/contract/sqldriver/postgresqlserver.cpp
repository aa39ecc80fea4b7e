#include "postgresqlserver.h"

#include "tests/support/quickfolder.h"

#include <QDeadlineTimer>

#include <csignal>
#include <grp.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace contract {

namespace {

constexpr uid_t nobody = 65534;
constexpr int patienceMs = 60000;

const QString readyText = QStringLiteral("database system is ready to accept connections");

}  // namespace

PostgresqlServer::PostgresqlServer() : folder_(tests::quickFolder(QStringLiteral("postgresql"))) {
  make();
  if (problem_.isEmpty()) start();
}

PostgresqlServer::~PostgresqlServer() {
  if (server_.state() == QProcess::NotRunning) return;
  ::kill(static_cast<pid_t>(server_.processId()), SIGINT);  // without waiting for connections
  if (!server_.waitForFinished(patienceMs)) {
    server_.kill();
    server_.waitForFinished();
  }
}

/// The newest of the machine's.
QString PostgresqlServer::program(const QString& name) const {
  const QDir versions(QStringLiteral("/usr/lib/postgresql"));
  int newest = 0;
  for (const QString& version : versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
    newest = qMax(newest, version.toInt());
  return versions.filePath(QStringLiteral("%1/bin/%2").arg(newest).arg(name));
}

void PostgresqlServer::prepare(QProcess& process) const {
  process.setWorkingDirectory(folder_.path());
  process.setProcessChannelMode(QProcess::MergedChannels);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
  environment.insert(QStringLiteral("TMPDIR"), folder_.path());
  process.setProcessEnvironment(environment);
  process.setChildProcessModifier([parent = ::getpid()] {
    if (::getuid() == 0)
      if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) ::_exit(97);
    // asked for after the change of user, which would take it away again
    ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
    if (::getppid() != parent) ::_exit(98);
  });
}

/// Everybody without a password, but the user "guarded".
void PostgresqlServer::letIn(const QString& data) {
  QFile rules(data + u"/pg_hba.conf"_qs);
  if (!rules.open(QIODevice::WriteOnly) ||
      rules.write("local all guarded scram-sha-256\nlocal all all trust\n") < 0)
    problem_ = rules.errorString();
}

void PostgresqlServer::make() {
  if (!folder_.isValid()) {
    problem_ = folder_.errorString();
    return;
  }
  if (::getuid() == 0 && ::chown(QFile::encodeName(folder_.path()).constData(), nobody, nobody) != 0) {
    problem_ = QStringLiteral("The folder cannot be given to an ordinary user.");
    return;
  }
  const QString data = folder_.filePath(QStringLiteral("data"));
  QProcess maker;
  prepare(maker);
  maker.start(
      program(QStringLiteral("initdb")),
      {QStringLiteral("-D"), data, QStringLiteral("-U"), user(), QStringLiteral("-A"),
       QStringLiteral("trust"), QStringLiteral("-E"), QStringLiteral("UTF8"), QStringLiteral("--no-locale"),
       QStringLiteral("--no-sync"), QStringLiteral("--wal-segsize=1")});
  if (!maker.waitForFinished(patienceMs) || maker.exitCode() != 0) {
    problem_ = maker.program() + u": "_qs + maker.errorString() + u' ' + QString::fromUtf8(maker.readAll());
    maker.kill();
    maker.waitForFinished();
    return;
  }
  letIn(data);
}

void PostgresqlServer::kill() {
  ::kill(static_cast<pid_t>(server_.processId()), SIGQUIT);
  if (!server_.waitForFinished(patienceMs)) problem_ = server_.errorString();
}

void PostgresqlServer::restart() {
  if (server_.state() == QProcess::NotRunning) start();
}

void PostgresqlServer::start() {
  prepare(server_);
  QStringList arguments{QStringLiteral("-D"), folder_.filePath(QStringLiteral("data")), QStringLiteral("-F"),
                        QStringLiteral("-k"), folder_.path()};
  for (const char* setting :
       {"listen_addresses=", "max_connections=20", "shared_buffers=16MB", "min_wal_size=2MB",
        "max_wal_size=16MB", "full_page_writes=off", "autovacuum=off", "log_min_messages=log",
        "log_min_error_statement=panic", "dynamic_shared_memory_type=mmap", "max_parallel_workers=0"})
    arguments << QStringLiteral("-c") << QString::fromLatin1(setting);
  server_.start(program(QStringLiteral("postgres")), arguments);
  const QDeadlineTimer deadline(patienceMs);
  QString said;
  while (!said.contains(readyText)) {
    if (server_.state() == QProcess::NotRunning ||
        !server_.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
      problem_ = server_.program() + u": "_qs + server_.errorString() + u' ' + said +
                 QString::fromUtf8(server_.readAll());
      return;
    }
    said += QString::fromUtf8(server_.readAll());
  }
  // from here on nobody reads what it says; a full pipe would stop it
  server_.closeReadChannel(QProcess::StandardOutput);
}

}  // namespace contract
