#pragma once
#include "platform/calendar/store.h"

#include <QByteArray>

#include <vector>

// The line layer: where components and properties stand in the bytes of a file. Nothing is decoded here and
// nothing is lost: every byte belongs to a line of some component, so that a writer can put one line in the
// place of another and leave the rest as it is.
namespace platform::calendar::icalendar {

inline constexpr int maxPropertyBytes = 1024 * 1024;  // a longer property is left out and named
inline constexpr int maxHeadBytes = 4096;             // among which an encoding is looked for
inline constexpr int maxDepth = 64;                   // of components within components
inline constexpr int maxProblemsPerFile = 200;        // the rest is counted in one last entry

/// One property with its folds and its line end.
struct Line {
  int offset = 0;
  int length = 0;
  int number = 0;      // of its first line in the file, from 1
  int nameLength = 0;  // 0: not a property
};

struct Component {
  QByteArray name;      // upper case
  int offset = 0;       // of the BEGIN line
  int bodyEnd = 0;      // of the END line, or where it is missed
  int end = 0;          // behind the END line
  int line = 0;         // of the BEGIN line, from 1
  bool closed = false;  // has its END
  bool old = false;     // a calendar of version 1.0
  std::vector<Line> lines;
  std::vector<Component> children;
};

struct Document {
  QByteArray bytes;
  bool bareCr = false;  // an old file whose lines end with CR alone
  std::vector<Component> components;
  QList<Problem> problems;

  QByteArrayView raw(const Line& line) const {
    return QByteArrayView(bytes).sliced(line.offset, line.length);
  }
  QByteArrayView raw(const Component& c) const {
    return QByteArrayView(bytes).sliced(c.offset, c.end - c.offset);
  }
  bool is(const Line& line, const char* name) const;
};

/// Reads whatever can be read; `place` names the file in the problems.
Document scan(QByteArray bytes, const QString& place);

/// Whether a property's value stands in quoted-printable, where a "=" at the end of a line goes on with the
/// next.
bool isQuotedPrintable(QByteArrayView line);

/// The bytes of a property on one line: without folds and line end. `bareCr` as its document has it: whether
/// the last line of a file has its line end must not change what a CR within it means.
QByteArray unfolded(QByteArrayView raw, bool bareCr);

struct Parameter {
  QByteArray name;   // upper case
  QByteArray value;  // without quotes, of a list the text between the first and the last quote
};

struct Property {
  QByteArray name;  // upper case
  QByteArray head;  // everything before the value's colon, as written
  QList<Parameter> parameters;
  QByteArray value;  // as written, escapes included
  int line = 0;

  QByteArray parameter(const char* wanted) const;  // null when there is none
};

/// Takes a property apart. Values of dates hold no colon, but names of time zones do, also where quotes are
/// missing: for them the last colon counts.
Property parsed(const Document& document, const Line& line);
Property parsed(const QByteArray& logicalLine, int number = 0);

/// All properties of that name, in order.
QList<Property> propertiesOf(const Document& document, const Component& component, const char* name);
std::optional<Property> firstOf(const Document& document, const Component& component, const char* name);

}  // namespace platform::calendar::icalendar
