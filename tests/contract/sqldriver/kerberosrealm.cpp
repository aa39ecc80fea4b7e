#include "kerberosrealm.h"

#include <QDeadlineTimer>
#include <QFile>

#include <arpa/inet.h>
#include <csignal>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace contract {

namespace {

constexpr int patienceMs = 60000;
const QString realm = QStringLiteral("HOURBOOK.TEST");
const QString user = QStringLiteral("ann");
const QString password = QStringLiteral("secret1");

int freePort() {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(descriptor, plain, size) != 0 || ::getsockname(descriptor, plain, &size) != 0)
    qFatal("no socket on this machine");
  ::close(descriptor);
  return ntohs(address.sin_port);
}

}  // namespace

KerberosRealm::KerberosRealm(const QString& service) {
  configure();
  const QString edit = QStringLiteral("kadmin.local");
  const QStringList ofRealm{QStringLiteral("-r"), realm, QStringLiteral("-q")};
  if (!problem_.isEmpty() ||
      !run(QStringLiteral("kdb5_util"), {QStringLiteral("create"), QStringLiteral("-r"), realm,
                                         QStringLiteral("-s"), QStringLiteral("-P"), password}) ||
      !run(edit, ofRealm + QStringList{QStringLiteral("addprinc -pw %1 %2").arg(password, user)}) ||
      !run(edit, ofRealm + QStringList{u"addprinc -randkey "_qs + service}))
    return;
  constexpr int mostStarts = 3;  // another program may take the port just before
  for (int times = 1; !start() && times < mostStarts; ++times) configure();
}

void KerberosRealm::configure() {
  problem_.clear();
  const QString address = QStringLiteral("127.0.0.1:%1").arg(freePort());
  write(QStringLiteral("krb5.conf"),
        QStringLiteral(
            "[libdefaults]\n default_realm = %1\n dns_lookup_realm = false\n dns_lookup_kdc = false\n"
            " dns_canonicalize_hostname = false\n rdns = false\n udp_preference_limit = 1\n"
            "[realms]\n %1 = {\n  kdc = %2\n }\n[domain_realm]\n .hourbook.test = %1\n")
            .arg(realm, address));
  write(QStringLiteral("kdc.conf"),
        QStringLiteral(
            "[kdcdefaults]\n kdc_listen = %2\n kdc_tcp_listen = %2\n[realms]\n %1 = {\n"
            "  database_name = %3/principals\n  key_stash_file = %3/stash\n  acl_file = %3/acl\n }\n")
            .arg(realm, address, folder_.path()));
}

KerberosRealm::~KerberosRealm() {
  if (server_.state() == QProcess::NotRunning) return;
  server_.terminate();
  if (server_.waitForFinished(patienceMs)) return;
  server_.kill();
  server_.waitForFinished();
}

void KerberosRealm::write(const QString& name, const QString& text) {
  QFile file(folder_.filePath(name));
  if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) problem_ = file.errorString();
}

void KerberosRealm::prepare(QProcess& process) const {
  process.setProcessChannelMode(QProcess::MergedChannels);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
  environment.insert(QStringLiteral("PATH"),
                     environment.value(QStringLiteral("PATH")) + u":/usr/sbin:/sbin"_qs);
  environment.insert(QStringLiteral("KRB5_CONFIG"), QString::fromUtf8(configuration()));
  environment.insert(QStringLiteral("KRB5_KDC_PROFILE"), folder_.filePath(QStringLiteral("kdc.conf")));
  environment.insert(QStringLiteral("KRB5CCNAME"), QString::fromUtf8(tickets()));
  process.setProcessEnvironment(environment);
  process.setChildProcessModifier([parent = ::getpid()] {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(98);
  });
}

/// Through the shell's own search, which sees the folders of administrators' programs as well.
bool KerberosRealm::run(const QString& program, const QStringList& arguments, const QByteArray& input) {
  QProcess process;
  prepare(process);
  process.start(QStringLiteral("/usr/bin/env"), QStringList{program} + arguments);
  process.write(input);
  process.closeWriteChannel();
  const bool ended = process.waitForFinished(patienceMs);
  said_ = QString::fromUtf8(process.readAll());
  if (ended && process.exitCode() == 0) return true;
  problem_ = program + u": "_qs + process.errorString() + u' ' + said_;
  return false;
}

bool KerberosRealm::start() {
  prepare(server_);
  server_.start(QStringLiteral("/usr/bin/env"), {QStringLiteral("krb5kdc"), QStringLiteral("-n")});
  const QDeadlineTimer deadline(patienceMs);
  QString said;
  while (!said.contains(u"starting")) {
    if (!server_.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
      problem_ = u"krb5kdc: "_qs + server_.errorString() + u' ' + said + QString::fromUtf8(server_.readAll());
      server_.kill();
      server_.waitForFinished();
      return false;
    }
    said += QString::fromUtf8(server_.readAll());
  }
  server_.closeReadChannel(QProcess::StandardOutput);
  return true;
}

void KerberosRealm::logIn() {
  run(QStringLiteral("kinit"), {user}, password.toUtf8() + '\n');
}

QString KerberosRealm::heldTickets() {
  run(QStringLiteral("klist"), {});
  return said_;
}

}  // namespace contract
