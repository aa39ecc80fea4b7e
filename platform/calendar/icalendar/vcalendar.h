#pragma once
#include "platform/calendar/icalendar/syntax.h"

#include <QStringList>

// What is different in vCalendar 1.0, the format before iCalendar: Outlook's .vcs files and those of older
// organisers. Nothing is escaped with backslashes but semicolons; texts may stand in quoted-printable, in any
// code page.
namespace platform::calendar::icalendar {

/// The value as text, by its encoding and its character set; without a set UTF-8, and where it is none
/// Windows-1252. Line breaks are "\n".
QString encodedText(const Property& property);
/// As `encodedText`, of a calendar in version 1.0.
QString oldText(const Property& property);
/// Names joined by semicolons, or by commas where there is no semicolon.
QStringList oldTextList(const Property& property);

/// A line's head and value in version 1.0: as it is where it is short and plain, else in quoted-printable.
struct OldLine {
  QByteArray head;
  QByteArray value;
};
OldLine oldLine(const QByteArray& head, const QString& text);
OldLine oldListLine(const QByteArray& head, const QStringList& names);

/// The positional rule ("W2 MO WE FR #10") in the words of iCalendar; empty when it says something else.
QByteArray ruleFromOld(const QByteArray& text);

}  // namespace platform::calendar::icalendar
