#pragma once
#include "platform/ado/recordset.h"
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/failing/failing.h"
#include "platform/sql/memory/memory.h"
#include "platform/sql/sqlite/engine.h"

#include <gtest/gtest.h>

/// A database in memory behind a driver that can be told to fail.
class AdoTest : public testing::Test {
 protected:
  AdoTest() {
    using namespace platform::sql;
    auto list = std::make_shared<Drivers>();
    list->add(QStringLiteral("Memory"),
              std::make_shared<FailingDriver>(std::make_shared<sqlite::MemoryDriver>(), plan));
    drivers = list;
    connection = std::make_shared<platform::ado::Connection>(drivers);
    connection->setConnectionString(QStringLiteral("Provider=Memory;Data Source=ado"));
    connection->Open();
    Column id, name, rate, on, when;
    id.name = QStringLiteral("intID");
    id.type = Type::Long;
    id.autoIncrement = id.primaryKey = true;
    name.name = QStringLiteral("strName");
    name.size = 20;
    rate.name = QStringLiteral("curRate");
    rate.type = Type::Currency;
    on.name = QStringLiteral("blnEnabled");
    on.type = Type::Boolean;
    when.name = QStringLiteral("dteWhen");
    when.type = Type::Date;
    sqlite::SqliteEngine().createTable(connection->session(), QStringLiteral("tblMeta1"),
                                       {id, name, rate, on, when});
  }

  void fill(const QStringList& names) {
    for (const QString& name : names)
      connection->session().execute(QStringLiteral("insert into tblMeta1 (strName) values (?)"), {name});
    plan->statements.clear();
  }
  std::shared_ptr<platform::ado::Recordset> open(const QString& source, bool writable = true) {
    auto rs = std::make_shared<platform::ado::Recordset>();
    rs->setActiveConnection(connection);
    rs->setSource(source);
    rs->CursorLocation = platform::ado::adUseClient;
    rs->LockType = writable ? platform::ado::adLockOptimistic : platform::ado::adLockReadOnly;
    rs->Open();
    return rs;
  }
  QStringList stored() {
    QStringList names;
    const auto result =
        connection->session().execute(QStringLiteral("select strName from tblMeta1 order by intID"));
    for (const auto& row : result.rows)
      names.append(std::holds_alternative<QString>(row[0]) ? std::get<QString>(row[0])
                                                           : QStringLiteral("(Null)"));
    return names;
  }
  static qint32 numberOf(const std::function<void()>& statements) {
    try {
      statements();
    } catch (const platform::Failure& failure) {
      return failure.number();
    }
    return 0;
  }

  std::shared_ptr<platform::sql::FaultPlan> plan = std::make_shared<platform::sql::FaultPlan>();
  std::shared_ptr<const platform::sql::Drivers> drivers;
  std::shared_ptr<platform::ado::Connection> connection;
};
