#include "platform/sql/postgresql/session.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"
#include "platform/sql/postgresql/driver.h"
#include "platform/sql/postgresql/library.h"
#include "platform/sql/postgresql/values.h"
#include "platform/sql/schema.h"

#include <QRegularExpression>

namespace platform::sql::postgresql {

namespace {

/// Inside of a transaction: sets a statement that fails back by itself. Without it the server would refuse
/// all that follows until the whole transaction is rolled back.
class StatementGuard {
 public:
  explicit StatementGuard(Connection& connection)
      : connection_(connection), needed_(connection.inTransaction()) {
    if (needed_) connection_.run(QStringLiteral("SAVEPOINT statement"));
  }
  ~StatementGuard() {
    if (!needed_) return;
    try {
      connection_.run(QStringLiteral("ROLLBACK TO statement; RELEASE statement"));
    } catch (const Failure&) {
      // a connection that is broken; the failure that led here tells it
    }
  }
  void release() {
    if (needed_) connection_.run(QStringLiteral("RELEASE statement"));
    needed_ = false;
  }
  StatementGuard(const StatementGuard&) = delete;
  StatementGuard& operator=(const StatementGuard&) = delete;

 private:
  Connection& connection_;
  bool needed_;
};

constexpr int mostKept = 64;         // statements of which something is known
constexpr int settleAttempts = 250;  // of 20 ms each, of which one does nearly always

bool controlsTransaction(const QString& sql) {
  static const QRegularExpression words(
      QStringLiteral("^\\s*(begin|start|commit|end|rollback|abort|savepoint|release|prepare|set)\\b"),
      QRegularExpression::CaseInsensitiveOption);
  return words.match(sql).hasMatch();
}

QByteArray textAt(const ResultPointer& answer, int row, int column) {
  return {PQgetvalue(answer.get(), row, column), PQgetlength(answer.get(), row, column)};
}

bool isNullAt(const ResultPointer& answer, int row, int column) {
  return PQgetisnull(answer.get(), row, column) != 0;
}

/// A computed number of any size: an amount of money when all its values can be one.
Type typeOfNumbers(const ResultPointer& answer, int column) {
  for (int row = 0; row < PQntuples(answer.get()); ++row)
    if (!isNullAt(answer, row, column) && !fitsCurrency(textAt(answer, row, column))) return Type::Double;
  return Type::Currency;
}

}  // namespace

PostgresqlSession::PostgresqlSession(const ConnectionString& connection, int lockTimeout, int patience)
    : connection_(connection, lockTimeout, patience) {}

PostgresqlSession::~PostgresqlSession() = default;

void PostgresqlSession::forget() {
  catalogue_.reset();
  typesOf_.clear();
  translations_.clear();
}

void PostgresqlSession::readCatalogue() {
  forget();
  catalogue_ = Catalogue::read(connection_);
  catalogueIsNew_ = true;
}

const Catalogue& PostgresqlSession::catalogue() {
  if (!catalogue_) readCatalogue();
  return *catalogue_;
}

Result PostgresqlSession::execute(const QString& sql, const QList<basic::Value>& parameters) {
  const QString statement = wholeText(sql);
  if (!isAccessStatement(statement)) return executeNative(statement, parameters);
  catalogueIsNew_ = typesWereKnown_ = false;
  try {
    return executeAccess(statement, parameters);
  } catch (const Failure& failure) {
    // another program may have made the table or column since, or given the column another type
    const bool missing =
        failure.number() == errors::tableNotFound || failure.number() == errors::noSuchColumn;
    const bool unsuitable = failure.number() == errors::statementFailed ||
                            failure.number() == errors::unreadableValue ||
                            failure.number() == platform::failure::overflow;
    if (!(missing && !catalogueIsNew_) && !(unsuitable && typesWereKnown_)) throw;
    forget();
  }
  return executeAccess(statement, parameters);
}

Result PostgresqlSession::executeNative(const QString& sql, const QList<basic::Value>& parameters) {
  std::optional<StatementGuard> guard;
  if (!controlsTransaction(sql)) guard.emplace(connection_);
  forget();
  QList<Parameter> texts;
  for (const basic::Value& value : parameters) texts.append(parameterOf(value, 0, false));
  const ResultPointer answer = texts.isEmpty()
                                   ? connection_.run(sql, definitionSeconds)
                                   : connection_.run(withNumberedParameters(sql), texts, definitionSeconds);
  if (guard) guard->release();
  return resultOf(answer);
}

/// A report sends the same statement for each row. One that asks for the last counter means another each
/// time.
Translation PostgresqlSession::translated(const QString& sql) {
  const Catalogue& known = catalogue();
  if (const auto found = translations_.constFind(sql); found != translations_.cend()) return *found;
  const Translation translation = fromAccess(sql, known, lastIdentity_);
  if (sql.contains(u"@@")) return translation;
  if (translations_.size() >= mostKept) translations_.clear();
  translations_.insert(sql, translation);
  return translation;
}

Result PostgresqlSession::executeAccess(const QString& sql, const QList<basic::Value>& parameters) {
  const Translation translation =
      parameters.isEmpty() ? fromAccess(sql, catalogue(), lastIdentity_) : translated(sql);
  StatementGuard guard(connection_);
  const ResultPointer answer = run(translation, parameters);
  Result result = resultOf(answer);
  takeCounter(translation, result);
  guard.release();
  return result;
}

ResultPointer PostgresqlSession::run(const Translation& translation, const QList<basic::Value>& parameters) {
  if (parameters.isEmpty()) return connection_.run(translation.sql, QList<Parameter>());
  const auto known = typesOf_.constFind(translation.sql);
  typesWereKnown_ = known != typesOf_.cend();
  const QList<unsigned> types = typesWereKnown_ ? *known : connection_.prepare(translation.sql);
  QList<Parameter> texts;
  for (qsizetype i = 0; i < parameters.size(); ++i)
    texts.append(parameterOf(parameters[i], types.value(i, 0), translation.writes));
  if (typesWereKnown_) return connection_.run(translation.sql, texts, 0, types);
  if (typesOf_.size() >= mostKept) typesOf_.clear();
  typesOf_.insert(translation.sql, types);
  return connection_.runPrepared(translation.sql, texts);
}

/// The counter's value is the answer of an insert, and no row of its result.
void PostgresqlSession::takeCounter(const Translation& translation, Result& result) {
  if (!translation.counted) return;
  for (const QList<basic::Value>& row : result.rows)
    if (const auto* small = std::get_if<qint32>(&row.first()))
      result.lastId = qMax<qint64>(result.lastId, *small);
    else if (const auto* large = std::get_if<qint64>(&row.first()))
      result.lastId = qMax(result.lastId, *large);
    else if (const auto* tiny = std::get_if<qint16>(&row.first()))
      result.lastId = qMax<qint64>(result.lastId, *tiny);
  result.columns.clear();
  result.rows.clear();
  if (result.lastId == 0) return;
  lastIdentity_ = result.lastId;
  if (translation.givesCounter) advanceCounter(*translation.counted, result.lastId);
}

/// A value that was given to the counter's column is not given out again by the counter.
void PostgresqlSession::advanceCounter(const CatalogueTable& table, qint64 value) {
  try {
    StatementGuard guard(connection_);
    connection_.run(
        QStringLiteral(
            "SELECT setval(s.name, $3) FROM (SELECT pg_get_serial_sequence($1, $2)::regclass AS name) s "
            "WHERE coalesce(pg_sequence_last_value(s.name), 0) < $3::bigint"),
        {Parameter(quotedName(table.name).toUtf8()), table.counter()->name.toUtf8(),
         QByteArray::number(value)});
    guard.release();
  } catch (const Failure&) {
    // who may insert rows need not be allowed to set the counter; the row stands
  }
}

Result PostgresqlSession::resultOf(const ResultPointer& answer) {
  Result result;
  result.affected = QByteArray(PQcmdTuples(answer.get())).toInt();
  if (PQresultStatus(answer.get()) != PGRES_TUPLES_OK) return result;
  if (QByteArray(PQcmdStatus(answer.get())).startsWith("SELECT")) result.affected = 0;
  result.columns = describe(answer);
  for (int row = 0; row < PQntuples(answer.get()); ++row) {
    QList<basic::Value> values;
    for (int i = 0; i < result.columns.size(); ++i) {
      if (isNullAt(answer, row, i)) {
        values.append(basic::Null{});
        continue;
      }
      try {
        values.append(valueOfText(textAt(answer, row, i), result.columns[i].type));
      } catch (const Failure& failure) {
        throw Failure(failure.number(),
                      QStringLiteral("%1 It stands in the column '%2' (%3).")
                          .arg(failure.description(), result.columns[i].name, connection_.label()));
      }
    }
    result.rows.append(values);
  }
  return result;
}

/// The columns as their tables declare them, under the names that the statement gives them; a computed one by
/// its own type.
QList<Column> PostgresqlSession::describe(const ResultPointer& answer) {
  QList<Column> list;
  for (int i = 0; i < PQnfields(answer.get()); ++i) {
    const unsigned type = PQftype(answer.get(), i);
    const int modifier = PQfmod(answer.get(), i);
    Column column = columnOfType(type, modifier);
    const unsigned id = PQftable(answer.get(), i);
    const CatalogueTable* table = catalogue_ && id != 0 ? catalogue_->tableOfId(id) : nullptr;
    if (const Column* origin = table ? table->columnOfNumber(PQftablecol(answer.get(), i)) : nullptr)
      // of the declaration what cannot have changed since it was read
      if (origin->type == column.type) column = *origin;
    if (id == 0 && isUnboundNumber(type, modifier)) column.type = typeOfNumbers(answer, i);
    if (id == 0 && column.type == Type::Memo) column.type = Type::Text;
    column.name = QString::fromUtf8(PQfname(answer.get(), i));
    list.append(column);
  }
  return list;
}

void PostgresqlSession::begin() {
  connection_.run(depth_ == 0 ? QStringLiteral("BEGIN") : QStringLiteral("SAVEPOINT level%1").arg(depth_));
  ++depth_;
}

void PostgresqlSession::commit() {
  const ResultPointer answer = connection_.run(
      depth_ <= 1 ? QStringLiteral("COMMIT") : QStringLiteral("RELEASE level%1").arg(depth_ - 1));
  // a transaction that has failed is rolled back by the server without another word
  if (QByteArray(PQcmdStatus(answer.get())) == "ROLLBACK")
    throw Failure(errors::statementFailed,
                  QStringLiteral("The transaction has failed before and is rolled back (%1).")
                      .arg(connection_.label()));
  --depth_;
}

void PostgresqlSession::rollback() {
  forget();
  const int level = depth_ = qMax(0, depth_ - 1);
  connection_.run(level == 0 ? QStringLiteral("ROLLBACK")
                             : QStringLiteral("ROLLBACK TO level%1; RELEASE level%1").arg(level));
}

QStringList PostgresqlSession::tables() {
  readCatalogue();
  QStringList names;
  for (const CatalogueTable& table : catalogue_->tables())
    if (!table.isView) names.append(table.name);
  schema::sortNames(names);
  return names;
}

QList<Column> PostgresqlSession::columns(const QString& table) {
  readCatalogue();
  QList<Column> columns;
  if (const CatalogueTable* found = catalogue_->table(table))
    for (const CatalogueTable::Entry& entry : found->entries) columns.append(entry.column);
  return columns;
}

QString PostgresqlSession::token() {
  const ResultPointer answer = connection_.run(
      QStringLiteral("SELECT concat_ws(' ', pid, usesysid, extract(epoch FROM backend_start)) FROM "
                     "pg_stat_activity WHERE pid = pg_backend_pid()"));
  // another engine that speaks the protocol may show no sessions
  return PQntuples(answer.get()) == 1 ? QString::fromUtf8(textAt(answer, 0, 0)) : QString();
}

void PostgresqlSession::settle(const QString& token) {
  const QStringList parts = token.split(u' ');
  if (parts.size() != 3) return;
  QList<Parameter> marks;
  for (const QString& part : parts) marks.append(part.toUtf8());
  // when the session of another login began is not shown; that one cannot be ended, and the server says so
  const QString ended = QStringLiteral(
      "SELECT pg_terminate_backend(pid), pg_sleep(0.02) FROM pg_stat_activity WHERE pid = $1::integer AND "
      "usesysid::text = $2 AND coalesce(extract(epoch FROM backend_start)::text, $3) = $3 AND pid <> "
      "pg_backend_pid()");
  for (int attempt = 0; attempt < settleAttempts; ++attempt)
    if (PQntuples(connection_.run(ended, marks).get()) == 0) return;
  throw Failure(
      errors::timeout,
      QStringLiteral("An earlier session with the database %1 does not end.").arg(connection_.label()));
}

std::unique_ptr<Session> PostgresqlDriver::connect(const ConnectionString& connection) {
  return std::make_unique<PostgresqlSession>(connection, lockTimeout_, patience_);
}

std::shared_ptr<Driver> makeDriver() {
  return std::make_shared<PostgresqlDriver>();
}

}  // namespace platform::sql::postgresql
