#pragma once
#include <QByteArray>
#include <QString>

#include <atomic>
#include <thread>

namespace contract {

/// Stands before a PostgreSQL server on this machine and encrypts what it says, as a pooler or a load
/// balancer does: in records of up to 16 KB, where the server itself would use its buffer of 8 KB. Each
/// answer goes out as one record of a length that the test tells, and the rest in as few as it takes.
///
/// Runs on a thread of its own, one connection after the other, from its making to its end.
class TlsProxy {
 public:
  /// The server's folder, in which its socket stands.
  explicit TlsProxy(const QString& serversFolder);
  ~TlsProxy();
  TlsProxy(const TlsProxy&) = delete;
  TlsProxy& operator=(const TlsProxy&) = delete;

  int port() const { return port_; }
  void beginAnswersWith(int bytes) { first_ = bytes; }
  /// Of the next answers only so many bytes of the wire arrive, and the connection breaks then.
  void breakAfter(int bytes) { breakAfter_ = bytes; }

 private:
  void work();
  void serve(int client);
  int toServer() const;

  QByteArray server_;
  int listener_ = -1;
  int stop_[2] = {-1, -1};
  int port_ = 0;
  std::atomic<int> first_ = 0, breakAfter_ = -1;
  std::thread thread_;
};

}  // namespace contract
