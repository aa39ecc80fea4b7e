#include "platform/sql/sqlite/values.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace platform::sql::sqlite {

namespace {

constexpr int defaultTextSize = 255;
constexpr int currencyScale = 10000;

double storedSingle(float value) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  double shortest = value;
  std::from_chars(digits, end, shortest);
  return shortest;
}

double storedCurrency(basic::Currency amount) {
  const double number = amount.toDouble();
  if (basic::Currency::fromDouble(number) != amount)
    throw Failure(platform::failure::overflow,
                  QStringLiteral("Overflow: the amount %1 is too large to be stored exactly.")
                      .arg(amount.toPlainText()));
  return number;
}

struct ToStored {
  QVariant operator()(std::monostate) const { return {}; }
  QVariant operator()(basic::Null) const { return {}; }
  QVariant operator()(bool value) const { return value ? -1 : 0; }
  QVariant operator()(qint16 value) const { return static_cast<qlonglong>(value); }
  QVariant operator()(qint32 value) const { return static_cast<qlonglong>(value); }
  QVariant operator()(qint64 value) const { return static_cast<qlonglong>(value); }
  QVariant operator()(float value) const { return storedSingle(value); }
  QVariant operator()(double value) const { return value; }
  QVariant operator()(basic::Currency value) const { return storedCurrency(value); }
  QVariant operator()(const basic::Date& value) const { return storedDate(value); }
  QVariant operator()(const QString& value) const { return storedText(value); }
};

basic::Value wholeNumber(qlonglong number) {
  if (number >= std::numeric_limits<qint32>::min() && number <= std::numeric_limits<qint32>::max())
    return static_cast<qint32>(number);
  return static_cast<qint64>(number);
}

basic::Currency readCurrency(const QVariant& stored) {
  if (stored.typeId() == QMetaType::LongLong) {
    const qlonglong whole = stored.toLongLong();
    if (std::abs(whole) <= std::numeric_limits<qint64>::max() / currencyScale)
      return basic::Currency::fromTenThousandths(whole * currencyScale);
  }
  return basic::Currency::fromDouble(stored.toDouble());
}

/// The engine keeps what is no number as it was given, whatever the column's type: such a value must not pass
/// for 0.
QVariant requireNumber(const QVariant& stored) {
  bool readable = stored.typeId() == QMetaType::QString || stored.typeId() == QMetaType::Int ||
                  stored.typeId() == QMetaType::LongLong || stored.typeId() == QMetaType::Double;
  const double number = readable ? stored.toDouble(&readable) : 0;
  if (readable && std::isfinite(number)) return stored;
  throw Failure(errors::unreadableValue,
                QStringLiteral("Data type conversion error: \"%1\" is no number.").arg(stored.toString()));
}

basic::Value readDate(const QVariant& stored) {
  if (stored.typeId() != QMetaType::QString) return basic::Date(requireNumber(stored).toDouble());
  const QString text = stored.toString().trimmed();
  if (const auto date = dateOfIsoText(text)) return *date;
  return text;
}

QVariant requireWhole(const QVariant& stored) {
  const QVariant number = requireNumber(stored);
  if (number.typeId() == QMetaType::LongLong || number.typeId() == QMetaType::Int) return number;
  constexpr double limit = 9223372036854775808.0;
  if (std::abs(number.toDouble()) < limit) return static_cast<qlonglong>(std::llround(number.toDouble()));
  throw Failure(errors::unreadableValue,
                QStringLiteral("Data type conversion error: %1 is too large.").arg(stored.toString()));
}

struct Declaration {
  const char* name;
  Type type;
};
// what this driver declares, and what other programs that make such tables use
constexpr Declaration declarations[] = {
    {"BOOLEAN", Type::Boolean},   {"BOOL", Type::Boolean},    {"BIT", Type::Boolean},
    {"SMALLINT", Type::Integer},  {"TINYINT", Type::Integer}, {"INTEGER", Type::Long},
    {"INT", Type::Long},          {"BIGINT", Type::Long},     {"FLOAT4", Type::Single},
    {"FLOAT", Type::Double},      {"REAL", Type::Double},     {"DOUBLE", Type::Double},
    {"CURRENCY", Type::Currency}, {"MONEY", Type::Currency},  {"NUMERIC", Type::Currency},
    {"DECIMAL", Type::Currency},  {"DATETIME", Type::Date},   {"TIMESTAMP", Type::Date},
    {"DATE", Type::Date},         {"VARCHAR", Type::Text},    {"NVARCHAR", Type::Text},
    {"CHAR", Type::Text},         {"LONGTEXT", Type::Memo},   {"TEXT", Type::Memo},
    {"CLOB", Type::Memo},
};

}  // namespace

QString storedDate(const basic::Date& date) {
  return isoText(date);
}

QVariant toStored(const basic::Value& value) {
  return std::visit(ToStored{}, value);
}

QString storedText(const QString& text) {
  return wholeText(text);
}

basic::Value fromStored(const QVariant& stored, Type type) {
  if (stored.isNull()) return basic::Null{};
  switch (type) {
    case Type::Boolean:
      return requireNumber(stored).toDouble() != 0;
    case Type::Integer: {
      const qlonglong number = requireWhole(stored).toLongLong();
      if (number >= std::numeric_limits<qint16>::min() && number <= std::numeric_limits<qint16>::max())
        return static_cast<qint16>(number);
      return wholeNumber(number);
    }
    case Type::Long:
      return wholeNumber(requireWhole(stored).toLongLong());
    case Type::Single:
      return static_cast<float>(requireNumber(stored).toDouble());
    case Type::Double:
      return requireNumber(stored).toDouble();
    case Type::Currency:
      return readCurrency(requireNumber(stored));
    case Type::Date:
      return readDate(stored);
    case Type::Text:
    case Type::Memo:
      break;
  }
  return stored.toString();
}

QString declaredType(const Column& column) {
  switch (column.type) {
    case Type::Boolean:
      return QStringLiteral("BOOLEAN");
    case Type::Integer:
      return QStringLiteral("SMALLINT");
    case Type::Long:
      return QStringLiteral("INTEGER");
    case Type::Single:
      return QStringLiteral("FLOAT4");
    case Type::Double:
      return QStringLiteral("DOUBLE");
    case Type::Currency:
      return QStringLiteral("CURRENCY");
    case Type::Date:
      return QStringLiteral("DATETIME");
    case Type::Text:
      return QStringLiteral("VARCHAR(%1)").arg(column.size > 0 ? column.size : defaultTextSize);
    case Type::Memo:
      break;
  }
  return QStringLiteral("LONGTEXT");
}

Column typeOfDeclaration(const QString& declaration) {
  const qsizetype bracket = declaration.indexOf(u'(');
  const QString name = (bracket < 0 ? declaration : declaration.left(bracket)).trimmed().toUpper();
  Column column;
  for (const Declaration& known : declarations)
    if (name == QLatin1String(known.name)) column.type = known.type;
  if (column.type == Type::Text && bracket >= 0)
    column.size = declaration.mid(bracket + 1, declaration.indexOf(u')') - bracket - 1).toInt();
  return column;
}

Type typeOfValues(const QVariantList& stored) {
  bool fraction = false, number = false;
  for (const QVariant& value : stored) {
    if (value.isNull()) continue;
    number = true;
    if (value.typeId() == QMetaType::Double)
      fraction = true;
    else if (value.typeId() != QMetaType::LongLong && value.typeId() != QMetaType::Int)
      return Type::Text;
  }
  if (!number) return Type::Text;
  return fraction ? Type::Double : Type::Long;
}

}  // namespace platform::sql::sqlite
