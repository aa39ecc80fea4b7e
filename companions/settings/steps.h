#pragma once
#include "companions/settings/buffer.h"
#include "companions/settings/undo.h"
#include "platform/files/atomicfile.h"

namespace hourbook {

// Single steps of a save. Each throws platform::Failure with nothing done, or is done and can be taken back.

/// `expected` as for replaceFile(). A failure of the kind "changed meanwhile" has the number
/// `changedMeanwhile`.
void stepWriteFile(Undo& undo, const QString& path, const QByteArray& bytes,
                   const platform::files::Fingerprint& expected, platform::files::FileMode mode);
void stepRemoveFile(Undo& undo, const QString& path);
/// Makes the folder and those around it that are missing; `ownerOnly`: for nobody else to enter.
void stepMakeFolder(Undo& undo, const QString& folder, bool ownerOnly);
/// Makes Hourbook3.mdb in the folder, up to date and empty.
void stepMakeDatabase(Undo& undo, const QString& folder);

inline constexpr qint32 changedMeanwhile = 40;  // "Another program has changed ..."

}  // namespace hourbook
