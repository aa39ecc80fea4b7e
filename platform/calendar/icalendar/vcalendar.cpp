#include "platform/calendar/icalendar/vcalendar.h"

#include "platform/calendar/icalendar/text.h"
#include "platform/calendar/icalendar/values.h"

#include <QRegularExpression>
#include <QStringDecoder>

namespace platform::calendar::icalendar {
namespace {

/// A parameter may stand alone: ";BASE64" for ";ENCODING=BASE64".
bool isEncoded(const Property& property, const char* encoding) {
  if (property.parameter("ENCODING").trimmed().compare(encoding, Qt::CaseInsensitive) == 0) return true;
  for (const QByteArray& piece : property.head.split(';').mid(1))
    if (piece.trimmed().compare(encoding, Qt::CaseInsensitive) == 0) return true;
  return false;
}

QByteArray fromQuotedPrintable(const QByteArray& value) {
  QByteArray result;
  result.reserve(value.size());
  const auto digit = [](char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                  : -1;
  };
  for (qsizetype i = 0; i < value.size(); ++i) {
    const bool room = value[i] == '=' && i + 2 < value.size();
    const int high = room ? digit(value[i + 1]) : -1, low = room ? digit(value[i + 2]) : -1;
    if (high >= 0 && low >= 0) {
      result.append(static_cast<char>(high * 16 + low));
      i += 2;
    } else {
      result.append(value[i]);
    }
  }
  return result;
}

QByteArray toQuotedPrintable(const QByteArray& bytes) {
  static constexpr char digits[] = "0123456789ABCDEF";
  QByteArray result;
  for (qsizetype i = 0; i < bytes.size(); ++i) {
    const auto c = static_cast<uchar>(bytes[i]);
    const bool lastBlank = (c == ' ' || c == '\t') && i + 1 == bytes.size();
    if (c >= 0x20 && c <= 0x7E && c != '=' && !lastBlank)
      result.append(static_cast<char>(c));
    else
      result.append('=').append(digits[c >> 4]).append(digits[c & 15]);
  }
  return result;
}

QString inCharset(const QByteArray& bytes, const QByteArray& charset) {
  const QByteArray name = charset.trimmed().toUpper();
  if (!name.isEmpty() && name != "UTF-8" && name != "US-ASCII" && !name.startsWith("WINDOWS-") &&
      !name.startsWith("CP")) {
    QStringDecoder decoder(name.constData());
    if (decoder.isValid()) {
      const QString text = decoder(bytes);
      if (!decoder.hasError()) return text;
    }
  }
  return decoded(bytes);
}

QString withPlainBreaks(QString text) {
  text.replace(u"\r\n"_qs, u"\n"_qs);
  return text.replace(u'\r', u'\n');
}

QByteArray bytesOf(const Property& property) {
  if (isEncoded(property, "QUOTED-PRINTABLE")) return fromQuotedPrintable(property.value);
  if (isEncoded(property, "BASE64") || isEncoded(property, "B")) {
    const auto result = QByteArray::fromBase64Encoding(property.value.simplified().replace(' ', ""));
    if (result.decodingStatus == QByteArray::Base64DecodingStatus::Ok) return result.decoded;
  }
  return property.value;
}

/// Parameters that say nothing about the form stay: "SUMMARY;LANGUAGE=de".
OldLine lineOf(const QByteArray& head, const QString& plain) {
  const QByteArray bytes = withPlainBreaks(plain).replace(u"\n"_qs, u"\r\n"_qs).toUtf8();
  const bool isAscii = std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
  QByteArray outer = head.left(head.indexOf(';') < 0 ? head.size() : head.indexOf(';'));
  bool wasEncoded = false;
  for (const QByteArray& piece : head.split(';').mid(1)) {
    const QByteArray name =
        piece.left(piece.indexOf('=') < 0 ? piece.size() : piece.indexOf('=')).trimmed().toUpper();
    const bool aboutForm = name == "ENCODING" || name == "CHARSET" || name == "QUOTED-PRINTABLE" ||
                           name == "BASE64" || name == "8BIT" || name == "7BIT";
    wasEncoded |= aboutForm;
    if (!aboutForm) outer += ';' + piece;
  }
  if (isAscii && !wasEncoded && head.size() + bytes.size() < 70) return {outer, bytes};
  if (!isAscii) outer += ";CHARSET=UTF-8";
  return {outer + ";ENCODING=QUOTED-PRINTABLE", toQuotedPrintable(bytes)};
}

QString escaped(QString text, bool list) {
  text.replace(u';', u"\\;"_qs);
  if (list) text.replace(u',', u"\\,"_qs);
  return text;
}

QString unescaped(QString text) {
  return text.replace(u"\\;"_qs, u";"_qs).replace(u"\\,"_qs, u","_qs);
}

}  // namespace

QString encodedText(const Property& property) {
  return withPlainBreaks(inCharset(bytesOf(property), property.parameter("CHARSET")));
}

QString oldText(const Property& property) {
  return unescaped(encodedText(property));
}

QStringList oldTextList(const Property& property) {
  const QString text = encodedText(property);
  static const QRegularExpression bareSemicolon(u"(?<!\\\\);"_qs), bareComma(u"(?<!\\\\),"_qs);
  QStringList names;
  for (const QString& piece : text.split(bareSemicolon.match(text).hasMatch() ? bareSemicolon : bareComma)) {
    const QString name = unescaped(piece).trimmed();
    if (!name.isEmpty()) names.append(name);
  }
  return names;
}

OldLine oldLine(const QByteArray& head, const QString& text) {
  return lineOf(head, escaped(text, false));
}

OldLine oldListLine(const QByteArray& head, const QStringList& names) {
  QStringList pieces;
  for (const QString& name : names) pieces.append(escaped(name, true));
  return lineOf(head, pieces.join(u';'));
}

namespace {

/// "1+", "2-": the first, the last but one.
std::optional<int> place(const QByteArray& word) {
  bool good = false;
  const bool fromEnd = word.endsWith('-');
  const int number = (fromEnd || word.endsWith('+') ? word.chopped(1) : word).toInt(&good);
  return good && number != 0 ? std::optional(fromEnd ? -number : number) : std::nullopt;
}

bool isWeekday(const QByteArray& word) {
  static const QByteArrayList names{"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
  return names.contains(word);
}

/// The days of a rule in the words of iCalendar.
bool addDays(const QByteArray& kind, const QByteArrayList& words, QByteArrayList& parts) {
  QByteArrayList days;
  QList<int> places;
  bool weekdaySeen = true;
  for (const QByteArray& word : words) {
    if (kind == "W" && isWeekday(word)) {
      days.append(word);
    } else if (kind == "MP" && isWeekday(word)) {
      if (places.isEmpty()) return false;
      for (const int number : std::as_const(places)) days.append(QByteArray::number(number) + word);
      weekdaySeen = true;
    } else if (kind == "MD" && word == "LD") {
      days.append("-1");
    } else if (const auto number = place(word); number && kind != "W" && kind != "D") {
      if (kind == "MP") {
        if (std::exchange(weekdaySeen, false)) places.clear();
        places.append(*number);
      } else {
        days.append(QByteArray::number(*number));
      }
    } else {
      return false;
    }
  }
  if (kind == "MP" && (!weekdaySeen || days.isEmpty())) return false;
  const char* part = kind == "MD"   ? "BYMONTHDAY="
                     : kind == "YM" ? "BYMONTH="
                     : kind == "YD" ? "BYYEARDAY="
                                    : "BYDAY=";
  if (!days.isEmpty()) parts.append(part + days.join(','));
  return true;
}

}  // namespace

QByteArray ruleFromOld(const QByteArray& text) {
  QByteArrayList words = text.simplified().toUpper().replace("$", "").split(' ');
  static const QRegularExpression form(u"^(D|W|MP|MD|YM|YD)(\\d{1,4})$"_qs);
  const auto match = form.match(QString::fromLatin1(words.takeFirst()));
  if (!match.hasMatch()) return {};
  const QByteArray kind = match.captured(1).toLatin1();
  const char* frequency = kind == "D"      ? "DAILY"
                          : kind == "W"    ? "WEEKLY"
                          : kind[0] == 'M' ? "MONTHLY"
                                           : "YEARLY";
  QByteArrayList parts{QByteArray("FREQ=") + frequency, "INTERVAL=" + match.captured(2).toLatin1()};
  QByteArray end = "COUNT=2";  // a rule that says nothing about its end comes twice
  while (!words.isEmpty()) {
    const QByteArray last = words.last();
    if (last.startsWith('#')) {
      bool good = false;
      const int count = last.mid(1).toInt(&good);
      if (!good || count < 0) return {};
      end = count == 0 ? QByteArray() : "COUNT=" + QByteArray::number(count);
    } else if (last.size() >= 8 && dateValue(last, {})) {
      // midnight is how the day itself is written
      end = "UNTIL=" + (last.mid(8) == "T000000" ? last.left(8) : last);
    } else {
      break;
    }
    words.removeLast();
  }
  if (!addDays(kind, words, parts)) return {};
  if (!end.isEmpty()) parts.append(end);
  return parts.join(';');
}

}  // namespace platform::calendar::icalendar
