#include "platform/outlook/items.h"

#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/outlook/filter.h"
#include "platform/outlook/times.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace platform::outlook {

namespace {

constexpr double halfHour = 1.0 / 48;
constexpr int newDuration = 30;

calendar::Query everything() {
  calendar::Query query;
  query.zone = basic::Clock::current().zone();
  return query;
}

}  // namespace

Items::Items(std::shared_ptr<calendar::Store> store, QString folder, std::shared_ptr<const Session> session)
    : store_(std::move(store)), folder_(std::move(folder)), session_(std::move(session)) {}

int Items::Count() const {
  return static_cast<int>(listed().size());
}

std::shared_ptr<AppointmentItem> Items::Item(int position) const {
  const QList<calendar::Item>& all = listed();
  if (position < 1 || position > all.size())
    throw Failure(failure::subscriptOutOfRange, u"Array index out of bounds."_s, u"Items"_s);
  return object(all.at(position - 1));
}

std::shared_ptr<AppointmentItem> Items::Item(const QString& subject) const {
  calendar::Query query = everything();
  query.subject = subject;
  const QList<calendar::Item> found = store_->items(folder_, query);
  if (found.isEmpty())
    throw Failure(calendar::errNotFound,
                  u"The attempted operation failed. An object could not be found: %1"_s.arg(subject),
                  u"Items"_s);
  return object(found.first());
}

std::shared_ptr<AppointmentItem> Items::Add() const {
  calendar::Item item;
  constexpr double aSecond = 1.0 / 86400;  // a half hour's own fraction of the day is not exact
  const double now = basic::Now().serial();
  item.start = momentOf(basic::Date(std::ceil((now - aSecond / 2) / halfHour) * halfHour));
  item.end = item.start.addSecs(newDuration * 60);
  return object(item);
}

void Items::Sort(const QString& property) {
  QString name = property.trimmed();
  if (name.startsWith(u'[') && name.endsWith(u']')) name = name.mid(1, name.size() - 2);
  if (name.compare(u"Start"_s, Qt::CaseInsensitive) != 0)
    throw Failure(failure::invalidProcedureCall, u"The items cannot be sorted by \"%1\"."_s.arg(property),
                  u"Items"_s);
}

std::shared_ptr<AppointmentItem> Items::Find(const QString& filter) {
  found_.clear();
  next_ = 0;
  const StartRange range = readFilter(filter);
  calendar::Query query = everything();
  query.startFrom = range.from;
  query.startTo = range.to;
  query.expandSeries = includeRecurrences_;
  if (includeRecurrences_ && !(range.from.isValid() && range.to.isValid()))
    throw Failure(
        failure::invalidProcedureCall,
        u"With recurring appointments included, the filter must say from when and until when: %1"_s.arg(
            filter),
        u"Items"_s);
  if (!range.from.isValid() || !range.to.isValid() || range.from <= range.to)
    found_ = store_->items(folder_, query);
  return FindNext();
}

std::shared_ptr<AppointmentItem> Items::FindNext() {
  return next_ < found_.size() ? object(found_.at(next_++)) : nullptr;
}

std::shared_ptr<AppointmentItem> Items::object(const calendar::Item& item) const {
  return std::make_shared<AppointmentItem>(store_, folder_, item, session_);
}

/// Walking a folder by position asks again and again; it is read anew only when something may have changed.
const QList<calendar::Item>& Items::listed() const {
  const QString tag = store_->changeTag(folder_);
  if (listedTag_ != tag) {
    listedTag_.reset();
    listed_ = store_->items(folder_, everything());
    listedTag_ = tag;
  }
  return listed_;
}

}  // namespace platform::outlook
