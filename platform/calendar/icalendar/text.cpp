#include "platform/calendar/icalendar/text.h"

#include "platform/calendar/icalendar/syntax.h"

#include <QStringDecoder>

namespace platform::calendar::icalendar {
namespace {

constexpr int foldAt = 75;

QString fromWindows1252(const QByteArray& bytes) {
  static constexpr char16_t high[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                        0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  QString result = QString::fromLatin1(bytes);
  for (QChar& c : result)
    if (c.unicode() >= 0x80 && c.unicode() < 0xA0) c = QChar(high[c.unicode() - 0x80]);
  return result;
}

QString unescaped(const QString& text) {
  if (!text.contains(u'\\')) return text;
  QString result;
  result.reserve(text.size());
  for (qsizetype i = 0; i < text.size();) {
    const qsizetype escape = text.indexOf(u'\\', i);
    const qsizetype end = escape < 0 || escape + 1 == text.size() ? text.size() : escape;
    result.append(QStringView(text).sliced(i, end - i));
    if (end == text.size()) break;
    const QChar next = text[end + 1];
    result.append(next == u'n' || next == u'N' ? QChar(u'\n') : next);
    i = end + 2;
  }
  return result;
}

}  // namespace

QString decoded(const QByteArray& bytes) {
  QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QString text = utf8(bytes);
  return utf8.hasError() ? fromWindows1252(bytes) : text;
}

QString fromText(const QByteArray& value) {
  QString text = unescaped(decoded(value));
  if (!text.contains(u'\r')) return text;
  text.replace(u"\r\n"_qs, u"\n"_qs);
  text.replace(u'\r', u'\n');
  return text;
}

QStringList fromTextList(const QByteArray& value) {
  const QString text = decoded(value);
  QStringList names;
  qsizetype from = 0;
  for (qsizetype i = 0; i <= text.size(); ++i) {
    if (i + 1 < text.size() && text[i] == u'\\') {
      ++i;
      continue;
    }
    if (i < text.size() && text[i] != u',') continue;
    const QString name = unescaped(text.mid(from, i - from)).trimmed();
    if (!name.isEmpty()) names.append(name);
    from = i + 1;
  }
  return names;
}

QByteArray toText(const QString& text) {
  QString plain = text;
  plain.replace(u"\r\n"_qs, u"\n"_qs);
  plain.replace(u'\r', u'\n');
  QString escaped;
  escaped.reserve(plain.size() + 16);
  for (const QChar c : plain) {
    if (c == u'\\' || c == u';' || c == u',') escaped.append(u'\\');
    if (c == u'\n')
      escaped.append(u"\\n"_qs);
    else if (c.unicode() >= 0x20 || c == u'\t')  // other control characters have no place in the format
      escaped.append(c);
  }
  return escaped.toUtf8();
}

QByteArray toTextList(const QStringList& names) {
  QByteArrayList escaped;
  for (const QString& name : names) escaped.append(toText(name));
  return escaped.join(',');
}

QString fromParameter(const QByteArray& value) {
  const QString text = decoded(value);
  QString result;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar next = i + 1 < text.size() ? text[i + 1] : QChar();
    if (text[i] == u'^' && (next == u'n' || next == u'^' || next == u'\'')) {
      result.append(next == u'n' ? QChar(u'\n') : next == u'^' ? QChar(u'^') : QChar(u'"'));
      ++i;
    } else {
      result.append(text[i]);
    }
  }
  return result;
}

QByteArray toParameter(const QString& value) {
  QString text;
  for (const QChar c : value) {
    if (c == u'^')
      text.append(u"^^"_qs);
    else if (c == u'"')
      text.append(u"^'"_qs);
    else if (c == u'\n')
      text.append(u"^n"_qs);
    else if (c.unicode() >= 0x20)
      text.append(c);
  }
  return '"' + text.toUtf8() + '"';
}

namespace {

/// With soft breaks, none of which parts an escape or leaves a blank at the end of its line.
QByteArray softBroken(const QByteArray& logicalLine, const QByteArray& lineEnd) {
  QByteArray result;
  qsizetype at = 0;
  while (logicalLine.size() - at > foldAt) {
    qsizetype end = at + foldAt - 1;
    if (logicalLine[end - 1] == '=')
      end -= 1;
    else if (logicalLine[end - 2] == '=')
      end -= 2;
    result.append(logicalLine.mid(at, end - at)).append('=').append(lineEnd);
    at = end;
  }
  return result.append(logicalLine.mid(at)).append(lineEnd);
}

}  // namespace

QByteArray folded(const QByteArray& logicalLine, const QByteArray& lineEnd) {
  if (isQuotedPrintable(logicalLine)) return softBroken(logicalLine, lineEnd);
  QByteArray result;
  qsizetype at = 0;
  bool first = true;
  do {
    const qsizetype room = first ? foldAt : foldAt - 1;
    qsizetype end = qMin(at + room, logicalLine.size());
    while (end < logicalLine.size() && end > at + 1 && (static_cast<uchar>(logicalLine[end]) & 0xC0) == 0x80)
      --end;
    if (!first) result.append(' ');
    result.append(logicalLine.mid(at, end - at)).append(lineEnd);
    at = end;
    first = false;
  } while (at < logicalLine.size());
  return result;
}

QChar leadingSeparator(const QString& text) {
  if (text.isEmpty() || text[0].isLetterOrNumber() || text[0].isSpace() || text[0].isSurrogate()) return {};
  return text[0];
}

QStringList categoryPieces(const QString& text, QChar lead) {
  QStringList pieces;
  qsizetype from = 0;
  for (qsizetype i = 0; i <= text.size(); ++i) {
    const bool splits =
        i == text.size() || text[i] == u';' || text[i] == u',' || (!lead.isNull() && text[i] == lead);
    if (!splits) continue;
    const QString piece = text.mid(from, i - from).trimmed();
    if (!piece.isEmpty()) pieces.append(piece);
    from = i + 1;
  }
  return pieces;
}

}  // namespace platform::calendar::icalendar
