#include "platform/calendar/icalendar/editor.h"

#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/text.h"

namespace platform::calendar::icalendar {

ComponentEditor::ComponentEditor(QByteArray component) : document_(scan(std::move(component), {})) {}

bool ComponentEditor::isWhole() const {
  return document_.components.size() == 1 && component().offset == 0 && component().end == bytes().size();
}

QByteArray lineEndOf(const QByteArray& bytes) {
  const qsizetype at = bytes.indexOf('\n');
  if (at < 0) return bytes.contains('\r') ? "\r" : "\r\n";
  return at > 0 && bytes[at - 1] == '\r' ? "\r\n" : "\n";
}

bool isLineStart(const QByteArray& bytes, qsizetype offset) {
  if (offset == 0) return true;
  return bytes[offset - 1] == '\n' || (bytes[offset - 1] == '\r' && !bytes.contains('\n'));
}

namespace {

/// What stands of a line end where a file breaks off: nothing or a CR.
QByteArray brokenEnd(const Document& document, const Component& component) {
  qsizetype end = component.end;
  while (end > component.offset && document.bytes[end - 1] == '\r') --end;
  return document.bytes.mid(end, component.end - end);
}

/// A property as it is written; one that is longer with its folds would not be read again.
QByteArray foldedWithinBounds(const QByteArray& line, const QByteArray& lineEnd) {
  const QByteArray written = folded(line, lineEnd);
  if (written.size() > maxPropertyBytes)
    throw Failure(errStoreBroken, QStringLiteral("The text is longer than %1 bytes.").arg(maxPropertyBytes),
                  QStringLiteral("IcalendarStore"));
  return written;
}

}  // namespace

QByteArray wholeLines(const Document& document, const Component& component) {
  QByteArray bytes = document.raw(component).toByteArray();
  if (isLineStart(document.bytes, component.end)) return bytes;
  bytes.chop(brokenEnd(document, component).size());
  return bytes + lineEndOf(bytes.contains('\n') ? bytes : document.bytes);
}

QByteArray asItEnded(const Document& document, const Component& component, QByteArray edited) {
  if (edited.isEmpty() || isLineStart(document.bytes, component.end)) return edited;
  edited.chop(edited.endsWith("\r\n") ? 2 : 1);
  return edited + brokenEnd(document, component);
}

QByteArray ComponentEditor::lineEnd() const {
  return lineEndOf(document_.bytes);
}

const Line* ComponentEditor::find(const char* name) const {
  for (const Line& line : component().lines)
    if (document_.is(line, name)) return &line;
  return nullptr;
}

std::optional<Property> ComponentEditor::first(const char* name) const {
  return firstOf(document_, component(), name);
}
QList<Property> ComponentEditor::all(const char* name) const {
  return propertiesOf(document_, component(), name);
}

void ComponentEditor::replace(int offset, int length, const QByteArray& with) {
  QByteArray changed = document_.bytes;
  QByteArray text = with;
  if (!text.isEmpty() && !isLineStart(changed, offset)) text.prepend(lineEnd());
  changed.replace(offset, length, text);
  document_ = scan(std::move(changed), {});
}

void ComponentEditor::set(const char* name, const QByteArray& head, const QByteArray& value) {
  const Line* line = find(name);
  const QByteArray wanted = head + ':' + value;
  if (!line) return append(head, value);
  if (unfolded(document_.raw(*line), document_.bareCr) != wanted)
    replace(line->offset, line->length, foldedWithinBounds(wanted, lineEnd()));
  bool isFirst = true;
  removeIf(name, [&](const Property&) { return !std::exchange(isFirst, false); });
}

void ComponentEditor::remove(const char* name) {
  removeIf(name, [](const Property&) { return true; });
}

void ComponentEditor::removeIf(const char* name, const std::function<bool(const Property&)>& which) {
  QByteArray changed = document_.bytes;
  QList<Line> doomed;
  for (const Line& line : component().lines)
    if (document_.is(line, name) && which(parsed(document_, line))) doomed.prepend(line);
  if (doomed.isEmpty()) return;
  for (const Line& line : doomed) changed.remove(line.offset, line.length);
  document_ = scan(std::move(changed), {});
}

void ComponentEditor::insertAfter(const char* name, const QByteArray& head, const QByteArray& value) {
  const Line* line = find(name);
  if (!line) return append(head, value);
  replace(line->offset + line->length, 0, foldedWithinBounds(head + ':' + value, lineEnd()));
}

void ComponentEditor::append(const QByteArray& head, const QByteArray& value) {
  const QByteArray line = foldedWithinBounds(head + ':' + value, lineEnd());
  const int at = component().children.empty() ? component().bodyEnd : component().children.front().offset;
  replace(at, 0, line);
}

void ComponentEditor::closeIfOpen() {
  if (!component().closed) replace(component().end, 0, "END:" + component().name + lineEnd());
}

QByteArray renamed(const QByteArray& head, const QByteArray& name, const QByteArrayList& without) {
  QByteArray result = name;
  qsizetype from = head.indexOf(';');
  if (from < 0) return result;
  bool quoted = false;
  for (qsizetype i = from + 1; i <= head.size(); ++i) {
    if (i < head.size() && head[i] == '"') quoted = !quoted;
    if (i < head.size() && (head[i] != ';' || quoted)) continue;
    const QByteArray piece = head.mid(from + 1, i - from - 1);
    from = i;
    const qsizetype equals = piece.indexOf('=');
    const QByteArray parameter = equals < 0 ? piece : piece.left(equals);
    if (!piece.isEmpty() && !without.contains(parameter.trimmed().toUpper())) result += ';' + piece;
  }
  return result;
}

}  // namespace platform::calendar::icalendar
