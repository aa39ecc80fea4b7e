#include "tdspeer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace contract {

namespace {

enum Packet { batch = 1, call = 3, reply = 4, attention = 6, login7 = 16, greeting = 18 };
constexpr qsizetype headerSize = 8, packetSize = 4096;
constexpr char lastPacket = 1;

void sendBytes(int socket, const QByteArray& bytes) {
  for (qsizetype at = 0; at < bytes.size();) {
    const ssize_t sent =
        ::send(socket, bytes.constData() + at, static_cast<size_t>(bytes.size() - at), MSG_NOSIGNAL);
    if (sent <= 0) return;  // the program has gone
    at += sent;
  }
}

/// In packets; of a broken answer none is the last one.
void sendReply(int socket, const QByteArray& bytes, bool whole) {
  qsizetype at = 0;
  do {
    const QByteArray part = bytes.mid(at, packetSize - headerSize);
    at += part.size();
    const auto size = static_cast<quint16>(part.size() + headerSize);
    QByteArray header(headerSize, '\0');
    header[0] = reply;
    header[1] = whole && at >= bytes.size() ? lastPacket : '\0';
    header[2] = static_cast<char>(size >> 8);
    header[3] = static_cast<char>(size & 0xFF);
    sendBytes(socket, header + part);
  } while (at < bytes.size());
}

bool isSetUp(const TdsRequest& request) {
  return request.statement.startsWith(u"SET ") || request.statement.startsWith(u"USE ");
}

}  // namespace

TdsPeer::TdsPeer() {
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener_, plain, size) != 0 || ::listen(listener_, 8) != 0 ||
      ::getsockname(listener_, plain, &size) != 0 || ::pipe(stop_) != 0)
    ADD_FAILURE() << "no socket on this machine";
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { work(); });
}

TdsPeer::~TdsPeer() {
  const char sign = '.';
  if (::write(stop_[1], &sign, 1) != 1) std::abort();
  thread_.join();
  for (const int descriptor : {listener_, stop_[0], stop_[1]}) ::close(descriptor);
}

TdsLogin TdsPeer::login() const {
  const std::lock_guard lock(mutex_);
  return login_;
}

int TdsPeer::logins() const {
  const std::lock_guard lock(mutex_);
  return logins_;
}

QList<TdsRequest> TdsPeer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

QStringList TdsPeer::statements() const {
  QStringList texts;
  for (const TdsRequest& request : requests()) texts.append(request.statement);
  return texts;
}

QString TdsPeer::setUp() const {
  const std::lock_guard lock(mutex_);
  return setUp_;
}

/// False when the test has ended.
bool TdsPeer::awaitInput(int socket) const {
  pollfd descriptors[2] = {{socket, POLLIN, 0}, {stop_[0], POLLIN, 0}};
  while (::poll(descriptors, 2, -1) < 0) continue;
  return descriptors[1].revents == 0;
}

void TdsPeer::work() {
  while (awaitInput(listener_)) {
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) continue;
    serve(socket);
    ::close(socket);
  }
}

/// The type and the body of what the program sends next; none when it has gone.
std::optional<std::pair<int, QByteArray>> TdsPeer::receive(int socket) {
  QByteArray body;
  for (;;) {
    const auto read = [&](qsizetype size) {
      QByteArray bytes;
      while (bytes.size() < size) {
        char piece[packetSize];
        if (!awaitInput(socket)) return QByteArray();
        const auto room = static_cast<size_t>(qMin(size - bytes.size(), packetSize));
        const ssize_t got = ::recv(socket, piece, room, 0);
        if (got <= 0) return QByteArray();
        bytes.append(piece, got);
      }
      return bytes;
    };
    const QByteArray header = read(headerSize);
    if (header.isEmpty()) return std::nullopt;
    const int size = static_cast<quint8>(header[2]) << 8 | static_cast<quint8>(header[3]);
    if (size > headerSize) {
      const QByteArray part = read(size - headerSize);
      if (part.isEmpty()) return std::nullopt;
      body += part;
    }
    if ((header[1] & lastPacket) != 0) return std::pair(int{header[0]}, body);
  }
}

void TdsPeer::serve(int socket) {
  for (bool going = true; going;) {
    const auto received = receive(socket);
    if (!received) return;
    if (deaf_) continue;
    const auto& [type, body] = *received;
    switch (type) {
      case greeting:
        greet(socket);
        break;
      case login7:
        going = takeLogin(socket, body);
        break;
      case batch:
        going = answer(socket, TdsRequest::ofBatch(body));
        break;
      case call:
        going = answer(socket, TdsRequest::ofCall(body));
        break;
      case attention:
        sendReply(socket, tds::done(tds::tokenDone, tds::doneAttention, 0), true);
        break;
      default:
        going = false;
    }
  }
}

/// Version, and that nothing can be encrypted.
void TdsPeer::greet(int socket) {
  const QByteArray options(
      "\x00\x00\x10\x00\x06"
      "\x01\x00\x16\x00\x01"
      "\x04\x00\x17\x00\x01"
      "\xFF",
      16);
  sendReply(socket, options + QByteArray("\x0F\x00\x07\xD0\x00\x00\x02\x00", 8), true);
}

bool TdsPeer::takeLogin(int socket, const QByteArray& body) {
  QString database;
  {
    const std::lock_guard lock(mutex_);
    login_ = TdsLogin::read(body);
    ++logins_;
    database = login_.database;
  }
  if (!refusal_) {
    sendReply(socket, tds::loginAccepted(database.isEmpty() ? u"master"_qs : database), true);
    return true;
  }
  constexpr int severity = 14;
  sendReply(socket,
            tds::message(tds::tokenError, refusal_->first, severity, refusal_->second) +
                tds::done(tds::tokenDone, tds::doneError, 0),
            true);
  return false;
}

bool TdsPeer::answer(int socket, const TdsRequest& request) {
  TdsAnswer said;
  const bool settingUp = isSetUp(request);
  {
    const std::lock_guard lock(mutex_);
    if (settingUp)
      setUp_ = request.statement;
    else
      requests_.append(request);
  }
  if (!settingUp && script_) said = script_(request);
  const bool whole = said.end() == TdsAnswer::End::Whole;
  const QByteArray bytes = said.bytes(request.isCall);
  if (whole || !bytes.isEmpty()) sendReply(socket, bytes, whole);
  switch (said.end()) {
    case TdsAnswer::End::Whole:
      return true;
    case TdsAnswer::End::Cut:
      return false;
    case TdsAnswer::End::Silence:
    case TdsAnswer::End::DeafSilence:
      break;
  }
  return keepSilent(socket, said.end() == TdsAnswer::End::Silence);
}

bool TdsPeer::keepSilent(int socket, bool answersAttention) {
  while (const auto received = receive(socket)) {
    if (received->first != attention || !answersAttention) continue;
    sendReply(socket, tds::done(tds::tokenDone, tds::doneAttention, 0), true);
    return true;
  }
  return false;
}

}  // namespace contract
