#include "platform/calendar/icalendar/expansion.h"

#include "platform/calendar/icalendar/text.h"
#include "platform/calendar/icalendar/vcalendar.h"

#include <algorithm>

namespace platform::calendar::icalendar {
namespace {

constexpr qint64 widestOffset = 26 * hourMs;

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

void Expansion::note(const EventRef& ref, const QString& text) {
  const Problem problem{ref.file->name, ref.event->component->line, text};
  for (const Problem& known : *problems_)
    if (known.place == problem.place && known.line == problem.line && known.text == problem.text) return;
  if (problems_->size() < maxProblemsPerFile) problems_->append(problem);
}

QString Expansion::overrideId(const Owners& owners, qsizetype number) {
  const EventRef* master = owners.of(number);
  const EventRef& override = owners.group().overrides.at(number);
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
  const Owners owners(group);
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
    for (const Occurrence& occurrence : occurrences(owners, master, from, to))
      addItem(occurrence.from,
              itemOf(occurrence, event, event.place, recurrenceIdText(timing, occurrence.id)), items);
  }
  for (qsizetype i = 0; i < group.overrides.size(); ++i) {
    const EventRef& override = group.overrides[i];
    if (override.event->cancelled || cancelled || !override.event->start) continue;
    // without expansion the changed occurrences stand behind their master, unless somebody asks for this one
    // item
    if (!query_.expandSeries && query_.uid.isEmpty() && owners.of(i)) continue;
    addItem(override, itemOf(override, Kind::Exception, overrideId(owners, i)), items);
  }
}

}  // namespace platform::calendar::icalendar
