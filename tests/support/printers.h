#pragma once
#include <QByteArray>
#include <QDate>
#include <QString>

#include <ostream>

// How a failed expectation shows Qt's values. In the precompiled header of all tests, so that every program
// prints alike.

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
  *out << '"' << bytes.left(2000).toPercentEncoding(" !\"#$&'()*+,-./:;<=>?@[\\]^_`{|}~\t").constData()
       << '"';
}
inline void PrintTo(const QString& text, std::ostream* out) {
  if (text.isNull())
    *out << "(null)";
  else
    *out << '"' << text.toUtf8().constData() << '"';
}
inline void PrintTo(const QDate& date, std::ostream* out) {
  *out << date.toString(Qt::ISODate).toUtf8().constData();
}
inline void PrintTo(const QTime& time, std::ostream* out) {
  *out << time.toString(Qt::ISODateWithMs).toUtf8().constData();
}
inline void PrintTo(const QDateTime& moment, std::ostream* out) {
  *out << moment.toString(Qt::ISODateWithMs).toUtf8().constData() << ' '
       << moment.timeZoneAbbreviation().toUtf8().constData();
}
