#include "platform/calendar/icalendar/expansion.h"

#include "platform/calendar/icalendar/text.h"
#include "platform/calendar/icalendar/vcalendar.h"

#include <QSet>

#include <limits>
#include <map>
#include <set>

namespace platform::calendar::icalendar {
namespace {

constexpr qint64 widestOffset = 26 * hourMs;
/// How far the name that a file gives an occurrence can be from its start: two zones and a day lie between.
constexpr qint64 widestName = 2 * widestOffset + 2 * dayMs;

QDateTime seen(qint64 instant, const QTimeZone& zone) {
  return QDateTime::fromMSecsSinceEpoch(instant, zone);
}

Sensitivity sensitivityOf(const QByteArray& value) {
  const QByteArray text = value.trimmed().toUpper();
  if (text == "PERSONAL" || text == "X-PERSONAL") return Sensitivity::Personal;
  if (text == "PRIVATE") return Sensitivity::Private;
  if (text == "CONFIDENTIAL") return Sensitivity::Confidential;
  return Sensitivity::Normal;
}

QString bodyText(const Property& property, bool old) {
  QString text = textOf(property, old);
  // in quoted-printable the last line ends like the others; that line break belongs to the form
  if (old && text.endsWith(u'\n') && !property.value.isEmpty()) text.chop(1);
  if (text.count(u'\n') == text.size()) text.clear();  // Exchange writes an empty body as one line break
  return text.replace(u"\n"_qs, u"\r\n"_qs);
}

/// The text is believed as long as it still says what the categories say.
bool saysTheSame(const QString& text, const QStringList& categories) {
  const QChar lead = leadingSeparator(text);
  QStringList pieces;
  for (const QString& name : categories) pieces += categoryPieces(name, lead);
  return categoryPieces(text, lead) == pieces;
}

}  // namespace

namespace {

/// Some programs take that over from version 1.0.
bool isEncoded(const Property& property) {
  return property.head.contains(';') && isQuotedPrintable(property.head + ':');
}

QStringList namesOf(const Property& property, bool old) {
  return old || isEncoded(property) ? oldTextList(property) : fromTextList(property.value);
}

}  // namespace

QString textOf(const Property& property, bool old) {
  if (old) return oldText(property);
  return isEncoded(property) ? encodedText(property) : fromText(property.value);
}

void readTexts(const Document& document, const Component& component, Item& item, bool old) {
  std::optional<QString> ownText;
  bool hasSubject = false, hasBody = false;
  for (const Line& line : component.lines) {
    const auto is = [&](const char* name) { return document.is(line, name); };
    if (is("SUMMARY") && !hasSubject) {
      item.subject = textOf(parsed(document, line), old).replace(u'\n', u' ');
      hasSubject = true;
    } else if (is("DESCRIPTION") && !hasBody) {
      item.body = bodyText(parsed(document, line), old);
      hasBody = true;
    } else if (is("CATEGORIES")) {
      item.categories += namesOf(parsed(document, line), old);
    } else if (is("X-HOURBOOK-CATEGORIES")) {
      ownText = fromText(parsed(document, line).value).replace(u"\n"_qs, u"\r\n"_qs);
    } else if (is("X-HOURBOOK-BILLINGINFORMATION")) {
      item.billingInformation = fromText(parsed(document, line).value);
    } else if (is("X-HOURBOOK-USERPROPERTY")) {
      const Property property = parsed(document, line);
      const int type = property.parameter("X-TYPE").toInt();
      item.userProperties.insert(
          fromParameter(property.parameter("X-NAME")),
          {type > 0 ? type : 1, fromText(property.value).replace(u"\n"_qs, u"\r\n"_qs)});
    } else if (is("CLASS")) {
      item.sensitivity = sensitivityOf(parsed(document, line).value);
    }
  }
  if (ownText && saysTheSame(*ownText, item.categories))
    item.categoriesText = ownText->isNull() ? u""_qs : *ownText;
}

struct Expansion::Starts {
  std::set<qint64> walls;
  std::map<qint64, Span> lengths;  // of periods
};

void Expansion::note(const EventRef& ref, const QString& text) {
  const Problem problem{ref.file->name, ref.event->component->line, text};
  for (const Problem& known : *problems_)
    if (known.place == problem.place && known.line == problem.line && known.text == problem.text) return;
  if (problems_->size() < maxProblemsPerFile) problems_->append(problem);
}

const EventRef* Expansion::masterOf(const Group& group, const EventRef& override) const {
  const auto isDay = [](const DateValue& value) { return value.form == DateValue::Form::Date; };
  const EventRef* best = nullptr;
  int bestScore = 0;
  for (const EventRef& master : group.masters) {
    const Event& event = *master.event;
    const bool here = master.file->name == override.file->name;
    if (!event.start || (!here && !event.isSeries())) continue;
    const bool ahead = here && master.file->base + event.component->offset <
                                   override.file->base + override.event->component->offset;
    const int score = (here ? 8 : 1) + (event.isSeries() ? 4 : 0) + (ahead ? 1 : 0) +
                      (isDay(*event.start) == isDay(*override.event->recurrenceId) ? 2 : 0);
    if (score < bestScore || (score == bestScore && !ahead)) continue;  // of equals the nearest one ahead
    best = &master;
    bestScore = score;
  }
  return best;
}

QList<const EventRef*> Expansion::ownersOf(const Group& group) const {
  QList<const EventRef*> owners;
  for (const EventRef& override : group.overrides) owners.append(masterOf(group, override));
  return owners;
}

QString Expansion::overrideId(const Group& group, const EventRef& override) {
  return overrideId(masterOf(group, override), override);
}

QString Expansion::overrideId(const EventRef* master, const EventRef& override) {
  const DateValue& id = *override.event->recurrenceId;
  if (master) {
    const Timing timing = reader_.timingOf(*master->file, *master->event);
    return recurrenceIdText(timing, reader_.wallOn(timing, *override.file, *override.event, id));
  }
  Timing own;
  own.allDay = id.form == DateValue::Form::Date;
  own.utc = id.form == DateValue::Form::Utc;
  return recurrenceIdText(own, id.wall());
}

void Expansion::apply(const Rule& rule, const EventRef& master, const Timing& timing, qint64 from, qint64 to,
                      Starts& starts, bool excludes) {
  Rule plain = rule;
  if (timing.allDay) plain.clearTimes();
  const qint64 until =
      plain.until ? reader_.untilOn(timing, *plain.until) : std::numeric_limits<qint64>::max();
  bool tooMany = false;
  const bool whole = walk(plain, timing.start, until, from, to, [&](qint64 wall) {
    if (excludes) {
      starts.walls.erase(wall);
      return true;
    }
    starts.walls.insert(wall);
    tooMany = starts.walls.size() > static_cast<size_t>(maxOccurrencesPerQuery);
    return !tooMany;
  });
  if (tooMany)
    note(master,
         QStringLiteral("A series has more than %1 occurrences in the period; the later ones are left out.")
             .arg(maxOccurrencesPerQuery));
  if (!whole)
    note(master,
         QStringLiteral("A series takes too long to be followed; the later occurrences are left out."));
}

Expansion::Starts Expansion::startsOf(const EventRef& master, const Timing& timing, qint64 from, qint64 to) {
  Starts starts;
  const auto within = [&](qint64 wall) { return wall >= from && wall <= to; };
  const Event& event = *master.event;
  // a start that does not suit its own rule is an occurrence all the same
  if (within(timing.start)) starts.walls.insert(timing.start);
  QString why;
  for (const QByteArray& text : event.rules)
    if (const auto rule = ruleOf(text, &why)) apply(*rule, master, timing, from, to, starts, false);
  for (const Period& period : event.moreStarts) {
    const qint64 wall = reader_.wallOn(timing, *master.file, event, period.start);
    if (!within(wall)) continue;
    starts.walls.insert(wall);
    if (period.span) starts.lengths[wall] = *period.span;
    if (period.end)
      starts.lengths[wall] = {0, qMax<qint64>(0, reader_.instantOf(*master.file, event, *period.end) -
                                                     reader_.instantOf(*master.file, event, period.start))};
    const auto length = starts.lengths.find(wall);
    if (timing.allDay && length != starts.lengths.end())  // days are whole
      length->second = {
          qMax(1, length->second.days + static_cast<int>((length->second.exactMs + dayMs - 1) / dayMs)), 0};
  }
  for (const QByteArray& text : event.exceptionRules)
    if (const auto rule = ruleOf(text, &why)) apply(*rule, master, timing, from, to, starts, true);
  removeExcluded(master, timing, starts);
  while (starts.walls.size() > static_cast<size_t>(maxOccurrencesPerQuery))
    starts.walls.erase(std::prev(starts.walls.end()));
  return starts;
}

void Expansion::removeExcluded(const EventRef& master, const Timing& timing, Starts& starts) {
  for (const DateValue& value : master.event->excluded) {
    if (!timing.allDay && value.form == DateValue::Form::Date) {  // every occurrence of that day
      const qint64 midnight = wallOf(value.date, QTime(0, 0));
      starts.walls.erase(starts.walls.lower_bound(midnight), starts.walls.lower_bound(midnight + dayMs));
      continue;
    }
    const qint64 wall = reader_.wallOn(timing, *master.file, *master.event, value);
    starts.walls.erase(wall);
    if (value.form != DateValue::Form::Utc) continue;
    for (const qint64 name : timing.namesOf(wall)) starts.walls.erase(name);
  }
}

/// The occurrences whose original start lies between two wall-clock times, without those that overrides
/// replace.
QList<Occurrence> Expansion::occurrences(const Group& group, const QList<const EventRef*>& owners,
                                         const EventRef& master, qint64 from, qint64 to) {
  struct Future {
    qint64 id;
    EventRef ref;
    Timing timing;
  };
  const Timing timing = reader_.timingOf(*master.file, *master.event);
  const auto isOwn = [&](qsizetype i) {
    return owners[i] && (owners[i]->file->name == master.file->name || owners[i]->event == master.event);
  };
  const auto idOf = [&](const EventRef& override) {
    return reader_.wallOn(timing, *override.file, *override.event, *override.event->recurrenceId);
  };
  QList<Future> futures;
  qint64 widest = 0;
  for (qsizetype i = 0; i < group.overrides.size(); ++i) {
    const EventRef& override = group.overrides[i];
    if (!override.event->thisAndFuture || !override.event->start || !isOwn(i)) continue;
    futures.append({idOf(override), override, reader_.timingOf(*override.file, *override.event)});
    widest = qMax(widest, qAbs(futures.last().timing.start - futures.last().id));
  }
  std::sort(futures.begin(), futures.end(), [](const Future& a, const Future& b) { return a.id < b.id; });
  const Starts starts = startsOf(master, timing, from - widest, to + widest);
  if (starts.walls.empty()) return {};
  QSet<qint64> replaced;
  for (qsizetype i = 0; i < group.overrides.size(); ++i) {
    const EventRef& override = group.overrides[i];
    const qint64 written = override.event->recurrenceId->wall();
    if (written < *starts.walls.begin() - widestName || written > *starts.walls.rbegin() + widestName ||
        !isOwn(i))
      continue;
    const qint64 id = idOf(override);
    replaced.insert(id);
    if (override.event->recurrenceId->form == DateValue::Form::Utc)
      for (const qint64 name : timing.namesOf(id)) replaced.insert(name);
  }
  QList<Occurrence> result;
  for (const qint64 wall : starts.walls) {
    if (replaced.contains(wall)) continue;
    const qint64 shownAs = timing.shownAs(wall);
    if (shownAs != wall && starts.walls.count(shownAs) && !replaced.contains(shownAs)) continue;
    Occurrence occurrence{master, wall, wall, timing.length, timing};
    const auto length = starts.lengths.find(wall);
    if (length != starts.lengths.end()) occurrence.length = length->second;
    for (const Future& future : futures)
      if (future.id < wall)
        occurrence = {future.ref, wall, wall + (future.timing.start - future.id), future.timing.length,
                      future.timing};
    if (!occurrence.from.event->cancelled) result.append(occurrence);
  }
  return result;
}

std::optional<Occurrence> Expansion::occurrence(const Group& group, const EventRef& master,
                                                const QString& recurrenceId) {
  Property none;
  const auto value = dateValue(recurrenceId.toLatin1(), none);
  if (!value || !master.event->start || !master.event->isSeries()) return std::nullopt;
  for (const Occurrence& occurrence :
       occurrences(group, ownersOf(group), master, value->wall() - 2 * dayMs, value->wall() + 2 * dayMs))
    if (occurrence.id == value->wall()) return occurrence;
  return std::nullopt;
}

Item Expansion::itemOf(const EventRef& ref, Kind kind, const QString& recurrenceId) {
  Item item;
  readTexts(ref.file->document, *ref.event->component, item, ref.event->old);
  item.key = {ref.event->place, ref.event->uid, recurrenceId};
  item.tag = ref.file->tag(*ref.event);
  item.kind = kind;
  if (!ref.event->start) return item;
  const Timing timing = reader_.timingOf(*ref.file, *ref.event);
  item.start = seen(timing.startInstant(timing.start), query_.zone);
  item.end = seen(timing.endInstant(timing.start, timing.length), query_.zone);
  item.allDay = timing.allDay;
  item.zoneUnknown = timing.zoneUnknown;
  return item;
}

Item Expansion::itemOf(const Occurrence& occurrence, const Event& master, const QString& masterPlace,
                       const QString& id) {
  if (read_.event != occurrence.from.event) {  // the occurrences of a series have them in common
    texts_ = itemOf(occurrence.from, Kind::Occurrence, id);
    read_ = occurrence.from;
  }
  Item item = texts_;
  item.key = {masterPlace, master.uid, id};
  const Timing& timing = occurrence.timing;
  item.start = seen(timing.startInstant(occurrence.start), query_.zone);
  item.end = seen(timing.endInstant(occurrence.start, occurrence.length), query_.zone);
  return item;
}

bool Expansion::inRange(const Item& item) const {
  if (query_.startFrom.isValid() && (!item.start.isValid() || item.start < query_.startFrom)) return false;
  return !query_.startTo.isValid() || (item.start.isValid() && item.start <= query_.startTo);
}

void Expansion::addItem(const EventRef& ref, Item item, QList<Item>& items) {
  if (!inRange(item) || (query_.subject && item.subject != *query_.subject)) return;
  if (item.zoneUnknown) note(ref, reader_.whyUnknown(*ref.file, *ref.event));
  items.append(std::move(item));
}

void Expansion::add(const Group& group, QList<Item>& items) {
  const bool cancelled = std::any_of(group.masters.begin(), group.masters.end(), [](const EventRef& master) {
    return master.event->cancelled && master.event->isSeries();
  });
  const QList<const EventRef*> owners = ownersOf(group);
  for (const EventRef& master : group.masters) {
    const Event& event = *master.event;
    if (event.cancelled || (!event.start && (query_.startFrom.isValid() || query_.startTo.isValid())))
      continue;
    if (!event.isSeries() || !query_.expandSeries) {
      addItem(master, itemOf(master, event.isSeries() ? Kind::Master : Kind::Single, {}), items);
      continue;
    }
    const qint64 from = query_.startFrom.toMSecsSinceEpoch() - widestOffset;
    const qint64 to = query_.startTo.toMSecsSinceEpoch() + widestOffset;
    const Timing timing = reader_.timingOf(*master.file, event);
    for (const Occurrence& occurrence : occurrences(group, owners, master, from, to))
      addItem(occurrence.from,
              itemOf(occurrence, event, event.place, recurrenceIdText(timing, occurrence.id)), items);
  }
  for (qsizetype i = 0; i < group.overrides.size(); ++i) {
    const EventRef& override = group.overrides[i];
    if (override.event->cancelled || cancelled || !override.event->start) continue;
    // without expansion the changed occurrences stand behind their master, unless somebody asks for this one
    // item
    if (!query_.expandSeries && query_.uid.isEmpty() && owners[i]) continue;
    addItem(override, itemOf(override, Kind::Exception, overrideId(owners[i], override)), items);
  }
}

}  // namespace platform::calendar::icalendar
