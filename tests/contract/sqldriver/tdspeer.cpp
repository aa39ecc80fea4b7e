#include "tdspeer.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace contract {

namespace {

enum Packet { batch = 1, call = 3, reply = 4, attention = 6, login7 = 16, greeting = 18 };
constexpr qsizetype headerSize = 8;
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
QByteArray packets(int type, const QByteArray& bytes, qsizetype packetSize, bool whole) {
  QByteArray all;
  qsizetype at = 0;
  do {
    const QByteArray part = bytes.mid(at, packetSize - headerSize);
    at += part.size();
    const auto size = static_cast<quint16>(part.size() + headerSize);
    QByteArray header(headerSize, '\0');
    header[0] = static_cast<char>(type);
    header[1] = whole && at >= bytes.size() ? lastPacket : '\0';
    header[2] = static_cast<char>(size >> 8);
    header[3] = static_cast<char>(size & 0xFF);
    all += header + part;
  } while (at < bytes.size());
  return all;
}

bool isSetUp(const TdsRequest& request) {
  return request.statement.startsWith(u"SET ") || request.statement.startsWith(u"USE ");
}

}  // namespace

TdsPeer::TdsPeer(const QString& address) {
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in own{};
  own.sin_family = AF_INET;
  socklen_t size = sizeof own;
  auto* plain = reinterpret_cast<sockaddr*>(&own);
  if (::inet_pton(AF_INET, address.toLatin1().constData(), &own.sin_addr) != 1 ||
      ::bind(listener_, plain, size) != 0 || ::listen(listener_, 8) != 0 ||
      ::getsockname(listener_, plain, &size) != 0 || ::pipe(stop_) != 0)
    qFatal("no socket on this machine");
  port_ = ntohs(own.sin_port);
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

bool TdsPeer::isLoginEncrypted() const {
  const std::lock_guard lock(mutex_);
  return loginEncrypted_;
}

bool TdsPeer::isAllEncrypted() const {
  const std::lock_guard lock(mutex_);
  return allEncrypted_;
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

/// So many bytes of what the program sends; none when it has gone.
QByteArray TdsPeer::read(Line& line, qsizetype size) {
  while (line.received.size() < size) {
    char piece[65536];
    if (!awaitInput(line.socket)) return {};
    // of what follows an encrypted login nothing may be taken for a part of it
    const auto room = line.encrypted ? sizeof piece : static_cast<size_t>(size - line.received.size());
    const ssize_t got = ::recv(line.socket, piece, qMin(room, sizeof piece), 0);
    if (got <= 0) return {};
    const QByteArray bytes(piece, got);
    line.received += line.encrypted ? line.channel->read(bytes) : bytes;
  }
  const QByteArray taken = line.received.left(size);
  line.received.remove(0, size);
  return taken;
}

/// The type and the body of what the program sends next; none when it has gone.
std::optional<std::pair<int, QByteArray>> TdsPeer::receive(Line& line) {
  QByteArray body;
  for (;;) {
    const QByteArray header = read(line, headerSize);
    if (header.isEmpty()) return std::nullopt;
    const int size = static_cast<quint8>(header[2]) << 8 | static_cast<quint8>(header[3]);
    if (size > headerSize) {
      const QByteArray part = read(line, size - headerSize);
      if (part.isEmpty()) return std::nullopt;
      body += part;
    }
    if ((header[1] & lastPacket) != 0) return std::pair(int{header[0]}, body);
  }
}

/// Of a line that breaks only so many bytes arrive, as they stand on the wire.
void TdsPeer::send(Line& line, int type, const QByteArray& body, bool whole, qsizetype most) const {
  const QByteArray plain = packets(type, body, packetSize_, whole);
  const QByteArray bytes = line.encrypted ? line.channel->encrypted(plain) : plain;
  sendBytes(line.socket, most < 0 ? bytes : bytes.left(most));
}

void TdsPeer::serve(int socket) {
  Line line;
  line.socket = socket;
  for (bool going = true, greeted = false; going;) {
    const auto received = receive(line);
    if (!received) return;
    if (deaf_) continue;
    const auto& [type, body] = *received;
    switch (type) {
      case greeting:
        if (greeted)
          shakeHands(line, body);
        else
          greet(line, body);
        greeted = true;
        break;
      case login7:
        going = takeLogin(line, body);
        break;
      case batch:
        going = answer(line, TdsRequest::ofBatch(body));
        break;
      case call:
        going = answer(line, TdsRequest::ofCall(body));
        break;
      case attention:
        send(line, reply, tds::done(tds::tokenDone, tds::doneAttention, 0), true);
        break;
      default:
        going = false;
    }
  }
}

namespace {

enum Crypt { cryptLoginOnly = 0, cryptAll = 1, cryptNone = 2, cryptRequired = 3 };

/// What a greeting says of encryption.
int cryptOf(const QByteArray& greeting) {
  constexpr int optionSize = 5;
  constexpr char encryption = 1, end = '\xFF';
  for (qsizetype at = 0; at + optionSize <= greeting.size() && greeting[at] != end; at += optionSize) {
    const int place = static_cast<quint8>(greeting[at + 1]) << 8 | static_cast<quint8>(greeting[at + 2]);
    if (greeting[at] == encryption && place < greeting.size()) return greeting[place];
  }
  return cryptNone;
}

}  // namespace

/// Version, and what is encrypted.
void TdsPeer::greet(Line& line, const QByteArray& asked) {
  int crypt = cryptNone;
  if (encryption_ != Encryption::None) {
    const bool all = encryption_ == Encryption::All;
    crypt = cryptOf(asked) == cryptAll ? cryptAll : all ? cryptRequired : cryptLoginOnly;
    line.channel = std::make_unique<TlsChannel>(TlsChannel::Newest::Tls12);
    line.keepsEncrypted = crypt != cryptLoginOnly;
  }
  QByteArray options(
      "\x00\x00\x10\x00\x06"
      "\x01\x00\x16\x00\x01"
      "\x04\x00\x17\x00\x01"
      "\xFF",
      16);
  options += QByteArray("\x0F\x00\x07\xD0\x00\x00", 6) + static_cast<char>(crypt) + '\0';
  send(line, reply, options, true);
}

/// What the two say of keys stands in packets of greetings; behind them the packets are encrypted.
void TdsPeer::shakeHands(Line& line, const QByteArray& said) const {
  if (!line.channel) return;
  line.channel->read(said);
  const QByteArray ours = line.channel->pending();
  if (!ours.isEmpty()) send(line, greeting, ours, true);
  line.encrypted = line.channel->isReady();
}

bool TdsPeer::takeLogin(Line& line, const QByteArray& body) {
  QString database;
  {
    const std::lock_guard lock(mutex_);
    login_ = TdsLogin::read(body);
    ++logins_;
    loginEncrypted_ = line.encrypted;
    line.encrypted = line.encrypted && line.keepsEncrypted;
    allEncrypted_ = line.encrypted;
    database = login_.database;
  }
  if (!refusal_) {
    send(line, reply, tds::loginAccepted(database.isEmpty() ? u"master"_qs : database, packetSize_), true);
    return true;
  }
  constexpr int severity = 14;
  send(line, reply,
       tds::message(tds::tokenError, refusal_->first, severity, refusal_->second) +
           tds::done(tds::tokenDone, tds::doneError, 0),
       true);
  return false;
}

bool TdsPeer::answer(Line& line, const TdsRequest& request) {
  TdsAnswer said;
  const bool settingUp = isSetUp(request);
  {
    const std::lock_guard lock(mutex_);
    if (settingUp)
      setUp_ = request.statement;
    else if (keepsRequests_)
      requests_.append(request);
  }
  if (!settingUp && script_) said = script_(request);
  const bool whole = said.end() == TdsAnswer::End::Whole;
  const QByteArray bytes = said.bytes(request.isCall);
  if (whole || !bytes.isEmpty()) send(line, reply, bytes, whole || said.tornAfter() >= 0, said.tornAfter());
  switch (said.end()) {
    case TdsAnswer::End::Whole:
      return true;
    case TdsAnswer::End::Cut:
    case TdsAnswer::End::Torn:
      return false;
    case TdsAnswer::End::Silence:
    case TdsAnswer::End::DeafSilence:
      break;
  }
  return keepSilent(line, said.end() == TdsAnswer::End::Silence);
}

bool TdsPeer::keepSilent(Line& line, bool answersAttention) {
  while (const auto received = receive(line)) {
    if (received->first != attention || !answersAttention) continue;
    send(line, reply, tds::done(tds::tokenDone, tds::doneAttention, 0), true);
    return true;
  }
  return false;
}

}  // namespace contract
