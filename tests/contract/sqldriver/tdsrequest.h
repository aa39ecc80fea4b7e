#pragma once
#include <QByteArray>
#include <QList>
#include <QString>

namespace contract {

/// Who logs in, as it stood on the wire.
struct TdsLogin {
  QString host, user, password, application, server, language, database, attachedFile;
  QByteArray ticket;  // of a trusted connection
  quint32 version = 0;
  bool odbc = false;     // asks for the options that such programs expect
  bool trusted = false;  // with a ticket instead of a password
  static TdsLogin read(const QByteArray& body);
};

/// A parameter of a call; the value as a text that tests can read.
struct TdsParameter {
  QString type;   // as declared: "nvarchar(40)", "int", "decimal(19,4)" ...
  QString value;  // "NULL" for none
};

/// A statement that a program sends, in a batch of its own or with parameters.
struct TdsRequest {
  QString statement;
  QString declarations;  // of the parameters; empty for a batch
  QList<TdsParameter> parameters;
  bool isCall = false;
  int procedure = 0;  // number of the one called; 10 is sp_executesql
  static TdsRequest ofBatch(const QByteArray& body);
  static TdsRequest ofCall(const QByteArray& body);
};

}  // namespace contract
