#pragma once
#include "database/ReportTarget.h"

#include <QString>

#include <functional>
#include <optional>

namespace hourbook {

struct DatabaseValues;

/// The database that the folder leads to; where there is none yet, the user is asked for one by the dialogs
/// that `useForms` fills in, and it is made or logged on to at once. The folder is made when it is missing,
/// and goes again when nothing came of it. Empty: the user chose none. Throws platform::Failure.
std::optional<ReportTarget> setUpDatabase(const QString& folder,
                                          const std::function<void(DatabaseValues&)>& useForms);

}  // namespace hourbook
