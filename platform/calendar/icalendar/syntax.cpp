#include "platform/calendar/icalendar/syntax.h"

#include <cstring>
#include <optional>

namespace platform::calendar::icalendar {
namespace {

bool isNameByte(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         c == '.';
}

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// These never stand in one another; a second one's BEGIN tells that the first one's END is missing.
bool isEntry(const QByteArray& name) {
  return name == "VEVENT" || name == "VTODO" || name == "VJOURNAL" || name == "VFREEBUSY" ||
         name == "VTIMEZONE";
}

class Scanner {
 public:
  Scanner(Document& document, QString place) : document_(document), place_(std::move(place)) {}

  void run() {
    const char* data = document_.bytes.constData();
    const int size = static_cast<int>(document_.bytes.size());
    const char lineEnd = document_.bareCr ? '\r' : '\n';
    int at = document_.bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (at < size) {
      const void* found = std::memchr(data + at, lineEnd, static_cast<size_t>(size - at));
      const int next = found ? static_cast<int>(static_cast<const char*>(found) - data) + 1 : size;
      ++number_;
      take(at, next);
      at = next;
    }
    handle();
    while (!open_.empty()) close(size, size, false);
    if (dropped_ > 0)
      document_.problems.append({place_, 0, QStringLiteral("%1 more problems in this file.").arg(dropped_)});
  }

 private:
  /// One physical line: goes on with the logical line or begins the next.
  void take(int begin, int end) {
    const char* data = document_.bytes.constData();
    int contentEnd = end;
    while (contentEnd > begin && (data[contentEnd - 1] == '\n' || data[contentEnd - 1] == '\r')) --contentEnd;
    if (contentEnd == begin) {  // an empty line says nothing, wherever it stands
      softBreak_ = false;
      return;
    }
    const bool goesOn = softBreak_ && pending_.length > 0;
    softBreak_ = data[contentEnd - 1] == '=' &&
                 isQuotedPrintable(QByteArrayView(data, end).sliced(goesOn ? pending_.offset : begin));
    if (goesOn) {
      pending_.length = end - pending_.offset;
      return;
    }
    const char first = data[begin];
    const bool folded = first == ' ' || first == '\t';
    // some programs break the line ahead of the value's colon and forget the blank
    if (pending_.length > 0 && (folded || first == ':')) {
      pending_.length = end - pending_.offset;
      return;
    }
    if (folded) {
      while (begin < contentEnd && isBlank(data[begin])) ++begin;
      if (begin == contentEnd) return;
      if (qstrnicmp(data + begin, "BEGIN:", 6) != 0) {
        complain(number_, QStringLiteral("This line continues nothing and was left out."));
        return;
      }
    }
    handle();
    pending_ = {begin, end - begin, number_, 0};
  }

  void handle() {
    if (pending_.length == 0) return;
    Line line = pending_;
    pending_ = {};
    const char* data = document_.bytes.constData() + line.offset;
    int length = 0;
    while (length < line.length && isNameByte(data[length])) ++length;
    int after = length;
    while (after < line.length && isBlank(data[after])) ++after;  // some fold right behind the name
    if (length == 0 || after >= line.length || (data[after] != ':' && data[after] != ';')) {
      complain(line.number, QStringLiteral("This line is no property and was left out."));
      length = 0;
    } else if (line.length > maxPropertyBytes) {
      complain(
          line.number,
          QStringLiteral("This property is longer than %1 bytes and was left out.").arg(maxPropertyBytes));
      length = 0;
    }
    line.nameLength = length;
    if (document_.is(line, "BEGIN")) return begin(line);
    if (document_.is(line, "END")) return end(line);
    if (!open_.empty()) {
      if (document_.is(line, "VERSION") && open_.back().name == "VCALENDAR")
        open_.back().old = parsed(document_, line).value.trimmed() == "1.0";
      open_.back().lines.push_back(line);
    } else if (length > 0) {
      complain(line.number, QStringLiteral("This line stands outside of a calendar and was left out."));
    }
  }

  QByteArray componentName(const Line& line) const {
    return parsed(document_, line).value.trimmed().toUpper();
  }

  void begin(const Line& line) {
    Component component;
    component.name = componentName(line);
    component.offset = line.offset;
    component.line = line.number;
    if (component.name == "VCALENDAR") {
      while (holds("VCALENDAR")) close(line.offset, line.offset, false);
    } else if (isEntry(component.name)) {
      while (holdsEntry()) close(line.offset, line.offset, false);
    }
    if (open_.size() >= static_cast<size_t>(maxDepth)) {
      complain(
          line.number,
          QStringLiteral("Components stand more than %1 deep here; this one was left out.").arg(maxDepth));
      return;
    }
    open_.push_back(std::move(component));
  }

  void end(const Line& line) {
    const QByteArray name = componentName(line);
    if (!holds(name)) {
      complain(line.number,
               QStringLiteral("\"END:%1\" closes nothing.").arg(QString::fromLatin1(name.left(40))));
      return;
    }
    while (open_.back().name != name) close(line.offset, line.offset, false);
    close(line.offset, line.offset + line.length, true);
  }

  bool holds(const QByteArray& name) const {
    return std::any_of(open_.begin(), open_.end(), [&](const Component& c) { return c.name == name; });
  }
  bool holdsEntry() const {
    return std::any_of(open_.begin(), open_.end(), [](const Component& c) { return isEntry(c.name); });
  }

  void close(int bodyEnd, int end, bool closed) {
    Component done = std::move(open_.back());
    open_.pop_back();
    done.bodyEnd = bodyEnd;
    done.end = end;
    done.closed = closed;
    done.lines.shrink_to_fit();
    if (!closed)
      complain(done.line, QStringLiteral("\"BEGIN:%1\" has no END; it was read as far as it goes.")
                              .arg(QString::fromLatin1(done.name.left(40))));
    (open_.empty() ? document_.components : open_.back().children).push_back(std::move(done));
  }

  void complain(int number, const QString& text) {
    if (document_.problems.size() < maxProblemsPerFile)
      document_.problems.append({place_, number, text});
    else
      ++dropped_;
  }

  Document& document_;
  QString place_;
  std::vector<Component> open_;
  Line pending_;
  bool softBreak_ = false;
  int number_ = 0;
  int dropped_ = 0;
};

}  // namespace

bool Document::is(const Line& line, const char* name) const {
  return line.nameLength == static_cast<int>(std::strlen(name)) &&
         qstrnicmp(bytes.constData() + line.offset, name, static_cast<size_t>(line.nameLength)) == 0;
}

Document scan(QByteArray bytes, const QString& place) {
  Document document;
  document.bytes = std::move(bytes);
  const QByteArray& all = document.bytes;
  if (all.startsWith("\xFF\xFE") || all.startsWith("\xFE\xFF")) {
    document.problems.append({place, 0, QStringLiteral("The file is not in UTF-8 and was not read.")});
    return document;
  }
  document.bareCr = !all.contains('\n') && all.contains('\r');
  Scanner(document, place).run();
  if (document.components.empty() && document.problems.isEmpty() && !all.trimmed().isEmpty())
    document.problems.append({place, 0, QStringLiteral("The file holds no calendar.")});
  return document;
}

bool isQuotedPrintable(QByteArrayView line) {
  const qsizetype colon = line.indexOf(':');
  const QByteArrayView head = line.first(colon < 0 ? 0 : qMin<qsizetype>(colon, maxHeadBytes));
  return head.contains(';') && head.toByteArray().toUpper().contains("QUOTED-PRINTABLE");
}

QByteArray unfolded(QByteArrayView raw, bool bareCr) {
  qsizetype end = raw.size();
  while (end > 0 && (raw[end - 1] == '\n' || raw[end - 1] == '\r')) --end;
  QByteArray result;
  result.reserve(end);
  std::optional<bool> softBreaks;  // looked at once
  for (qsizetype i = 0; i < end;) {
    qsizetype next = i;
    while (next < end && raw[next] != '\r' && raw[next] != '\n') ++next;
    if (next > i) {
      result.append(raw.sliced(i, next - i));
      i = next;
      continue;
    }
    while (next < end && raw[next] == '\r' && !bareCr) ++next;
    const bool breaks = bareCr ? raw[i] == '\r' : (next < end && raw[next] == '\n');
    if (!breaks) {  // a run of CR is taken as a whole: looked through anew from each it would cost its square
      qsizetype upTo = next;
      if (upTo == i)
        while (++upTo < end && raw[upTo] != '\r' && raw[upTo] != '\n') continue;
      result.append(raw.sliced(i, upTo - i));
      i = upTo;
      continue;
    }
    i = bareCr ? i + 1 : next + 1;
    const bool another =
        i < end && (raw[i] == '\r' || raw[i] == '\n');  // an empty line in the midst of a fold
    if (result.endsWith('=') && !softBreaks) softBreaks = isQuotedPrintable(raw);
    if (result.endsWith('=') && *softBreaks) {
      result.chop(1);
      continue;  // blanks at the beginning of the next line are its own
    }
    if (!another && i < end && (raw[i] == ' ' || raw[i] == '\t')) ++i;
  }
  return result;
}

QByteArray Property::parameter(const char* wanted) const {
  for (const Parameter& parameter : parameters)
    if (parameter.name == wanted) return parameter.value.isNull() ? QByteArray("") : parameter.value;
  return {};
}

namespace {

bool hasDateValue(const QByteArray& name) {
  return name == "DTSTART" || name == "DTEND" || name == "RECURRENCE-ID" || name == "EXDATE" ||
         name == "RDATE";
}

/// Of the colon before the value; quotes hide colons, unless they are never closed.
qsizetype valueColon(const QByteArray& line, const QByteArray& name) {
  if (hasDateValue(name)) return line.lastIndexOf(':');
  bool quoted = false;
  for (qsizetype i = 0; i < line.size(); ++i) {
    if (line[i] == '"') quoted = !quoted;
    if (line[i] == ':' && !quoted) return i;
  }
  return line.indexOf(':');
}

QList<Parameter> parametersOf(const QByteArray& text) {
  QList<Parameter> result;
  qsizetype from = 0;
  bool quoted = false;
  for (qsizetype i = 0; i <= text.size(); ++i) {
    if (i < text.size() && text[i] == '"') quoted = !quoted;
    if (i < text.size() && (text[i] != ';' || quoted)) continue;
    const QByteArray piece = text.mid(from, i - from);
    from = i + 1;
    const qsizetype equals = piece.indexOf('=');
    if (equals <= 0) continue;
    QByteArray value = piece.mid(equals + 1);
    const qsizetype open = value.indexOf('"');
    if (open >= 0) {
      const qsizetype shut = value.lastIndexOf('"');
      value = shut > open ? value.mid(open + 1, shut - open - 1) : value.mid(open + 1);
    }
    result.append({piece.left(equals).trimmed().toUpper(), value});
  }
  return result;
}

}  // namespace

Property parsed(const QByteArray& logicalLine, int number) {
  Property property;
  property.line = number;
  qsizetype nameEnd = 0;
  while (nameEnd < logicalLine.size() && isNameByte(logicalLine[nameEnd])) ++nameEnd;
  property.name = logicalLine.left(nameEnd).toUpper();
  const qsizetype colon = valueColon(logicalLine, property.name);
  property.head = colon < 0 ? logicalLine : logicalLine.left(colon);
  if (colon >= 0) property.value = logicalLine.mid(colon + 1);
  const qsizetype semicolon = property.head.indexOf(';');
  if (semicolon >= 0) property.parameters = parametersOf(property.head.mid(semicolon + 1));
  return property;
}

Property parsed(const Document& document, const Line& line) {
  return parsed(unfolded(document.raw(line), document.bareCr), line.number);
}

QList<Property> propertiesOf(const Document& document, const Component& component, const char* name) {
  QList<Property> result;
  for (const Line& line : component.lines)
    if (document.is(line, name)) result.append(parsed(document, line));
  return result;
}

std::optional<Property> firstOf(const Document& document, const Component& component, const char* name) {
  for (const Line& line : component.lines)
    if (document.is(line, name)) return parsed(document, line);
  return std::nullopt;
}

}  // namespace platform::calendar::icalendar
