// Answers of a PostgreSQL server that come encrypted, through something that makes longer records than the
// server would.
#include "platform/sql/postgresql/session.h"
#include "sqldriver_postgresql.h"
#include "tlsproxy.h"

namespace contract {

namespace {

using namespace platform;
using namespace platform::sql;
using basic::Value;

constexpr int noPatience = 1;  // ms
constexpr int silenceSeconds = 5;

class PostgresqlEncrypted : public testing::Test {
 protected:
  std::unique_ptr<Session> connect(const QString& encrypt = u"Yes"_qs) const {
    ConnectionString to = toServer(base.name());
    to.set(u"Data Source"_qs, u"127.0.0.1,%1"_qs.arg(proxy.port()));
    to.set(u"Encrypt"_qs, encrypt);
    return postgresql::PostgresqlDriver(noPatience, silenceSeconds).connect(to);
  }
  PostgresqlDatabase base;
  TlsProxy proxy{toServer({}).value(u"Data Source"_qs)};
};

QString textOf(int characters) {
  return QString(characters, u'ж');
}

}  // namespace

TEST_F(PostgresqlEncrypted, AnAnswerOfAnyLengthIsReadWholeWithoutWaitingForMore) {
  for (const int first : {0, 1, 100, 2000, 5000, 8192, 12000, 16000})
    for (int characters = 4000; characters < 30000; characters += 3001) {
      proxy.beginAnswersWith(0);
      const auto session = connect();  // the client library's room grows, and stays
      proxy.beginAnswersWith(first);
      const Result result =
          session->execute(u"select 1 as n, repeat('ж', %1) as x, 2 as m"_qs.arg(characters));
      ASSERT_EQ(result.rows.size(), 1) << first << ' ' << characters;
      EXPECT_TRUE(result.rows[0] == QList<Value>({qint32{1}, textOf(characters), qint32{2}}))
          << first << ' ' << characters;
    }
}

TEST_F(PostgresqlEncrypted, LongTextsComeAndGoWhole) {
  const auto session = connect();
  session->execute(u"CREATE TABLE long (t text)"_qs);
  const QString text = textOf(50000) + u"𝄞 漢 é"_qs + QString(50000, u'漢');
  session->execute(u"insert into long (t) values (?)"_qs, {text});
  for (const int first : {0, 1, 8192, 16000}) {
    proxy.beginAnswersWith(first);
    const Result result = session->execute(u"select t from long"_qs);
    ASSERT_EQ(result.rows.size(), 1);
    EXPECT_TRUE(result.rows[0][0] == Value(text)) << first;
  }
}

TEST_F(PostgresqlEncrypted, AnAnswerThatBreaksOffInsideOfARecordIsTold) {
  for (const int bytes : {1, 4, 5, 100, 8192, 16384, 16405, 20000, 40000}) {
    proxy.breakAfter(-1);
    const auto session = connect();
    proxy.breakAfter(bytes);
    const QString text = failureText([&] { session->execute(u"select repeat('x', 60000) as x"_qs); });
    EXPECT_TRUE(text.startsWith(u"The connection to the database %1 on 127.0.0.1,%2 is broken: "_qs.arg(
        base.name(), QString::number(proxy.port()))))
        << bytes << qPrintable(text);
  }
}

TEST_F(PostgresqlEncrypted, AServerThatSaysNothingMoreIsNotWaitedForWithoutEnd) {
  ConnectionString to = toServer(base.name());
  to.set(u"Data Source"_qs, u"127.0.0.1,%1"_qs.arg(proxy.port()));
  const auto impatient = postgresql::PostgresqlDriver(noPatience, 1).connect(to);
  EXPECT_EQ(failureNumber([&] { impatient->execute(u"select pg_sleep(3600)"_qs); }), errors::timeout);
}

}  // namespace contract
