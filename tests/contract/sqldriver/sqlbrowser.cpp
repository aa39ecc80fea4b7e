#include "sqlbrowser.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace contract {

SqlBrowser::SqlBrowser(const QString& address, const QHash<QString, int>& instances) : instances_(instances) {
  constexpr quint16 port = 1434;
  sockaddr_in own{};
  own.sin_family = AF_INET;
  own.sin_port = htons(port);
  socket_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (::inet_pton(AF_INET, address.toLatin1().constData(), &own.sin_addr) != 1 ||
      ::bind(socket_, reinterpret_cast<sockaddr*>(&own), sizeof own) != 0 || ::pipe(stop_) != 0)
    qFatal("no socket on this machine");
  thread_ = std::thread([this] { work(); });
}

SqlBrowser::~SqlBrowser() {
  const char sign = '.';
  if (::write(stop_[1], &sign, 1) != 1) std::abort();
  thread_.join();
  for (const int descriptor : {socket_, stop_[0], stop_[1]}) ::close(descriptor);
}

QStringList SqlBrowser::asked() const {
  const std::lock_guard lock(mutex_);
  return asked_;
}

void SqlBrowser::work() {
  constexpr char askForInstance = 4, answerOfServer = 5;
  for (;;) {
    pollfd descriptors[2] = {{socket_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
    while (::poll(descriptors, 2, -1) < 0) continue;
    if (descriptors[1].revents != 0) return;
    char piece[1024];
    sockaddr_in from{};
    socklen_t size = sizeof from;
    auto* who = reinterpret_cast<sockaddr*>(&from);
    const ssize_t got = ::recvfrom(socket_, piece, sizeof piece, 0, who, &size);
    if (got < 2 || piece[0] != askForInstance) continue;
    const QString name = QString::fromLatin1(QByteArray(piece + 1, got - 1).split('\0').first());
    {
      const std::lock_guard lock(mutex_);
      asked_.append(name);
    }
    const int port = instances_.value(name, -1);
    if (port < 0) continue;  // of what it does not know it says nothing
    const QByteArray text =
        u"ServerName;PC;InstanceName;%1;IsClustered;No;Version;15.0.2000.5;tcp;%2;;"_qs.arg(name)
            .arg(port)
            .toLatin1();
    const QByteArray answer = QByteArray(1, answerOfServer) + static_cast<char>(text.size() & 0xFF) +
                              static_cast<char>(text.size() >> 8) + text;
    ::sendto(socket_, answer.constData(), static_cast<size_t>(answer.size()), 0, who, size);
  }
}

}  // namespace contract
