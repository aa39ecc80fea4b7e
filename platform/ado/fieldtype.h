#pragma once
#include "platform/basic/value.h"
#include "platform/sql/driver.h"

namespace platform::ado {

/// The component's type of a database column.
int dataTypeOf(sql::Type type);

/// A value as a column of the type holds it. Empty counts as Null. Failure 3421 when it cannot be one.
basic::Value convertTo(int dataType, const basic::Value& value);

/// "strName = 'x'" or "intID = 5" taken apart; Failure 3001 for what is not of this form.
struct Criterion {
  QString field;
  bool isText = false;
  QString text;
  double number = 0;
  bool matches(const basic::Value& value) const;
};
Criterion parseCriterion(const QString& criteria);

/// The one table that a select statement reads from; empty when there are several or none.
QString tableOfSelect(const QString& statement);
bool isSelect(const QString& source);

}  // namespace platform::ado
