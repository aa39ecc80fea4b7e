#pragma once
#include "platform/basic/failure.h"

#include <QString>

namespace platform::sql {

/// A server's failure under the interface's number: what that one means, then the server's own text, then the
/// database.
Failure serverFailure(qint32 number, const QString& serversText, const QString& label);

/// How the name of the constraint ends by which a column refuses empty texts; before it stands what the
/// failure names.
inline constexpr QLatin1String zeroLengthSuffix(" zero-length");
Failure zeroLengthFailure(const QString& constraint, const QString& label);

}  // namespace platform::sql
