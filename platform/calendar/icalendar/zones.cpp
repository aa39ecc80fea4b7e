#include "platform/calendar/icalendar/zones.h"

#include "platform/calendar/icalendar/recurrence.h"
#include "platform/calendar/icalendar/text.h"
#include "platform/calendar/icalendar/zonenames.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <limits>

namespace platform::calendar::icalendar {
namespace {

constexpr int firstRuleYear = 1950;  // definitions begin in 1601; nobody asks for the years between
constexpr int lastRuleYear = 2100;

// of one definition; the longest of the machine's own zones has 200 parts and 20 kB
constexpr int maxDefinitionBytes = 64 * 1024;
constexpr int maxDefinitionParts = 1000;
constexpr size_t maxChanges = 5000;
constexpr int maxNameLength = 255;

/// "+0100", "-03:30"; "+01" in version 1.0.
std::optional<qint64> offsetOf(const QByteArray& text) {
  static const QRegularExpression form(u"^([+-]?)(\\d{1,2})(?::?(\\d{2}))?(?::?(\\d{2}))?$"_qs);
  const auto match = form.match(QString::fromLatin1(text.trimmed()));
  if (!match.hasMatch()) return std::nullopt;
  const qint64 size = match.captured(2).toInt() * hourMs + match.captured(3).toInt() * minuteMs +
                      match.captured(4).toInt() * secondMs;
  if (size > dayMs) return std::nullopt;
  return match.captured(1) == u"-" ? -size : size;
}

std::optional<qint64> offsetValue(const Document& document, const Component& part, const char* name) {
  const auto property = firstOf(document, part, name);
  return property ? offsetOf(property->value) : std::nullopt;
}

/// "The last Sunday of March", as nearly all definitions put it, without a walk from day to day.
std::optional<QDate> nthWeekday(const Rule& rule, int year) {
  const auto [nth, weekday] = rule.byDay.first();
  const QDate first(year, rule.byMonth.first(), 1);
  const int days = first.daysInMonth();
  const int weekdayOfFirst = first.dayOfWeek() % 7;
  const int firstDay = 1 + (weekday - weekdayOfFirst + 7) % 7;
  const int last = firstDay + (days - firstDay) / 7 * 7;
  const int day = nth > 0 ? firstDay + (nth - 1) * 7 : last + (nth + 1) * 7;
  return day >= 1 && day <= days ? std::optional(QDate(year, first.month(), day)) : std::nullopt;
}

bool isNthWeekday(const Rule& rule) {
  return rule.byMonth.size() == 1 && rule.byDay.size() == 1 && rule.byDay.first().first != 0 &&
         rule.interval == 1 && rule.count == 0 && rule.byMonthDay.isEmpty() && rule.byYearDay.isEmpty() &&
         rule.byWeekNo.isEmpty() && rule.bySetPos.isEmpty() && rule.byHour.isEmpty() &&
         rule.byMinute.isEmpty() && rule.bySecond.isEmpty();
}

/// Clocks are changed once a year in a month that is named; what else a rule may say is none about clocks.
bool isAboutClocks(const Rule& rule) {
  return rule.frequency == Rule::Frequency::Yearly && !rule.byMonth.isEmpty() && rule.byHour.size() <= 1 &&
         rule.byMinute.size() <= 1 && rule.bySecond.size() <= 1;
}

void addOnsets(const QByteArray& text, const DateValue& start, qint64 offsetBefore, QList<qint64>& onsets) {
  QString why;
  const auto written = ruleOf(text, &why);
  if (!written) return;
  const Rule rule = written->completed(start.wall());
  if (!isAboutClocks(rule)) return;
  int year = start.date.year();
  if (rule.count == 0 && rule.interval == 1) year = qMax(year, firstRuleYear);
  qint64 until = wallOf(QDate(lastRuleYear, 1, 1), QTime(0, 0));
  if (rule.until)
    until = qMin(until, rule.until->form == DateValue::Form::Utc    ? rule.until->wall() + offsetBefore
                        : rule.until->form == DateValue::Form::Date ? rule.until->wall() + dayMs - 1
                                                                    : rule.until->wall());
  const auto take = [&](qint64 wall) {
    if (wall >= start.wall() && wall <= until) onsets.append(wall);
    return wall <= until;
  };
  if (!isNthWeekday(rule)) {
    const qint64 from = qMax(start.wall(), wallOf(QDate(year, 1, 1), QTime(0, 0)));
    walk(rule, start.wall(), until, from, until, take, static_cast<int>(maxChanges));
    return;
  }
  for (; year < lastRuleYear; ++year)
    if (const auto day = nthWeekday(rule, year))
      if (!take(wallOf(*day, start.time))) return;
}

/// The wall-clock times (by the clock before) at which one part of a definition comes into force.
QList<qint64> onsetsOf(const Document& document, const Component& part, qint64 offsetBefore) {
  QList<qint64> onsets;
  const auto startLine = firstOf(document, part, "DTSTART");
  const auto start = startLine ? dateValue(startLine->value, *startLine) : std::nullopt;
  if (!start) return onsets;
  onsets.append(start->wall());
  for (const Line& line : part.lines) {
    if (static_cast<size_t>(onsets.size()) > maxChanges) break;
    if (document.is(line, "RRULE")) {
      addOnsets(parsed(document, line).value, *start, offsetBefore, onsets);
    } else if (document.is(line, "RDATE")) {
      int unreadable = 0;
      for (const Period& period : periodList(parsed(document, line), &unreadable))
        onsets.append(period.start.wall());
    }
  }
  return onsets;
}

/// "(UTC+01:00) Amsterdam, Berlin" without its offset, in the one form in which the table has it.
QString plainDisplayName(const QString& name) {
  static const QRegularExpression prefix(u"^\\((?:UTC|GMT)[^)]*\\)\\s*"_qs);
  QString plain = name;
  plain.remove(prefix);
  return plain.simplified().toCaseFolded().replace(u" and "_qs, u" & "_qs);
}

/// Qt does not list second names ("US/Eastern"), and what it does not know it takes for a rule: "Nowhere"
/// would be a zone at UTC. So only such names are tried as can be files of the machine's zones.
bool mayBeZoneFile(const QString& id) {
  // by hand, since every start asks for some zone, and the first use of an expression costs more than the
  // zone
  static const QSet<QString> withoutFolder{
      u"EST5EDT"_qs,  u"CST6CDT"_qs,   u"MST7MDT"_qs, u"PST8PDT"_qs,   u"CET"_qs,     u"Cuba"_qs,
      u"EET"_qs,      u"EST"_qs,       u"Egypt"_qs,   u"Eire"_qs,      u"GB"_qs,      u"GB-Eire"_qs,
      u"GMT"_qs,      u"Greenwich"_qs, u"HST"_qs,     u"Hongkong"_qs,  u"Iceland"_qs, u"Iran"_qs,
      u"Israel"_qs,   u"Jamaica"_qs,   u"Japan"_qs,   u"Kwajalein"_qs, u"Libya"_qs,   u"MET"_qs,
      u"MST"_qs,      u"NZ"_qs,        u"NZ-CHAT"_qs, u"Navajo"_qs,    u"PRC"_qs,     u"Poland"_qs,
      u"Portugal"_qs, u"ROC"_qs,       u"ROK"_qs,     u"Singapore"_qs, u"Turkey"_qs,  u"UCT"_qs,
      u"UTC"_qs,      u"Universal"_qs, u"W-SU"_qs,    u"WET"_qs,       u"Zulu"_qs};
  const auto isLetter = [](QChar c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); };
  const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
  const QList<QStringView> parts = QStringView(id).split(u'/');
  if (parts.size() == 1) return withoutFolder.contains(id);
  if (parts.size() == 2 && parts[0] == u"Etc" && parts[1].startsWith(u"GMT")) {
    QStringView hours = parts[1].mid(3);
    if (hours.startsWith(u'+') || hours.startsWith(u'-')) hours = hours.mid(1);
    if ((hours.size() == 1 || hours.size() == 2) && std::all_of(hours.begin(), hours.end(), isDigit))
      return true;
  }
  for (qsizetype i = 0; i < parts.size(); ++i) {
    const auto mayStand = [&](QChar c) { return isLetter(c) || (i > 0 && (c == u'_' || c == u'-')); };
    if (parts[i].isEmpty() || !std::all_of(parts[i].begin(), parts[i].end(), mayStand)) return false;
  }
  return true;
}

std::optional<QTimeZone> machineZone(const QString& id) {
  const QByteArray name = id.toUtf8();
  if (!mayBeZoneFile(id) && !QTimeZone::isTimeZoneIdAvailable(name)) return std::nullopt;
  const QTimeZone zone(name);
  return zone.isValid() ? std::optional(zone) : std::nullopt;
}

/// "/freeassociation.sourceforge.net/Europe/Berlin": the longest end that is a zone.
std::optional<QTimeZone> zoneByPath(const QString& name) {
  for (qsizetype slash = name.indexOf(u'/'); slash >= 0; slash = name.indexOf(u'/', slash + 1)) {
    const QString rest = name.mid(slash + 1);
    if (!rest.contains(u'/') && rest != u"UTC" && rest != u"Utc") break;  // "Berlin" alone is no zone
    if (const auto zone = machineZone(rest == u"Utc" ? u"UTC"_qs : rest)) return zone;
  }
  return std::nullopt;
}

}  // namespace

qint64 Zone::offsetAt(qint64 instant) const {
  if (!changes_) {
    return zone_.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(instant, Qt::UTC)) * secondMs;
  }
  const auto& list = changes_->list;
  const auto after =
      std::upper_bound(list.begin(), list.end(), instant,
                       [](qint64 value, const Change& change) { return value < change.instant; });
  return after == list.begin() ? changes_->before : std::prev(after)->offset;
}

qint64 Zone::toInstant(qint64 wall) const {
  const qint64 before = offsetAt(wall - dayMs), after = offsetAt(wall + dayMs);
  if (before == after && offsetAt(wall - before) == before) return wall - before;
  for (const qint64 offset : {before, after})
    if (offsetAt(wall - offset) == offset) return wall - offset;
  return wall - before;  // skipped by the clocks
}

std::optional<Zone> Zone::defined(const Document& document, const Component& definition, bool* tooMuch) {
  auto changes = std::make_shared<Changes>();
  QPair<qint64, qint64> first{std::numeric_limits<qint64>::max(), 0};  // the first change, and before it
  bool all = definition.end - definition.offset <= maxDefinitionBytes &&
             definition.children.size() <= maxDefinitionParts;
  for (const Component& part : definition.children) {
    if (!all) break;
    if (part.name != "STANDARD" && part.name != "DAYLIGHT") continue;
    const auto from = offsetValue(document, part, "TZOFFSETFROM"),
               to = offsetValue(document, part, "TZOFFSETTO");
    if (!to) continue;
    const qint64 before = from.value_or(*to);
    for (const qint64 wall : onsetsOf(document, part, before)) {
      changes->list.push_back({wall - before, *to});
      first = qMin(first, {wall - before, before});
    }
    all = changes->list.size() <= maxChanges;
  }
  if (tooMuch) *tooMuch = !all;
  if (!all || changes->list.empty()) return std::nullopt;
  std::stable_sort(changes->list.begin(), changes->list.end(),
                   [](const Change& a, const Change& b) { return a.instant < b.instant; });
  changes->before = first.second;
  Zone zone;
  zone.changes_ = std::move(changes);
  return zone;
}

std::optional<Zone> Zone::ofOldCalendar(const Document& document, const Component& calendar,
                                        const Zone& viewer) {
  const auto standard = offsetValue(document, calendar, "TZ");
  if (!standard) return std::nullopt;
  auto changes = std::make_shared<Changes>();
  changes->before = *standard;
  const auto add = [&](const QByteArray& date, qint64 before, qint64 after) {
    if (const auto value = dateValue(date, {}))
      changes->list.push_back({value->wall() - (value->form == DateValue::Form::Utc ? 0 : before), after});
  };
  for (const Property& property : propertiesOf(document, calendar, "DAYLIGHT")) {
    const QByteArrayList fields = property.value.split(';');  // TRUE;+02;begin;end;CET;CEST
    const auto summer = fields.size() < 4 ? std::nullopt : offsetOf(fields[1]);
    if (!summer || fields[0].trimmed().toUpper() != "TRUE" || changes->list.size() > maxChanges) continue;
    add(fields[2], *standard, *summer);
    add(fields[3], *summer, *standard);
  }
  std::stable_sort(changes->list.begin(), changes->list.end(),
                   [](const Change& a, const Change& b) { return a.instant < b.instant; });
  const bool agrees =
      changes->list.empty()
          ? viewer.offsetAt(wallOf(QDate(2024, 1, 15), {})) == *standard ||
                viewer.offsetAt(wallOf(QDate(2024, 7, 15), {})) == *standard
          : std::all_of(changes->list.begin(), changes->list.end(), [&](const Change& change) {
              return viewer.offsetAt(change.instant) == change.offset;
            });
  if (agrees) return viewer;
  Zone zone;
  zone.changes_ = std::move(changes);
  return zone;
}

bool isAbbreviation(const QString& name) {
  const auto isCapital = [](QChar c) { return c >= u'A' && c <= u'Z'; };
  return name != u"UTC" && name.size() >= 2 && name.size() <= 4 &&
         std::all_of(name.begin(), name.end(), isCapital);
}

std::optional<QTimeZone> zoneByName(const QString& written) {
  QString name = written.trimmed();
  if (name.size() > 1 && name.startsWith(u'"') && name.endsWith(u'"')) name = name.mid(1, name.size() - 2);
  name.replace(u"\\,"_qs, u","_qs).replace(u"\\;"_qs, u";"_qs);
  if (name.isEmpty() || name.size() > maxNameLength) return std::nullopt;
  if (const auto zone = machineZone(name)) return zone;
  if (const auto zone = zoneByPath(name)) return zone;
  for (const QString& id : {name, windowsNameOf(name)}) {
    const QByteArray iana = QTimeZone::windowsIdToDefaultIanaId(id.toUtf8());
    if (!iana.isEmpty()) return machineZone(QString::fromLatin1(iana));
  }
  const QString known = ianaOfDisplayName(plainDisplayName(name));
  if (!known.isEmpty()) return machineZone(known);
  if (name.startsWith(u'(')) {
    const QString common = ianaOfPlaces(plainDisplayName(name));
    if (!common.isEmpty()) return machineZone(common);
  }
  if (name.count(u'-') == 1) return machineZone(QString(name).replace(u'-', u'/'));  // "US-Eastern"
  return std::nullopt;
}

std::optional<QTimeZone> zoneByOffset(const QString& name) {
  static const QRegularExpression form(
      u"^\\s*\\(?(?:UTC|GMT)\\s*(?:([+-])(\\d{1,2})(?:[:.]?(\\d{2}))?)?(?:\\).*|\\s*)$"_qs,
      QRegularExpression::CaseInsensitiveOption);
  if (name.size() > maxNameLength) return std::nullopt;
  const auto match = form.match(name);
  if (!match.hasMatch()) return std::nullopt;
  const int seconds = match.captured(2).toInt() * 3600 + match.captured(3).toInt() * 60;
  if (seconds > 14 * 3600) return std::nullopt;
  return QTimeZone(match.captured(1) == u"-" ? -seconds : seconds);
}

namespace {

constexpr size_t maxHomes = 8;         // definitions among which the calendar's home is looked for
constexpr size_t maxClockLines = 100;  // of version 1.0: two for each change of its rules

CalendarHead readHead(const Document& document, const Component& calendar) {
  CalendarHead head;
  const auto maker = firstOf(document, calendar, "PRODID");
  head.ofGoogle = maker && maker->value.contains("Google");
  if (const auto zone = firstOf(document, calendar, "X-WR-TIMEZONE")) head.zone = zone->value;
  if (calendar.old)
    for (const Line& line : calendar.lines)
      if ((document.is(line, "TZ") || document.is(line, "DAYLIGHT")) &&
          head.clock.lines.size() < maxClockLines)
        head.clock.lines.push_back(line);
  size_t asked = 0;
  for (const Component& definition : calendar.children) {
    if (definition.name != "VTIMEZONE") continue;
    if (++asked > maxHomes) break;
    const auto id = firstOf(document, definition, "TZID");
    if (id && id->value.trimmed() != "UTC") head.definitions.append(id->value);
  }
  return head;
}

}  // namespace

const CalendarHead& ZoneIndex::headOf(const Component* calendar) const {
  static const CalendarHead none;
  const auto known = heads_.constFind(calendar);
  return known == heads_.cend() ? none : *known;
}

ZoneIndex::ZoneIndex(const Document& document) {
  add(document, document.components, nullptr);
}

void ZoneIndex::add(const Document& document, const std::vector<Component>& components,
                    const Component* calendar) {
  for (const Component& component : components) {
    if (component.name == "VCALENDAR") {
      heads_.insert(&component, readHead(document, component));
      add(document, component.children, &component);
      continue;
    }
    if (component.name != "VTIMEZONE") {
      if (component.name != "VEVENT") add(document, component.children, calendar);
      continue;
    }
    const auto id = firstOf(document, component, "TZID");
    if (!id || (component.children.empty() && !firstOf(document, component, "X-LIC-LOCATION"))) continue;
    // some write the escapes of a text also where the name is used
    for (const QString& name : {fromText(id->value).trimmed(), decoded(id->value).trimmed()})
      for (const Component* home : {calendar, static_cast<const Component*>(nullptr)})
        if (!definitions_.contains({home, name})) definitions_.insert({home, name}, &component);
  }
}

const Component* ZoneIndex::own(const Component* calendar, const QString& name) const {
  return definitions_.value({calendar, name});
}

const std::optional<QTimeZone>& ZoneBook::named(const QString& tzid) {
  const auto known = names_.constFind(tzid);
  return known != names_.cend() ? *known : *names_.insert(tzid, zoneByName(tzid));
}

std::optional<Zone> ZoneBook::definedBy(const Document& document, const Component* definition,
                                        const QString& tzid) {
  if (!definition) return std::nullopt;
  if (definition->end - definition->offset > maxDefinitionBytes) {  // not even searched: each date comes here
    tooMuch_.insert(tzid);
    return std::nullopt;
  }
  if (const auto location = firstOf(document, *definition, "X-LIC-LOCATION"))
    if (const auto& zone = named(decoded(location->value).trimmed())) return Zone(*zone);
  const QByteArray key =
      tzid.toUtf8() + '\0' +
      QCryptographicHash::hash(document.raw(*definition).toByteArray(), QCryptographicHash::Sha1);
  const auto known = definitions_.constFind(key);
  if (known != definitions_.cend()) return *known;
  bool tooMuch = false;
  const auto zone = Zone::defined(document, *definition, &tooMuch);
  if (tooMuch) tooMuch_.insert(tzid);
  definitions_.insert(key, zone);
  return zone;
}

std::optional<Zone> ZoneBook::find(const Document& document, const ZoneIndex* index,
                                   const Component* calendar, const QString& tzid) {
  const QString wanted = tzid.trimmed();
  const Component* own = index && calendar ? index->own(calendar, wanted) : nullptr;
  if (own && isAbbreviation(wanted))
    if (const auto zone = definedBy(document, own, tzid)) return zone;
  if (const auto& known = named(tzid)) return Zone(*known);
  if (const auto zone = definedBy(document, own, tzid)) return zone;
  if (index)
    if (const auto zone = definedBy(document, index->first(wanted), tzid)) return zone;
  if (const auto offset = zoneByOffset(wanted)) return Zone(*offset);
  return std::nullopt;
}

}  // namespace platform::calendar::icalendar
