#include "fuzz/edits.h"

#include "fuzz/fuzz.h"

namespace fuzz {

using namespace platform::calendar;

namespace {

constexpr int mostEdits = 4;

/// A text such as the program hands over: of control characters it has line breaks and tabs.
QString text(const QByteArray& bytes) {
  QString result = QString::fromUtf8(bytes);
  result.replace(QStringLiteral("\\n"), QStringLiteral("\r\n"));
  result.removeIf([](QChar c) {
    return (c.unicode() < 0x20 && c != u'\t' && c != u'\n' && c != u'\r') || c == u'\r' ||
           c == QChar::ByteOrderMark;
  });
  result.replace(u'\n', QStringLiteral("\r\n"));
  return result;
}

QString lineText(const QByteArray& bytes) {
  return text(bytes).replace(QStringLiteral("\r\n"), QStringLiteral(" "));
}

int number(const QByteArray& bytes, int low, int high) {
  bool good = false;
  const qint64 value = bytes.trimmed().toLongLong(&good);
  return good ? int(low + ((value - low) % (high - low + 1) + (high - low + 1)) % (high - low + 1)) : low;
}

/// "20240219T0900", else minutes since 2024.
QDateTime moment(const QByteArray& bytes) {
  const QTimeZone zone(viewerZone);
  const QDateTime written =
      QDateTime::fromString(QString::fromLatin1(bytes), QStringLiteral("yyyyMMdd'T'HHmm"));
  if (written.isValid() && written.date().year() > 1900 && written.date().year() < 2200) {
    const QDateTime there(written.date(), written.time(), zone);
    return QDateTime::fromMSecsSinceEpoch(there.toMSecsSinceEpoch(), zone);
  }
  return QDateTime(QDate(2024, 1, 1), QTime(0, 0), zone).addSecs(60LL * number(bytes, 0, 1'000'000));
}

QStringList names(const QByteArray& bytes) {
  QStringList list;
  for (const QByteArray& piece : bytes.split(';')) {
    const QString name = lineText(piece).trimmed();
    if (!name.isEmpty()) list.append(name);
  }
  return list;
}

void take(Change& change, const QByteArray& field, const QByteArray& value) {
  if (field == "subject") change.subject = lineText(value);
  if (field == "body") change.body = text(value);
  if (field == "start") change.start = moment(value);
  if (field == "minutes") change.durationMinutes = number(value, 0, 100'000);
  if (field == "allday") change.allDay = number(value, 0, 1) == 1;
  if (field == "sensitivity") change.sensitivity = static_cast<Sensitivity>(number(value, 0, 3));
  if (field == "categories") change.categories = names(value);
  if (field == "billing") change.billingInformation = lineText(value);
  if (field.startsWith("property")) change.userProperties.insert(lineText(field.mid(8)), {1, text(value)});
}

Edit editOf(const QByteArray& line) {
  static const QByteArray fields[] = {"subject",     "body",       "start",   "minutes",      "allday",
                                      "sensitivity", "categories", "billing", "property Rate"};
  Edit edit;
  for (const QByteArray& word : line.split('|')) {
    const qsizetype equals = word.indexOf('=');
    if (word == "remove") {
      edit.what = Edit::What::Remove;
    } else if (word == "new") {
      edit.what = Edit::What::Make;
    } else if (word == "outside") {
      edit.what = Edit::What::Outside;
    } else if (equals < 0) {
      edit.item = number(word, 0, 999);
    } else {
      const QByteArray field = word.left(equals);
      const bool known = field.startsWith("property") ||
                         std::find(std::begin(fields), std::end(fields), field) != std::end(fields);
      const size_t any = (word.isEmpty() ? 0 : static_cast<uchar>(word[0])) % std::size(fields);
      take(edit.change, known ? field : fields[any], word.mid(equals + 1));
    }
  }
  if (edit.what == Edit::What::Make && !edit.change.start) edit.change.start = moment("20240601T1000");
  if (edit.what == Edit::What::Change && edit.change.isEmpty())
    edit.change.subject = QStringLiteral("Changed");
  return edit;
}

}  // namespace

Input inputOf(const QByteArray& bytes) {
  Input input;
  qsizetype from = 0;
  while (from < bytes.size()) {
    const qsizetype lineEnd = bytes.indexOf('\n', from);
    const QByteArray line = bytes.mid(from, lineEnd < 0 ? -1 : lineEnd - from);
    from = lineEnd < 0 ? bytes.size() : lineEnd + 1;
    if (line.isEmpty()) break;
    if (line == "folder")
      input.folder = true;
    else if (input.edits.size() < mostEdits)
      input.edits.append(editOf(line));
  }
  input.file = bytes.mid(from);
  return input;
}

}  // namespace fuzz
