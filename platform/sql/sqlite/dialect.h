#pragma once
#include <QString>

namespace platform::sql::sqlite {

/// A statement of the Access kind as SQLite takes it. Only select, insert, update and delete are turned; all
/// else is the engine's own and passes as it stands.
///
/// * `select top n` becomes a LIMIT (ties are not returned as well; "percent" is refused)
/// * TRUE and FALSE become -1 and 0, as they are stored
/// * #2/5/2024# (month first, in every language) and #2024-02-05 09:00# become the text dates are stored as
/// * "text" in double quotes is a text, [names] in brackets stay
/// * a & b joins texts: a || b (which is Null when one of them is, where Access takes it for no text)
/// * `delete * from` loses its star, @@IDENTITY gives the last counter value
///
/// Failure 3075 for a date that cannot be read and a literal that is not closed.
QString fromAccess(const QString& sql);

}  // namespace platform::sql::sqlite
