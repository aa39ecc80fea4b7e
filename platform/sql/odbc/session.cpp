#include "platform/sql/odbc/session.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"
#include "platform/sql/odbc/catalogue.h"
#include "platform/sql/odbc/driver.h"

#include <QUuid>

namespace platform::sql::odbc {

namespace {

constexpr int settleMilliseconds = 10000;
constexpr int mostKept = 64;       // translations
constexpr int longestQuoted = 60;  // characters of a value that a failure names

qint64 wholeAt(const QList<basic::Value>& row, int column) {
  if (column >= row.size()) return 0;
  if (const auto* tiny = std::get_if<qint16>(&row[column])) return *tiny;
  if (const auto* small = std::get_if<qint32>(&row[column])) return *small;
  if (const auto* large = std::get_if<qint64>(&row[column])) return *large;
  return 0;
}

/// The server does not say which value it is that it cannot read.
Failure withTexts(const Failure& failure, const QList<basic::Value>& parameters) {
  if (failure.number() != errors::unreadableValue) return failure;
  QStringList texts;
  for (const basic::Value& value : parameters)
    if (const QString* text = std::get_if<QString>(&value))
      texts.append(u'"' + text->left(longestQuoted) + u'"');
  if (texts.isEmpty()) return failure;
  return {failure.number(),
          failure.description() + u" The texts among its values: "_qs + texts.join(u", "_qs) + u'.'};
}

}  // namespace

OdbcSession::OdbcSession(const ConnectionString& connection, const Options& options)
    : connection_(connection, options),
      options_(options),
      readOnly_(connection.value(QStringLiteral("Mode")).compare(u"Read", Qt::CaseInsensitive) == 0) {}

Result OdbcSession::execute(const QString& sql, const QList<basic::Value>& parameters) {
  const QString statement = wholeText(sql);
  requireTransaction();
  if (readOnly_ && !isSelectStatement(statement))
    throw Failure(
        errors::readOnly,
        QStringLiteral("Cannot update. The database is opened for reading (%1).").arg(connection_.label()));
  try {
    return isAccessStatement(statement) ? executeAccess(statement, parameters)
                                        : executeNative(statement, parameters);
  } catch (const Failure& failure) {
    noteGivenUp();
    throw withTexts(failure, parameters);
  }
}

Result OdbcSession::executeNative(const QString& sql, const QList<basic::Value>& parameters) {
  yesNoColumns_.clear();
  translations_.clear();
  Result result;
  for (const ResultSet& answer : connection_.run(sql, parameters, options_.definitionSeconds)) {
    result.affected += answer.affected;
    if (answer.columns.isEmpty()) continue;
    // of several the last one
    result.columns = answer.columns;
    result.rows = answer.rows;
  }
  return result;
}

/// A report sends the same statement for each row.
Translation OdbcSession::translated(const QString& sql, const QList<basic::Value>& parameters) {
  const auto columns = [this](const QString& table) { return yesNoColumns(table); };
  if (parameters.isEmpty()) return fromAccess(sql, parameters, columns);
  const QString key = shapeOf(parameters) + u' ' + sql;
  if (const auto found = translations_.constFind(key); found != translations_.cend()) {
    Translation known = *found;
    known.parameters = sentOf(parameters);
    return known;
  }
  const Translation translation = fromAccess(sql, parameters, columns);
  // with too many or too few of them it is for the server to refuse
  if (translation.parameters == sentOf(parameters)) {
    if (translations_.size() >= mostKept) translations_.clear();
    translations_.insert(key, translation);
  }
  return translation;
}

Result OdbcSession::executeAccess(const QString& sql, const QList<basic::Value>& parameters) {
  const Translation translation = translated(sql, parameters);
  QList<ResultSet> answers =
      connection_.run(translation.sql, translation.parameters, options_.statementSeconds);
  Result result;
  if (translation.writes) {
    const ResultSet counts = answers.takeLast();
    if (!counts.rows.isEmpty()) {
      result.affected = static_cast<int>(wholeAt(counts.rows.first(), 0));
      // without a row it would be the value of an earlier statement
      if (result.affected > 0) result.lastId = wholeAt(counts.rows.first(), 1);
    }
  }
  for (const ResultSet& answer : answers) {
    if (answer.columns.isEmpty()) continue;
    result.columns = answer.columns;
    result.rows = answer.rows;
  }
  return result;
}

QList<YesNoColumn> OdbcSession::yesNoColumns(const QString& table) {
  const QString key = table.toLower();
  if (!yesNoColumns_.contains(key)) {
    QList<YesNoColumn> found;
    for (const CatalogueColumn& each : columnsOf(connection_, table, options_.statementSeconds))
      if (each.column.type == Type::Boolean) found.append({each.column.name, each.takesNull});
    yesNoColumns_.insert(key, found);
  }
  return yesNoColumns_[key];
}

void OdbcSession::control(const QString& statement) {
  connection_.run(statement, {}, options_.statementSeconds);
}

void OdbcSession::requireTransaction() const {
  if (givenUp_)
    throw Failure(errors::statementFailed,
                  QStringLiteral("The transaction has failed before and is rolled back (%1).")
                      .arg(connection_.label()));
}

/// After a failure: does the transaction still stand? What would be carried out behind it would be stored at
/// once, by itself.
void OdbcSession::noteGivenUp() noexcept {
  if (depth_ == 0 || givenUp_ || connection_.isLost()) return;
  try {
    const QList<ResultSet> answers =
        connection_.run(QStringLiteral("SELECT CAST(XACT_STATE() AS int)"), {}, options_.statementSeconds);
    givenUp_ = answers.last().rows.isEmpty() || wholeAt(answers.last().rows.first(), 0) != 1;
  } catch (const Failure&) {
    givenUp_ = true;
  }
}

void OdbcSession::begin() {
  requireTransaction();
  control(depth_ == 0 ? QStringLiteral("BEGIN TRANSACTION")
                      : QStringLiteral("SAVE TRANSACTION level%1").arg(depth_));
  ++depth_;
}

void OdbcSession::commit() {
  requireTransaction();
  // a part of a transaction is committed with it
  if (depth_ <= 1) control(QStringLiteral("COMMIT TRANSACTION"));
  --depth_;
}

void OdbcSession::rollback() {
  const int level = depth_ = qMax(0, depth_ - 1);
  if (level > 0) {
    if (!givenUp_) control(QStringLiteral("ROLLBACK TRANSACTION level%1").arg(level));
    return;
  }
  givenUp_ = false;
  control(QStringLiteral("IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION"));
}

QStringList OdbcSession::tables() {
  return tablesOf(connection_, options_.statementSeconds);
}

QList<Column> OdbcSession::columns(const QString& table) {
  QList<Column> columns;
  for (const CatalogueColumn& each : columnsOf(connection_, table, options_.statementSeconds))
    columns.append(each.column);
  return columns;
}

/// Below 0: not given.
qint64 OdbcSession::lockOf(const QString& name, int milliseconds) {
  const QList<ResultSet> answers = connection_.run(
      QStringLiteral("DECLARE @given int; EXEC @given = sys.sp_getapplock @Resource = %1, @LockMode = "
                     "'Exclusive', @LockOwner = 'Session', @LockTimeout = %2; SELECT @given")
          .arg(nationalText(name))
          .arg(milliseconds),
      {}, options_.statementSeconds);
  for (const ResultSet& answer : answers)
    if (!answer.rows.isEmpty()) return wholeAt(answer.rows.first(), 0);
  return -1;
}

QString OdbcSession::token() {
  if (!token_.isEmpty()) return token_;
  const QString name = u"session "_qs + QUuid::createUuid().toString(QUuid::WithoutBraces);
  try {
    if (lockOf(name, 0) >= 0) token_ = name;
  } catch (const Failure&) {
    if (connection_.isLost()) throw;
  }
  return token_;
}

void OdbcSession::settle(const QString& token) {
  if (token.isEmpty() || token == token_) return;
  if (lockOf(token, settleMilliseconds) < 0)
    throw Failure(
        errors::timeout,
        QStringLiteral("An earlier session with the database %1 does not end.").arg(connection_.label()));
  control(QStringLiteral("EXEC sys.sp_releaseapplock @Resource = %1, @LockOwner = 'Session'")
              .arg(nationalText(token)));
}

std::unique_ptr<Session> OdbcDriver::connect(const ConnectionString& connection) {
  return std::make_unique<OdbcSession>(connection, options_);
}

std::shared_ptr<Driver> makeDriver() {
  return std::make_shared<OdbcDriver>();
}

}  // namespace platform::sql::odbc
