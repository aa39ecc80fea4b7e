#include "platform/outlook/filter.h"

#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/calendar/wallclock.h"
#include "platform/locale/locale.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace platform::outlook {

namespace {

constexpr qint32 invalidArgument = static_cast<qint32>(0x80070057);

[[noreturn]] void failUnreadable(const QString& filter, const QString& place) {
  throw Failure(invalidArgument,
                u"Cannot parse condition. Error at \"%1\" of the filter: %2"_s.arg(place, filter),
                u"Items"_s);
}

/// The date between the quotes; each of its two "#" may be missing.
QDateTime readBound(QString text, const QString& filter) {
  const QString whole = text;
  if (text.startsWith(u'#')) text.remove(0, 1);
  if (text.endsWith(u'#')) text.chop(1);
  const QDateTime local = locale::current().parseDate(text.trimmed());
  if (!local.date().isValid() || !local.time().isValid()) failUnreadable(filter, whole);
  return local;
}

void raise(QDateTime& lower, const QDateTime& bound) {
  if (!lower.isValid() || bound > lower) lower = bound;
}

void lower(QDateTime& upper, const QDateTime& bound) {
  if (!upper.isValid() || bound < upper) upper = bound;
}

/// Starts are compared by the minute: 23:59:30 is not later than 23:59.
void narrow(StartRange& range, QStringView operation, const QDateTime& local) {
  const QTimeZone zone = basic::Clock::current().zone();
  const QTime minute(local.time().hour(), local.time().minute());
  const QDateTime first = calendar::instantAt(local.date(), minute, zone, calendar::Twice::First);
  const QDateTime second = calendar::instantAt(local.date(), minute, zone, calendar::Twice::Second);
  constexpr qint64 minuteLength = 60000;
  if (operation == u">=" || operation == u"=") raise(range.from, first);
  if (operation == u">") raise(range.from, second.addMSecs(minuteLength));
  if (operation == u"<=" || operation == u"=") lower(range.to, second.addMSecs(minuteLength - 1));
  if (operation == u"<") lower(range.to, first.addMSecs(-1));
}

}  // namespace

StartRange readFilter(const QString& filter) {
  static const QRegularExpression condition(
      uR"re(\s*\[Start\]\s*(>=|<=|>|<|=)\s*(?:"([^"]*)"|'([^']*)')\s*)re"_s,
      QRegularExpression::CaseInsensitiveOption);
  static const QRegularExpression conjunction(u"and\\b"_s, QRegularExpression::CaseInsensitiveOption);
  const auto anchored = QRegularExpression::AnchorAtOffsetMatchOption;
  StartRange range;
  qsizetype at = 0;
  for (;;) {
    const QRegularExpressionMatch match =
        condition.match(filter, at, QRegularExpression::NormalMatch, anchored);
    if (!match.hasMatch()) failUnreadable(filter, filter.mid(at).trimmed());
    const QString bound = match.captured(match.hasCaptured(2) ? 2 : 3);
    narrow(range, match.capturedView(1), readBound(bound, filter));
    at = match.capturedEnd();
    if (at == filter.size()) return range;
    const QRegularExpressionMatch joined =
        conjunction.match(filter, at, QRegularExpression::NormalMatch, anchored);
    if (!joined.hasMatch()) failUnreadable(filter, filter.mid(at));
    at = joined.capturedEnd();
  }
}

}  // namespace platform::outlook
