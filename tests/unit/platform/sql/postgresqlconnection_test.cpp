// Connection strings, and servers that cannot be reached.
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/postgresql/library.h"
#include "platform/sql/postgresql/session.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using platform::Failure;
using namespace platform::sql;
using namespace platform::sql::postgresql;

QByteArray option(const QString& connection, const char* keyword) {
  for (const auto& [each, value] : libraryOptions(ConnectionString(connection)))
    if (each == keyword) return value;
  return "(none)";
}

Failure failureOf(const QString& connection) {
  try {
    PostgresqlDriver().connect(ConnectionString(connection));
  } catch (const Failure& failure) {
    return failure;
  }
  return {0, {}};
}

/// A program that takes connections and never says a word.
class SilentServer {
 public:
  explicit SilentServer(const QString& folder) : socket_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(folder) + "/.s.PGSQL.5432";
    qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
    EXPECT_EQ(::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(socket_, 1), 0);
  }
  ~SilentServer() { ::close(socket_); }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;

 private:
  int socket_;
};

}  // namespace

TEST(PostgresqlLibrary, ThatLacksAFunctionIsTold) {
  try {
    functionOf("PQnoSuchFunction");
    ADD_FAILURE() << "found";
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.number(), errors::providerNotFound);
    EXPECT_TRUE(failure.description().contains(u"libpq5"));
  }
}

TEST(PostgresqlConnectionString, NamesServerDatabaseAndUserInAllTheirForms) {
  const QString full =
      u"Provider=PostgreSQL;Data Source=db.example.net,5433;Initial Catalog=Hours;User ID="
      u"ann;Password=\"p;w\"\"d\";Application Name=Reports"_qs;
  EXPECT_EQ(option(full, "host"), "db.example.net");
  EXPECT_EQ(option(full, "port"), "5433");
  EXPECT_EQ(option(full, "dbname"), "Hours");
  EXPECT_EQ(option(full, "user"), "ann");
  EXPECT_EQ(option(full, "password"), "p;w\"d");
  EXPECT_EQ(option(full, "application_name"), "Reports");
  EXPECT_EQ(option(full, "client_encoding"), "UTF8");
  const QString others = u"Server=tcp:host;Database=d;UID=u;PWD=p"_qs;
  EXPECT_EQ(option(others, "host"), "host");
  EXPECT_EQ(option(others, "port"), "(none)");
  EXPECT_EQ(option(others, "dbname"), "d");
  EXPECT_EQ(option(others, "user"), "u");
  EXPECT_EQ(option(others, "password"), "p");
  for (const QString& here : {u"(local)"_qs, u"."_qs, u"localhost"_qs})
    EXPECT_EQ(option(u"Address="_qs + here, "host"), "localhost");
  EXPECT_EQ(option(u"Data Source=\"/run/pg,5433\""_qs, "host"), "/run/pg");
  EXPECT_EQ(option(u"Server=host;Port=5433;User Name=ann"_qs, "port"), "5433");
  EXPECT_EQ(option(u"Server=host;Port=5433;User Name=ann"_qs, "user"), "ann");
  EXPECT_EQ(option(u"Data Source=\"host,5434\";Port=5433"_qs, "port"), "5434")
      << "what is nearer to the name";
}

TEST(PostgresqlConnectionString, WithoutADatabaseLeadsToTheOneThatOthersAreMadeFrom) {
  EXPECT_EQ(option(u"Data Source=x"_qs, "dbname"), "postgres");
}

TEST(PostgresqlConnectionString, WithIntegratedSecurityNeedsNoPassword) {
  for (const QString& yes : {u"Integrated Security=SSPI"_qs, u"Trusted_Connection=yes"_qs}) {
    EXPECT_EQ(option(yes + u";User ID=u;Password=p"_qs, "user"), "(none)");
    EXPECT_EQ(option(yes + u";User ID=u;Password=p"_qs, "password"), "(none)");
  }
  EXPECT_EQ(option(u"Integrated Security=False;User ID=u"_qs, "user"), "u");
}

TEST(PostgresqlConnectionString, SaysWhetherTheConnectionIsEncrypted) {
  EXPECT_EQ(option(u"Data Source=x"_qs, "sslmode"), "(none)");
  EXPECT_EQ(option(u"Use Encryption for Data=True"_qs, "sslmode"), "require");
  EXPECT_EQ(option(u"Encrypt=no"_qs, "sslmode"), "prefer");
  EXPECT_EQ(option(u"Encrypt=no;SSL Mode=verify-full"_qs, "sslmode"), "verify-full");
}

TEST(PostgresqlConnectionString, BoundsTheTimeThatIsWaitedForTheServer) {
  const auto seconds = [](const QString& text) { return connectTimeout(ConnectionString(text)); };
  EXPECT_EQ(seconds(u"Connect Timeout=3"_qs), 3);
  EXPECT_EQ(seconds(u"Connection Timeout=600"_qs), 600);
  for (const QString& other : {u""_qs, u"0"_qs, u"-1"_qs, u"601"_qs, u"soon"_qs})
    EXPECT_EQ(seconds(u"Data Source=x;Connect Timeout="_qs + other), 15) << qPrintable(other);
}

TEST(PostgresqlConnection, WithoutAServerIsRefused) {
  EXPECT_EQ(failureOf(u"Provider=PostgreSQL;Initial Catalog=d"_qs).number(), errors::connectionFailed);
}

TEST(PostgresqlConnection, ToAServerThatIsNotThereFailsWithItsNameAndWithoutThePassword) {
  const QTemporaryDir folder;
  for (const QString& server : {u"127.0.0.1,1"_qs, folder.path()}) {
    const Failure failure =
        failureOf(u"Data Source=\"%1\";Initial Catalog=Hours;User ID=u;Password=secret1"_qs.arg(server));
    EXPECT_EQ(failure.number(), errors::connectionFailed);
    for (const QString& part : {server, u"Hours"_qs})
      EXPECT_TRUE(failure.description().contains(part)) << qPrintable(failure.description());
    EXPECT_FALSE(failure.description().contains(u"secret1"));
  }
}

TEST(PostgresqlConnection, WithAPortThatIsNoneFails) {
  EXPECT_EQ(failureOf(u"Data Source=\"localhost,many\""_qs).number(), errors::connectionFailed);
}

TEST(PostgresqlConnection, ToAServerThatDoesNotAnswerEndsInTime) {
  const QTemporaryDir folder;
  const SilentServer server(folder.path());
  const Failure failure = failureOf(u"Data Source=\"%1\";Connect Timeout=1"_qs.arg(folder.path()));
  EXPECT_EQ(failure.number(), errors::connectionFailed);
  EXPECT_TRUE(failure.description().contains(u"did not answer within 1 s."))
      << qPrintable(failure.description());
}
