#pragma once
#include <QByteArray>
#include <QtGlobal>

#include <ctime>

namespace tests {

/// The machine's time zone for one test, by a rule such as "AAA0BBB,M2.1.1/0,M10.5.0": summer time begins on
/// the first Monday of February at midnight, so that on this day the first hour is left out.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const QByteArray& rule)
      : wasSet_(qEnvironmentVariableIsSet("TZ")), previous_(qgetenv("TZ")) {
    qputenv("TZ", rule);
    ::tzset();
  }
  ~ScopedTimeZone() {
    if (wasSet_)
      qputenv("TZ", previous_);
    else
      qunsetenv("TZ");
    ::tzset();
  }
  ScopedTimeZone(const ScopedTimeZone&) = delete;
  ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

 private:
  bool wasSet_;
  QByteArray previous_;
};

inline constexpr char noMidnightOnFebruary5[] = "AAA0BBB,M2.1.1/0,M10.5.0";
inline constexpr char noTenOClockOnMay15[] = "AAA0BBB,M5.3.3/10,M10.5.0";

}  // namespace tests
