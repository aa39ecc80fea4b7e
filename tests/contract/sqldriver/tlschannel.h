#pragma once
#include <QByteArray>

#include <memory>

struct ssl_ctx_st;
struct ssl_st;

namespace contract {

/// A server's end of an encrypted connection, with a certificate that it makes itself and nobody knows. It
/// touches no socket: what has come is handed to it, and what it has to say is taken from it.
class TlsChannel {
 public:
  enum class Newest { Tls12, Tls13 };
  explicit TlsChannel(Newest newest);
  ~TlsChannel();
  TlsChannel(const TlsChannel&) = delete;
  TlsChannel& operator=(const TlsChannel&) = delete;

  /// What stands in the bytes that have come; nothing while the two still agree on how to encrypt.
  QByteArray read(const QByteArray& received);
  bool isReady() const;
  /// What is to be sent for the text, in as few records as it takes: each holds up to 16 KB.
  QByteArray encrypted(const QByteArray& text);
  /// What is to be sent by itself.
  QByteArray pending();

 private:
  struct Free {
    void operator()(ssl_ctx_st* context) const;
    void operator()(ssl_st* channel) const;
  };
  std::unique_ptr<ssl_ctx_st, Free> context_;
  std::unique_ptr<ssl_st, Free> channel_;
};

}  // namespace contract
