#include "platform/outlook/vcalendar.h"

using namespace Qt::StringLiterals;

namespace platform::outlook {

namespace {

constexpr qsizetype longestLine = 76;  // octets, the soft break's "=" included
constexpr auto lineBreakMark = "=0D=0A";

bool isHexDigit(QChar c) {
  return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
}

bool isLineBreak(QChar c) {
  return c == u'\r' || c == u'\n';
}

/// An "=" that a reader would take for an escape or a soft break.
bool readsAsEscape(const QString& text, qsizetype at) {
  const qsizetype rest = text.size() - at - 1;
  if (rest == 0 || isLineBreak(text[at + 1])) return true;
  return rest >= 2 && isHexDigit(text[at + 1]) && isHexDigit(text[at + 2]);
}

/// What must stay together on a line: a character, an escape, a mark. `at` moves behind it.
QByteArray unitAt(const QString& text, qsizetype& at) {
  const QChar c = text[at];
  if (isLineBreak(c)) {
    at += c == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n' ? 2 : 1;
    return lineBreakMark;
  }
  if (c == u'=' && readsAsEscape(text, at)) {
    ++at;
    return "=3D";
  }
  if (c == u'=') return '=' + unitAt(text, ++at);  // no soft break directly behind it
  const qsizetype length = c.isHighSurrogate() && at + 1 < text.size() ? 2 : 1;
  at += length;
  return QStringView(text).sliced(at - length, length).toUtf8();
}

QByteArray quotedPrintableLine(const QByteArray& name, const QString& text) {
  QByteArray lines, line = name + ";ENCODING=QUOTED-PRINTABLE:";
  const auto breakSoftly = [&] {
    lines += line + "=\r\n";
    line.clear();
  };
  for (qsizetype at = 0; at < text.size();) {
    const QByteArray unit = unitAt(text, at);
    if (line.size() + unit.size() >= longestLine) breakSoftly();
    line += unit;
    if (unit.endsWith(lineBreakMark) && at < text.size()) breakSoftly();
  }
  return lines + line + "\r\n";
}

QByteArray foldedLine(QByteArray line) {
  QByteArray folded;
  while (line.size() > longestLine - 1) {
    qsizetype cut = longestLine - 1;
    while (cut > 1 && (static_cast<uchar>(line[cut]) & 0xC0) == 0x80) --cut;
    folded += line.left(cut) + "\r\n ";
    line.remove(0, cut);
  }
  return folded + line + "\r\n";
}

QString onOneLine(QString text) {
  return text.replace(u"\r\n"_s, u" "_s).replace(u'\r', u' ').replace(u'\n', u' ');
}

QByteArray momentLine(const QByteArray& name, const QDateTime& moment) {
  return name + ':' + moment.toUTC().toString(u"yyyyMMdd'T'HHmmss'Z'").toLatin1() + "\r\n";
}

QString closed(const QString& body) {
  return body.isEmpty() || isLineBreak(body.back()) ? body : body + u"\r\n"_s;
}

}  // namespace

QByteArray vcalendarOf(const calendar::Item& item, const QString& version) {
  QByteArray text = "BEGIN:VCALENDAR\r\n";
  text += "PRODID:-//Microsoft Corporation//Outlook " + version.section(u'.', 0, 1).toLatin1() +
          " MIMEDIR//EN\r\n";
  text += "VERSION:1.0\r\nBEGIN:VEVENT\r\n";
  text += momentLine("DTSTART", item.start) + momentLine("DTEND", item.end);
  if (!item.categories.isEmpty())
    text += quotedPrintableLine("CATEGORIES", onOneLine(item.categories.join(u';')));
  if (!item.key.uid.isEmpty()) text += foldedLine("UID:" + onOneLine(item.key.uid).toUtf8());
  if (!item.body.isEmpty()) text += quotedPrintableLine("DESCRIPTION", closed(item.body));
  text += quotedPrintableLine("SUMMARY", onOneLine(item.subject));
  return text + "PRIORITY:3\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

}  // namespace platform::outlook
