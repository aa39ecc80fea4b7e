#include "platform/sql/odbc/reader.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"

#include <cmath>
#include <limits>

namespace platform::sql::odbc {

namespace {

constexpr qint64 longestText = 8000;  // characters; a column of more holds texts of any length
constexpr qint64 currencyDigits = 19;
constexpr qint64 currencyDecimals = 4;
constexpr int chunk = 2048;  // characters

Column columnOf(int type, qint64 size, qint64 decimals) {
  Column column;
  switch (type) {
    case SQL_BIT:
      column.type = Type::Boolean;
      break;
    case SQL_TINYINT:
    case SQL_SMALLINT:
      column.type = Type::Integer;
      break;
    case SQL_INTEGER:
    case SQL_BIGINT:
      column.type = Type::Long;
      break;
    case SQL_REAL:
      column.type = Type::Single;
      break;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      column.type = Type::Double;
      break;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      column.type = decimals <= currencyDecimals && size - decimals <= currencyDigits - currencyDecimals
                        ? Type::Currency
                        : Type::Double;
      break;
    case SQL_DATETIME:
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
      column.type = Type::Date;
      break;
    case SQL_LONGVARCHAR:
    case SQL_WLONGVARCHAR:
      column.type = Type::Memo;
      break;
    default:
      column.type = size > 0 && size <= longestText ? Type::Text : Type::Memo;
      column.size = column.type == Type::Text ? static_cast<int>(size) : 0;
  }
  return column;
}

basic::Value whole(qint64 number, Type type) {
  const auto fits = [number](auto smallest, auto largest) { return number >= smallest && number <= largest; };
  if (type == Type::Integer && fits(std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max()))
    return static_cast<qint16>(number);
  if (fits(std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()))
    return static_cast<qint32>(number);
  return number;
}

/// To the second, as dates are shown: the server's own steps of 1/300 s, and what other programs have stored
/// a hair before the full hour, mean the next one.
basic::Date dateOf(const SQL_TIMESTAMP_STRUCT& stamp) {
  constexpr SQLUINTEGER nanosecondsOfOne = 1000000;
  const basic::Date exact = basic::Date::of(QDate(stamp.year, stamp.month, stamp.day),
                                            QTime(stamp.hour, stamp.minute, qMin<int>(stamp.second, 59),
                                                  static_cast<int>(stamp.fraction / nanosecondsOfOne)));
  return basic::Date::of(exact.date(), exact.time());
}

/// A decimal number of at most four places, exactly.
std::optional<basic::Currency> amountOf(const QString& text) {
  const qsizetype point = text.indexOf(u'.');
  const QString decimals = point < 0 ? QString() : text.mid(point + 1);
  if (decimals.size() > currencyDecimals) return std::nullopt;
  bool readable = false;
  const qint64 units =
      ((point < 0 ? text : text.left(point)) + decimals + QString(currencyDecimals - decimals.size(), u'0'))
          .toLongLong(&readable);
  if (!readable) return std::nullopt;
  return basic::Currency::fromTenThousandths(units);
}

}  // namespace

Reader::Reader(const Handle& statement, SQLSMALLINT width, QString label, Require require)
    : statement_(statement), label_(std::move(label)), require_(std::move(require)) {
  describe(width);
}

void Reader::describe(SQLSMALLINT width) {
  for (SQLSMALLINT number = 1; number <= width; ++number) {
    SQLWCHAR name[256] = {};
    SQLSMALLINT length = 0, type = 0, decimals = 0, nullable = 0;
    SQLULEN size = 0;
    constexpr SQLSMALLINT room = static_cast<SQLSMALLINT>(std::size(name));
    require_(SQLDescribeColW(statement_.get(), static_cast<SQLUSMALLINT>(number), name, room, &length, &type,
                             &size, &decimals, &nullable));
    const qint64 characters = size > static_cast<SQLULEN>(longestText) ? 0 : static_cast<qint64>(size);
    Column column = columnOf(type, characters, decimals);
    column.name = fromWide(name, qBound(0, int{length}, room - 1));
    columns_.append(column);
  }
}

QList<QList<basic::Value>> Reader::rows() {
  QList<QList<basic::Value>> rows;
  for (SQLRETURN code = SQLFetch(statement_.get()); code != SQL_NO_DATA; code = SQLFetch(statement_.get())) {
    require_(code);
    QList<basic::Value> row;
    for (qsizetype i = 0; i < columns_.size(); ++i)
      row.append(value(static_cast<SQLUSMALLINT>(i + 1), columns_[i].type));
    rows.append(row);
  }
  return rows;
}

/// In pieces, since nobody knows how long it is.
QString Reader::text(SQLUSMALLINT column, bool* isNull) {
  QString text;
  while (true) {
    SQLWCHAR piece[chunk] = {};
    SQLLEN bytes = 0;
    const SQLRETURN code = SQLGetData(statement_.get(), column, SQL_C_WCHAR, piece, sizeof piece, &bytes);
    if (code == SQL_NO_DATA) return text;
    require_(code);
    *isNull = bytes == SQL_NULL_DATA;
    if (*isNull) return {};
    const bool more = bytes == SQL_NO_TOTAL || bytes >= static_cast<SQLLEN>(sizeof piece);
    text += fromWide(piece, more ? chunk - 1 : bytes / 2);
    if (!more) return text;
  }
}

basic::Value Reader::value(SQLUSMALLINT column, Type type) {
  SQLLEN bytes = 0;
  const auto get = [&](SQLSMALLINT as, auto& into) {
    require_(SQLGetData(statement_.get(), column, as, &into, sizeof into, &bytes));
    return bytes != SQL_NULL_DATA;
  };
  switch (type) {
    case Type::Boolean: {
      unsigned char yes = 0;
      if (!get(SQL_C_BIT, yes)) return basic::Null{};
      return yes != 0;
    }
    case Type::Integer:
    case Type::Long: {
      SQLBIGINT number = 0;
      if (!get(SQL_C_SBIGINT, number)) return basic::Null{};
      return whole(number, type);
    }
    case Type::Single: {
      float number = 0;
      if (!get(SQL_C_FLOAT, number)) return basic::Null{};
      return number;
    }
    case Type::Double: {
      double number = 0;
      if (!get(SQL_C_DOUBLE, number)) return basic::Null{};
      return number;
    }
    case Type::Date: {
      SQL_TIMESTAMP_STRUCT stamp{};
      if (!get(SQL_C_TYPE_TIMESTAMP, stamp)) return basic::Null{};
      return dateOf(stamp);
    }
    case Type::Currency:
    case Type::Text:
    case Type::Memo:
      break;
  }
  bool isNull = false;
  const QString held = text(column, &isNull);
  if (isNull) return basic::Null{};
  if (type != Type::Currency) return wholeText(held);
  if (const auto amount = amountOf(held)) return *amount;
  throw Failure(
      errors::unreadableValue,
      QStringLiteral("Data type conversion error: \"%1\" is no amount. It stands in the column '%2' (%3).")
          .arg(held, columns_[column - 1].name, label_));
}

}  // namespace platform::sql::odbc
