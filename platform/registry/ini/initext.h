#pragma once
#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

// The text of an INI file, by way of QSettings. QSettings works on files only, so it works on a copy in a
// private temporary folder; the user's own file is never in its hands.
namespace platform::registry {

using IniEntries = QMap<QString, QString>;  // "group/name"

/// Why the bytes are no INI file, with the line; empty when they are one.
QString iniFault(const QByteArray& bytes);
std::optional<IniEntries> parseIni(const QByteArray& bytes, QString* error);
/// The same file with one entry set. What comes out is parsed again and compared, since QSettings tells
/// nothing of a temporary disk that is full.
std::optional<QByteArray> withEntry(const QByteArray& bytes, const QString& entry, const QString& text,
                                    QString* error);
/// Likewise with several, in one go.
std::optional<QByteArray> withEntries(const QByteArray& bytes, const QList<QPair<QString, QString>>& entries,
                                      QString* error);
/// The entry of a registry key and value name. An entry in the file that differs only in case is the same.
QString entryName(const QString& key, const QString& name);

}  // namespace platform::registry
