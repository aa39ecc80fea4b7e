// An SQL Server that is lost, says nothing more, or gives a transaction up: the failure is clear, and nothing
// is done twice or by half.
#include "sqlserverwire.h"

namespace contract {

using namespace platform;
using namespace platform::sql;
using basic::Value;

namespace {

const QList<TdsColumn> columns{{u"a"_qs, TdsType::Int}, {u"b"_qs, TdsType::NVarChar}};
const QString unknownOutcome = u"Whether the last statement was carried out is not known."_qs;

TdsAnswer twoRows() {
  return TdsAnswer().columns(columns).row({qint32{1}, u"x"_qs}).row({qint32{2}, u"yyyyy"_qs});
}

}  // namespace

TEST_F(SqlServerWire, AServerThatDiesInTheMiddleOfAnAnswerIsToldAndNotAskedAgain) {
  const QList<TdsAnswer> answers{
      TdsAnswer().cut(),                                             // before it
      TdsAnswer().columns(columns).cut(),                            // before the rows
      TdsAnswer().columns(columns).row({qint32{1}, u"x"_qs}).cut(),  // between two rows
      TdsAnswer(twoRows()).cut(3),
      TdsAnswer(twoRows()).cut(14),                        // inside of a text, of a length
      TdsAnswer(twoRows()).counted(2).counted(3).cut(5)};  // inside of the end
  for (int i = 0; i < answers.size(); ++i) {
    peer.answerWith([answer = answers[i]](const TdsRequest&) { return answer; });
    const auto session = connect();
    const auto read = [&] { session->execute(u"select a, b from t"_qs); };
    const qsizetype before = peer.requests().size();
    EXPECT_TRUE(failureText(read).startsWith(
        u"The connection to the database Hourbook3SQL on %1 is broken: "_qs.arg(server())))
        << i;
    EXPECT_EQ(failureNumber(read), errors::connectionFailed) << i << " and stays so";
    EXPECT_TRUE(failureText(read).contains(u"has to be opened anew")) << i;
    EXPECT_EQ(peer.requests().size(), before + 1) << i << " sent once";
  }
}

TEST_F(SqlServerWire, WhetherALostStatementThatWritesWasCarriedOutIsNotClaimed) {
  peer.answerWith([](const TdsRequest&) { return TdsAnswer().cut(); });
  EXPECT_TRUE(failureText([&] {
                connect()->execute(u"insert into t (a) values (?)"_qs, {qint32{1}});
              }).contains(unknownOutcome));
  EXPECT_FALSE(failureText([&] { connect()->execute(u"select a from t"_qs); }).contains(unknownOutcome));
  EXPECT_EQ(peer.requests().size(), 2) << "and it is not sent again";
}

TEST_F(SqlServerWire, ANewSessionWorksAfterALostOne) {
  bool broken = true;
  peer.answerWith([&](const TdsRequest&) { return broken ? TdsAnswer().cut() : counts(1, 3); });
  EXPECT_NE(failureNumber([&] { connect()->execute(u"insert into t (a) values (1)"_qs); }), 0);
  broken = false;
  EXPECT_EQ(connect()->execute(u"insert into t (a) values (1)"_qs).lastId, 3);
  EXPECT_EQ(peer.logins(), 2);
}

TEST_F(SqlServerWire, ALostConnectionFailsInEveryOperation) {
  peer.answerWith([](const TdsRequest&) { return TdsAnswer().cut(); });
  const auto session = connect();
  EXPECT_NE(failureNumber([&] { session->execute(u"select 1"_qs); }), 0);
  const qsizetype before = peer.requests().size();
  for (const auto& operation : QList<std::function<void()>>{
           [&] { session->begin(); }, [&] { session->commit(); }, [&] { session->rollback(); },
           [&] { session->tables(); }, [&] { session->columns(u"t"_qs); },
           [&] { session->execute(u"CREATE TABLE t (a int)"_qs); }})
    EXPECT_EQ(failureNumber(operation), errors::connectionFailed);
  EXPECT_EQ(peer.requests().size(), before);
}

TEST_F(SqlServerWire, AStatementThatTakesTooLongIsCalledOffAndTheSessionLives) {
  options.statementSeconds = 1;
  peer.answerWith([](const TdsRequest& request) {
    if (request.statement == u"select 1")
      return TdsAnswer().columns({{u"a"_qs, TdsType::Int}}).row({qint32{1}}).done();
    return twoRows().silence(true);
  });
  const auto session = connect();
  const auto slow = [&] { session->execute(u"select a, b from t"_qs); };
  EXPECT_EQ(failureNumber(slow), errors::timeout);
  EXPECT_EQ(session->execute(u"select 1"_qs).rows.size(), 1);
}

TEST_F(SqlServerWire, AServerThatDoesNotEvenHearACancellationIsLost) {
  options.statementSeconds = 1;
  peer.answerWith([](const TdsRequest&) { return TdsAnswer().silence(false); });
  const auto session = connect();
  const QString text = failureText([&] { session->execute(u"insert into t (a) values (1)"_qs); });
  EXPECT_TRUE(text.contains(u"is broken")) << qPrintable(text);
  EXPECT_TRUE(text.contains(unknownOutcome)) << qPrintable(text);
  EXPECT_EQ(failureNumber([&] { session->execute(u"select 1"_qs); }), errors::connectionFailed);
  EXPECT_EQ(peer.requests().size(), 1);
}

TEST_F(SqlServerWire, TransactionsAreTheServersOwnAndPartsOfThemAreSavePoints) {
  const auto session = connect();
  {
    Transaction outer(*session);
    {
      Transaction inner(*session);
      session->execute(u"Update t set a = 1"_qs);
    }
    {
      Transaction inner(*session);
      inner.commit();
    }
    outer.commit();
  }
  { Transaction dropped(*session); }
  QStringList statements = peer.statements();
  statements[2] = u"Update"_qs;
  EXPECT_EQ(statements, QStringList({u"BEGIN TRANSACTION"_qs, u"SAVE TRANSACTION level1"_qs, u"Update"_qs,
                                     u"ROLLBACK TRANSACTION level1"_qs, u"SAVE TRANSACTION level1"_qs,
                                     u"COMMIT TRANSACTION"_qs, u"BEGIN TRANSACTION"_qs,
                                     u"IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION"_qs}));
}

namespace {

/// What a server says of its transaction after a statement has failed.
TdsPeer::Script failingWith(int number, qint32 state) {
  return [number, state](const TdsRequest& request) {
    TdsAnswer answer;
    if (request.statement.startsWith(u"Update")) answer.error(number, u"refused"_qs);
    if (request.statement.contains(u"XACT_STATE")) answer.columns({{{}, TdsType::Int}}).row({state}).done();
    if (request.statement.startsWith(u"insert"))
      answer.columns({{{}, TdsType::Int}, {{}, TdsType::BigInt}}).row({qint32{1}, qint64{1}}).done();
    return answer;
  };
}

}  // namespace

TEST_F(SqlServerWire, AFailedStatementLeavesTheTransactionAsItWas) {
  peer.answerWith(failingWith(2627, 1));
  const auto session = connect();
  Transaction transaction(*session);
  EXPECT_EQ(failureNumber([&] { session->execute(u"Update t set a = 1"_qs); }), errors::duplicateKey);
  session->execute(u"insert into t (a) values (1)"_qs);
  transaction.commit();
  EXPECT_EQ(peer.statements().last(), u"COMMIT TRANSACTION"_qs);
}

TEST_F(SqlServerWire, OfATransactionThatTheServerGaveUpNoHalfIsStored) {
  for (const qint32 state : {0, -1}) {
    peer.answerWith(failingWith(1205, state));
    const auto session = connect();
    const qsizetype before = peer.requests().size();
    {
      Transaction transaction(*session);
      EXPECT_EQ(failureNumber([&] { session->execute(u"Update t set a = 1"_qs); }), errors::locked);
      // would be stored at once, by itself
      const auto insert = [&] { session->execute(u"insert into t (a) values (1)"_qs); };
      EXPECT_EQ(failureNumber(insert), errors::statementFailed);
      EXPECT_TRUE(failureText(insert).contains(u"is rolled back"));
      EXPECT_EQ(failureNumber([&] { transaction.commit(); }), errors::statementFailed);
    }
    EXPECT_EQ(peer.statements().mid(before).size(), 4) << "begin, update, the question, rollback";
    EXPECT_EQ(session->execute(u"insert into t (a) values (1)"_qs).affected, 1) << "and all is well again";
  }
}

}  // namespace contract
