#pragma once
#include "platform/calendar/icalendar/syntax.h"

#include <functional>

namespace platform::calendar::icalendar {

/// The bytes of one component and the operations on its own properties (never on those of the components
/// within). Lines are put in the place of lines; what is not touched stays byte for byte.
class ComponentEditor {
 public:
  explicit ComponentEditor(QByteArray component);

  /// Exactly one component and nothing beside it: what a splice must still be.
  bool isWhole() const;
  std::optional<Property> first(const char* name) const;
  QList<Property> all(const char* name) const;

  /// The first line of that name gets the new text, further ones go; without any it is added at the end of
  /// the own properties. `head` is what stands before the colon. A line that says this already stays as it
  /// is. Failure when the line is longer than a property may be.
  void set(const char* name, const QByteArray& head, const QByteArray& value);
  void remove(const char* name);
  void removeIf(const char* name, const std::function<bool(const Property&)>& which);
  /// A new line behind the first line of that name, else at the end of the own properties.
  void insertAfter(const char* name, const QByteArray& head, const QByteArray& value);
  void append(const QByteArray& head, const QByteArray& value);
  void closeIfOpen();

  const QByteArray& bytes() const { return document_.bytes; }
  QByteArray lineEnd() const;
  const Document& document() const { return document_; }
  const Component& component() const { return document_.components.front(); }

 private:
  const Line* find(const char* name) const;
  void replace(int offset, int length, const QByteArray& with);

  Document document_;
};

/// The line end that a text uses: that of its first line, CRLF where there is none.
QByteArray lineEndOf(const QByteArray& bytes);

/// Whether a new line may begin at that offset. A file can break off behind the CR of its line end.
bool isLineStart(const QByteArray& bytes, qsizetype offset);

/// The bytes of a component in whole lines, also where the file breaks off within its last one; and the way
/// back.
QByteArray wholeLines(const Document& document, const Component& component);
QByteArray asItEnded(const Document& document, const Component& component, QByteArray edited);

/// The head of a property under another name and without some parameters: "DTSTART;TZID=X" as
/// "RECURRENCE-ID;TZID=X".
QByteArray renamed(const QByteArray& head, const QByteArray& name, const QByteArrayList& without = {});

}  // namespace platform::calendar::icalendar
