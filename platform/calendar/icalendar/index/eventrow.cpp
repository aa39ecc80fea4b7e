#include "platform/calendar/icalendar/index/eventrow.h"

#include "platform/calendar/icalendar/bounds.h"
#include "platform/calendar/icalendar/expansion.h"
#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/text.h"

#include <algorithm>

namespace platform::calendar::icalendar::index {
namespace {

/// Of a SUMMARY as nearly all are; else nothing.
std::optional<QByteArrayView> quickText(QByteArrayView line) {
  constexpr qsizetype ahead = 8;  // "SUMMARY:"
  if (line.size() < ahead || line[ahead - 1] != ':') return std::nullopt;
  qsizetype end = line.size();
  while (end > ahead && (line[end - 1] == '\n' || line[end - 1] == '\r')) --end;
  const QByteArrayView text = line.sliced(ahead, end - ahead);
  const auto isPlain = [](char c) { return static_cast<unsigned char>(c) >= ' ' && c != '\\'; };
  if (!std::all_of(text.begin(), text.end(), isPlain) || text.startsWith("\xEF\xBB\xBF")) return std::nullopt;
  return QUtf8StringView(text.data(), text.size()).isValidUtf8() ? std::optional(text) : std::nullopt;
}

quint64 subjectSum(QByteArrayView line) {
  if (line.isEmpty()) return checksumOf({});
  if (const auto text = quickText(line)) return checksumOf(*text);
  return nameSum(textOf(parsed(unfolded(line, false))).replace(u'\n', u' '));
}

}  // namespace

bool EventRow::isShort() const {
  return latest >= earliest && earliest > std::numeric_limits<qint64>::min() &&
         latest <= earliest + qMin(shortMs, std::numeric_limits<qint64>::max() - qMax<qint64>(earliest, 0));
}

quint64 nameSum(const QString& name) {
  return checksumOf(name.toUtf8());
}

quint64 uidWithout(const QString& fileName, int number) {
  return nameSum(u"no-uid:"_qs + placeOf(fileName, number));
}

EventRow rowOf(const Piece& piece) {
  Event event;
  event.start = piece.start;
  event.end = piece.end;
  event.span = piece.span;
  const Bounds bounds = boundsOf(event);
  EventRow row;
  row.uid = checksumOf(piece.uid);
  row.subject = subjectSum(piece.subject);
  row.earliest = bounds.earliest;
  row.latest = bounds.latest;
  return row;
}

EventRow rowOf(const Document& document, const Event& event) {
  EventRow row;
  row.uid = nameSum(event.uid);
  row.hasUid = event.hasUid;
  if (event.recurrenceId)
    row.recurrenceId =
        checksumOf(dateTimeText(event.recurrenceId->date, event.recurrenceId->time)) | 1;  // never 0
  Item item;
  readTexts(document, *event.component, item, event.old);
  row.subject = nameSum(item.subject);
  row.earliest = event.earliest();
  row.latest = event.latest();
  return row;
}

}  // namespace platform::calendar::icalendar::index
