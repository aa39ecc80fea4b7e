#include "platform/ado/fieldtype.h"

#include "platform/ado/constants.h"
#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/sql/literals.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace platform::ado {

namespace {

[[noreturn]] void cannotConvert() {
  throw Failure(adErrDataConversion,
                QStringLiteral("Application uses a value of the wrong type for the current operation."),
                QStringLiteral("ADODB.Field"));
}

double number(const basic::Value& value) {
  if (const QString* text = std::get_if<QString>(&value)) return basic::decimalNumber(*text);
  return basic::CDbl(value);
}

qint64 wholeNumber(const basic::Value& value, qint64 lowest, qint64 highest) {
  if (const qint64* whole = std::get_if<qint64>(&value)) {
    if (*whole < lowest || *whole > highest) cannotConvert();
    return *whole;
  }
  const double rounded = basic::roundHalfEven(number(value));
  if (!(rounded >= static_cast<double>(lowest) && rounded <= static_cast<double>(highest))) cannotConvert();
  // the ends of a qint64 are no doubles: what rounds up to 2^63 does not fit
  if (rounded >= 9223372036854775808.0) cannotConvert();
  return static_cast<qint64>(rounded);
}

template <class Integer>
Integer whole(const basic::Value& value) {
  return static_cast<Integer>(
      wholeNumber(value, std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max()));
}

basic::Currency currency(const basic::Value& value) {
  if (const basic::Currency* amount = std::get_if<basic::Currency>(&value)) return *amount;
  if (const QString* text = std::get_if<QString>(&value))
    return basic::Currency::fromDouble(basic::decimalNumber(*text));
  return basic::CCur(value);
}

basic::Value converted(int dataType, const basic::Value& value) {
  switch (dataType) {
    case adSmallInt:
      return whole<qint16>(value);
    case adInteger:
      return whole<qint32>(value);
    case adBigInt:
      return whole<qint64>(value);
    case adSingle: {
      const double wide = number(value);
      if (!(std::abs(wide) <= static_cast<double>(std::numeric_limits<float>::max()))) cannotConvert();
      return static_cast<float>(wide);
    }
    case adDouble:
      return number(value);
    case adCurrency:
      return currency(value);
    case adDate:
      return basic::CDate(value);
    case adDBDate:
      return basic::CDate(value).dateOnly();
    case adBoolean:
      return basic::CBool(value);
    default:
      return basic::CStr(value);
  }
}

}  // namespace

int dataTypeOf(sql::Type type) {
  switch (type) {
    case sql::Type::Boolean:
      return adBoolean;
    case sql::Type::Integer:
      return adSmallInt;
    case sql::Type::Long:
      return adInteger;
    case sql::Type::Single:
      return adSingle;
    case sql::Type::Double:
      return adDouble;
    case sql::Type::Currency:
      return adCurrency;
    case sql::Type::Date:
      return adDate;
    case sql::Type::Text:
      return adVarWChar;
    case sql::Type::Memo:
      break;
  }
  return adLongVarWChar;
}

basic::Value convertTo(int dataType, const basic::Value& value) {
  if (basic::IsNull(value) || basic::IsEmpty(value)) return basic::Null{};
  try {
    return converted(dataType, value);
  } catch (const Failure& failure) {
    if (failure.number() == adErrDataConversion) throw;
    cannotConvert();
  }
}

Criterion parseCriterion(const QString& criteria) {
  static const QRegularExpression form(QStringLiteral(
      "^\\s*(?:\\[([^\\]]+)\\]|([^\\s=<>'\\[\\]]+))\\s*=\\s*(?:'([^']*)'|([-+]?[0-9.]+))\\s*$"));
  const QRegularExpressionMatch match = form.match(criteria);
  Criterion criterion;
  bool readable = match.hasMatch();
  if (readable) {
    criterion.field = match.captured(match.hasCaptured(1) ? 1 : 2);
    criterion.isText = match.hasCaptured(3);
    if (criterion.isText)
      criterion.text = match.captured(3);
    else
      criterion.number = match.captured(4).toDouble(&readable);
  }
  if (!readable)
    throw Failure(adErrInvalidArgument,
                  QStringLiteral(
                      "Arguments are of the wrong type, are out of acceptable range, or are in conflict with "
                      "one another. (%1)")
                      .arg(criteria),
                  QStringLiteral("ADODB.Recordset"));
  return criterion;
}

bool Criterion::matches(const basic::Value& value) const {
  if (basic::IsNull(value) || basic::IsEmpty(value)) return false;
  if (isText) {
    const QString* stored = std::get_if<QString>(&value);
    return (stored ? *stored : basic::CStr(value)).compare(text, Qt::CaseInsensitive) == 0;
  }
  if (std::holds_alternative<QString>(value)) return false;
  return basic::CDbl(value) == number;
}

bool isSelect(const QString& source) {
  return sql::beginsWith(source, QLatin1String("select"));
}

namespace {

QString withoutLiterals(const QString& statement) {
  if (!statement.contains(u'\'') && !statement.contains(u'"')) return statement;
  static const QRegularExpression literals(QStringLiteral("'[^']*'|\"[^\"]*\""));
  return QString(statement).replace(literals, QStringLiteral("''"));
}

}  // namespace

QString tableOfSelect(const QString& statement) {
  static const QRegularExpression from(
      QStringLiteral("\\bfrom\\s*(?:\\[([^\\]]+)\\]|([^\\s,;()]+))\\s*([,(]|inner|left|"
                     "right|join)?"),
      QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = from.match(withoutLiterals(statement));
  if (!match.hasMatch() || match.hasCaptured(3)) return {};
  return match.captured(match.hasCaptured(1) ? 1 : 2);
}

}  // namespace platform::ado
