#pragma once
#include "tdsanswer.h"
#include "tdsrequest.h"
#include "tlschannel.h"

#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace contract {

/// The wire of an SQL Server without the server: speaks its protocol (TDS 7.4) on this machine alone and
/// answers as the test has written it. It knows no SQL: it proves what is sent and how answers,
/// failures and broken connections are taken, and nothing of what a real server makes of a statement.
///
/// Runs on a thread of its own, one connection after the other, from its making to its end.
class TdsPeer {
 public:
  using Script = std::function<TdsAnswer(const TdsRequest&)>;
  /// At an address of this machine.
  explicit TdsPeer(const QString& address = QStringLiteral("127.0.0.1"));
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
  /// What is encrypted, unless the program asks for all.
  enum class Encryption { None, Login, All };
  void encrypt(Encryption what) { encryption_ = what; }
  /// The size of the packets that the two agree on.
  void usePackets(int bytes) { packetSize_ = bytes; }

  /// What was asked is not kept: a long run would fill the memory.
  void forgetRequests() { keepsRequests_ = false; }

  TdsLogin login() const;
  int logins() const;
  /// Did the newest login come encrypted, and is all that has followed?
  bool isLoginEncrypted() const;
  bool isAllEncrypted() const;
  QList<TdsRequest> requests() const;  // without those that set up a session
  QStringList statements() const;
  QString setUp() const;  // the statement that set up the newest session

 private:
  /// One connection.
  struct Line {
    int socket = -1;
    std::unique_ptr<TlsChannel> channel;
    bool encrypted = false;  // from now on
    bool keepsEncrypted = false;
    QByteArray received;
  };
  void work();
  void serve(int socket);
  std::optional<std::pair<int, QByteArray>> receive(Line& line);
  QByteArray read(Line& line, qsizetype size);
  void send(Line& line, int type, const QByteArray& body, bool whole, qsizetype most = -1) const;
  bool awaitInput(int socket) const;
  void greet(Line& line, const QByteArray& asked);
  void shakeHands(Line& line, const QByteArray& said) const;
  bool takeLogin(Line& line, const QByteArray& body);
  bool answer(Line& line, const TdsRequest& request);
  bool keepSilent(Line& line, bool answersAttention);

  int listener_ = -1;
  int stop_[2] = {-1, -1};
  int port_ = 0;
  Script script_;
  std::optional<std::pair<int, QString>> refusal_;
  bool deaf_ = false;
  bool keepsRequests_ = true;
  Encryption encryption_ = Encryption::None;
  int packetSize_ = 4096;
  mutable std::mutex mutex_;
  TdsLogin login_;
  int logins_ = 0;
  bool loginEncrypted_ = false, allEncrypted_ = false;
  QList<TdsRequest> requests_;
  QString setUp_;
  std::thread thread_;
};

}  // namespace contract
