#include "sqldriver_context.h"

namespace contract {

using namespace platform::sql;

Column SqlDriver::key(const QString& name, const QString& caption) {
  Column column;
  column.name = name;
  column.type = Type::Long;
  column.autoIncrement = column.primaryKey = true;
  column.caption = caption;
  return column;
}

Column SqlDriver::text(const QString& name, int size) {
  Column column;
  column.name = name;
  column.size = size;
  return column;
}

Column SqlDriver::column(const QString& name, Type type) {
  Column column;
  column.name = name;
  column.type = type;
  return column;
}

void SqlDriver::createTables(Session& session) {
  context->engine().createTable(session, QStringLiteral("tblPersons"),
                                {key(QStringLiteral("intPersonID")), text(QStringLiteral("strPersonName"))});
  context->engine().createTable(
      session, QStringLiteral("tblReports"),
      {key(QStringLiteral("intReportID")), column(QStringLiteral("numHours"), Type::Single),
       text(QStringLiteral("strSubject")), column(QStringLiteral("dtmDate"), Type::Date),
       column(QStringLiteral("curCost"), Type::Currency), column(QStringLiteral("intPersonID"), Type::Long),
       column(QStringLiteral("intKind"), Type::Integer), column(QStringLiteral("dblShare"), Type::Double),
       column(QStringLiteral("blnBilled"), Type::Boolean), column(QStringLiteral("strBody"), Type::Memo)});
  context->engine().addRelation(session, {QStringLiteral("PersonReports"), QStringLiteral("tblPersons"),
                                          QStringLiteral("tblReports"), QStringLiteral("intPersonID")});
}

qint32 failureNumber(const std::function<void()>& statements) {
  try {
    statements();
  } catch (const platform::Failure& failure) {
    return failure.number();
  }
  return 0;
}

QString failureText(const std::function<void()>& statements) {
  try {
    statements();
  } catch (const platform::Failure& failure) {
    return failure.description();
  }
  return {};
}

}  // namespace contract
