#include "platform/outlook/conflict.h"

#include "platform/basic/convert.h"
#include "platform/basic/text.h"

using namespace Qt::StringLiterals;

namespace platform::outlook {

namespace {

constexpr int minutesOfDay = 1440;
constexpr qsizetype longestShown = 200;

/// In one line, its beginning alone where it is long.
QString quoted(const QString& text) {
  QString line = text.simplified();
  if (line.size() > longestShown) {
    line.truncate(longestShown);
    if (line.back().isHighSurrogate()) line.chop(1);
    line.append(u'\u2026');
  }
  return u'"' + line + u'"';
}

QString startOf(const AppointmentItem& item) {
  return basic::CStr(basic::Value(item.Start()));
}

QString durationOf(const AppointmentItem& item) {
  const int minutes = item.Duration();
  if (!item.AllDayEvent()) return u"%1 minutes"_s.arg(minutes);
  const int days = minutes / minutesOfDay;
  return days == 1 ? u"the whole day"_s : u"%1 whole days"_s.arg(days);
}

QString sensitivityOf(const AppointmentItem& item) {
  static const QStringList names{u"normal"_s, u"personal"_s, u"private"_s, u"confidential"_s};
  return names.value(item.Sensitivity());
}

struct Field {
  const char* name;
  QString (*text)(const AppointmentItem& item);  // what two versions are compared by
  bool isFree;                                   // shown quoted and shortened
};

const Field fields[] = {
    {"Subject", [](const AppointmentItem& item) { return item.Subject(); }, true},
    {"Start", startOf, false},
    {"Duration", durationOf, false},
    {"Categories", [](const AppointmentItem& item) { return item.Categories(); }, true},
    {"Billing information", [](const AppointmentItem& item) { return item.BillingInformation(); }, true},
    {"Sensitivity", sensitivityOf, false},
    {"Text", [](const AppointmentItem& item) { return item.Body(); }, true},
};

/// One field of the three versions; null where there is no such version.
QString lineOf(const QString& name, bool isFree, const QString& read, const QString& wanted,
               const QString& now) {
  const auto shown = [isFree](const QString& text) { return isFree ? quoted(text) : text; };
  const QString line = name + u": "_s;
  if (now.isNull()) return wanted.isEmpty() ? QString() : line + shown(wanted);
  if (wanted == read && now == read) return {};
  if (wanted == read) return line + u"when read %1, in the calendar now %2"_s.arg(shown(read), shown(now));
  if (wanted == now) return line + u"to be written %1, which stands in the calendar now"_s.arg(shown(now));
  return line + u"to be written %1, in the calendar now %2"_s.arg(shown(wanted), shown(now));
}

QString notNull(const QString& text) {
  return text.isNull() ? u""_s : text;
}

QString propertyOf(const AppointmentItem& item, const QString& name) {
  return notNull(item.stored().userProperties.value(name).value);
}

}  // namespace

QString textOfConflict(const Versions& versions) {
  const auto& [read, wanted, properties, now] = versions;
  QStringList lines;
  const auto add = [&lines](const QString& line) {
    if (!line.isEmpty()) lines.append(line);
  };
  for (const Field& field : fields)
    add(lineOf(QString::fromLatin1(field.name), field.isFree, field.text(read), field.text(wanted),
               now ? notNull(field.text(*now)) : QString()));
  for (auto property = properties.cbegin(); property != properties.cend(); ++property)
    add(lineOf(property.key(), true, propertyOf(read, property.key()), notNull(property->value),
               now ? propertyOf(*now, property.key()) : QString()));
  if (!now) lines.prepend(u"It stands in the calendar no longer. This was to be written:"_s);
  return lines.join(basic::vbCrLf);
}

}  // namespace platform::outlook
