#pragma once
#include "tdsanswer.h"
#include "tdsrequest.h"

#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace contract {

/// The wire of an SQL Server without the server: speaks its protocol (TDS 7.4, not encrypted) on this machine
/// alone and answers as the test has written it. It knows no SQL: it proves what is sent and how answers,
/// failures and broken connections are taken, and nothing of what a real server makes of a statement.
///
/// Runs on a thread of its own, one connection after the other, from its making to its end.
class TdsPeer {
 public:
  using Script = std::function<TdsAnswer(const TdsRequest&)>;
  TdsPeer();
  ~TdsPeer();
  TdsPeer(const TdsPeer&) = delete;
  TdsPeer& operator=(const TdsPeer&) = delete;

  int port() const { return port_; }
  /// To be set before the program connects. What sets up a session, and what no script is there for, is
  /// answered with nothing but its end.
  void answerWith(Script script) { script_ = std::move(script); }
  /// The login is refused with this message.
  void refuseLogin(int number, const QString& text) { refusal_ = std::pair(number, text); }
  /// Nothing is ever said, not even to the first greeting.
  void beDeaf() { deaf_ = true; }

  TdsLogin login() const;
  int logins() const;
  QList<TdsRequest> requests() const;  // without those that set up a session
  QStringList statements() const;
  QString setUp() const;  // the statement that set up the newest session

 private:
  void work();
  void serve(int socket);
  std::optional<std::pair<int, QByteArray>> receive(int socket);
  bool awaitInput(int socket) const;
  void greet(int socket);
  bool takeLogin(int socket, const QByteArray& body);
  bool answer(int socket, const TdsRequest& request);
  bool keepSilent(int socket, bool answersAttention);

  int listener_ = -1;
  int stop_[2] = {-1, -1};
  int port_ = 0;
  Script script_;
  std::optional<std::pair<int, QString>> refusal_;
  bool deaf_ = false;
  mutable std::mutex mutex_;
  TdsLogin login_;
  int logins_ = 0;
  QList<TdsRequest> requests_;
  QString setUp_;
  std::thread thread_;
};

}  // namespace contract
