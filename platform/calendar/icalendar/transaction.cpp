#include "platform/calendar/icalendar/transaction.h"

#include "platform/basic/clock.h"
#include "platform/basic/failure.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

namespace platform::calendar::icalendar {
namespace {

constexpr int maxAttempts = 10;  // against a program that writes all the time

Query lookingFrom(const QTimeZone& zone) {
  Query query;
  query.zone = zone;
  return query;
}

/// A folder's files end with ".ics", so a number behind that is none of the name. A calendar in one file may
/// be named as its user likes, also "x#2".
template <class Source>
QString fileNameOf(const Source& source, const QString& place) {
  static const QRegularExpression number(u"#\\d+$"_qs);
  return source.isFolder() ? QString(place).remove(number) : QFileInfo(source.pathOf({})).fileName();
}

bool isIn(const Snapshot& snapshot, const EventRef& ref) {
  return ref.file->name == snapshot.name;
}

/// An event's lines are replaced by others.
files::Splice replacing(const EventRef& ref, const QByteArray& with) {
  const Document& document = ref.file->document;
  const Component& component = *ref.event->component;
  return {ref.file->base + component.offset, document.raw(component).toByteArray(),
          asItEnded(document, component, with)};
}

/// A component that is to begin on a line of its own.
QByteArray beginningALine(const Document& document, qsizetype offset, const QByteArray& component) {
  return isLineStart(document.bytes, offset) ? component : lineEndOf(document.bytes) + component;
}

files::Splice behind(const EventRef& ref, const QByteArray& component) {
  const int end = ref.event->component->end;
  return {ref.file->base + end, {}, beginningALine(ref.file->document, end, component)};
}

/// Whatever is neither the calendar around its entries nor a definition of a zone is something that somebody
/// keeps.
bool holdsEntries(const std::vector<Component>& components) {
  return std::any_of(components.begin(), components.end(), [](const Component& component) {
    if (component.name == "VCALENDAR") return holdsEntries(component.children);
    return component.name != "VTIMEZONE";
  });
}

/// A rule goes along with a new start where it leaves to it all that changes. The last day, the weekday, the
/// hour that it names would stay where they are.
bool mayMove(const Event& event, Reader& reader, const CalendarFile& file, const QDateTime& start) {
  if (!event.start) return true;  // nothing that could be moved; what can be done then is found out later
  const Timing timing = reader.timingOf(file, event);
  const Zone& zone = timing.allDay ? timing.viewer : timing.zone;
  const qint64 wall = zone.toWall(start.toMSecsSinceEpoch());
  const bool sameDay = dateOfWall(wall) == dateOfWall(timing.start);
  if (sameDay && (timing.allDay || wall == timing.start)) return true;
  return std::all_of(event.rules.begin(), event.rules.end(), [&](const QByteArray& text) {
    QString why;
    const auto rule = ruleOf(text, &why);
    if (!rule) return true;
    const bool namesDays = !rule->byDay.isEmpty() || !rule->byMonth.isEmpty() ||
                           !rule->byMonthDay.isEmpty() || !rule->byYearDay.isEmpty() ||
                           !rule->byWeekNo.isEmpty();
    const bool namesTimes = !rule->byHour.isEmpty() || !rule->byMinute.isEmpty() || !rule->bySecond.isEmpty();
    const bool endsAtDate = !rule->until || rule->until->form == DateValue::Form::Date || timing.allDay;
    return !namesTimes && endsAtDate && (sameDay || (!namesDays && !rule->until));
  });
}

bool isExcluded(Reader& reader, const EventRef& master, const Timing& timing, qint64 wall) {
  const QList<DateValue>& excluded = master.event->excluded;
  return std::any_of(excluded.begin(), excluded.end(), [&](const DateValue& value) {
    if (!timing.allDay && value.form == DateValue::Form::Date) return dateOfWall(wall) == value.date;
    return reader.wallOn(timing, *master.file, *master.event, value) == wall;
  });
}

QString titleOf(const CalendarFile& file, const Event& event) {
  Item item;
  readTexts(file.document, *event.component, item, event.old);
  return item.subject.isEmpty() ? event.uid : item.subject;
}

}  // namespace

Transaction::Transaction(EventSource& source, Writer& writer, ZoneBook& book, QString label,
                         const QTimeZone& zone)
    : Transaction(source, writer, book, std::move(label),
                  Step{{}, {}, {}, {}, zone, basic::Clock::current().now()}) {}

Transaction::Transaction(EventSource& source, Writer& writer, ZoneBook& book, QString label, const Step& step)
    : source_(source),
      writer_(writer),
      label_(std::move(label)),
      zone_(step.zone),
      now_(step.now),
      expansion_(book, lookingFrom(step.zone), &ignored_) {}

void Transaction::fail(qint32 number, const QString& text) const {
  throw Failure(number, QStringLiteral("Calendar \"%1\": %2").arg(label_, text),
                QStringLiteral("IcalendarStore"));
}

void Transaction::rewrite(const QString& name, const QString& uid, const Step& step, const Edit& edit) {
  for (int attempt = 0; attempt < maxAttempts; ++attempt) {
    const Snapshot snapshot = source_.snapshot(name, uid);
    Splices splices = edit(snapshot);
    splices.removeIf([](const files::Splice& splice) { return splice.was == splice.with; });
    if (splices.isEmpty() || put(snapshot, uid, splices, step)) return;
  }
  fail(errChangedMeanwhile,
       QStringLiteral("another program keeps changing \"%1\", so the change was not stored.")
           .arg(source_.pathOf(name)));
}

bool Transaction::put(const Snapshot& snapshot, const QString& uid, const Splices& splices,
                      const Step& step) {
  if (step.kind == Step::Kind::Remove && source_.isFolder() && nothingLeft(snapshot, splices))
    return writer_.remove(snapshot);
  return writer_.put(snapshot, uid, splices, step);
}

/// Whether a file of a folder holds nothing that somebody keeps once these stretches are gone.
bool Transaction::nothingLeft(const Snapshot& snapshot, const Splices& splices) const {
  QByteArray bytes;
  if (snapshot.whole) {
    bytes = snapshot.whole->document.bytes;
  } else {
    const files::ReadResult read = files::readFile(source_.pathOf(snapshot.name));
    const bool same = read.ok && read.fingerprint.size == snapshot.fingerprint.size &&
                      read.fingerprint.mtimeNs == snapshot.fingerprint.mtimeNs;
    if (!same) return false;  // the writing finds out
    bytes = read.bytes;
  }
  Splices backwards = splices;
  std::sort(backwards.begin(), backwards.end(),
            [](const files::Splice& a, const files::Splice& b) { return a.offset > b.offset; });
  for (const files::Splice& splice : std::as_const(backwards))
    bytes.replace(splice.offset, splice.was.size(), splice.with);
  return !holdsEntries(scan(bytes, {}).components);
}

/// The events of one UID in the whole folder, those of the file as they are at this moment.
Group Transaction::groupOf(const Snapshot& snapshot, const QString& uid) {
  return groupOf(snapshot, source_.withUid(uid));
}

Group Transaction::groupOf(const Snapshot& snapshot, Group group) {
  const auto old = [&](const EventRef& ref) { return isIn(snapshot, ref); };
  group.masters.removeIf(old);
  group.overrides.removeIf(old);
  for (const EventRef& ref : snapshot.events)
    (ref.event->isOverride() ? group.overrides : group.masters).append(ref);
  return group;
}

Transaction::Target Transaction::choose(const QList<Target>& candidates, const ItemKey& key,
                                        const QString& tag) const {
  const auto described = [](const Target& target) {
    return target.occurrence ? target.occurrence->from : target.event;
  };
  const Target* best = nullptr;
  for (const Target& target : candidates) {
    const EventRef from = described(target);
    if (!tag.isEmpty() && from.file->tag(*from.event) != tag) continue;
    if (target.event.event->place == key.place) return target;
    if (!best && !tag.isEmpty()) best = &target;
  }
  if (best) return *best;
  const EventRef& present = candidates.first().event;
  fail(errChangedMeanwhile,
       QStringLiteral("another program has changed \"%1\" in \"%2\" meanwhile.")
           .arg(titleOf(*present.file, *present.event), source_.pathOf(present.file->name)));
}

Transaction::Target Transaction::find(const Snapshot& snapshot, const Group& group, const ItemKey& key,
                                      const QString& tag) {
  QList<Target> candidates;
  const auto here = [&](const EventRef& ref) { return isIn(snapshot, ref); };
  if (key.recurrenceId.isEmpty()) {
    for (const EventRef& master : group.masters)
      if (here(master)) candidates.append({master, std::nullopt});
  } else {
    const Owners owners(group);
    for (qsizetype i = 0; i < group.overrides.size(); ++i)
      if (here(group.overrides[i]) && expansion_.overrideId(owners, i) == key.recurrenceId)
        candidates.append({group.overrides[i], std::nullopt});
    if (candidates.isEmpty())
      for (const EventRef& master : group.masters)
        if (here(master))
          if (const auto occurrence = expansion_.occurrence(owners, master, key.recurrenceId))
            candidates.append({master, occurrence});
  }
  if (candidates.isEmpty())
    fail(errNotFound, QStringLiteral("the item \"%1\" is no longer in \"%2\".")
                          .arg(key.uid, source_.pathOf(snapshot.name)));
  return choose(candidates, key, tag);
}

Transaction::Splices Transaction::saved(const Group& group, const Target& target, const Change& change) {
  Reader& reader = expansion_.reader();
  const EventRef& event = target.event;
  const Component& component = *event.event->component;
  const EventRef& from = target.occurrence ? target.occurrence->from : event;
  const Origin origin{*from.file, from.event->calendar, reader};
  if (event.event->isSeries() && !target.occurrence && change.start &&
      (!group.overrides.isEmpty() || !event.event->excluded.isEmpty() || !event.event->moreStarts.isEmpty()))
    fail(errAccessDenied, QStringLiteral("the start of a series with exceptions cannot be changed."));
  if (event.event->isSeries() && !target.occurrence && change.start &&
      !mayMove(*event.event, reader, *event.file, *change.start))
    fail(errAccessDenied,
         QStringLiteral("the start of a series whose rule names its days, its hours or its last "
                        "day cannot be changed."));
  ComponentEditor editor(target.occurrence ? overrideOf(*target.occurrence, event, reader)
                                           : wholeLines(event.file->document, component));
  const QByteArray before = editor.bytes();
  const QString path = source_.pathOf(event.file->name);
  try {
    applyChange(editor, change, origin, now_);
  } catch (const Failure& failure) {
    fail(failure.number(), QStringLiteral("\"%1\" in \"%2\": %3")
                               .arg(titleOf(*from.file, *from.event), path, failure.description()));
  }
  if (editor.bytes() == before) return {};
  if (!editor.isWhole())
    fail(errStoreBroken, QStringLiteral("\"%1\" cannot be changed without damage to \"%2\".")
                             .arg(titleOf(*event.file, *event.event), path));
  const files::Splice splice =
      target.occurrence ? behind(event, editor.bytes()) : replacing(event, editor.bytes());
  writtenTag_ = CalendarFile::tagOf(target.occurrence ? editor.bytes() : splice.with);
  return {splice};
}

Item Transaction::readBack(const QString& name, const QString& uid, const QString& recurrenceId,
                           const QString& place) {
  const Group present = source_.withUid(uid);  // takes in what was written: the snapshot finds it there
  const Snapshot snapshot = source_.snapshot(name, uid);
  const Group group = groupOf(snapshot, present);
  const Owners owners(group);
  std::optional<Item> found;
  const QList<EventRef>& refs = recurrenceId.isEmpty() ? group.masters : group.overrides;
  for (qsizetype i = 0; i < refs.size(); ++i) {
    const EventRef& ref = refs[i];
    if (!isIn(snapshot, ref) || (found && ref.event->place != place)) continue;
    if (recurrenceId.isEmpty())
      found = expansion_.itemOf(ref, ref.event->isSeries() ? Kind::Master : Kind::Single, {});
    else if (expansion_.overrideId(owners, i) == recurrenceId)
      found = expansion_.itemOf(ref, Kind::Exception, recurrenceId);
  }
  if (found) return *found;
  if (snapshot.whole)
    for (const Event& event : snapshot.whole->events)  // broken, but what was written is there
      if (snapshot.whole->tag(event) == writtenTag_)
        return expansion_.itemOf({snapshot.whole, &event},
                                 event.isOverride() ? Kind::Exception : Kind::Single, recurrenceId);
  for (const EventRef& master : group.masters)
    if (isIn(snapshot, master))
      if (const auto occurrence = expansion_.occurrence(owners, master, recurrenceId))
        return expansion_.itemOf(*occurrence, *master.event, master.event->place, recurrenceId);
  fail(errNotFound, QStringLiteral("the item \"%1\" is no longer in \"%2\".").arg(uid, source_.pathOf(name)));
}

Item Transaction::save(const ItemKey& key, const QString& tag, const Change& change) {
  const QString name = fileNameOf(source_, key.place);
  QString place = key.place;
  rewrite(name, key.uid, {Step::Kind::Save, key, tag, change, zone_, now_}, [&](const Snapshot& snapshot) {
    const Group group = groupOf(snapshot, key.uid);
    const Target target = find(snapshot, group, key, tag);
    if (target.occurrence && !target.event.event->hasUid)
      fail(errAccessDenied,
           QStringLiteral("one occurrence of \"%1\" cannot be changed, because its series has no UID.")
               .arg(titleOf(*target.event.file, *target.event.event)));
    if (target.occurrence && target.event.event->old)
      fail(errAccessDenied,
           QStringLiteral(
               "one occurrence of \"%1\" cannot be changed: a calendar of the old format (vCalendar "
               "1.0) has no place for it. The series can be changed.")
               .arg(titleOf(*target.event.file, *target.event.event)));
    place = target.event.event->place;
    return saved(group, target, change);
  });
  return readBack(name, key.uid, key.recurrenceId, place);
}

QByteArray Transaction::newEvent(const Change& change, const QString& uid, const QByteArray& lineEnd) {
  ComponentEditor editor(emptyEvent(uid, now_, lineEnd));
  const CalendarFile nowhere;
  applyChange(editor, change, {nowhere, nullptr, expansion_.reader()}, now_);
  return editor.bytes();
}

Transaction::Splices Transaction::added(const Snapshot& snapshot, const Change& change, const QString& uid) {
  const QByteArray event = newEvent(change, uid, snapshot.lineEnd);
  const QByteArray present = snapshot.whole ? snapshot.whole->document.bytes : QByteArray();
  if (snapshot.isEmpty) return {{0, present, calendarAround(event, snapshot.lineEnd)}};
  if (snapshot.newEventAt < 0)
    fail(errStoreBroken,
         QStringLiteral("\"%1\" holds no calendar, so nothing is added.").arg(source_.pathOf(snapshot.name)));
  if (!snapshot.whole) return {{snapshot.newEventAt, {}, event}};
  const auto& calendars = snapshot.whole->document.components;
  if (std::any_of(calendars.begin(), calendars.end(), [](const Component& one) { return one.old; }))
    fail(errAccessDenied,
         QStringLiteral("\"%1\" is a calendar of the old format (vCalendar 1.0); its items can "
                        "be changed, but nothing is added.")
             .arg(source_.pathOf(snapshot.name)));
  return {{snapshot.newEventAt, {}, beginningALine(snapshot.whole->document, snapshot.newEventAt, event)}};
}

Item Transaction::create(const Change& change) {
  if (!change.start || !change.start->isValid())
    fail(failure::invalidProcedureCall, QStringLiteral("a new item needs a start."));
  const QString uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
  const bool folder = source_.isFolder();
  const QString name = folder ? uid + u".ics"_qs : QFileInfo(source_.pathOf({})).fileName();
  if (!folder)
    rewrite(name, uid, {}, [&](const Snapshot& snapshot) { return added(snapshot, change, uid); });
  else if (!writer_.create(name, calendarAround(newEvent(change, uid, "\r\n"), "\r\n")))
    fail(errChangedMeanwhile, QStringLiteral("\"%1\" is there already.").arg(source_.pathOf(name)));
  return readBack(name, uid, {}, name);
}

/// What excludes an occurrence from its series; nothing where it is excluded already, by a removal that got
/// no further.
Transaction::Splices Transaction::excluding(const EventRef& master, qint64 wall) {
  const Timing timing = expansion_.reader().timingOf(*master.file, *master.event);
  if (isExcluded(expansion_.reader(), master, timing, wall)) return {};
  ComponentEditor editor(wholeLines(master.file->document, *master.event->component));
  excludeOccurrence(editor, master, timing, wall, now_);
  return {replacing(master, editor.bytes())};
}

/// The master of an override that stands in another file learns of the removal there.
void Transaction::excludeElsewhere(const EventRef& master, qint64 wall) {
  const QString uid = master.event->uid, place = master.event->place;
  rewrite(master.file->name, uid, {}, [&](const Snapshot& snapshot) -> Splices {
    const Group group = groupOf(snapshot, uid);
    for (const EventRef& now : group.masters) {
      if (!isIn(snapshot, now) || now.event->place != place || !now.event->isSeries()) continue;
      return excluding(now, wall);
    }
    return {};
  });
}

/// The changed occurrences of a series that is gone, from other files of the folder; those that another
/// program has changed since stay.
void Transaction::removeElsewhere(const QList<EventRef>& overrides) {
  QSet<QString> names, tags;
  for (const EventRef& override : overrides) {
    names.insert(override.file->name);
    tags.insert(override.file->tag(*override.event));
  }
  for (const QString& name : std::as_const(names)) {
    const QString uid = overrides.first().event->uid;
    Step step{Step::Kind::Remove, {}, {}, {}, zone_, now_};
    step.key.uid = uid;
    rewrite(name, uid, step, [&](const Snapshot& snapshot) {
      Splices splices;
      for (const EventRef& ref : snapshot.events)
        if (ref.event->isOverride() && tags.contains(ref.file->tag(*ref.event)))
          splices.append(replacing(ref, {}));
      return splices;
    });
  }
}

Transaction::Splices Transaction::withoutOverride(const Snapshot& snapshot, const Group& group,
                                                  const EventRef& override) {
  if (override.event->thisAndFuture)
    fail(errAccessDenied,
         QStringLiteral("\"%1\" cannot be removed by itself: it holds for the later occurrences "
                        "of its series, too.")
             .arg(titleOf(*override.file, *override.event)));
  Splices splices{replacing(override, {})};
  const Owners owners(group);
  const EventRef* master = owners.of(override);
  if (!master || !master->event->isSeries()) return splices;
  const Timing timing = expansion_.reader().timingOf(*master->file, *master->event);
  const qint64 wall =
      expansion_.reader().wallOn(timing, *override.file, *override.event, *override.event->recurrenceId);
  if (isIn(snapshot, *master))
    splices += excluding(*master, wall);
  else
    excludeElsewhere(*master, wall);
  return splices;
}

Transaction::Splices Transaction::withoutItem(const Snapshot& snapshot, const Group& group,
                                              const Target& target) {
  const EventRef& event = target.event;
  if (target.occurrence) return excluding(event, target.occurrence->id);
  if (event.event->isOverride()) return withoutOverride(snapshot, group, event);
  Splices splices{replacing(event, {})};
  const auto here = [&](const EventRef& ref) { return isIn(snapshot, ref); };
  if (std::count_if(group.masters.begin(), group.masters.end(), here) ==
      1)  // its changed occurrences go along
    for (const EventRef& override : group.overrides)
      if (here(override)) splices.append(replacing(override, {}));
  return splices;
}

void Transaction::remove(const ItemKey& key, const QString& tag) {
  const Step step{Step::Kind::Remove, key, tag, {}, zone_, now_};
  QList<EventRef> elsewhere;
  rewrite(fileNameOf(source_, key.place), key.uid, step, [&](const Snapshot& snapshot) {
    const Group group = groupOf(snapshot, key.uid);
    const Target target = find(snapshot, group, key, tag);
    elsewhere.clear();
    const Owners owners(group);
    if (!target.occurrence && !target.event.event->isOverride())
      for (qsizetype i = 0; i < group.overrides.size(); ++i)
        if (!isIn(snapshot, group.overrides[i]) && owners.of(i) && owners.of(i)->event == target.event.event)
          elsewhere.append(group.overrides[i]);
    return withoutItem(snapshot, group, target);
  });
  if (!elsewhere.isEmpty()) removeElsewhere(elsewhere);
}

}  // namespace platform::calendar::icalendar
