#pragma once
#include "platform/files/atomicfile.h"
#include "platform/scripting/filesystem.h"

namespace platform::scripting {

inline constexpr int forReading = 1;
inline constexpr int forWriting = 2;
inline constexpr int forAppending = 8;

enum class Encoding { Utf8, Utf16 };

std::shared_ptr<TextStream> readingStream(const QString& path);
/// `expected` as in files::replaceFile(); a file that must be new and is not fails with "file exists".
std::shared_ptr<TextStream> writingStream(const QString& path,
                                          const std::optional<files::Fingerprint>& expected,
                                          Encoding encoding);
std::shared_ptr<TextStream> appendingStream(const QString& path);

/// UTF-8, or UTF-16 when the bytes begin with its mark. Bytes that are no UTF-8 come from an older program
/// and are taken as Western European text, so that nothing of a path or a name is lost.
QString decodedText(const QByteArray& bytes);

}  // namespace platform::scripting
