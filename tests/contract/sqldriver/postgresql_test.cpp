// What holds on a PostgreSQL server beyond the suite of all drivers.
#include "platform/ado/recordset.h"
#include "platform/sql/postgresql/engine.h"
#include "platform/sql/postgresql/session.h"
#include "sqldriver_postgresql.h"

namespace contract {

namespace {

using namespace platform;
using namespace platform::sql;
using basic::Currency;
using basic::Date;
using basic::Null;
using basic::Value;

constexpr int noPatience = 1;  // ms; 0 would wait for ever

class Postgresql : public testing::Test {
 protected:
  Postgresql() : session(connect()) {}

  std::unique_ptr<Session> connect() {
    return postgresql::PostgresqlDriver(noPatience).connect(toServer(base.name()));
  }

  static Column column(const QString& name, Type type, bool key = false) {
    Column made;
    made.name = name;
    made.type = type;
    made.autoIncrement = made.primaryKey = key;
    return made;
  }

  void createMeta() {
    postgresql::PostgresqlEngine().createTable(
        *session, u"tblMeta1"_qs,
        {column(u"intMeta1ID"_qs, Type::Long, true), column(u"strName"_qs, Type::Text),
         column(u"curRate"_qs, Type::Currency), column(u"blnEnabled"_qs, Type::Boolean),
         column(u"dteWhen"_qs, Type::Date), column(u"strBody"_qs, Type::Memo)});
  }

  Value single(const QString& sql, const QList<Value>& parameters = {}) {
    const Result result = session->execute(sql, parameters);
    return result.rows.isEmpty() ? Value() : result.rows.first().first();
  }

  PostgresqlDatabase base;
  std::unique_ptr<Session> session;
};

}  // namespace

TEST_F(Postgresql, ARecordsetAddsChangesAndDeletesRowsAndKnowsTheirCounters) {
  auto drivers = std::make_shared<Drivers>();
  drivers->add(u"PostgreSQL"_qs, std::make_shared<postgresql::PostgresqlDriver>());
  createMeta();
  const auto connection = std::make_shared<ado::Connection>(drivers);
  const ConnectionString to = toServer(base.name());
  connection->setConnectionString(u"Provider=postgresql;Data Source=%1;Initial Catalog=%2;User ID=%3"_qs.arg(
      to.value(u"Data Source"_qs), base.name(), to.value(u"User ID"_qs)));
  connection->Open();
  const auto open = [&](const QString& source) {
    auto recordset = std::make_shared<ado::Recordset>();
    recordset->setActiveConnection(connection);
    recordset->setSource(source);
    recordset->LockType = ado::adLockOptimistic;
    recordset->Open();
    return recordset;
  };
  const auto rows = open(u"TBLMETA1"_qs);
  for (const QString& name : {u"Ann"_qs, u"Bo"_qs}) {
    rows->AddNew();
    (*rows)[u"strName"_qs].setValue(name);
    (*rows)[u"curRate"_qs].setValue(450.5);
    (*rows)[u"dteWhen"_qs].setValue(Date::of(QDate(2024, 2, 5), QTime(9, 30)));
    rows->Update();
  }
  EXPECT_TRUE((*rows)[u"intMeta1ID"_qs].Value() == Value(qint32{2}));
  EXPECT_TRUE((*rows)[u"blnEnabled"_qs].Value() == Value(false));
  rows->MoveFirst();
  (*rows)[u"blnEnabled"_qs].setValue(true);
  rows->Update();
  rows->MoveNext();
  rows->Delete();
  const auto kept = open(u"select * from tblMeta1 order by strName"_qs);
  ASSERT_EQ(kept->RecordCount(), 1);
  EXPECT_EQ((*kept)[u"strName"_qs].Name(), u"strName"_qs);
  EXPECT_TRUE((*kept)[u"STRNAME"_qs].Value() == Value(u"Ann"_qs));
  EXPECT_TRUE((*kept)[u"curRate"_qs].Value() == Value(Currency::fromTenThousandths(4505000)));
  EXPECT_TRUE((*kept)[u"blnEnabled"_qs].Value() == Value(true));
}

TEST_F(Postgresql, TablesMadeByAnotherProgramAreReadWhateverTheirSpelling) {
  session->execute(
      u"CREATE TABLE tblreports (intreportid serial PRIMARY KEY, strsubject varchar(40), numhours real, "
      u"\"MixedCase\" "
      u"text); CREATE VIEW open_reports AS SELECT * FROM tblreports"_qs);
  EXPECT_EQ(session->execute(u"insert into tblReports (strSubject, mixedcase) values (?, 'x')"_qs, {u"a"_qs})
                .lastId,
            1);
  EXPECT_TRUE(single(u"select MIXEDCASE from tblReports where intReportID = 1"_qs) == Value(u"x"_qs));
  EXPECT_TRUE(single(u"select strSubject from Open_Reports"_qs) == Value(u"a"_qs));
  const QList<Column> columns = session->columns(u"tblReports"_qs);
  ASSERT_EQ(columns.size(), 4);
  EXPECT_TRUE(columns[0].autoIncrement);
  EXPECT_EQ(columns[1].size, 40);
  EXPECT_EQ(session->tables(), QStringList({u"tblreports"_qs}));
}

TEST_F(Postgresql, ATableThatAnotherConnectionMakesMeanwhileIsFound) {
  EXPECT_TRUE(session->tables().isEmpty());
  const auto other = connect();
  other->execute(u"CREATE TABLE \"tblLater\" (\"intID\" integer)"_qs);
  EXPECT_EQ(session->execute(u"select intID from tblLater"_qs).rows.size(), 0);
  other->execute(u"ALTER TABLE \"tblLater\" ADD COLUMN \"strNew\" text"_qs);
  EXPECT_EQ(session->execute(u"select strNew from tblLater"_qs).columns.size(), 1);
}

TEST_F(Postgresql, AStatementThatIsSentAgainIsReadAnewOnceItsTableHasChanged) {
  createMeta();
  const QString insert = u"insert into tblMeta1 (strName, blnEnabled) values (?, ?)"_qs;
  EXPECT_EQ(session->execute(insert, {u"a"_qs, true}).lastId, 1);
  EXPECT_EQ(session->execute(insert, {u"b"_qs, true}).lastId, 2);
  connect()->execute(u"ALTER TABLE \"tblMeta1\" RENAME COLUMN \"intMeta1ID\" TO \"id\""_qs);
  EXPECT_EQ(session->execute(insert, {u"c"_qs, true}).lastId, 3) << "under its counter's new name";
  connect()->execute(u"ALTER TABLE \"tblMeta1\" RENAME COLUMN \"strName\" TO \"STRNAME\""_qs);
  EXPECT_EQ(session->execute(insert, {u"d"_qs, false}).lastId, 4) << "and its column's new spelling";
  EXPECT_EQ(session->execute(u"select * from tblMeta1"_qs).rows.size(), 4);
}

TEST_F(Postgresql, ACounterGoesOnBehindAValueThatItWasGiven) {
  createMeta();
  EXPECT_EQ(
      session->execute(u"insert into tblMeta1 (intMeta1ID, strName) values (?, 'a')"_qs, {qint32{7}}).lastId,
      7);
  EXPECT_TRUE(single(u"select @@IDENTITY"_qs) == Value(qint32{7}));
  EXPECT_EQ(session->execute(u"insert into tblMeta1 (strName) values ('b')"_qs).lastId, 8);
  session->execute(u"insert into tblMeta1 (intMeta1ID) values (3)"_qs);
  EXPECT_EQ(session->execute(u"insert into [tblMeta1] default values"_qs).lastId, 9) << "and never back";
}

TEST_F(Postgresql, YesAndNoAreNumbersForAStatementOfTheAccessKind) {
  createMeta();
  session->execute(u"insert into tblMeta1 (strName, blnEnabled) values ('a', -1), ('b', 0), ('c', null)"_qs);
  session->execute(u"insert into tblMeta1 (strName, blnEnabled) values ('d', ?)"_qs, {qint32{-1}});
  EXPECT_TRUE(single(u"select count(*) from tblMeta1 where blnEnabled = -1"_qs) == Value(qint32{2}));
  EXPECT_TRUE(single(u"select count(*) from tblMeta1 where blnEnabled <> 0"_qs) == Value(qint32{2}));
  EXPECT_TRUE(single(u"select count(*) from tblMeta1 where blnEnabled = ?"_qs, {false}) == Value(qint32{2}));
}

TEST_F(Postgresql, LikeFindsTextsWithoutRegardToCase) {
  createMeta();
  session->execute(u"insert into tblMeta1 (strName) values ('Åsa Ek'), ('Bo')"_qs);
  EXPECT_TRUE(single(u"select strName from tblMeta1 where strName like 'ås%'"_qs) == Value(u"Åsa Ek"_qs));
  EXPECT_TRUE(single(u"select strName from tblMeta1 where strName not like ?"_qs, {u"ås%"_qs}) ==
              Value(u"Bo"_qs));
}

TEST_F(Postgresql, AnAmountIsExactUpToTheLargest) {
  createMeta();
  const Currency largest = Currency::fromTenThousandths(std::numeric_limits<qint64>::max());
  const Currency smallest = Currency::fromTenThousandths(std::numeric_limits<qint64>::min() + 1);
  for (const Currency& amount : {largest, smallest}) {
    session->execute(u"delete from tblMeta1"_qs);
    session->execute(u"insert into tblMeta1 (curRate) values (?)"_qs, {amount});
    EXPECT_TRUE(single(u"select curRate from tblMeta1"_qs) == Value(amount));
  }
}

TEST_F(Postgresql, ASumOfAmountsIsAnAmountAndAMeanIsANumber) {
  createMeta();
  session->execute(u"insert into tblMeta1 (curRate) values (1.25), (2.5)"_qs);
  EXPECT_TRUE(single(u"select sum(curRate) from tblMeta1"_qs) == Value(Currency::fromTenThousandths(37500)));
  EXPECT_TRUE(single(u"select avg(curRate) from tblMeta1"_qs) == Value(1.875));
}

TEST_F(Postgresql, DatesKeepTheWallClockWhereverTheServerStands) {
  createMeta();
  const QList<Date> dates{Date(), Date::of(QDate(2024, 3, 31), QTime(2, 30)), Date::of(QDate(9999, 12, 31)),
                          Date::of(QDate(100, 1, 1))};
  for (const Date& date : dates) {
    session->execute(u"delete from tblMeta1"_qs);
    session->execute(u"insert into tblMeta1 (dteWhen) values (?)"_qs, {date});
    EXPECT_TRUE(single(u"select dteWhen from tblMeta1"_qs) == Value(date)) << date.serial();
    EXPECT_TRUE(single(u"select count(*) from tblMeta1 where dteWhen = ?"_qs, {date}) == Value(qint32{1}));
  }
}

TEST_F(Postgresql, BrokenAndOddTextsComeBackAsWholeOnes) {
  createMeta();
  const QString broken = QString(u"a"_qs) + QChar(0xD834) + u"b"_qs + QChar(QChar::Null) + u"𝄞"_qs;
  session->execute(u"insert into tblMeta1 (strName, strBody) values (?, ?)"_qs,
                   {broken, QString(100000, u'x')});
  EXPECT_TRUE(single(u"select strName from tblMeta1"_qs) == Value(u"a\uFFFDb\uFFFD𝄞"_qs));
  EXPECT_TRUE(single(u"select strBody from tblMeta1"_qs) == Value(QString(100000, u'x')));
}

TEST_F(Postgresql, AFailedStatementLeavesTheTransactionAsItWas) {
  createMeta();
  Transaction transaction(*session);
  session->execute(u"insert into tblMeta1 (strName) values ('kept')"_qs);
  EXPECT_EQ(failureNumber([&] { session->execute(u"select strNone from tblMeta1"_qs); }),
            errors::noSuchColumn);
  EXPECT_NE(failureNumber([&] { session->execute(u"ALTER TABLE nowhere ADD COLUMN x integer"_qs); }), 0);
  session->execute(u"insert into tblMeta1 (strName) values ('too')"_qs);
  transaction.commit();
  EXPECT_EQ(connect()->execute(u"select * from tblMeta1"_qs).rows.size(), 2);
}

TEST_F(Postgresql, AHeldRowIsNotWaitedForWithoutEnd) {
  createMeta();
  session->execute(u"insert into tblMeta1 (strName) values ('a')"_qs);
  const auto other = connect();
  Transaction transaction(*other);
  other->execute(u"update tblMeta1 set strName = 'b'"_qs);
  const auto writing = [&] { session->execute(u"update tblMeta1 set strName = 'c'"_qs); };
  EXPECT_EQ(failureNumber(writing), errors::locked);
  EXPECT_TRUE(failureText(writing).contains(u"in use by another program"))
      << qPrintable(failureText(writing));
  transaction.commit();
  writing();
}

TEST_F(Postgresql, AnAnswerIsNotWaitedForWithoutEnd) {
  const auto impatient = postgresql::PostgresqlDriver(noPatience, 1).connect(toServer(base.name()));
  const auto slow = [&] { impatient->execute(u"select pg_sleep(3600)"_qs); };
  EXPECT_EQ(failureNumber(slow), errors::timeout);
  // nothing is sent behind what may still be carried out
  EXPECT_EQ(failureNumber([&] { impatient->execute(u"select 1"_qs); }), errors::connectionFailed);
  EXPECT_EQ(failureNumber([&] { impatient->begin(); }), errors::connectionFailed);
  EXPECT_TRUE(session->execute(u"select 1"_qs).rows.first().first() == Value(qint32{1})) << "others go on";
}

TEST_F(Postgresql, AnAnswerThatGoesOnArrivingIsWaitedFor) {
  const auto impatient = postgresql::PostgresqlDriver(noPatience, 2).connect(toServer(base.name()));
  // longer than two seconds in all; the server sends its buffer of 8 KB whenever that is full
  const Result slow = impatient->execute(
      u"select repeat('x', 3000) as x, pg_sleep(0.05) as s from generate_series(1, 60)"_qs);
  EXPECT_EQ(slow.rows.size(), 60);
}

TEST_F(Postgresql, OfALostStatementThatWritesNobodySaysThatItWasNotCarriedOut) {
  createMeta();
  const auto lost = connect();
  const Value process = lost->execute(u"select pg_backend_pid()"_qs).rows.first().first();
  session->execute(u"WITH p AS (SELECT pg_terminate_backend(?::integer, 10000)) TABLE p"_qs, {process});
  const QString text = failureText([&] { lost->execute(u"insert into tblMeta1 (strName) values ('a')"_qs); });
  EXPECT_TRUE(text.contains(u"Whether the last statement was carried out is not known.")) << qPrintable(text);
  const QString next = failureText([&] { lost->execute(u"insert into tblMeta1 (strName) values ('a')"_qs); });
  EXPECT_TRUE(next.endsWith(u"is broken since an earlier failure; it has to be opened anew."_qs))
      << "never sent";
}

TEST_F(Postgresql, ADatabaseOpenedForReadingTakesNoRows) {
  createMeta();
  ConnectionString reading = toServer(base.name());
  reading.set(u"Mode"_qs, u"Read"_qs);
  const auto reader = postgresql::PostgresqlDriver().connect(reading);
  EXPECT_EQ(reader->execute(u"select * from tblMeta1"_qs).rows.size(), 0);
  EXPECT_EQ(failureNumber([&] { reader->execute(u"insert into tblMeta1 (strName) values ('a')"_qs); }),
            errors::readOnly);
}

TEST_F(Postgresql, AnUnknownDatabaseIsNamed) {
  const auto open = [] { postgresql::PostgresqlDriver().connect(toServer(u"Nowhere"_qs)); };
  EXPECT_EQ(failureNumber(open), errors::connectionFailed);
  EXPECT_TRUE(failureText(open).contains(u"database \"Nowhere\" does not exist"))
      << qPrintable(failureText(open));
  EXPECT_FALSE(failureText(open).contains(u".c:")) << "the server's own source is nobody's business";
}

TEST_F(Postgresql, AConnectionStringThatIsCutOffAnywhereIsToldAndLeadsToNoOtherDatabase) {
  const QString folder = toServer({}).value(u"Data Source"_qs);
  const QString text =
      u"Provider=PostgreSQL;Connect Timeout=5;Persist Security Info=True;User ID=%1;Password=secret1;"
      "Data Source=%2;Initial Catalog=%3"_qs.arg(toServer({}).value(u"User ID"_qs), folder, base.name());
  for (qsizetype length = 0; length <= text.size(); ++length) {
    const QString cut = text.left(length);
    std::unique_ptr<Session> opened;
    const QString told = failureText(
        [&] { opened = postgresql::PostgresqlDriver(noPatience).connect(ConnectionString(cut)); });
    EXPECT_NE(told.isEmpty(), opened == nullptr) << qPrintable(cut);
    EXPECT_FALSE(told.contains(u"secret1")) << qPrintable(cut);
    if (opened) {
      EXPECT_TRUE(cut.contains(folder)) << qPrintable(cut);
      const Value database = opened->execute(u"select current_database() as d"_qs).rows.first().first();
      const bool whole = cut == text;
      EXPECT_TRUE(database == Value(whole ? base.name() : u"postgres"_qs) ||
                  base.name().startsWith(cut.section(u'=', -1)))
          << qPrintable(cut);
    }
  }
}

TEST_F(Postgresql, AWrongPasswordIsToldFromAServerThatIsNotThere) {
  session->execute(u"DROP ROLE IF EXISTS guarded; CREATE ROLE guarded LOGIN PASSWORD 'p;w\"d'"_qs);
  ConnectionString to = toServer(base.name());
  to.set(u"User ID"_qs, u"guarded"_qs);
  const auto open = [&] { postgresql::PostgresqlDriver().connect(to); };
  EXPECT_EQ(failureNumber(open), errors::loginFailed) << "none at all: " << qPrintable(failureText(open));
  to.set(u"Password"_qs, u"wrong1"_qs);
  EXPECT_EQ(failureNumber(open), errors::loginFailed) << qPrintable(failureText(open));
  EXPECT_TRUE(failureText(open).contains(u"password authentication failed for user \"guarded\""))
      << qPrintable(failureText(open));
  EXPECT_FALSE(failureText(open).contains(u"wrong1"));
  to.set(u"Password"_qs, u"p;w\"d"_qs);
  open();
  session->execute(u"DROP ROLE guarded"_qs);
}

TEST_F(Postgresql, AConnectionThatTheServerEndsIsSaidToBeBroken) {
  createMeta();
  const Value process = single(u"select pg_backend_pid()"_qs);
  connect()->execute(u"WITH p AS (SELECT pg_terminate_backend(?::integer, 10000)) TABLE p"_qs, {process});
  const auto reading = [&] { session->execute(u"select * from tblMeta1"_qs); };
  EXPECT_EQ(failureNumber(reading), errors::connectionFailed) << qPrintable(failureText(reading));
  EXPECT_EQ(failureNumber(reading), errors::connectionFailed) << "and stays so";
}

TEST_F(Postgresql, SeveralStatementsRunAtOnceButNoneOfTheAccessKind) {
  session->execute(u"CREATE TABLE a (x integer); CREATE TABLE b (y integer)"_qs);
  EXPECT_EQ(session->tables(), QStringList({u"a"_qs, u"b"_qs}));
  EXPECT_NE(failureNumber([&] { session->execute(u"select * from a; drop table b"_qs); }), 0);
  EXPECT_EQ(session->tables().size(), 2);
}

TEST_F(Postgresql, AParameterTooFewIsAFailureOfTheStatement) {
  EXPECT_EQ(failureNumber([&] { session->execute(u"select ?, ?"_qs, {u"a"_qs}); }), errors::statementFailed);
  EXPECT_TRUE(single(u"select ?"_qs, {u"a"_qs}) == Value(u"a"_qs));
}

TEST_F(Postgresql, CopyIsRefusedAndDoesNotHang) {
  EXPECT_EQ(failureNumber([&] { session->execute(u"COPY pg_class TO STDOUT"_qs); }), errors::statementFailed);
  EXPECT_EQ(failureNumber([&] { session->execute(u"select 1"_qs); }), errors::connectionFailed);
}

TEST_F(Postgresql, TheEngineMakesNoFilesAndSaysSo) {
  postgresql::PostgresqlEngine engine;
  EXPECT_EQ(failureNumber([&] { engine.createDatabase(u"/x.mdb"_qs); }), errors::statementFailed);
  EXPECT_EQ(failureNumber([&] { engine.compact(u"a"_qs, u"b"_qs); }), errors::statementFailed);
}

TEST_F(Postgresql, ALongColumnsNameKeepsItsRuleForEmptyTexts) {
  Column strict = column(QString(63, u'n'), Type::Text);
  strict.allowZeroLength = false;
  postgresql::PostgresqlEngine().createTable(*session, u"t"_qs, {strict});
  EXPECT_FALSE(session->columns(u"t"_qs)[0].allowZeroLength);
  EXPECT_EQ(failureNumber([&] { session->execute(u"insert into t values ('')"_qs); }), errors::zeroLength);
}

TEST_F(Postgresql, ASessionThatIsStillThereIsEndedWhenItIsSettled) {
  const auto other = connect();
  session->execute(u"CREATE TABLE t (a integer)"_qs);
  other->begin();
  other->execute(u"insert into t values (1)"_qs);
  session->settle(other->token());
  EXPECT_EQ(failureNumber([&] { other->commit(); }), errors::connectionFailed);
  EXPECT_EQ(session->execute(u"select * from t"_qs).rows.size(), 0);
}

}  // namespace contract
