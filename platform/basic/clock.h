#pragma once
#include "platform/basic/value.h"

#include <QTimeZone>

namespace platform::basic {

/// The moment and the user's time zone, from the machine or as a test has set them.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual QDateTime now() const;  // an instant, in the zone below
  virtual QTimeZone zone() const;
  /// Counts on whatever is done to the date and time; only the difference of two says anything.
  virtual qint64 milliseconds() const;

  static const Clock& current();
};

/// Puts another clock in force for the life of the object. Nested scopes are fine.
class ScopedClock {
 public:
  explicit ScopedClock(std::shared_ptr<const Clock> clock);
  ~ScopedClock();
  ScopedClock(const ScopedClock&) = delete;
  ScopedClock& operator=(const ScopedClock&) = delete;

 private:
  std::shared_ptr<const Clock> previous_;
};

/// A clock that stands still at a wall-clock time of a zone, until moved on.
class FixedClock : public Clock {
 public:
  FixedClock(const QDateTime& local, const QByteArray& zoneId);
  QDateTime now() const override { return now_; }
  QTimeZone zone() const override { return zone_; }
  qint64 milliseconds() const override { return now_.toMSecsSinceEpoch(); }
  void advance(qint64 seconds) { now_ = now_.addSecs(seconds); }
  void advanceMilliseconds(qint64 milliseconds) { now_ = now_.addMSecs(milliseconds); }

 private:
  QTimeZone zone_;
  QDateTime now_;
};

Date Now();    // date and time on the user's wall clock, whole seconds
Date Today();  // its date
/// Day of the week counted from `firstDay` as 1; 1 = Sunday ... 7 = Saturday for vbSunday.
inline constexpr int vbSunday = 1;
inline constexpr int vbMonday = 2;
int Weekday(const Date& date, int firstDay = vbSunday);

}  // namespace platform::basic
