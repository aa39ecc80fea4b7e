#include "platform/locale/locale.h"
#include "platform/locale/patterns.h"
#include "platform/locale/table.h"

#include <QLocale>

#include <initializer_list>

namespace platform::locale {

namespace {

QString fullName(const QString& name) {
  const QLocale locale(name);
  return locale.language() == QLocale::C ? QStringLiteral("en_US") : locale.name();
}

/// Names of days and months as they stand alone (in the nominative, where a language has cases).
class NamedByQt : public Locale {
 public:
  explicit NamedByQt(const QString& name) : name_(name), qt_(name) {}

  QString name() const override { return name_; }
  QString weekdayName(int isoDay, bool abbreviated) const override {
    return qt_.standaloneDayName(isoDay, abbreviated ? QLocale::ShortFormat : QLocale::LongFormat);
  }
  QString monthName(int month, bool abbreviated) const override {
    return qt_.standaloneMonthName(month, abbreviated ? QLocale::ShortFormat : QLocale::LongFormat);
  }

 protected:
  const QLocale& qt() const { return qt_; }

 private:
  QString name_;
  QLocale qt_;
};

class TableLocale : public NamedByQt {
 public:
  explicit TableLocale(const Row& row) : NamedByQt(QString::fromLatin1(row.name)), row_(row) {}

  qint32 lcid() const override { return row_.lcid; }
  QString listSeparator() const override { return QString::fromUtf16(row_.listSeparator); }
  QString decimalSign() const override { return QString::fromUtf16(row_.decimalSign); }
  QString groupSign() const override { return QString::fromUtf16(row_.groupSign); }
  QString shortDatePattern() const override { return QString::fromUtf16(row_.shortDatePattern); }
  QString weekdayName(int isoDay, bool abbreviated) const override {
    if (!abbreviated || isoDay < 1 || isoDay > 7) return NamedByQt::weekdayName(isoDay, abbreviated);
    return QString::fromUtf16(row_.abbreviatedDays[static_cast<size_t>(isoDay - 1)]);
  }

 private:
  const Row& row_;
};

/// A language or country that the table does not know.
class OtherLocale : public NamedByQt {
 public:
  using NamedByQt::NamedByQt;

  qint32 lcid() const override { return lcidWithoutRow(name()); }
  QString listSeparator() const override {
    return decimalSign() == u"." ? QStringLiteral(",") : QStringLiteral(";");
  }
  QString decimalSign() const override { return qt().decimalPoint(); }
  QString groupSign() const override { return qt().groupSeparator(); }
  QString shortDatePattern() const override { return fromQtPattern(qt().dateFormat(QLocale::ShortFormat)); }
};

/// The machine's settings, where dates, numbers and the language of the messages need not be one country's.
class MachineLocale : public Locale {
 public:
  MachineLocale(const QString& dates, const QString& numbers, const QString& language)
      : dates_(localeFor(dates)), numbers_(localeFor(numbers)), language_(localeFor(language)) {}

  QString name() const override { return dates_->name(); }
  qint32 lcid() const override { return language_->lcid(); }
  QString listSeparator() const override { return numbers_->listSeparator(); }
  QString decimalSign() const override { return numbers_->decimalSign(); }
  QString groupSign() const override { return numbers_->groupSign(); }
  QString shortDatePattern() const override { return dates_->shortDatePattern(); }
  QString weekdayName(int isoDay, bool abbreviated) const override {
    return dates_->weekdayName(isoDay, abbreviated);
  }
  QString monthName(int month, bool abbreviated) const override {
    return dates_->monthName(month, abbreviated);
  }

 private:
  std::shared_ptr<const Locale> dates_;
  std::shared_ptr<const Locale> numbers_;
  std::shared_ptr<const Locale> language_;
};

/// Elsewhere the system keeps the settings of a user whose environment names none.
QString nameWithoutEnvironment() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
  return QStringLiteral("C");
#else
  return QLocale::system().name();
#endif
}

QString firstOfEnvironment(std::initializer_list<const char*> variables) {
  for (const char* variable : variables) {
    const QString value = qEnvironmentVariable(variable);
    if (!value.isEmpty()) return value;
  }
  return nameWithoutEnvironment();
}

std::shared_ptr<const Locale>& inForce() {
  static std::shared_ptr<const Locale> locale = machineLocale();
  return locale;
}

}  // namespace

std::shared_ptr<const Locale> machineLocale() {
  return std::make_shared<MachineLocale>(firstOfEnvironment({"LC_ALL", "LC_TIME", "LANG"}),
                                         firstOfEnvironment({"LC_ALL", "LC_NUMERIC", "LANG"}),
                                         firstOfEnvironment({"LC_ALL", "LC_MESSAGES", "LANG"}));
}

std::shared_ptr<const Locale> localeFor(const QString& name) {
  const QString full = fullName(name);
  if (const Row* row = rowOf(full)) return std::make_shared<TableLocale>(*row);
  return std::make_shared<OtherLocale>(full);
}

const Locale& current() {
  return *inForce();
}

ScopedLocale::ScopedLocale(const QString& name) : ScopedLocale(localeFor(name)) {}

ScopedLocale::ScopedLocale(std::shared_ptr<const Locale> locale) : previous_(inForce()) {
  inForce() = locale ? std::move(locale) : machineLocale();
}

ScopedLocale::~ScopedLocale() {
  inForce() = previous_;
}

}  // namespace platform::locale
