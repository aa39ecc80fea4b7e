#include "platform/calendar/icalendar/index/checksum.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace platform::calendar::icalendar::index {
namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr quint64 first = 0xA0761D6478BD642FULL;
constexpr quint64 second = 0xE7037ED1A0B428DBULL;

quint64 mixed(quint64 a, quint64 b) {
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<quint64>(product) ^ static_cast<quint64>(product >> 64);
}

}  // namespace

Checksum::Checksum(quint64 seed) : state_(seed ^ first) {}

void Checksum::take(const char* sixteen) {
  const auto low = qFromLittleEndian<quint64>(sixteen), high = qFromLittleEndian<quint64>(sixteen + 8);
  state_ = mixed(low ^ second, high ^ state_) + state_;
}

void Checksum::add(const char* data, size_t size) {
  if (size == 0) return;
  total_ += size;
  if (held_ > 0) {
    const size_t more = std::min(size, sizeof hold_ - held_);
    std::memcpy(hold_ + held_, data, more);
    held_ += more;
    data += more;
    size -= more;
    if (held_ < sizeof hold_) return;
    take(hold_);
    held_ = 0;
  }
  for (; size >= sizeof hold_; data += sizeof hold_, size -= sizeof hold_) take(data);
  if (size > 0) std::memcpy(hold_, data, size);  // without bytes, data may be null
  held_ = size;
}

quint64 Checksum::value() const {
  Checksum last = *this;
  if (held_ > 0) {
    std::memset(last.hold_ + held_, 0, sizeof hold_ - held_);
    last.take(last.hold_);
  }
  return mixed(last.state_ ^ total_, second);
}

quint64 checksumOf(QByteArrayView bytes, quint64 seed) {
  Checksum sum(seed);
  sum.add(bytes.data(), static_cast<size_t>(bytes.size()));
  return sum.value();
}

}  // namespace platform::calendar::icalendar::index
