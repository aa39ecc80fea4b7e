#include "platform/ado/connection.h"

#include "platform/basic/failure.h"

namespace platform::ado {

void Connection::Open() {
  if (session_)
    throw Failure(adErrObjectOpen, QStringLiteral("Operation is not allowed when the object is open."),
                  QStringLiteral("ADODB.Connection"));
  const sql::ConnectionString connection(text_);
  session_ = drivers_->find(connection.provider()).connect(connection);
}

void Connection::Close() {
  if (!session_)
    throw Failure(adErrObjectClosed, QStringLiteral("Operation is not allowed when the object is closed."),
                  QStringLiteral("ADODB.Connection"));
  session_.reset();
}

sql::Session& Connection::session() const {
  if (!session_)
    throw Failure(
        adErrInvalidConnection,
        QStringLiteral("The connection cannot be used to perform this operation. It is either closed or "
                       "invalid in this context."),
        QStringLiteral("ADODB.Connection"));
  return *session_;
}

sql::Result Command::Execute() {
  if (!connection_)
    throw Failure(
        adErrInvalidConnection,
        QStringLiteral("The connection cannot be used to perform this operation. It is either closed or "
                       "invalid in this context."),
        QStringLiteral("ADODB.Command"));
  return connection_->session().execute(CommandText);
}

}  // namespace platform::ado
