#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/basic/text.h"
#include "platform/calendar/wallclock.h"
#include "platform/locale/locale.h"
#include "platform/outlook/conflict.h"
#include "platform/outlook/entryid.h"
#include "platform/outlook/items.h"
#include "platform/outlook/times.h"
#include "platform/outlook/vcalendar.h"

using namespace Qt::StringLiterals;

namespace platform::outlook {

namespace {

constexpr int minutesOfDay = 1440;

/// The single names of a text, in order, without the blanks around. Of a value that stands in two lists both
/// are kept: a store takes the text for another program's work when it says something else than the names.
QStringList namesIn(const QString& text) {
  QStringList names;
  for (const QString& piece : basic::Split(text, locale::current().listSeparator())) {
    const QString name = piece.trimmed();
    if (!name.isEmpty()) names.append(name);
  }
  return names;
}

/// A text that is set is never null: null in a store says that another program wrote the names.
QString asSet(const QString& text) {
  return text.isNull() ? u""_s : text;
}

}  // namespace

AppointmentItem::AppointmentItem(std::shared_ptr<calendar::Store> store, QString folder, calendar::Item item,
                                 std::shared_ptr<const Session> session)
    : store_(std::move(store)),
      folder_(std::move(folder)),
      item_(std::move(item)),
      session_(session ? std::move(session) : std::make_shared<const Session>()) {}

QString AppointmentItem::EntryID() const {
  return isNew() ? QString() : entryIdOf(item_.key);
}

QString AppointmentItem::Subject() const {
  return change_.subject.value_or(item_.subject);
}

void AppointmentItem::setSubject(const QString& text) {
  change_.subject = asSet(text);
}

QString AppointmentItem::Body() const {
  return change_.body.value_or(item_.body);
}

void AppointmentItem::setBody(const QString& text) {
  change_.body = asSet(text);
}

/// The dates of an all-day event stand for themselves, whichever zone they were read in.
basic::Date AppointmentItem::Start() const {
  if (!change_.start && item_.allDay) return basic::Date::of(item_.start.date());
  const basic::Date start = onUsersClock(change_.start.value_or(item_.start));
  return AllDayEvent() ? start.dateOnly() : start;
}

void AppointmentItem::setStart(const basic::Date& start) {
  change_.start = momentOf(AllDayEvent() ? start.dateOnly() : start);
}

int AppointmentItem::Duration() const {
  const int minutes = change_.durationMinutes.value_or(item_.durationMinutes());
  if (!AllDayEvent()) return minutes;
  return qMax(1, (minutes + minutesOfDay - 1) / minutesOfDay) * minutesOfDay;
}

void AppointmentItem::setDuration(int minutes) {
  if (minutes < 0)
    throw Failure(failure::invalidProcedureCall, u"A duration of %1 minutes is not valid."_s.arg(minutes),
                  u"AppointmentItem"_s);
  if (AllDayEvent() && (minutes == 0 || minutes % minutesOfDay != 0)) setAllDayEvent(false);
  change_.durationMinutes = minutes;
}

bool AppointmentItem::AllDayEvent() const {
  return change_.allDay.value_or(item_.allDay);
}

void AppointmentItem::setAllDayEvent(bool on) {
  change_.allDay = on;
}

int AppointmentItem::Sensitivity() const {
  return static_cast<int>(item_.sensitivity);
}

bool AppointmentItem::IsRecurring() const {
  return item_.kind != calendar::Kind::Single;
}

QString AppointmentItem::Categories() const {
  if (change_.categoriesText) return *change_.categoriesText;
  if (!item_.categoriesText.isNull()) return item_.categoriesText;
  return item_.categories.join(locale::current().listSeparator() + u' ');
}

void AppointmentItem::setCategories(const QString& text) {
  change_.categoriesText = asSet(text);
  change_.categories = namesIn(text);
}

QString AppointmentItem::BillingInformation() const {
  return change_.billingInformation.value_or(item_.billingInformation);
}

void AppointmentItem::setBillingInformation(const QString& text) {
  change_.billingInformation = asSet(text);
}

QString AppointmentItem::MessageClass() const {
  if (!item_.messageClass.isEmpty()) return item_.messageClass;
  return item_.kind == calendar::Kind::Exception ? classException : classAppointment;
}

std::shared_ptr<AppointmentItem> AppointmentItem::Parent() const {
  if (item_.kind != calendar::Kind::Occurrence && item_.kind != calendar::Kind::Exception) return nullptr;
  calendar::Query query;
  query.uid = item_.key.uid;
  query.zone = basic::Clock::current().zone();
  const calendar::Item* master = nullptr;
  const QList<calendar::Item> related = store_->items(folder_, query);
  for (const calendar::Item& item : related)
    if (item.kind == calendar::Kind::Master && (!master || item.key.place == item_.key.place)) master = &item;
  if (!master)
    throw Failure(calendar::errNotFound,
                  u"The series that \"%1\" belongs to is no longer in the calendar."_s.arg(item_.subject),
                  u"AppointmentItem"_s);
  if (seriesTag_.isEmpty()) seriesTag_ = master->tag;
  return std::make_shared<AppointmentItem>(store_, folder_, *master, session_);
}

void AppointmentItem::setReminderSet(bool on) {
  if (on || !isNew())
    throw Failure(failure::invalidProcedureCall, u"Reminders of appointments cannot be changed here."_s,
                  u"AppointmentItem"_s);
}

std::shared_ptr<AppointmentItem> AppointmentItem::GetAssociatedAppointment(bool addToCalendar) const {
  Q_UNUSED(addToCalendar)  // what there is already stands in the calendar
  if (!item_.associated) return nullptr;
  return std::make_shared<AppointmentItem>(store_, folder_, *item_.associated, session_);
}

void AppointmentItem::Save() {
  if (change_.isEmpty() && !isNew()) return;
  const calendar::Change change = fullChange();
  calendar::Item stored = storeOrTell(change);
  if (!change.start) {
    // the store is not told the user's zone: times that were not touched stay as they were read
    stored.start = item_.start;
    stored.end = change.durationMinutes ? endAfter(*change.durationMinutes) : item_.end;
  }
  item_ = std::move(stored);
  change_ = {};
}

/// Of a change that somebody else came before, the failure tells both versions: nothing is overwritten, and
/// what was to be written must not be lost.
calendar::Item AppointmentItem::storeOrTell(const calendar::Change& change) const try {
  return store_->save(folder_, item_.key, item_.tag, change);
} catch (const Failure& failure) {
  const bool conflict =
      failure.number() == calendar::errChangedMeanwhile || failure.number() == calendar::errNotFound;
  if (!conflict || isNew()) throw;
  const QString versions = bothVersions();
  if (versions.isEmpty()) throw;
  throw Failure(failure.number(), failure.description() + basic::vbCrLf + versions, failure.source());
}

void AppointmentItem::RefuseIfChanged() const {
  const auto item = itemOfKey(*store_, folder_, item_.key, item_.start);
  const bool isAsRead = item && item->tag == item_.tag;
  // the tag of a changed occurrence says nothing of its series
  if (isAsRead && (seriesTag_.isEmpty() || Parent()->stored().tag == seriesTag_)) return;
  const QString what =
      item ? u"Another program has changed \"%1\" meanwhile."_s : u"\"%1\" is no longer in the calendar."_s;
  throw Failure(item ? calendar::errChangedMeanwhile : calendar::errNotFound,
                what.arg(item_.subject) + basic::vbCrLf + bothVersions(), u"AppointmentItem"_s);
}

/// Empty where nobody can say how it stands in the calendar now.
QString AppointmentItem::bothVersions() const try {
  const AppointmentItem read(store_, folder_, item_, session_);
  const auto item = itemOfKey(*store_, folder_, item_.key, item_.start);
  if (!item) return textOfConflict({read, *this, change_.userProperties, nullptr});
  const AppointmentItem now(store_, folder_, *item, session_);
  return textOfConflict({read, *this, change_.userProperties, &now});
} catch (const Failure&) {
  return {};
}

void AppointmentItem::Close(int saveMode) {
  if (saveMode == olSave)
    Save();
  else
    change_ = {};
}

std::shared_ptr<MailItem> AppointmentItem::ForwardAsVcal() const {
  calendar::Item item = item_;
  item.subject = Subject();
  item.body = Body();
  item.start = startMoment();
  item.end = item.start.addSecs(qint64(Duration()) * 60);
  if (AllDayEvent()) item.end = momentOf(Start().addDays(Duration() / minutesOfDay));
  if (change_.categories) item.categories = *change_.categories;
  auto mail = std::make_shared<MailItem>(session_->draftFolder);
  mail->Subject = u"FW: "_s + item.subject;
  mail->Attachments.emplace_back(vcalendarOf(item, session_->version), u"appointment.vcs"_s,
                                 QByteArrayLiteral("text/x-vcalendar"));
  return mail;
}

QDateTime AppointmentItem::startMoment() const {
  if (AllDayEvent() || item_.allDay) return momentOf(Start());
  return change_.start.value_or(item_.start);
}

QDateTime AppointmentItem::endAfter(int minutes) const {
  return item_.allDay ? item_.start.addDays(minutes / minutesOfDay)
                      : item_.start.addSecs(qint64(minutes) * 60);
}

/// A change of one time is handed over with the others, so that no store has to guess which of them stays.
/// Only the length of a series goes alone: a series with exceptions may not be moved, not even to its place.
calendar::Change AppointmentItem::fullChange() const {
  calendar::Change change = change_;
  const bool lengthOfSeries = item_.kind == calendar::Kind::Master && !change.start && !change.allDay;
  if (isNew() || change.start || (change.durationMinutes && !lengthOfSeries) || change.allDay) {
    change.start = startMoment();
    change.durationMinutes = Duration();
    change.allDay = AllDayEvent();
  }
  return change;
}

}  // namespace platform::outlook
