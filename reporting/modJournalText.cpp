#include "platform/basic/failure.h"
#include "reporting/cReportJournal.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::basic::Date;

namespace {

// Keys that a later version adds are passed over; one that changes the meaning of these takes a higher
// number.
constexpr int version = 1;
const QString kind = u"Hourbook report journal"_s;
const QString momentFormat = u"yyyy-MM-ddTHH:mm:ss"_s;

[[noreturn]] void refuse(const QString& what) {
  throw Failure(platform::failure::typeMismatch, what);
}

QJsonValue ofMoment(const std::optional<Date>& moment) {
  if (!moment) return QJsonValue::Null;
  return QDateTime(moment->date(), moment->time(), Qt::UTC).toString(momentFormat);
}

QJsonObject ofLine(const ReportLine& line) {
  QJsonArray names, keys;
  for (const QString& name : line.names) names.append(name);
  for (const auto& key : line.keys) keys.append(key ? QJsonValue(*key) : QJsonValue(QJsonValue::Null));
  return {{u"day"_s, line.day.toString(Qt::ISODate)},
          {u"subject"_s, line.subject},
          {u"hours"_s, line.hours ? QJsonValue(double(*line.hours)) : QJsonValue(QJsonValue::Null)},
          {u"names"_s, names},
          {u"keys"_s, keys}};
}

QJsonObject ofRow(const ReportedRow& row) {
  QJsonObject object{{u"calendar"_s, row.folder},   {u"appointment"_s, row.entryId},
                     {u"tag"_s, row.tag},           {u"subject"_s, row.subject},
                     {u"start"_s, row.start},       {u"minutes"_s, row.minutes},
                     {u"line"_s, ofLine(row.line)}, {u"stored"_s, ofMoment(row.stored)}};
  // a version that does not know these finds the stamp, and the row done
  if (row.settled) object.insert(u"settled"_s, true);
  if (row.stampedElsewhere) object.insert(u"stampedElsewhere"_s, true);
  return object;
}

QString text(const QJsonObject& object, const QString& key) {
  if (!object[key].isString()) refuse(u"\"%1\" is missing"_s.arg(key));
  return object[key].toString();
}

QJsonObject object(const QJsonValue& value, const QString& what) {
  if (!value.isObject()) refuse(u"\"%1\" is missing"_s.arg(what));
  return value.toObject();
}

qint32 number(const QJsonValue& value, const QString& what) {
  if (!value.isDouble() || value.toDouble() != double(value.toInt()))
    refuse(u"\"%1\" is no number"_s.arg(what));
  return value.toInt();
}

std::optional<Date> momentOf(const QJsonValue& value) {
  if (value.isNull() || value.isUndefined()) return std::nullopt;
  const QDateTime moment = QDateTime::fromString(value.toString(), momentFormat);
  if (!moment.isValid()) refuse(u"\"stored\" is no date"_s);
  return Date::of(moment.date(), moment.time());
}

ReportLine lineOf(const QJsonObject& from) {
  ReportLine line;
  line.day = QDate::fromString(text(from, u"day"_s), Qt::ISODate);
  if (!line.day.isValid()) refuse(u"\"day\" is no date"_s);
  line.subject = text(from, u"subject"_s);
  if (from[u"hours"].isDouble()) line.hours = float(from[u"hours"].toDouble());
  const QJsonArray names = from[u"names"].toArray(), keys = from[u"keys"].toArray();
  if (names.size() != metaCount || keys.size() != metaCount) refuse(u"a line has not three lists"_s);
  for (int n = 0; n < metaCount; ++n) {
    line.names[size_t(n)] = names[n].toString();
    if (!keys[n].isNull()) line.keys[size_t(n)] = number(keys[n], u"keys"_s);
  }
  return line;
}

ReportedRow rowOf(const QJsonObject& from) {
  ReportedRow row;
  row.folder = text(from, u"calendar"_s);
  row.entryId = text(from, u"appointment"_s);
  row.tag = text(from, u"tag"_s);
  row.subject = text(from, u"subject"_s);
  row.start = text(from, u"start"_s);
  row.minutes = number(from[u"minutes"], u"minutes"_s);
  row.line = lineOf(object(from[u"line"], u"line"_s));
  row.stored = momentOf(from[u"stored"]);
  row.settled = from[u"settled"].toBool();
  row.stampedElsewhere = from[u"stampedElsewhere"].toBool();
  return row;
}

}  // namespace

QByteArray fncJournalText(const ReportRun& run) {
  QJsonArray rows;
  for (const ReportedRow& row : run.rows) rows.append(ofRow(row));
  const QJsonObject all{{u"kind"_s, kind},       {u"version"_s, version},   {u"target"_s, run.target},
                        {u"place"_s, run.place}, {u"person"_s, run.person}, {u"begun"_s, run.begun},
                        {u"mark"_s, run.mark},   {u"told"_s, run.told},     {u"rows"_s, rows}};
  return QJsonDocument(all).toJson(QJsonDocument::Indented);
}

ReportRun fncRunOfJournalText(const QByteArray& bytes) {
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
  if (error.error != QJsonParseError::NoError) refuse(error.errorString());
  const QJsonObject all = document.object();
  if (all[u"kind"].toString() != kind) refuse(u"it is no journal of reports"_s);
  const qint32 written = number(all[u"version"], u"version"_s);
  if (written > version)
    throw Failure(errLaterVersion,
                  u"it is of version %1, and this program knows %2"_s.arg(written).arg(version));
  ReportRun run;
  run.target = number(all[u"target"], u"target"_s);
  run.place = text(all, u"place"_s);
  run.person = text(all, u"person"_s);
  run.begun = text(all, u"begun"_s);
  run.mark = object(all[u"mark"], u"mark"_s);
  run.told = all[u"told"].toString();
  if (!all[u"rows"].isArray()) refuse(u"\"rows\" is missing"_s);
  for (const QJsonValue& row : all[u"rows"].toArray()) run.rows.append(rowOf(object(row, u"rows"_s)));
  return run;
}

}  // namespace hourbook
