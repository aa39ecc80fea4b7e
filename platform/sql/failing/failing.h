#pragma once
#include "platform/basic/failure.h"
#include "platform/sql/driver.h"

#include <functional>
#include <optional>

namespace platform::sql {

/// What is to go wrong. One plan is shared by a failing driver, its sessions and a failing engine, so that a
/// test can change it while they are in use.
struct FaultPlan {
  struct Rule {
    QString containing;       // part of the statement, without regard to case; empty: every statement
    int after = 0;            // so many of them pass first
    int times = 1;            // so many fail then; -1: all
    bool carriedOut = false;  // fails after the statement was carried out, as when an answer is lost
    std::optional<platform::Failure> failure;  // none: only the callback runs
    std::function<void()> callback;
  };
  QList<Rule> rules;
  std::optional<platform::Failure> onConnect;
  /// The room left, in rows written; the next writing statement fails with `whenFull`. -1: endless.
  int rowsLeft = -1;
  std::optional<platform::Failure> whenFull;

  /// The n-th statement from now on, counted from 1, fails.
  void failStatement(int n, const platform::Failure& failure);
  /// Every statement that contains a text fails.
  void failContaining(const QString& part, const platform::Failure& failure);
  void failAfterRows(int rows, const platform::Failure& failure);
  void clear() { *this = FaultPlan(); }

  QStringList statements;  // what was asked for, in order; "connect", "compact ..." included
};

/// Any driver, failing where the plan says so.
class FailingDriver : public Driver {
 public:
  FailingDriver(std::shared_ptr<Driver> inner, std::shared_ptr<FaultPlan> plan)
      : inner_(std::move(inner)), plan_(std::move(plan)) {}
  std::unique_ptr<Session> connect(const ConnectionString& connection) override;

 private:
  std::shared_ptr<Driver> inner_;
  std::shared_ptr<FaultPlan> plan_;
};

/// Transactions are matched as "begin", "commit" and "rollback".
class FailingSession : public Session {
 public:
  FailingSession(std::unique_ptr<Session> inner, std::shared_ptr<FaultPlan> plan)
      : inner_(std::move(inner)), plan_(std::move(plan)) {}
  Result execute(const QString& sql, const QList<basic::Value>& parameters = {}) override;
  void begin() override;
  void commit() override;
  void rollback() override;
  QStringList tables() override;
  QList<Column> columns(const QString& table) override;
  QString token() override { return inner_->token(); }
  void settle(const QString& token) override;  // matched as "settle ..."

 private:
  std::unique_ptr<Session> inner_;
  std::shared_ptr<FaultPlan> plan_;
};

/// Any engine. Its operations are matched as statements: "createDatabase <path>", "createTable <table>",
/// "addColumn <table> <column>", "addRelation <name>", "setCaption <table> <column>", "compact <source>
/// <target>".
class FailingEngine : public FileEngine {
 public:
  FailingEngine(std::shared_ptr<FileEngine> inner, std::shared_ptr<FaultPlan> plan)
      : inner_(std::move(inner)), plan_(std::move(plan)) {}
  void createDatabase(const QString& path) override;
  void createTable(Session& session, const QString& table, const QList<Column>& columns) override;
  void addColumn(Session& session, const QString& table, const Column& column) override;
  void addRelation(Session& session, const Relation& relation) override;
  QList<Relation> relations(Session& session) override { return inner_->relations(session); }
  void setCaption(Session& session, const QString& table, const QString& column,
                  const QString& caption) override;
  std::shared_ptr<CompactedSource> compact(const QString& source, const QString& target) override;

 private:
  std::shared_ptr<FileEngine> inner_;
  std::shared_ptr<FaultPlan> plan_;
};

}  // namespace platform::sql
