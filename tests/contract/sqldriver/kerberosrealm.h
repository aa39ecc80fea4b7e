#pragma once
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace contract {

/// A Kerberos realm of this test's own, in a temporary folder, with one user and one service. Its server
/// listens on this machine alone, from its making to its end, and ends with the program when that one
/// crashes.
class KerberosRealm {
 public:
  explicit KerberosRealm(const QString& service);
  ~KerberosRealm();
  KerberosRealm(const KerberosRealm&) = delete;
  KerberosRealm& operator=(const KerberosRealm&) = delete;

  /// Why there is none; empty when it runs.
  const QString& problem() const { return problem_; }
  // for the environment of who is to use it
  QByteArray configuration() const { return folder_.filePath(QStringLiteral("krb5.conf")).toUtf8(); }
  QByteArray tickets() const { return "FILE:" + folder_.filePath(QStringLiteral("tickets")).toUtf8(); }
  /// Gets the user's ticket, as kinit does with the password.
  void logIn();
  /// The services that the user has tickets for.
  QString heldTickets();

 private:
  bool run(const QString& program, const QStringList& arguments, const QByteArray& input = {});
  void prepare(QProcess& process) const;
  void write(const QString& name, const QString& text);
  void configure();
  bool start();

  QTemporaryDir folder_;
  QProcess server_;
  QString problem_, said_;
};

}  // namespace contract
