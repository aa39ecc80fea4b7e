#include "tlsproxy.h"

#include "tlschannel.h"

#include <QFile>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace contract {

namespace {

constexpr qsizetype sslRequestSize = 8;
constexpr size_t pieceSize = 65536;

bool sendAll(int socket, const QByteArray& bytes) {
  for (qsizetype at = 0; at < bytes.size();) {
    const ssize_t sent =
        ::send(socket, bytes.constData() + at, static_cast<size_t>(bytes.size() - at), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    at += sent;
  }
  return true;
}

QByteArray received(int socket, size_t most) {
  QByteArray bytes(static_cast<qsizetype>(most), '\0');
  const ssize_t got = ::recv(socket, bytes.data(), most, 0);
  bytes.truncate(got > 0 ? got : 0);
  return bytes;
}

/// Does it end in the server's word that it waits for the next statement?
bool isWhole(const QByteArray& answer) {
  constexpr qsizetype readySize = 6;
  return answer.size() >= readySize && answer[answer.size() - readySize] == 'Z' &&
         answer.mid(answer.size() - readySize + 1, 4) == QByteArray("\0\0\0\5", 4);
}

}  // namespace

TlsProxy::TlsProxy(const QString& serversFolder)
    : server_(QFile::encodeName(serversFolder + u"/.s.PGSQL.5432"_qs)) {
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener_, plain, size) != 0 || ::listen(listener_, 8) != 0 ||
      ::getsockname(listener_, plain, &size) != 0 || ::pipe(stop_) != 0)
    qFatal("no socket on this machine");
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { work(); });
}

TlsProxy::~TlsProxy() {
  const char sign = '.';
  if (::write(stop_[1], &sign, 1) != 1) std::abort();
  thread_.join();
  for (const int descriptor : {listener_, stop_[0], stop_[1]}) ::close(descriptor);
}

void TlsProxy::work() {
  for (;;) {
    pollfd descriptors[2] = {{listener_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
    while (::poll(descriptors, 2, -1) < 0) continue;
    if (descriptors[1].revents != 0) return;
    const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) continue;
    serve(client);
    ::close(client);
  }
}

int TlsProxy::toServer() const {
  const int server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  qstrncpy(address.sun_path, server_.constData(), sizeof address.sun_path);
  if (::connect(server, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return server;
  ::close(server);
  return -1;
}

void TlsProxy::serve(int client) {
  const int server = toServer();
  TlsChannel channel(TlsChannel::Newest::Tls13);
  QByteArray answer;
  for (bool asked = false, going = server >= 0; going;) {
    pollfd descriptors[3] = {{client, POLLIN, 0}, {server, POLLIN, 0}, {stop_[0], POLLIN, 0}};
    while (::poll(descriptors, 3, -1) < 0) continue;
    if (descriptors[2].revents != 0) break;
    if (descriptors[0].revents != 0) {
      const QByteArray bytes = received(client, asked ? pieceSize : size_t{sslRequestSize});
      if (bytes.isEmpty()) break;
      if (asked)
        going = sendAll(server, channel.read(bytes)) && sendAll(client, channel.pending());
      else
        going = sendAll(client, "S");
      asked = true;
    }
    if (descriptors[1].revents != 0) {
      const QByteArray bytes = received(server, pieceSize);
      if (bytes.isEmpty()) break;
      answer += bytes;
      if (!isWhole(answer)) continue;
      QByteArray wire = channel.encrypted(answer.left(first_));
      wire += channel.encrypted(answer.mid(first_));  // in this order, which operands have not
      answer.clear();
      going = sendAll(client, breakAfter_ < 0 ? wire : wire.left(breakAfter_)) && breakAfter_ < 0;
    }
  }
  if (server >= 0) ::close(server);
}

}  // namespace contract
