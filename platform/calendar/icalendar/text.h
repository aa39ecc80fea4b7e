#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>

// Texts as they stand in the file and as they are meant.
namespace platform::calendar::icalendar {

/// UTF-8; bytes that are none are taken for Windows-1252, value by value.
QString decoded(const QByteArray& bytes);

/// A TEXT value without its escapes; line breaks are "\n".
QString fromText(const QByteArray& value);
/// The TEXT values of a list, single ones trimmed, empty ones dropped.
QStringList fromTextList(const QByteArray& value);
QByteArray toText(const QString& text);
QByteArray toTextList(const QStringList& names);

/// A parameter's value with the escapes of RFC 6868, and as it is written (always in quotes).
QString fromParameter(const QByteArray& value);
QByteArray toParameter(const QString& value);

/// A property on lines of at most 75 bytes, each with `lineEnd`; no character is cut in two. One in
/// quoted-printable gets soft breaks.
QByteArray folded(const QByteArray& logicalLine, const QByteArray& lineEnd);

/// The names of a categories text, whatever list separator joins them: semicolon, comma, or the sign that it
/// begins with.
QStringList categoryPieces(const QString& text, QChar lead);
/// The sign that a categories text begins with, when it is a separator; else null.
QChar leadingSeparator(const QString& text);

}  // namespace platform::calendar::icalendar
