#pragma once
#include "platform/sql/postgresql/catalogue.h"

namespace platform::sql::postgresql {

/// A statement as the server takes it, and what its driver must know of it.
struct Translation {
  QString sql;
  bool writes = false;  // an insert or update
  /// Of an insert: the table with a counter, whose new value the statement gives back as its only column.
  const CatalogueTable* counted = nullptr;
  bool givesCounter = false;  // the insert itself says what the counter's value is
};

/// A statement of the Access kind as the server takes it:
///
/// * `select top n` becomes a LIMIT (ties are not returned as well; "percent" is refused)
/// * names are found without regard to case and quoted as they are spelled in the database; [names] in
///   brackets as well
/// * #2/5/2024# (month first, in every language) and #2024-02-05 09:00# become timestamps
/// * "text" in double quotes is a text
/// * a Yes/No column may be compared with, and set to, -1 and 0 besides TRUE and FALSE; Null sets it to No
///   where it stands in an insert's list
/// * `like` compares without regard to case
/// * a & b joins texts: a || b (which is Null when one of them is, where Access takes it for no text)
/// * `delete * from` loses its star, @@IDENTITY is the last counter value, "?" is a parameter
///
/// Failure 3075 for a date that cannot be read and a literal that is not closed.
Translation fromAccess(const QString& sql, const Catalogue& catalogue, qint64 lastIdentity = 0);

/// Only the parameters: "?" becomes $1, $2 ...
QString withNumberedParameters(const QString& sql);

/// A name in quotes. Failure 3125 for what can be none: empty, over 63 bytes of UTF-8 (where the server would
/// cut it off), with brackets, dots or control signs.
QString quotedName(const QString& name);
QString quotedText(const QString& text);

}  // namespace platform::sql::postgresql
