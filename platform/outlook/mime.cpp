#include "platform/outlook/mime.h"

#include "platform/basic/clock.h"
#include "platform/process/process.h"

#include <QSysInfo>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace platform::outlook {

namespace {

constexpr qsizetype longestLine = 76;

bool isPlain(const QString& text) {
  return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c >= u' ' && c <= u'~'; });
}

QString onOneLine(QString text) {
  return text.replace(u"\r\n"_s, u" "_s).replace(u'\r', u' ').replace(u'\n', u' ');
}

QByteArray wrapped(const QByteArray& base64) {
  QByteArray lines;
  for (qsizetype at = 0; at < base64.size(); at += longestLine) lines += base64.mid(at, longestLine) + "\r\n";
  return lines;
}

QByteArray escapedOctet(char octet) {
  return '=' + QByteArray::number(static_cast<uchar>(octet), 16).toUpper().rightJustified(2, '0');
}

QByteArray quotedPrintableLine(const QByteArray& text) {
  QByteArray lines, line;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool lastBlank = (c == ' ' || c == '\t') && i + 1 == text.size();
    const bool asItStands = ((c >= ' ' && c <= '~' && c != '=') || c == '\t') && !lastBlank;
    const QByteArray unit = asItStands ? QByteArray(1, c) : escapedOctet(c);
    if (line.size() + unit.size() >= longestLine) {
      lines += line + "=\r\n";
      line.clear();
    }
    line += unit;
  }
  return lines + line + "\r\n";
}

QByteArray quotedPrintable(QString text) {
  text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
  if (text.endsWith(u'\n')) text.chop(1);
  QByteArray lines;
  for (const QString& line : text.split(u'\n')) lines += quotedPrintableLine(line.toUtf8());
  return lines;
}

/// Letters, digits, "-", "_" and single points, as the parts of an address may have them.
QByteArray addressPart(const QString& text, const QByteArray& otherwise) {
  QByteArray part;
  for (const QChar c : text) {
    const bool letter = c.unicode() < 128 && (c.isLetterOrNumber() || c == u'-' || c == u'_');
    if (letter || (c == u'.' && !part.isEmpty() && !part.endsWith('.'))) part += c.toLatin1();
  }
  while (part.endsWith('.')) part.chop(1);
  return part.isEmpty() ? otherwise : part;
}

QByteArray host() {
  return addressPart(QSysInfo::machineHostName(), "localhost");
}

/// As the system's own mail commands name the writer; the mail program puts the real address in when it
/// sends.
QByteArray writer() {
  const QString name = process::Process::current().expandEnvironment(u"%USERNAME%"_s);
  return addressPart(name == u"%USERNAME%" ? QString() : name, "user") + '@' + host();
}

QByteArray textPart(const MailItem& mail) {
  return "Content-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n" +
         quotedPrintable(mail.Body);
}

QByteArray attachmentPart(const Attachment& attachment) {
  QString name = isPlain(attachment.FileName()) ? attachment.FileName() : u"attachment"_s;
  name.remove(u'"').remove(u'\\');
  return "Content-Type: " + attachment.type() + "\r\nContent-Transfer-Encoding: base64\r\n" +
         "Content-Disposition: attachment; filename=\"" + name.toLatin1() + "\"\r\n\r\n" +
         wrapped(attachment.content().toBase64());
}

}  // namespace

QByteArray headerText(const QString& text, qsizetype nameLength) {
  const QString line = onOneLine(text);
  // "=?" would read as an encoded word of its own
  if (isPlain(line) && nameLength + line.size() <= longestLine && !line.contains(u"=?"_s))
    return line.toLatin1();
  constexpr qsizetype octetsOfWord = 36;  // short enough beside the longest header name
  QByteArrayList words;
  QByteArray word;
  const auto finish = [&] {
    words.append("=?UTF-8?B?" + word.toBase64() + "?=");
    word.clear();
  };
  for (const char32_t code : line.toStdU32String()) {
    const QByteArray character = QString::fromUcs4(&code, 1).toUtf8();
    if (word.size() + character.size() > octetsOfWord) finish();
    word += character;
  }
  finish();
  return words.join("\r\n ");
}

QByteArray messageOf(const MailItem& mail) {
  const QByteArray id = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
  QByteArray text = "Date: " + basic::Clock::current().now().toString(Qt::RFC2822Date).toLatin1() + "\r\n";
  text += "From: " + writer() + "\r\n";
  if (!mail.To.isEmpty()) text += "To: " + onOneLine(mail.To).toUtf8() + "\r\n";
  text += "Subject: " + headerText(mail.Subject, 9) + "\r\n";
  text += "Message-ID: <" + id + '@' + host() + ">\r\n";
  text += "X-Unsent: 1\r\nMIME-Version: 1.0\r\n";
  if (mail.Attachments.empty()) return text + textPart(mail);
  const QByteArray boundary = "=_" + id;
  text += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n";
  text += "--" + boundary + "\r\n" + textPart(mail);
  for (const Attachment& attachment : mail.Attachments)
    text += "--" + boundary + "\r\n" + attachmentPart(attachment);
  return text + "--" + boundary + "--\r\n";
}

}  // namespace platform::outlook
