#pragma once
#include "platform/basic/failure.h"
#include "platform/files/atomicfile.h"

namespace platform::scripting {

// Numbers of the scripting objects that are not the language's own.
using failure::fileNotFound;
using failure::pathNotFound;
using failure::permissionDenied;
inline constexpr qint32 badFileName = 52;
inline constexpr qint32 badFileMode = 54;
inline constexpr qint32 deviceError = 57;
inline constexpr qint32 fileExists = 58;
inline constexpr qint32 inputPastEnd = 62;

/// Throws with the number's own text and the path behind it.
[[noreturn]] void fail(qint32 number, const QString& path);
/// Turns a failed write into the failure that suits it, with what the system said.
void failUnlessWritten(const files::WriteResult& result, const QString& path);
/// The number that suits what a read or write met.
qint32 numberOf(bool missing, bool denied);

}  // namespace platform::scripting
