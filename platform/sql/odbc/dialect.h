#pragma once
#include "platform/basic/value.h"

#include <QString>

#include <functional>

namespace platform::sql::odbc {

/// A statement as the server takes it.
struct Translation {
  QString sql;
  QList<basic::Value> parameters;  // no Null is among them
  /// An insert, update or delete. The last answer is one row: how many rows were touched, and the last value
  /// of a counter.
  bool writes = false;
};

struct YesNoColumn {
  QString name;
  bool takesNull = false;
};
/// The Yes/No columns of a table; asked for only where a statement depends on them.
using YesNoColumns = std::function<QList<YesNoColumn>(const QString& table)>;

/// A statement of the Access kind as the server takes it. Much of it is the server's own language already:
/// `top n` (without those that tie), [names] in brackets, `Select* from`.
///
/// * #2/5/2024# (month first, in every language) and #2024-02-05 09:00# are read the same whatever the
///   connection's language
/// * texts with other signs than ASCII are marked as Unicode, "text" in double quotes is a text
/// * TRUE and FALSE are the server's bits; a Yes/No column compared by = or <> with -1, as statements and
///   parameters have it, is compared with Yes (the server would take -1 for a number that no bit is equal to)
/// * Null stands in the statement itself, since a parameter of no type goes into no column of money; where an
///   insert lists it for a Yes/No column that takes none, it is the column's default
/// * a & b joins texts: a + b (which is Null when one of them is, where Access takes it for no text)
/// * `delete * from` loses its star
///
/// Failure 3075 for a date that cannot be read and a literal that is not closed.
Translation fromAccess(const QString& sql, const QList<basic::Value>& parameters,
                       const YesNoColumns& yesNoColumns);

/// What of the values a translation depends on: the same statement with values of an equal shape is turned
/// into the same text.
QString shapeOf(const QList<basic::Value>& parameters);
/// Those of the values that are sent; the others stand in the text.
QList<basic::Value> sentOf(const QList<basic::Value>& parameters);

/// N'text'
QString nationalText(const QString& text);

}  // namespace platform::sql::odbc
