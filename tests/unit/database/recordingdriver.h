#pragma once
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/sql/driver.h"

#include <memory>

namespace tests {

/// Any driver, with what it is sent: each statement on a line of its own, its parameters behind it.
class RecordingDriver : public platform::sql::Driver {
 public:
  using Record = std::shared_ptr<QStringList>;

  RecordingDriver(std::shared_ptr<platform::sql::Driver> inner, Record record)
      : inner_(std::move(inner)), record_(std::move(record)) {}

  std::unique_ptr<platform::sql::Session> connect(
      const platform::sql::ConnectionString& connection) override {
    return std::make_unique<RecordingSession>(inner_->connect(connection), record_);
  }

 private:
  class RecordingSession : public platform::sql::Session {
   public:
    RecordingSession(std::unique_ptr<platform::sql::Session> inner, Record record)
        : inner_(std::move(inner)), record_(std::move(record)) {}
    platform::sql::Result execute(const QString& sql,
                                  const QList<platform::basic::Value>& parameters) override {
      QStringList values;
      for (const auto& value : parameters)
        values.append(platform::basic::IsNull(value)
                          ? QStringLiteral("Null")
                          : u'\'' + inOneLine(platform::basic::CStr(value)) + u'\'');
      record_->append(sql + (values.isEmpty() ? QString() : QStringLiteral("   -- ") + values.join(u", ")));
      return inner_->execute(sql, parameters);
    }
    void begin() override {
      record_->append(QStringLiteral("(begin)"));
      inner_->begin();
    }
    void commit() override {
      record_->append(QStringLiteral("(commit)"));
      inner_->commit();
    }
    void rollback() override {
      record_->append(QStringLiteral("(rollback)"));
      inner_->rollback();
    }
    QStringList tables() override { return inner_->tables(); }
    QList<platform::sql::Column> columns(const QString& table) override { return inner_->columns(table); }
    QString token() override { return inner_->token(); }
    void settle(const QString& token) override { inner_->settle(token); }

   private:
    static QString inOneLine(QString text) {
      return text.replace(u'\r', QStringLiteral("\\r")).replace(u'\n', QStringLiteral("\\n"));
    }
    std::unique_ptr<platform::sql::Session> inner_;
    Record record_;
  };

  std::shared_ptr<platform::sql::Driver> inner_;
  Record record_;
};

}  // namespace tests
