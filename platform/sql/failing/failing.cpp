#include "platform/sql/failing/failing.h"

namespace platform::sql {

namespace {

bool writes(const QString& sql) {
  const QString start = sql.trimmed();
  return start.startsWith(u"insert", Qt::CaseInsensitive) || start.startsWith(u"update", Qt::CaseInsensitive);
}

void meet(FaultPlan::Rule& rule) {
  if (rule.times > 0) --rule.times;
  // a callback may change the plan that holds the rule
  const std::optional<platform::Failure> failure = rule.failure;
  if (const auto callback = rule.callback) callback();
  if (failure) throw *failure;
}

/// Runs the operation under the plan.
template <class Operation>
auto underPlan(FaultPlan& plan, const QString& statement, Operation&& operation) {
  plan.statements.append(statement);
  qsizetype late = -1;
  for (qsizetype i = 0; i < plan.rules.size(); ++i) {
    FaultPlan::Rule& rule = plan.rules[i];
    if (rule.times == 0 || !statement.contains(rule.containing, Qt::CaseInsensitive)) continue;
    if (rule.after > 0) {
      --rule.after;
      continue;
    }
    if (rule.carriedOut) {
      late = i;
    } else {
      meet(rule);
    }
    break;
  }
  if constexpr (std::is_void_v<decltype(operation())>) {
    operation();
    if (late >= 0) meet(plan.rules[late]);
  } else {
    auto result = operation();
    if (late >= 0) meet(plan.rules[late]);
    return result;
  }
}

}  // namespace

void FaultPlan::failStatement(int n, const platform::Failure& failure) {
  rules.append({{}, n - 1, 1, false, failure, {}});
}

void FaultPlan::failContaining(const QString& part, const platform::Failure& failure) {
  rules.append({part, 0, -1, false, failure, {}});
}

void FaultPlan::failAfterRows(int rows, const platform::Failure& failure) {
  rowsLeft = rows;
  whenFull = failure;
}

std::unique_ptr<Session> FailingDriver::connect(const ConnectionString& connection) {
  return underPlan(*plan_, QStringLiteral("connect"), [&]() -> std::unique_ptr<Session> {
    if (plan_->onConnect) throw platform::Failure(*plan_->onConnect);
    return std::make_unique<FailingSession>(inner_->connect(connection), plan_);
  });
}

Result FailingSession::execute(const QString& sql, const QList<basic::Value>& parameters) {
  return underPlan(*plan_, sql, [&] {
    const bool writing = writes(sql);
    if (writing && plan_->rowsLeft == 0 && plan_->whenFull) throw platform::Failure(*plan_->whenFull);
    Result result = inner_->execute(sql, parameters);
    if (writing && plan_->rowsLeft > 0) plan_->rowsLeft = qMax(0, plan_->rowsLeft - result.affected);
    return result;
  });
}

void FailingSession::begin() {
  underPlan(*plan_, QStringLiteral("begin"), [&] { inner_->begin(); });
}

void FailingSession::commit() {
  underPlan(*plan_, QStringLiteral("commit"), [&] { inner_->commit(); });
}

void FailingSession::rollback() {
  underPlan(*plan_, QStringLiteral("rollback"), [&] { inner_->rollback(); });
}

QStringList FailingSession::tables() {
  return underPlan(*plan_, QStringLiteral("tables"), [&] { return inner_->tables(); });
}

QList<Column> FailingSession::columns(const QString& table) {
  return underPlan(*plan_, QStringLiteral("columns ") + table, [&] { return inner_->columns(table); });
}

void FailingSession::settle(const QString& token) {
  underPlan(*plan_, QStringLiteral("settle ") + token, [&] { inner_->settle(token); });
}

void FailingEngine::createDatabase(const QString& path) {
  underPlan(*plan_, QStringLiteral("createDatabase ") + path, [&] { inner_->createDatabase(path); });
}

void FailingEngine::createTable(Session& session, const QString& table, const QList<Column>& columns) {
  underPlan(*plan_, QStringLiteral("createTable ") + table,
            [&] { inner_->createTable(session, table, columns); });
}

void FailingEngine::addColumn(Session& session, const QString& table, const Column& column) {
  underPlan(*plan_, QStringLiteral("addColumn ") + table + u' ' + column.name,
            [&] { inner_->addColumn(session, table, column); });
}

void FailingEngine::addRelation(Session& session, const Relation& relation) {
  underPlan(*plan_, QStringLiteral("addRelation ") + relation.name,
            [&] { inner_->addRelation(session, relation); });
}

void FailingEngine::setCaption(Session& session, const QString& table, const QString& column,
                               const QString& caption) {
  underPlan(*plan_, QStringLiteral("setCaption ") + table + u' ' + column,
            [&] { inner_->setCaption(session, table, column, caption); });
}

std::shared_ptr<CompactedSource> FailingEngine::compact(const QString& source, const QString& target) {
  return underPlan(*plan_, QStringLiteral("compact ") + source + u' ' + target,
                   [&] { return inner_->compact(source, target); });
}

}  // namespace platform::sql
