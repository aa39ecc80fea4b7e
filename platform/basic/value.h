#pragma once
#include <QDateTime>
#include <QString>

#include <variant>

namespace platform::basic {

/// Money: a whole number of ten-thousandths. Conversions from floating point round halves to even.
class Currency {
 public:
  constexpr Currency() = default;
  static constexpr Currency fromTenThousandths(qint64 n) {
    Currency c;
    c.units_ = n;
    return c;
  }
  /// Throws Failure 6 when out of range or not finite.
  static Currency fromDouble(double value);

  constexpr qint64 tenThousandths() const { return units_; }
  double toDouble() const { return static_cast<double>(units_) / 10000.0; }
  /// Plain decimal text with "." and no trailing zeros ("450.5"), whatever the locale.
  QString toPlainText() const;

  friend constexpr auto operator<=>(const Currency&, const Currency&) = default;

 private:
  qint64 units_ = 0;
};

/// Exact product of two amounts, rounded to four decimals, halves to even. Throws Failure 6 on overflow.
Currency operator*(const Currency& a, const Currency& b);

/// A moment on the wall clock of the user: days since 30 December 1899 as a double, the fraction being the
/// time of day. It carries no zone; converting from and to instants is the calendar's business. The language
/// has the years 100 to 9999: counting beyond them, and asking for the parts of a date beyond them, is
/// Failure 6.
class Date {
 public:
  constexpr Date() = default;  // 30 December 1899, "not set": every year before 1900 means that
  explicit constexpr Date(double serial) : serial_(serial) {}
  static Date of(int year, int month, int day);  // months and days run over; Failure 6 for the year
  static Date of(const QDate& day, const QTime& time = QTime(0, 0));
  static Date fromLocal(const QDateTime& local);  // takes date and time as they stand, ignores the zone

  constexpr double serial() const { return serial_; }
  QDate date() const;
  QTime time() const;         // rounded to whole seconds
  QDateTime toLocal() const;  // as local time without daylight-saving judgement: (date(), time())
  int year() const { return date().year(); }
  int month() const { return date().month(); }
  int day() const { return date().day(); }
  Date dateOnly() const;
  Date addDays(double days) const;  // Failure 6 beyond the years

  friend constexpr auto operator<=>(const Date&, const Date&) = default;

 private:
  double serial_ = 0;
};

struct Null {
  friend constexpr bool operator==(const Null&, const Null&) { return true; }
};

/// What a cell, a field or a property holds. `std::monostate` is `Empty`: never given a value. `Null` is a
/// database's "no value"; most conversions refuse it with Failure 94.
using Value =
    std::variant<std::monostate, Null, bool, qint16, qint32, qint64, float, double, Currency, Date, QString>;

inline bool IsEmpty(const Value& v) {
  return std::holds_alternative<std::monostate>(v);
}
inline bool IsNull(const Value& v) {
  return std::holds_alternative<Null>(v);
}

/// "Empty", "Null", "Boolean", "Integer", "Long", "LongLong", "Single", "Double", "Currency", "Date",
/// "String".
QString TypeName(const Value& v);

}  // namespace platform::basic
