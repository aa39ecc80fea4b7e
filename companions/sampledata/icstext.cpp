#include "companions/sampledata/icstext.h"

namespace sampledata {

IcsText::IcsText() {
  begin("VCALENDAR");
  raw("VERSION", "2.0");
  raw("PRODID", "-//Hourbook//Sample data//EN");
}

void IcsText::begin(const char* component) {
  line(QByteArray("BEGIN:") + component);
}

void IcsText::end(const char* component) {
  line(QByteArray("END:") + component);
}

void IcsText::raw(const QByteArray& head, const QByteArray& value) {
  line(head + ':' + value);
}

void IcsText::text(const QByteArray& head, const QString& value) {
  line(head + ':' + escapedText(value));
}

void IcsText::moment(const QByteArray& property, const QDateTime& wall, const QByteArray& zoneId) {
  const QByteArray digits = wall.toString(QStringLiteral("yyyyMMdd'T'HHmmss")).toLatin1();
  if (zoneId.isEmpty())
    raw(property, digits);
  else if (zoneId == "UTC" || zoneId == "Etc/UTC")
    raw(property, digits + 'Z');
  else
    raw(property + ";TZID=" + zoneId, digits);
}

void IcsText::day(const QByteArray& property, const QDate& date) {
  raw(property + ";VALUE=DATE", date.toString(QStringLiteral("yyyyMMdd")).toLatin1());
}

QByteArray IcsText::finish() {
  end("VCALENDAR");
  return content_;
}

void IcsText::line(const QByteArray& text) {
  qsizetype from = 0, limit = 75;
  while (text.size() - from > limit) {
    qsizetype cut = from + limit;
    while ((static_cast<uchar>(text[cut]) & 0xC0) == 0x80) --cut;  // never inside a character
    content_ += text.mid(from, cut - from) + "\r\n ";
    from = cut;
    limit = 74;
  }
  content_ += text.mid(from) + "\r\n";
}

QByteArray escapedText(const QString& value) {
  QByteArray escaped;
  for (const char c : value.toUtf8()) {
    if (c == '\\' || c == ';' || c == ',') escaped += '\\';
    if (c == '\n')
      escaped += "\\n";
    else if (c != '\r')
      escaped += c;
  }
  return escaped;
}

}  // namespace sampledata
