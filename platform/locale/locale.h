#pragma once
#include <QDate>
#include <QStringList>

#include <memory>

namespace platform::locale {

/// What the system's regional settings say, as Windows shows them for that language. Weekdays are ISO
/// numbers here (1 = Monday ... 7 = Sunday).
class Locale {
 public:
  virtual ~Locale() = default;

  virtual QString name() const = 0;           // "sv_SE"
  virtual qint32 lcid() const = 0;            // 1053; 1033 for a language without a row of its own
  virtual QString listSeparator() const = 0;  // ";" or "," (LOCALE_SLIST)
  virtual QString decimalSign() const = 0;    // (LOCALE_SDECIMAL)
  virtual QString groupSign() const;          // of thousands (LOCALE_STHOUSAND); what suits the decimal sign
  virtual QString shortDatePattern() const = 0;  // Qt date pattern, "yyyy-MM-dd" (LOCALE_SSHORTDATE)
  virtual QString weekdayName(int isoDay, bool abbreviated) const = 0;
  virtual QString monthName(int month, bool abbreviated) const = 0;

  QString shortDate(const QDate& day) const;
  QString longTime(const QTime& time) const;  // "H:mm:ss", or with AM and PM in English of America
  /// Reads a date in the short date pattern (separators and leading zeros taken freely), or "yyyy-mm-dd",
  /// optionally followed by a time ("HH:mm" or "HH:mm:ss", am/pm). Two-digit years lie in 1930 to 2029; a
  /// month above 12 changes places with the day. Invalid when the text reads as neither.
  /// The answer is a wall clock's, given as UTC so that no hour that summer time leaves out can spoil it.
  QDateTime parseDate(const QString& text) const;
  /// A time alone, as after a date above, or an hour with am/pm ("3 PM"). Invalid when it reads as none.
  QTime parseTime(const QString& text) const;
};

/// The table's row for a QLocale name such as "de_AT"; without a row the rules of the language's QLocale
/// with the separator that belongs to its decimal sign.
std::shared_ptr<const Locale> localeFor(const QString& name);
/// The machine's own (environment or desktop), until a scope says otherwise. Where the environment names
/// several, the dates follow LC_TIME, the numbers LC_NUMERIC and the LCID the language of the messages.
const Locale& current();
/// Reads the machine's settings anew.
std::shared_ptr<const Locale> machineLocale();

/// Puts another locale in force for the life of the object.
class ScopedLocale {
 public:
  explicit ScopedLocale(const QString& name);
  explicit ScopedLocale(std::shared_ptr<const Locale> locale);
  ~ScopedLocale();
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;

 private:
  std::shared_ptr<const Locale> previous_;
};

}  // namespace platform::locale
