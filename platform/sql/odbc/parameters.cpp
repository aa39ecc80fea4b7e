#include "platform/sql/odbc/parameters.h"

#include "platform/sql/literals.h"

namespace platform::sql::odbc {

namespace {

constexpr SQLULEN longestInline = 4000;  // characters; longer texts are sent as large ones
constexpr SQLULEN currencyDigits = 19;
constexpr SQLSMALLINT currencyDecimals = 4;
constexpr SQLULEN timestampDigits = 23;
constexpr SQLSMALLINT timestampDecimals = 3;

template <class Plain>
QByteArray bytesOf(const Plain& plain) {
  return {reinterpret_cast<const char*>(&plain), sizeof plain};
}

SQL_TIMESTAMP_STRUCT timestampOf(const basic::Date& date) {
  const QDate day = date.date();
  const QTime time = date.time();
  SQL_TIMESTAMP_STRUCT stamp{};
  stamp.year = static_cast<SQLSMALLINT>(day.year());
  stamp.month = static_cast<SQLUSMALLINT>(day.month());
  stamp.day = static_cast<SQLUSMALLINT>(day.day());
  stamp.hour = static_cast<SQLUSMALLINT>(time.hour());
  stamp.minute = static_cast<SQLUSMALLINT>(time.minute());
  stamp.second = static_cast<SQLUSMALLINT>(time.second());
  return stamp;
}

}  // namespace

Parameters::Slot Parameters::slotOf(const basic::Value& value) {
  Slot slot;
  const auto plain = [&slot](SQLSMALLINT given, SQLSMALLINT taken, const QByteArray& bytes) {
    slot.given = given;
    slot.taken = taken;
    slot.size = 0;
    slot.bytes = bytes;
    slot.length = bytes.size();
  };
  if (const bool* yes = std::get_if<bool>(&value)) {
    plain(SQL_C_BIT, SQL_BIT, bytesOf(static_cast<unsigned char>(*yes ? 1 : 0)));
  } else if (const auto* tiny = std::get_if<qint16>(&value)) {
    plain(SQL_C_SSHORT, SQL_SMALLINT, bytesOf(*tiny));
  } else if (const auto* number = std::get_if<qint32>(&value)) {
    plain(SQL_C_SLONG, SQL_INTEGER, bytesOf(*number));
  } else if (const auto* large = std::get_if<qint64>(&value)) {
    plain(SQL_C_SBIGINT, SQL_BIGINT, bytesOf(*large));
  } else if (const auto* single = std::get_if<float>(&value)) {
    plain(SQL_C_FLOAT, SQL_REAL, bytesOf(*single));
  } else if (const auto* wideNumber = std::get_if<double>(&value)) {
    plain(SQL_C_DOUBLE, SQL_DOUBLE, bytesOf(*wideNumber));
  } else if (const auto* amount = std::get_if<basic::Currency>(&value)) {
    plain(SQL_C_CHAR, SQL_DECIMAL, amount->toPlainText().toLatin1());
    slot.size = currencyDigits;
    slot.decimals = currencyDecimals;
  } else if (const auto* date = std::get_if<basic::Date>(&value)) {
    plain(SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, bytesOf(timestampOf(*date)));
    slot.size = timestampDigits;
    slot.decimals = timestampDecimals;
  } else if (const auto* held = std::get_if<QString>(&value)) {
    const QString text = wholeText(*held);
    const SQLULEN count = static_cast<SQLULEN>(text.size());
    plain(SQL_C_WCHAR, count > longestInline ? SQL_WLONGVARCHAR : SQL_WVARCHAR,
          {reinterpret_cast<const char*>(text.utf16()), text.size() * 2});
    slot.size = qMax(SQLULEN{1}, count);
  }
  return slot;
}

Parameters::Parameters(const QList<basic::Value>& values) {
  for (const basic::Value& value : values) slots_.push_back(slotOf(value));
}

void Parameters::bind(const Handle& statement) const {
  SQLUSMALLINT number = 0;
  for (Slot& slot : slots_)
    SQLBindParameter(statement.get(), ++number, SQL_PARAM_INPUT, slot.given, slot.taken, slot.size,
                     slot.decimals, slot.bytes.data(), slot.bytes.size(), &slot.length);
}

}  // namespace platform::sql::odbc
