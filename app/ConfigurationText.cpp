#include "app/ConfigurationText.h"

#include "platform/registry/ini/initext.h"

#include <QHash>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::registry::IniEntries;
using platform::registry::parseIni;

namespace {

const QStringList calendarKeys{u"id"_s, u"name"_s, u"path"_s, u"readonly"_s};

/// A line of the file with those that it goes on in.
struct Line {
  QString section;
  QString key;   // empty: a heading, a comment, a blank line
  QString text;  // as it stands
  bool isHeading = false;
};

QString quoted(QString text) {
  if (text.startsWith(u'@')) text.prepend(u'@');  // else a type's mark
  return u'"' + text.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s) + u'"';
}

QList<Line> linesOf(const QByteArray& bytes) {
  QList<Line> lines;
  if (bytes.isEmpty()) return lines;
  QString section;
  bool continues = false;
  QStringList texts = QString::fromUtf8(bytes).split(u'\n');
  if (texts.last().isEmpty()) texts.removeLast();
  for (QString text : texts) {
    if (text.endsWith(u'\r')) text.chop(1);
    const QString shown = text.trimmed();
    if (continues) {
      lines.last().text += u'\n' + text;
      continues = shown.endsWith(u'\\');
      continue;
    }
    Line line{section, {}, text};
    const bool comment = shown.isEmpty() || shown.startsWith(u';') || shown.startsWith(u'#');
    if (shown.startsWith(u'[') && shown.endsWith(u']')) {
      section = shown.mid(1, shown.size() - 2);
      line.section = section;
      line.isHeading = true;
    } else if (!comment) {
      line.key = shown.section(u'=', 0, 0).trimmed();
      continues = shown.endsWith(u'\\');
    }
    lines.append(line);
  }
  return lines;
}

/// "2\color" is key "color" of calendar 2; number 0 for the other keys.
int numberOf(const QString& key, QString* rest = nullptr) {
  const qsizetype slash = key.indexOf(u'\\');
  bool isNumber = false;
  const int number = slash > 0 ? QStringView(key).left(slash).toInt(&isNumber) : 0;
  if (isNumber && rest) *rest = key.mid(slash + 1);
  return isNumber ? number : 0;
}

bool isOurs(const Line& line) {
  if (line.section == u"mailbox"_s) return line.key == u"name"_s;
  if (line.section != u"calendars"_s) return false;
  QString rest;
  if (numberOf(line.key, &rest) > 0) return true;
  return line.key == u"open"_s || line.key == u"size"_s;
}

/// What is not known here of the calendars, by their ids.
QHash<QString, QList<Line>> otherKeys(const QList<Line>& lines, const IniEntries& entries) {
  QHash<QString, QList<Line>> others;
  for (const Line& line : lines) {
    QString rest;
    if (line.section != u"calendars"_s || numberOf(line.key, &rest) == 0 || calendarKeys.contains(rest))
      continue;
    others[entries.value(u"calendars/%1/id"_s.arg(numberOf(line.key))).trimmed()].append(line);
  }
  return others;
}

QStringList calendarLines(const ConfigurationDraft& draft, const QHash<QString, QList<Line>>& others) {
  QStringList texts;
  if (!draft.openCalendar.isEmpty()) texts.append(u"open="_s + quoted(draft.openCalendar));
  texts.append(u"size=%1"_s.arg(draft.calendars.size()));
  int number = 0;
  for (const CalendarEntry& entry : draft.calendars) {
    const QString prefix = QString::number(++number) + u'\\';
    texts.append(prefix + u"id="_s + quoted(entry.id));
    texts.append(prefix + u"name="_s + quoted(entry.name));
    texts.append(prefix + u"path="_s + quoted(entry.path));
    texts.append(prefix + u"readonly="_s + (entry.readOnly ? u"true"_s : u"false"_s));
    for (const Line& line : others.value(entry.id))
      texts.append(prefix + line.text.mid(line.text.indexOf(u'\\') + 1));
  }
  return texts;
}

/// The lines with the section's own ones replaced by the new texts, where the first of them stood.
QList<Line> withSection(const QList<Line>& lines, const QString& section, const QStringList& texts) {
  QList<Line> result;
  qsizetype at = -1;
  for (const Line& line : lines) {
    const bool replaced = line.section == section && isOurs(line);
    if (replaced && at < 0) at = result.size();
    if (!replaced) result.append(line);
  }
  if (at < 0) {  // behind the section's heading, which may have to be made
    for (qsizetype i = 0; i < result.size() && at < 0; ++i)
      if (result[i].isHeading && result[i].section == section) at = i + 1;
    if (at < 0) {
      if (!result.isEmpty()) result.append(Line{});
      result.append(Line{section, {}, u'[' + section + u']', true});
      at = result.size();
    }
  }
  for (const QString& text : texts) result.insert(at++, Line{section, {}, text});
  return result;
}

bool holdsControl(const ConfigurationDraft& draft) {
  QStringList texts{draft.mailboxName, draft.openCalendar};
  for (const CalendarEntry& entry : draft.calendars) texts << entry.id << entry.name << entry.path;
  for (const QString& text : texts)
    for (const QChar sign : text)
      if (sign.category() == QChar::Other_Control) return true;
  return false;
}

}  // namespace

std::optional<ConfigurationDraft> readDraft(const QByteArray& bytes, QString* error) {
  *error = platform::registry::iniFault(bytes);
  const std::optional<IniEntries> entries = error->isEmpty() ? parseIni(bytes, error) : std::nullopt;
  if (!entries) return std::nullopt;
  const auto text = [&](const QString& key) { return entries->value(key).trimmed(); };
  ConfigurationDraft draft;
  draft.mailboxName = text(u"mailbox/name"_s);
  draft.openCalendar = text(u"calendars/open"_s);
  const int size = text(u"calendars/size"_s).toInt();
  for (int number = 1; number <= size; ++number) {
    const QString prefix = u"calendars/%1/"_s.arg(number);
    CalendarEntry entry;
    entry.id = text(prefix + u"id"_s);
    entry.name = entries->contains(prefix + u"name"_s) ? text(prefix + u"name"_s) : entry.id;
    entry.path = text(prefix + u"path"_s);
    const QString readOnly = text(prefix + u"readonly"_s).toLower();
    entry.readOnly = readOnly == u"true"_s || readOnly == u"1"_s;
    // a number without any key is a hole that a hand has left, or a size that is far too large
    if (!entry.id.isEmpty() || !entry.path.isEmpty()) draft.calendars.append(entry);
  }
  return draft;
}

std::optional<QByteArray> withDraft(const QByteArray& bytes, const ConfigurationDraft& draft,
                                    QString* error) {
  const std::optional<ConfigurationDraft> present = readDraft(bytes, error);
  if (!present) return std::nullopt;
  if (!bytes.isEmpty() && *present == draft) return bytes;
  if (holdsControl(draft)) {
    *error = u"a name or path holds a line break, a tab or another sign without a picture"_s;
    return std::nullopt;
  }
  const IniEntries entries = parseIni(bytes, error).value_or(IniEntries{});
  QList<Line> lines = linesOf(bytes);
  const auto others = otherKeys(lines, entries);
  lines = withSection(lines, u"mailbox"_s, {u"name="_s + quoted(draft.mailboxName)});
  lines = withSection(lines, u"calendars"_s, calendarLines(draft, others));
  const QString end = bytes.contains("\r\n") ? u"\r\n"_s : u"\n"_s;
  QString text;
  for (const Line& line : lines) text += QString(line.text).replace(u'\n', end) + end;
  const QByteArray written = text.toUtf8();
  if (readDraft(written, error) == draft) return written;
  if (error->isEmpty()) *error = u"its form is not one that can be changed here; please change it by hand"_s;
  return std::nullopt;
}

}  // namespace hourbook
