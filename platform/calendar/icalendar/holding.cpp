#include "platform/calendar/icalendar/holding.h"

#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/transaction.h"

namespace platform::calendar::icalendar {
namespace {

constexpr int maxAttempts = 10;  // against a program that writes all the time

/// Whether the event's lines can be kept by themselves and put back.
bool standsAlone(const EventRef& ref) {
  const Component& component = *ref.event->component;
  return ref.event->hasUid && ref.event->calendar && component.closed &&
         isLineStart(ref.file->document.bytes, component.offset) &&
         isLineStart(ref.file->document.bytes, component.end);
}

QByteArray zonesOf(const Document& document, const Component& calendar) {
  QByteArray zones;
  for (const Component& child : calendar.children)
    if (child.name == "VTIMEZONE") zones += wholeLines(document, child);
  return zones;
}

/// What an event's calendar says of itself, and where definitions of zones are looked for: as they are found
/// from the event in its file.
QByteArray headOf(const EventRef& ref) {
  const Document& document = ref.file->document;
  const QByteArray end = lineEndOf(document.bytes);
  QByteArray head;
  for (const Component& other : document.components) {
    if (&other == ref.event->calendar) continue;
    const QByteArray zones =
        other.name == "VTIMEZONE" ? wholeLines(document, other) : zonesOf(document, other);
    if (!zones.isEmpty()) head += "BEGIN:VCALENDAR" + end + zones + "END:VCALENDAR" + end;
  }
  head += "BEGIN:VCALENDAR" + end;
  for (const Line& line : ref.event->calendar->lines)
    if (line.nameLength > 0) head += document.raw(line);
  return head + zonesOf(document, *ref.event->calendar);
}

/// As they stand in the file.
QList<EventRef> inOrder(QList<EventRef> events) {
  std::sort(events.begin(), events.end(), [](const EventRef& a, const EventRef& b) {
    return a.file->base + a.event->component->offset < b.file->base + b.event->component->offset;
  });
  return events;
}

bool sameFile(const files::Fingerprint& a, const files::Fingerprint& b) {
  return a.exists == b.exists && a.mtimeNs == b.mtimeNs && a.size == b.size && a.inode == b.inode;
}

}  // namespace

QList<EventRef> Holding::Kept::events() const {
  QList<EventRef> refs;
  for (const Event& event : file->events) refs.append({file, &event});
  return refs;
}

Group Holding::Kept::group() const {
  Group group;
  for (const EventRef& ref : events())
    (ref.event->isOverride() ? group.overrides : group.masters).append(ref);
  return group;
}

void Holding::Kept::read(const QString& name) {
  QByteArray bytes = head;
  for (const Stretch& stretch : std::as_const(stretches)) bytes += stretch.now;
  file = calendarFile(name, bytes + tail);
}

/// The splices count in the small calendar; each lies within one stretch, or goes in behind one.
void Holding::Kept::apply(const QList<files::Splice>& splices) {
  QList<files::Splice> backwards(splices.crbegin(), splices.crend());
  std::stable_sort(backwards.begin(), backwards.end(),
                   [](const files::Splice& a, const files::Splice& b) { return a.offset > b.offset; });
  for (const files::Splice& splice : std::as_const(backwards)) {
    qint64 start = head.size();
    for (Stretch& stretch : stretches) {
      const qint64 end = start + stretch.now.size();
      const bool within = splice.was.isEmpty() ? start < splice.offset && splice.offset <= end
                                               : start <= splice.offset && splice.offset < end;
      if (within) {
        stretch.now.replace(splice.offset - start, splice.was.size(), splice.with);
        break;
      }
      start = end;
    }
  }
}

/// Nothing when they do not read the same by themselves as in their file.
std::optional<Holding::Kept> Holding::kept(const QList<EventRef>& events) const {
  if (events.isEmpty() || !std::all_of(events.begin(), events.end(), standsAlone)) return std::nullopt;
  Kept made;
  made.head = headOf(events.first());
  made.tail = "END:VCALENDAR" + lineEndOf(made.head);
  for (const EventRef& ref : events) {
    if (headOf(ref) != made.head) return std::nullopt;
    const QByteArray bytes = ref.file->document.raw(*ref.event->component).toByteArray();
    made.stretches.append({ref.file->base + ref.event->component->offset, bytes, bytes});
  }
  made.read(events.first().file->name);
  const QList<EventRef> again = made.events();
  if (again.size() != events.size()) return std::nullopt;
  for (qsizetype i = 0; i < events.size(); ++i) {
    const EventRef &there = events[i], &here = again[i];
    if (here.event->uid != there.event->uid || here.event->place != there.event->place ||
        here.file->tag(*here.event) != there.file->tag(*there.event))
      return std::nullopt;
  }
  return made;
}

QList<Group> Holding::overlaid(QList<Group> groups) const {
  if (kept_.isEmpty()) return groups;
  groups.removeIf([&](const Group& group) {
    const QList<EventRef>& some = group.masters.isEmpty() ? group.overrides : group.masters;
    return !some.isEmpty() && kept_.contains(some.first().event->uid);
  });
  for (const Kept& one : kept_)
    if (!one.file->events.empty()) groups.append(one.group());
  return groups;
}

QList<Group> Holding::between(qint64 from, qint64 to) {
  return overlaid(inner_.between(from, to));
}

QList<Group> Holding::withSubject(const QString& subject) {
  return overlaid(inner_.withSubject(subject));
}

Group Holding::withUid(const QString& uid) {
  const auto found = kept_.constFind(uid);
  return found == kept_.cend() ? inner_.withUid(uid) : found->group();
}

QString Holding::changeTag() {
  const QString tag = inner_.changeTag();
  return revision_ == 0 ? tag : tag + u'+' + QString::number(revision_);
}

Snapshot Holding::snapshot(const QString& name, const QString& uid) {
  draft_.reset();
  if (!holding_ || inner_.isFolder()) return inner_.snapshot(name, uid);
  const auto found = kept_.constFind(uid);
  if (found != kept_.cend()) {
    draft_ = *found;
  } else {
    const Group group = inner_.withUid(uid);
    draft_ = kept(inOrder(group.masters + group.overrides));
  }
  if (!draft_) return inner_.snapshot(name, uid);
  draftUid_ = uid;
  Snapshot snapshot;
  snapshot.name = name;
  snapshot.events = draft_->events();
  snapshot.lineEnd = lineEndOf(draft_->head);
  return snapshot;
}

bool Holding::put(const Snapshot& snapshot, const QString& uid, const QList<files::Splice>& splices,
                  const Step& step) {
  if (!draft_ || draftUid_ != uid) return writer_.put(snapshot, uid, splices, step);
  writer_.check(snapshot.name);
  draft_->apply(splices);
  draft_->read(snapshot.name);
  draft_->steps.append(step);
  for (const files::Splice& splice : splices) keptBytes_ += splice.with.size();
  ++keptSteps_;
  ++revision_;
  kept_.insert(uid, *std::exchange(draft_, std::nullopt));
  return true;
}

void Holding::makeRoom() {
  if (keptSteps_ >= maxHeldSteps || keptBytes_ >= maxHeldBytes) missed_ += flushed();
}

QList<Holding::Missed> Holding::flush() {
  const QList<Missed> missed = std::exchange(missed_, {}) + flushed();
  holding_ = false;
  return missed;
}

QList<Holding::Missed> Holding::flushed() {
  QList<Missed> missed;
  try {
    bool done = false;
    for (int attempt = 0; attempt < maxAttempts && !done; ++attempt) done = writeAll(missed);
    if (!done)
      drop(
          Failure(errChangedMeanwhile,
                  QStringLiteral(
                      "Calendar \"%1\": another program keeps changing \"%2\", so the change was not stored.")
                      .arg(label_, inner_.pathOf({})),
                  QStringLiteral("IcalendarStore")),
          missed);
  } catch (const Failure& failure) {
    drop(failure, missed);
  }
  draft_.reset();
  kept_.clear();
  keptSteps_ = keptBytes_ = 0;
  return missed;
}

void Holding::drop(const Failure& failure, QList<Missed>& missed) {
  for (const Kept& one : std::as_const(kept_))
    for (const Step& step : one.steps) missed.append({step.key, failure});
}

/// The changes of one UID, made on what stands in the file now.
void Holding::replay(const QString& uid, QList<Missed>& missed) {
  const QList<Step> steps = kept_.take(uid).steps;
  for (const Step& step : steps) {
    try {
      Transaction transaction(*this, *this, book_, label_, step);
      if (step.kind == Step::Kind::Remove)
        transaction.remove(step.key, step.tag);
      else
        transaction.save(step.key, step.tag, step.change);
    } catch (const Failure& failure) {
      missed.append({step.key, failure});
    }
  }
}

/// One rewrite with everything. False: the file, or some of the events, had changed; what was kept is brought
/// up to date and waits for the next attempt.
bool Holding::writeAll(QList<Missed>& missed) {
  if (kept_.isEmpty()) return true;
  const QString name = kept_.first().file->name;
  std::optional<Snapshot> first;
  QHash<QString, QList<EventRef>> all;
  QList<files::Splice> splices;
  QStringList outdated;
  for (auto one = kept_.begin(); one != kept_.end(); ++one) {
    QList<EventRef> events;
    if (first && first->whole) {
      events = all.value(one.key());
    } else {
      const Snapshot snapshot = inner_.snapshot(name, one.key());
      if (first && !sameFile(first->fingerprint, snapshot.fingerprint)) return false;
      events = inOrder(snapshot.events);
      if (!first) first = snapshot;
      if (snapshot.whole)
        for (const Event& event : snapshot.whole->events)
          if (kept_.contains(event.uid)) all[event.uid].append({snapshot.whole, &event});
    }
    bool same = events.size() == one->stretches.size();
    for (qsizetype i = 0; same && i < events.size(); ++i) {
      const EventRef& ref = events[i];
      Stretch& stretch = one->stretches[i];
      same = standsAlone(ref) && ref.file->document.raw(*ref.event->component) == stretch.was &&
             headOf(ref) == one->head;
      stretch.offset = ref.file->base + ref.event->component->offset;
      if (same && stretch.now != stretch.was) splices.append({stretch.offset, stretch.was, stretch.now});
    }
    if (!same) outdated.append(one.key());
  }
  for (const QString& uid : std::as_const(outdated)) replay(uid, missed);
  if (!outdated.isEmpty()) return false;
  return splices.isEmpty() || writer_.put(*first, {}, splices, {});
}

}  // namespace platform::calendar::icalendar
