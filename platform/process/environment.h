#pragma once
#include <QString>

#include <functional>
#include <optional>

namespace platform::process {

/// Replaces each %NAME% whose name `valueOf` knows. What it does not know stays as it stands, per cent signs
/// included, and the second sign may then begin another name ("50%%USERNAME%").
QString expandNames(const QString& text,
                    const std::function<std::optional<QString>(const QString& name)>& valueOf);

}  // namespace platform::process
