#pragma once
#include <QByteArrayView>

namespace platform::calendar::icalendar::index {

/// A quick 64-bit checksum, the same on every machine and however its bytes are handed in. It tells apart
/// what differs by accident; it does not withstand who means harm.
class Checksum {
 public:
  explicit Checksum(quint64 seed = 0);
  void add(const char* data, size_t size);
  /// The bytes may go on after it.
  quint64 value() const;

 private:
  void take(const char* sixteen);

  quint64 state_;
  quint64 total_ = 0;
  size_t held_ = 0;
  char hold_[16];
};

quint64 checksumOf(QByteArrayView bytes, quint64 seed = 0);

}  // namespace platform::calendar::icalendar::index
