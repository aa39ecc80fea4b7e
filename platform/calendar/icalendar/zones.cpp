#include "platform/calendar/icalendar/zones.h"

#include "platform/calendar/icalendar/recurrence.h"
#include "platform/calendar/icalendar/text.h"
#include "platform/calendar/icalendar/zonenames.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QRegularExpression>

#include <limits>

namespace platform::calendar::icalendar {
namespace {

constexpr int firstRuleYear = 1900;  // definitions begin in 1601; nobody asks for the years between
constexpr int lastRuleYear = 2200;

std::optional<qint64> offsetValue(const Document& document, const Component& part, const char* name) {
  const auto property = firstOf(document, part, name);
  if (!property) return std::nullopt;
  static const QRegularExpression form(u"^([+-]?)(\\d{2}):?(\\d{2}):?(\\d{2})?$"_qs);
  const auto match = form.match(QString::fromLatin1(property->value.trimmed()));
  if (!match.hasMatch()) return std::nullopt;
  const qint64 size = match.captured(2).toInt() * hourMs + match.captured(3).toInt() * minuteMs +
                      match.captured(4).toInt() * secondMs;
  if (size > dayMs) return std::nullopt;
  return match.captured(1) == u"-" ? -size : size;
}

/// The wall-clock times (by the clock before) at which one part of a definition comes into force.
QList<qint64> onsetsOf(const Document& document, const Component& part, qint64 offsetBefore) {
  QList<qint64> onsets;
  const auto startLine = firstOf(document, part, "DTSTART");
  const auto start = startLine ? dateValue(startLine->value, *startLine) : std::nullopt;
  if (!start) return onsets;
  onsets.append(start->wall());
  for (const Property& property : propertiesOf(document, part, "RRULE")) {
    QString why;
    const auto rule = ruleOf(property.value, &why);
    if (!rule) continue;
    qint64 from = start->wall();
    if (rule->count == 0 && rule->interval == 1 && start->date.year() < firstRuleYear)
      from = wallOf(QDate(firstRuleYear, start->date.month(), qMin(start->date.day(), 28)), start->time);
    qint64 until = std::numeric_limits<qint64>::max();
    if (rule->until)
      until = rule->until->form == DateValue::Form::Utc    ? rule->until->wall() + offsetBefore
              : rule->until->form == DateValue::Form::Date ? rule->until->wall() + dayMs - 1
                                                           : rule->until->wall();
    walk(*rule, from, until, from, wallOf(QDate(lastRuleYear, 1, 1), QTime(0, 0)), [&](qint64 wall) {
      onsets.append(wall);
      return true;
    });
  }
  for (const Property& property : propertiesOf(document, part, "RDATE")) {
    int unreadable = 0;
    for (const Period& period : periodList(property, &unreadable)) onsets.append(period.start.wall());
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
  static const QRegularExpression form(
      u"^(?:[A-Za-z]+(?:/[A-Za-z_-]+)+|Etc/"
      u"GMT[+-]?\\d{1,2}|(?:EST5EDT|CST6CDT|MST7MDT|PST8PDT)|CET|Cuba|EET|EST|Egypt|"
      "Eire|GB|GB-Eire|GMT|Greenwich|HST|Hongkong|Iceland|Iran|Israel|Jamaica|Japan|Kwajalein|Libya|MET|MST|"
      "NZ|NZ-CHAT|"
      "Navajo|PRC|Poland|Portugal|ROC|ROK|Singapore|Turkey|UCT|UTC|Universal|W-SU|WET|Zulu)$"_qs);
  return form.match(id).hasMatch();
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

std::optional<Zone> Zone::defined(const Document& document, const Component& definition) {
  auto changes = std::make_shared<Changes>();
  QList<QPair<qint64, qint64>> befores;  // instant of a change, offset before it
  for (const Component& part : definition.children) {
    if (part.name != "STANDARD" && part.name != "DAYLIGHT") continue;
    const auto from = offsetValue(document, part, "TZOFFSETFROM"),
               to = offsetValue(document, part, "TZOFFSETTO");
    if (!to) continue;
    const qint64 before = from.value_or(*to);
    for (const qint64 wall : onsetsOf(document, part, before)) {
      changes->list.push_back({wall - before, *to});
      befores.append({wall - before, before});
    }
  }
  if (changes->list.empty()) return std::nullopt;
  std::sort(changes->list.begin(), changes->list.end(),
            [](const Change& a, const Change& b) { return a.instant < b.instant; });
  changes->before = std::min_element(befores.begin(), befores.end())->second;
  Zone zone;
  zone.changes_ = std::move(changes);
  return zone;
}

std::optional<QTimeZone> zoneByName(const QString& written) {
  QString name = written.trimmed();
  if (name.size() > 1 && name.startsWith(u'"') && name.endsWith(u'"')) name = name.mid(1, name.size() - 2);
  name.replace(u"\\,"_qs, u","_qs).replace(u"\\;"_qs, u";"_qs);
  if (name.isEmpty()) return std::nullopt;
  if (const auto zone = machineZone(name)) return zone;
  if (const auto zone = zoneByPath(name)) return zone;
  for (const QString& id : {name, windowsNameOf(name)}) {
    const QByteArray iana = QTimeZone::windowsIdToDefaultIanaId(id.toUtf8());
    if (!iana.isEmpty()) return machineZone(QString::fromLatin1(iana));
  }
  const QString known = ianaOfDisplayName(plainDisplayName(name));
  if (!known.isEmpty()) return machineZone(known);
  if (name.count(u'-') == 1) return machineZone(QString(name).replace(u'-', u'/'));  // "US-Eastern"
  return std::nullopt;
}

std::optional<QTimeZone> zoneByOffset(const QString& name) {
  static const QRegularExpression form(
      u"^\\s*\\(?(?:UTC|GMT)\\s*(?:([+-])(\\d{1,2})(?::?(\\d{2}))?)?(?:\\).*|\\s*)$"_qs,
      QRegularExpression::CaseInsensitiveOption);
  const auto match = form.match(name);
  if (!match.hasMatch()) return std::nullopt;
  const int seconds = match.captured(2).toInt() * 3600 + match.captured(3).toInt() * 60;
  if (seconds > 14 * 3600) return std::nullopt;
  return QTimeZone(match.captured(1) == u"-" ? -seconds : seconds);
}

std::optional<Zone> ZoneBook::find(const Document& document, const QList<const Component*>& scope,
                                   const QString& tzid) {
  if (!names_.contains(tzid)) names_.insert(tzid, zoneByName(tzid));
  if (const auto& known = names_[tzid]) return Zone(*known);
  const QString wanted = tzid.trimmed();
  for (const Component* calendar : scope) {
    for (const Component& definition : calendar->children) {
      if (definition.name != "VTIMEZONE") continue;
      const auto id = firstOf(document, definition, "TZID");
      if (!id || (fromText(id->value).trimmed() != wanted && decoded(id->value).trimmed() != wanted))
        continue;
      if (const auto location = firstOf(document, definition, "X-LIC-LOCATION"))
        if (const auto zone = zoneByName(decoded(location->value))) return Zone(*zone);
      const QByteArray key =
          tzid.toUtf8() + '\0' +
          QCryptographicHash::hash(document.raw(definition).toByteArray(), QCryptographicHash::Sha1);
      if (!definitions_.contains(key)) definitions_.insert(key, Zone::defined(document, definition));
      if (const auto& zone = definitions_[key]) return zone;
    }
  }
  if (const auto offset = zoneByOffset(wanted)) return Zone(*offset);
  return std::nullopt;
}

}  // namespace platform::calendar::icalendar
