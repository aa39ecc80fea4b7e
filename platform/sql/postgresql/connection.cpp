#include "platform/sql/postgresql/connection.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"
#include "platform/sql/oledbkeys.h"
#include "platform/sql/postgresql/failures.h"
#include "platform/sql/postgresql/library.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

#include <cerrno>
#include <poll.h>

namespace platform::sql::postgresql {

namespace {

const QString maintenanceDatabase = QStringLiteral("postgres");

QString databaseOf(const ConnectionString& connection) {
  const QString name = oledbkeys::database(connection);
  return name.isEmpty() ? maintenanceDatabase : name;
}

/// The message of a refused connection without the code and the place in the server's own source that
/// `PQERRORS_VERBOSE` puts into it; the code apart. A digit tells it from words such as FATAL.
QString plainMessage(QString text, QString* state) {
  static const QRegularExpression code(QStringLiteral(":\\s+(?=[A-Z]*\\d)([0-9A-Z]{5}): "));
  static const QRegularExpression place(QStringLiteral("\\n[^\\n]*\\w+, \\w+\\.c:\\d+(?=\\n|$)"));
  const QRegularExpressionMatch match = code.match(text);
  if (match.hasMatch()) {
    *state = match.captured(1);
    text.remove(match.capturedStart(1), match.capturedLength(1) + 2);
  }
  return text.remove(place).trimmed();
}

QString lines(const QString& text) {
  return QString(text).replace(u'\n', u' ');
}

}  // namespace

void ResultDeleter::operator()(pg_result* result) const {
  PQclear(result);
}

void Connection::Closer::operator()(pg_conn* connection) const {
  PQfinish(connection);
}

QList<std::pair<QByteArray, QByteArray>> libraryOptions(const ConnectionString& connection) {
  QList<std::pair<QByteArray, QByteArray>> options;
  const auto add = [&options](const char* keyword, const QString& value) {
    if (!value.isEmpty()) options.append({keyword, value.toUtf8()});
  };
  QString host = oledbkeys::server(connection), port;
  const qsizetype comma = host.lastIndexOf(u',');
  if (comma >= 0) {
    port = host.mid(comma + 1).trimmed();
    host = host.left(comma).trimmed();
  }
  if (port.isEmpty()) port = connection.value(QStringLiteral("Port"));
  if (host.startsWith(u"tcp:", Qt::CaseInsensitive)) host.remove(0, 4);
  if (host == u"." || host.compare(u"(local)", Qt::CaseInsensitive) == 0) host = QStringLiteral("localhost");
  add("host", host);
  add("port", port);
  add("dbname", databaseOf(connection));
  if (!oledbkeys::isYes(oledbkeys::firstValue(connection, {"Integrated Security", "Trusted_Connection"}))) {
    add("user", oledbkeys::firstValue(connection, {"User ID", "UID", "User", "UserName", "User Name"}));
    add("password", oledbkeys::firstValue(connection, {"Password", "PWD"}));
  }
  add("application_name", oledbkeys::firstValue(connection, {"Application Name", "APP"}));
  const QString encrypt = oledbkeys::firstValue(connection, {"Use Encryption for Data", "Encrypt"});
  const QString mode = connection.value(QStringLiteral("SSL Mode"));
  if (!mode.isEmpty())
    add("sslmode", mode);
  else if (!encrypt.isEmpty())
    add("sslmode", oledbkeys::isYes(encrypt) ? QStringLiteral("require") : QStringLiteral("prefer"));
  add("client_encoding", QStringLiteral("UTF8"));
  // a server that is gone is noticed within half a minute, and not after the system's two hours
  add("tcp_user_timeout", QStringLiteral("30000"));
  add("keepalives_idle", QStringLiteral("20"));
  add("keepalives_interval", QStringLiteral("5"));
  add("keepalives_count", QStringLiteral("2"));
  return options;
}

constexpr int encryptedLookMs = 20;

int connectTimeout(const ConnectionString& connection) {
  const int seconds =
      oledbkeys::firstValue(connection, {"Connect Timeout", "Connection Timeout", "Timeout"}).toInt();
  return seconds > 0 && seconds <= oledbkeys::longestTimeoutSeconds ? seconds : connectTimeoutSeconds;
}

Connection::Connection(const ConnectionString& connection, int lockTimeout, int patience)
    : patience_(patience) {
  if (oledbkeys::server(connection).isEmpty())
    throw Failure(errors::connectionFailed,
                  QStringLiteral("The connection string names no server (Data Source)."));
  label_ = databaseOf(connection) + u" on "_qs + oledbkeys::server(connection);
  open(connection);
  setUp(connection, lockTimeout);
}

Connection::~Connection() = default;

void Connection::open(const ConnectionString& connection) {
  const auto options = libraryOptions(connection);
  std::vector<const char*> keywords, values;
  for (const auto& [keyword, value] : options) {
    keywords.push_back(keyword.constData());
    values.push_back(value.constData());
  }
  keywords.push_back(nullptr);
  values.push_back(nullptr);
  connection_.reset(PQconnectStartParams(keywords.data(), values.data(), 0));
  if (!connection_) throw Failure(errors::connectionFailed, QStringLiteral("Out of memory."));
  if (PQstatus(connection_.get()) == CONNECTION_BAD) failToConnect();
  PQsetErrorVerbosity(connection_.get(), PQERRORS_VERBOSE);  // with the code
  PQsetNoticeReceiver(
      connection_.get(), [](void*, const PGresult*) {}, nullptr);
  const QDeadlineTimer deadline(qint64{connectTimeout(connection)} * 1000);
  PostgresPollingStatusType state = PGRES_POLLING_WRITING;
  while (state != PGRES_POLLING_OK) {
    if (state == PGRES_POLLING_FAILED) failToConnect();
    pollfd descriptor{PQsocket(connection_.get()),
                      static_cast<short>(state == PGRES_POLLING_READING ? POLLIN : POLLOUT), 0};
    const int ready = ::poll(&descriptor, 1, static_cast<int>(deadline.remainingTime()));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0)
      throw Failure(
          errors::connectionFailed,
          QStringLiteral("Cannot connect to the database %1: the server did not answer within %2 s.")
              .arg(label_)
              .arg(connectTimeout(connection)));
    state = PQconnectPoll(connection_.get());
  }
  PQsetErrorVerbosity(connection_.get(), PQERRORS_DEFAULT);
}

void Connection::failToConnect() const {
  QString state;
  const QString message = plainMessage(QString::fromUtf8(PQerrorMessage(connection_.get())), &state);
  const bool refused = state.startsWith(u"28") || PQconnectionNeedsPassword(connection_.get()) != 0;
  throw Failure(refused ? errors::loginFailed : errors::connectionFailed,
                QStringLiteral("Cannot connect to the database %1: %2").arg(label_, lines(message)));
}

/// What the texts of values and statements depend on is set here, whatever the server's own settings are.
void Connection::setUp(const ConnectionString& connection, int lockTimeout) {
  run(QStringLiteral("SET standard_conforming_strings = on; SET DateStyle = 'ISO, MDY'; SET "
                     "extra_float_digits = 1; SET lc_monetary = 'C'; SET bytea_output = 'hex'; SET "
                     "client_min_messages = error; SET lock_timeout = %1")
          .arg(qMax(0, lockTimeout)));
  if (connection.value(QStringLiteral("Mode")).compare(u"Read", Qt::CaseInsensitive) == 0)
    run(QStringLiteral("SET default_transaction_read_only = on"));
  const QString zone = QString::fromLatin1(QTimeZone::systemTimeZoneId());
  try {
    run(QStringLiteral("SELECT set_config('TimeZone', $1, false)"), {zone.toUtf8()});
  } catch (const Failure&) {
    // a zone that the server does not know; its own stays, and only now() and columns with a zone depend on
    // it
    if (PQstatus(connection_.get()) == CONNECTION_BAD) throw;
  }
}

bool Connection::inTransaction() const {
  return PQtransactionStatus(connection_.get()) == PQTRANS_INTRANS;
}

/// Waits for more of an answer, and takes what has come; false once the connection is lost. On an encrypted
/// line the library may take a part of a record only, and of the rest, which is here already, the socket
/// tells nothing: so it is asked again at once, and after each short while in which nothing came.
bool Connection::takeMore(QDeadlineTimer& deadline, int seconds) {
  const bool encrypted = PQsslInUse(connection_.get()) != 0 || PQgssEncInUse(connection_.get()) != 0;
  const int left = static_cast<int>(deadline.remainingTime());
  pollfd descriptor{PQsocket(connection_.get()), POLLIN, 0};
  const int ready = ::poll(&descriptor, 1, encrypted ? qMin(left, encryptedLookMs) : left);
  if (ready < 0 && errno == EINTR) return true;
  if (ready < 0 || (ready == 0 && deadline.hasExpired())) {
    connection_.reset();
    throw Failure(errors::timeout,
                  QStringLiteral("The server of the database %1 did not answer within %2 s. The connection "
                                 "is closed. Whether the last statement was carried out is not known.")
                      .arg(label_)
                      .arg(seconds));
  }
  if (ready > 0) deadline.setRemainingTime(qint64{seconds} * 1000);
  if (PQconsumeInput(connection_.get()) == 0) return false;
  return !encrypted || PQconsumeInput(connection_.get()) != 0;
}

/// What the client library's own waiting would give, with a bound: the last of the answers. One that goes on
/// arriving is waited for.
ResultPointer Connection::answered(int sent, const QString& statement, int seconds) {
  ResultPointer last;
  if (seconds == 0) seconds = patience_;
  QDeadlineTimer deadline(qint64{seconds} * 1000);
  while (sent != 0) {
    while (PQisBusy(connection_.get()) != 0)
      if (!takeMore(deadline, seconds)) break;  // lost, which the next answer tells
    ResultPointer next(PQgetResult(connection_.get()));
    if (!next) break;
    last = std::move(next);
    const ExecStatusType status = PQresultStatus(last.get());
    if (status == PGRES_COPY_IN || status == PGRES_COPY_OUT || status == PGRES_COPY_BOTH) break;
  }
  return checked(last.release(), statement);
}

ResultPointer Connection::checked(pg_result* result, const QString& statement) {
  ResultPointer held(result);
  switch (PQresultStatus(result)) {
    case PGRES_COMMAND_OK:
    case PGRES_TUPLES_OK:
    case PGRES_EMPTY_QUERY:
      return held;
    case PGRES_COPY_IN:
    case PGRES_COPY_OUT:
    case PGRES_COPY_BOTH:
      // would wait for ever for what nobody sends
      connection_.reset();
      throw Failure(errors::statementFailed,
                    QStringLiteral("COPY is not for this connection, which is closed now (%1).").arg(label_));
    default:
      break;
  }
  if (!connection_)
    throw Failure(
        errors::connectionFailed,
        QStringLiteral("The connection to the database %1 is broken since an earlier failure; it has "
                       "to be opened anew.")
            .arg(label_));
  if (PQstatus(connection_.get()) == CONNECTION_BAD) {
    QString text = QStringLiteral("The connection to the database %1 is broken: %2")
                       .arg(label_, lines(QString::fromUtf8(PQerrorMessage(connection_.get())).trimmed()));
    if (!isSelectStatement(statement))
      text += QStringLiteral(" Whether the last statement was carried out is not known.");
    connection_.reset();
    throw Failure(errors::connectionFailed, text);
  }
  const auto field = [result](int code) { return QString::fromUtf8(PQresultErrorField(result, code)); };
  ServerError error;
  error.state = field(PG_DIAG_SQLSTATE);
  error.text = field(PG_DIAG_MESSAGE_PRIMARY);
  if (error.text.isEmpty()) error.text = QString::fromUtf8(PQerrorMessage(connection_.get())).trimmed();
  error.detail = field(PG_DIAG_MESSAGE_DETAIL);
  error.table = field(PG_DIAG_TABLE_NAME);
  error.column = field(PG_DIAG_COLUMN_NAME);
  error.constraint = field(PG_DIAG_CONSTRAINT_NAME);
  error.word = wordAt(statement, field(PG_DIAG_STATEMENT_POSITION).toInt());
  throw failureOf(error, statement, label_);
}

ResultPointer Connection::run(const QString& statements, int seconds) {
  return answered(PQsendQuery(connection_.get(), statements.toUtf8().constData()), statements, seconds);
}

namespace {

std::vector<const char*> pointersOf(const QList<Parameter>& parameters) {
  std::vector<const char*> values;
  for (const Parameter& parameter : parameters)
    values.push_back(parameter ? parameter->constData() : nullptr);
  return values;
}

}  // namespace

ResultPointer Connection::run(const QString& statement, const QList<Parameter>& parameters, int seconds,
                              const QList<unsigned>& types) {
  const auto values = pointersOf(parameters);
  return answered(
      PQsendQueryParams(connection_.get(), statement.toUtf8().constData(), static_cast<int>(values.size()),
                        types.size() == parameters.size() ? types.constData() : nullptr, values.data(),
                        nullptr, nullptr, 0),
      statement, seconds);
}

QList<unsigned> Connection::prepare(const QString& statement) {
  answered(PQsendPrepare(connection_.get(), "", statement.toUtf8().constData(), 0, nullptr), statement);
  const ResultPointer described = answered(PQsendDescribePrepared(connection_.get(), ""), statement);
  QList<unsigned> types;
  for (int i = 0; i < PQnparams(described.get()); ++i) types.append(PQparamtype(described.get(), i));
  return types;
}

ResultPointer Connection::runPrepared(const QString& statement, const QList<Parameter>& parameters) {
  const auto values = pointersOf(parameters);
  return answered(PQsendQueryPrepared(connection_.get(), "", static_cast<int>(values.size()), values.data(),
                                      nullptr, nullptr, 0),
                  statement);
}

}  // namespace platform::sql::postgresql
