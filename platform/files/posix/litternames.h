#pragma once
#include <QByteArray>

namespace platform::files {

/// ".name.XXXXXX.tmp" with six random letters or digits. It begins with a dot and never ends in .ics: a
/// calendar program that watches the folder must not take a half-written file for an appointment.
QByteArray temporaryName(const QByteArray& targetName);
bool isTemporaryName(const QByteArray& name);

}  // namespace platform::files
