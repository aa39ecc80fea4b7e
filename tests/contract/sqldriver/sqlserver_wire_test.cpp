// What goes over the wire to an SQL Server, and how its answers and failures are taken.
#include "kerberosrealm.h"
#include "platform/sql/odbc/engine.h"
#include "sqlbrowser.h"
#include "sqlserverwire.h"

#include <QCoreApplication>

namespace contract {

using namespace platform;
using namespace platform::sql;
using basic::Currency;
using basic::Date;
using basic::Null;
using basic::Value;

TEST_F(SqlServerWire, TheLoginCarriesWhatTheConnectionStringSays) {
  connect(
      u"Application Name=Räknaren;Workstation ID=pc7;Current Language=Svenska;Initial File Name=h.mdf"_qs);
  const TdsLogin login = peer.login();
  EXPECT_EQ(login.user, u"ann"_qs);
  EXPECT_EQ(login.password, u"secret1"_qs);
  EXPECT_EQ(login.database, u"Hourbook3SQL"_qs);
  EXPECT_EQ(login.application, u"Räknaren"_qs);
  EXPECT_EQ(login.host, u"pc7"_qs);
  EXPECT_EQ(login.language, u"Svenska"_qs);
  EXPECT_EQ(login.attachedFile, u"h.mdf"_qs);
  EXPECT_EQ(login.version, 0x74000004U);
  EXPECT_FALSE(login.trusted);
}

TEST_F(SqlServerWire, AnyPasswordArrivesAsItIs) {
  for (const QString& password : {u"p;w}d{"_qs, u" blanks "_qs, u"a=b,c'd\"e\\f"_qs, u"{}"_qs, u"}"_qs,
                                  u";}"_qs, u"{;}"_qs, u"ärligt 漢"_qs, u"%s?#@!"_qs, QString()}) {
    ConnectionString to = connection();
    to.set(u"Password"_qs, password);
    odbc::OdbcDriver(options).connect(to);
    EXPECT_EQ(peer.login().password, password);
  }
}

TEST_F(SqlServerWire, WithoutADatabaseNoneIsNamed) {
  ConnectionString to = connection();
  to.set(u"Initial Catalog"_qs, {});
  odbc::OdbcDriver(options).connect(to);
  EXPECT_EQ(peer.login().database, QString());
}

TEST_F(SqlServerWire, ThePortMayStandUnderAKeyOfItsOwn) {
  for (const QString& server : {u"127.0.0.1"_qs, u"tcp:127.0.0.1"_qs, u"127.0.0.1\\SQLEXPRESS"_qs}) {
    ConnectionString to = connection(u"Application Name=%1;Port=%2"_qs.arg(server).arg(peer.port()));
    to.set(u"Data Source"_qs, server);
    odbc::OdbcDriver(options).connect(to);
    EXPECT_EQ(peer.login().application, server);
  }
}

namespace {
/// An address of this machine that is this process's own, since the port that is asked is the same for all.
QString ownAddress() {
  const qint64 number = QCoreApplication::applicationPid();
  return u"127.77.%1.%2"_qs.arg(number / 250 % 250 + 1).arg(number % 250 + 1);
}
}  // namespace

TEST_F(SqlServerWire, ANamedInstanceIsReachedAtThePortThatItsMachineTells) {
  const QString machine = ownAddress();
  TdsPeer first(machine), second(machine);
  const SqlBrowser browser(machine, {{u"SQLEXPRESS"_qs, first.port()}, {u"TIMES"_qs, second.port()}});
  for (const QString& server : {machine + u"\\SQLEXPRESS"_qs, u"tcp:"_qs + machine + u"\\TIMES"_qs}) {
    ConnectionString to = connection();
    to.set(u"Data Source"_qs, server);
    odbc::OdbcDriver(options).connect(to);
  }
  EXPECT_EQ(browser.asked(), QStringList({u"SQLEXPRESS"_qs, u"TIMES"_qs}));
  EXPECT_EQ(first.logins(), 1);
  EXPECT_EQ(second.logins(), 1);
  EXPECT_EQ(peer.logins(), 0);
}

TEST_F(SqlServerWire, ANamedInstanceThatDoesNotAnswerAtItsPortIsTold) {
  const QString machine = ownAddress();
  const SqlBrowser browser(machine, {{u"SQLEXPRESS"_qs, 1}});
  ConnectionString to = connection();
  to.set(u"Data Source"_qs, machine + u"\\SQLEXPRESS"_qs);
  const QString told = failureText([&] { odbc::OdbcDriver(options).connect(to); });
  EXPECT_TRUE(told.startsWith(
      u"Cannot connect to the database Hourbook3SQL on %1\\SQLEXPRESS: no server answers under this name and "
      "port"_qs.arg(machine)))
      << qPrintable(told);
}

TEST_F(SqlServerWire, TheProgramsNameIsToldUnlessTheStringHasOne) {
  connect();
  EXPECT_EQ(peer.login().application, QCoreApplication::applicationName());
}

TEST_F(SqlServerWire, ASessionBeginsByMakingStatementsMeanTheSameEverywhere) {
  options.lockTimeoutMs = 1234;
  connect();
  for (const QString& part :
       {u"SET QUOTED_IDENTIFIER ON"_qs, u"SET ANSI_WARNINGS ON"_qs, u"SET ARITHABORT ON"_qs,
        u"SET NOCOUNT ON"_qs, u"SET XACT_ABORT OFF"_qs, u"SET IMPLICIT_TRANSACTIONS OFF"_qs,
        u"SET TEXTSIZE 2147483647"_qs, u"SET LOCK_TIMEOUT 1234"_qs})
    EXPECT_TRUE(peer.setUp().contains(part)) << qPrintable(part);
}

TEST_F(SqlServerWire, ALoginThatTheServerRefusesIsToldInItsWords) {
  peer.refuseLogin(18456, u"Login failed for user 'ann'."_qs);
  const auto open = [&] { connect(); };
  EXPECT_EQ(failureNumber(open), errors::loginFailed);
  EXPECT_EQ(failureText(open),
            u"Cannot connect to the database Hourbook3SQL on %1: Login failed for user 'ann'. [18456]"_qs.arg(
                server()));
}

TEST_F(SqlServerWire, ADatabaseThatTheServerDoesNotHaveIsToldInItsWords) {
  peer.refuseLogin(4060,
                   u"Cannot open database \"Hourbook3SQL\" requested by the login. The login failed."_qs);
  const auto open = [&] { connect(); };
  EXPECT_EQ(failureNumber(open), errors::connectionFailed);
  EXPECT_TRUE(failureText(open).contains(u"Cannot open database \"Hourbook3SQL\""))
      << qPrintable(failureText(open));
}

TEST_F(SqlServerWire, AServerThatDoesNotEncryptIsRefusedWhereEncryptionIsAskedFor) {
  const auto open = [&] { connect(u"Encrypt=yes"_qs); };
  EXPECT_EQ(failureNumber(open), errors::connectionFailed);
  EXPECT_TRUE(failureText(open).contains(u"the server does not encrypt, as Encrypt=yes asks for"))
      << qPrintable(failureText(open));
  EXPECT_EQ(peer.logins(), 0) << "nothing was sent in the clear";
  connect(u"Encrypt=no"_qs);
}

TEST_F(SqlServerWire, ATrustedConnectionWithoutATicketSaysSo) {
  const ScopedVariable noTickets("KRB5CCNAME", "FILE:/nonexistent/tickets");
  const auto open = [&] { connect(u"Integrated Security=SSPI"_qs); };
  EXPECT_EQ(failureNumber(open), errors::connectionFailed);
  EXPECT_TRUE(failureText(open).contains(u"no valid Kerberos ticket")) << qPrintable(failureText(open));
}

TEST_F(SqlServerWire, ATrustedConnectionHandsOverATicketForTheServerAndNoPassword) {
  const QString service = u"MSSQLSvc/times.hourbook.test:1433"_qs;
  KerberosRealm realm(service);
  ASSERT_TRUE(realm.problem().isEmpty()) << qPrintable(realm.problem());
  const ScopedVariable configuration("KRB5_CONFIG", realm.configuration().constData());
  const ScopedVariable tickets("KRB5CCNAME", realm.tickets().constData());
  const QString trusted = u"Integrated Security=SSPI;Server SPN="_qs;
  const auto open = [&] { connect(trusted + service); };
  EXPECT_TRUE(failureText(open).contains(u"no valid Kerberos ticket")) << qPrintable(failureText(open));
  realm.logIn();
  ASSERT_TRUE(realm.problem().isEmpty()) << qPrintable(realm.problem());
  for (const auto encryption :
       {TdsPeer::Encryption::None, TdsPeer::Encryption::Login, TdsPeer::Encryption::All}) {
    peer.encrypt(encryption);
    connect(trusted + service)->execute(u"select * from t"_qs);
    const TdsLogin login = peer.login();
    EXPECT_TRUE(login.trusted);
    EXPECT_EQ(login.user + login.password, QString()) << "the ones of the text are left out";
    constexpr char tokenOfAllMechanisms = 0x60;
    EXPECT_TRUE(login.ticket.size() > 100 && login.ticket[0] == tokenOfAllMechanisms);
  }
  EXPECT_TRUE(realm.heldTickets().contains(service)) << qPrintable(realm.heldTickets());
  peer.encrypt(TdsPeer::Encryption::None);
  const int before = peer.logins();
  const auto elsewhere = [&] { connect(trusted + u"MSSQLSvc/nowhere.hourbook.test:1433"_qs); };
  EXPECT_TRUE(failureText(elsewhere).contains(u"no valid Kerberos ticket"))
      << qPrintable(failureText(elsewhere));
  EXPECT_EQ(peer.logins(), before) << "and nobody is asked to let the user in";
}

TEST_F(SqlServerWire, AServerThatSaysNothingIsNotWaitedForWithoutEnd) {
  peer.beDeaf();
  const auto open = [&] { connect(u"Connect Timeout=1"_qs); };
  EXPECT_EQ(
      failureText(open).left(failureText(open).indexOf(u" (")),
      u"Cannot connect to the database Hourbook3SQL on %1: the server did not answer within 1 s."_qs.arg(
          server()));
}

TEST_F(SqlServerWire, NoFailureToConnectTellsThePassword) {
  EXPECT_FALSE(failureText([&] { connect(u"Encrypt=yes"_qs); }).contains(u"secret1"));
  EXPECT_FALSE(failureText([&] { connect(u"Encrypt=strict"_qs); }).contains(u"secret1"));
  EXPECT_FALSE(failureText([&] { connect(u"Data Source=127.0.0.1,1"_qs); }).contains(u"secret1"));
  EXPECT_FALSE(failureText([&] { connect(u"Data Source=no host"_qs); }).contains(u"secret1"));
  peer.refuseLogin(18456, u"Login failed for user 'ann'."_qs);
  EXPECT_FALSE(failureText([&] { connect(); }).contains(u"secret1"));
}

TEST_F(SqlServerWire, AConnectionStringThatIsCutOffAnywhereIsToldAndLeadsToNoOtherServer) {
  const ScopedVariable noTickets("KRB5CCNAME", "FILE:/nonexistent/tickets");
  const QString begin = u"Provider=SQLOLEDB.1;Connect Timeout=2;Persist Security Info=True;"_qs;
  const QString address = u"127.0.0.1,%1"_qs.arg(peer.port());
  for (const QString& who : {u"Integrated Security=SSPI"_qs, u"User ID=ann;Password=secret1"_qs}) {
    const QString text = begin + who + u";Data Source="_qs + address + u";Initial Catalog=Hourbook3SQL"_qs;
    for (qsizetype length = 0; length <= text.size(); ++length) {
      const QString cut = text.left(length);
      std::unique_ptr<Session> session;
      const auto open = [&] { session = odbc::OdbcDriver(options).connect(ConnectionString(cut)); };
      const int before = peer.logins();
      const QString told = failureText(open);
      EXPECT_NE(told.isEmpty(), session == nullptr) << qPrintable(cut);
      EXPECT_FALSE(told.contains(u"secret1")) << qPrintable(cut);
      EXPECT_EQ(peer.logins() > before, session != nullptr) << qPrintable(cut);
      if (session) {
        EXPECT_TRUE(cut.contains(address)) << qPrintable(cut);
        EXPECT_EQ(peer.login().password, u"secret1"_qs);
        EXPECT_TRUE(u"Hourbook3SQL"_qs.startsWith(peer.login().database));
      }
    }
    EXPECT_EQ(peer.logins() > 0, who.startsWith(u"User ID"_qs)) << "the other one needs a ticket";
  }
}

TEST_F(SqlServerWire, EveryTypeOfValueIsRead) {
  const Date start = Date::of(QDate(2024, 2, 5), QTime(9, 30, 15));
  const QString longText(40000, u'ö');
  const QList<Value> values{true,
                            qint16{-3},
                            qint32{-70000},
                            qint64{5000000000},
                            7.1F,
                            0.1,
                            Currency::fromTenThousandths(-4505001),
                            start,
                            u"Ärende \"x\" 漢 𝄞"_qs,
                            longText,
                            u"line 1\r\nline 2 漢"_qs};
  const QList<TdsColumn> columns{
      {u"bln"_qs, TdsType::Bit},         {u"int"_qs, TdsType::SmallInt}, {u"lng"_qs, TdsType::Int},
      {u"big"_qs, TdsType::BigInt},      {u"num"_qs, TdsType::Real},     {u"dbl"_qs, TdsType::Float},
      {u"cur"_qs, TdsType::Money},       {u"dte"_qs, TdsType::DateTime}, {u"strÅ"_qs, TdsType::NVarChar},
      {u"max"_qs, TdsType::NVarCharMax}, {u"memo"_qs, TdsType::NText}};
  peer.answerWith([&](const TdsRequest&) {
    return TdsAnswer()
        .columns(columns)
        .row(values)
        .row(QList<Value>(columns.size(), Null{}))
        .row(values)
        .done();
  });
  const Result result = connect()->execute(u"select * from t"_qs);
  const QList<Type> types{Type::Boolean,  Type::Integer, Type::Long, Type::Long, Type::Single, Type::Double,
                          Type::Currency, Type::Date,    Type::Text, Type::Memo, Type::Memo};
  ASSERT_EQ(result.columns.size(), types.size());
  ASSERT_EQ(result.rows.size(), 3);
  for (int i = 0; i < types.size(); ++i) {
    EXPECT_EQ(result.columns[i].name, columns[i].name);
    EXPECT_EQ(result.columns[i].type, types[i]) << qPrintable(columns[i].name);
    EXPECT_TRUE(result.rows[0][i] == values[i]) << qPrintable(columns[i].name);
    EXPECT_TRUE(basic::IsNull(result.rows[1][i])) << qPrintable(columns[i].name);
    EXPECT_TRUE(result.rows[2][i] == values[i]) << qPrintable(columns[i].name);
  }
  EXPECT_EQ(result.columns[8].size, 255);
}

TEST_F(SqlServerWire, AnAmountIsExactUpToTheLargest) {
  QList<Value> amounts;
  for (const qint64 units : {qint64{1}, qint64{-1}, qint64{4294967296}, std::numeric_limits<qint64>::max(),
                             std::numeric_limits<qint64>::min() + 1})
    amounts.append(Currency::fromTenThousandths(units));
  peer.answerWith([&](const TdsRequest&) {
    TdsAnswer answer;
    answer.columns({{u"cur"_qs, TdsType::Money}});
    for (const Value& amount : amounts) answer.row({amount});
    return answer.done();
  });
  const Result result = connect()->execute(u"select cur from t"_qs);
  ASSERT_EQ(result.rows.size(), amounts.size());
  for (int i = 0; i < amounts.size(); ++i) EXPECT_TRUE(result.rows[i][0] == amounts[i]) << i;
}

TEST_F(SqlServerWire, ADateIsReadToTheNearestSecond) {
  constexpr int feb5 = 45325;  // days since 1900
  constexpr int nine = 9 * 3600 * 300;
  peer.answerWith([](const TdsRequest&) {
    return TdsAnswer()
        .columns({{u"dte"_qs, TdsType::DateTime}})
        .rawDateTime(feb5, nine)
        .rawDateTime(feb5, nine - 1)  // 8:59:59.997
        .rawDateTime(feb5, nine + 100)
        .rawDateTime(feb5, 24 * 3600 * 300 - 1)
        .done();
  });
  const Result result = connect()->execute(u"select dte from t"_qs);
  ASSERT_EQ(result.rows.size(), 4);
  const Date nineSharp = Date::of(QDate(2024, 2, 5), QTime(9, 0));
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(result.rows[i][0] == Value(nineSharp)) << i;
  EXPECT_TRUE(result.rows[3][0] == Value(Date::of(QDate(2024, 2, 6))));
}

TEST_F(SqlServerWire, EveryTypeOfValueIsSentWithItsTypeAndInOneGo) {
  peer.answerWith([](const TdsRequest&) { return counts(1, 77); });
  const Result result = connect()->execute(
      u"insert into t (a, b, c, d, e, f, g, h, i, j) values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"_qs,
      {7.5F, u"Åsa 漢 𝄞"_qs, Date::of(QDate(2024, 2, 5), QTime(9, 30, 15)),
       Currency::fromTenThousandths(-4505001), qint32{-1}, qint16{-3}, 0.25, true, QString(5000, u'ö'),
       qint64{5000000000}});
  EXPECT_EQ(result.lastId, 77);
  EXPECT_EQ(result.affected, 1);
  ASSERT_EQ(peer.requests().size(), 1);
  const TdsRequest request = peer.requests().first();
  EXPECT_EQ(request.procedure, 10);
  EXPECT_TRUE(request.statement.startsWith(u"insert into t (a, b, c, d, e, f, g, h, i, j) values (@P1,"))
      << qPrintable(request.statement);
  const QList<std::pair<QString, QString>> expected{{u"real"_qs, u"7.5"_qs},
                                                    {u"nvarchar(8)"_qs, u"Åsa 漢 𝄞"_qs},
                                                    {u"datetime2(7)"_qs, u"2024-02-05 09:30:15.000"_qs},
                                                    {u"decimal(19,4)"_qs, u"-450.5001"_qs},
                                                    {u"int"_qs, u"-1"_qs},
                                                    {u"smallint"_qs, u"-3"_qs},
                                                    {u"float"_qs, u"0.25"_qs},
                                                    {u"bit"_qs, u"1"_qs},
                                                    {u"nvarchar(max)"_qs, QString(5000, u'ö')},
                                                    {u"bigint"_qs, u"5000000000"_qs}};
  ASSERT_EQ(request.parameters.size(), expected.size());
  for (int i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(request.parameters[i].type, expected[i].first);
    EXPECT_EQ(request.parameters[i].value, expected[i].second);
  }
}

TEST_F(SqlServerWire, AStatementThatIsSentAgainFollowsItsValues) {
  peer.answerWith([](const TdsRequest&) { return counts(1, 1); });
  const auto session = connect();
  const QString insert = u"insert into t (a, b) values (?, ?)"_qs;
  const QList<QList<Value>> rows{{qint32{1}, u"x"_qs}, {Null{}, u"y"_qs}, {qint32{2}, u"z"_qs},
                                 {qint32{3}, Null{}},  {Null{}, u"v"_qs}, {Null{}, Null{}},
                                 {qint32{4}, u"w"_qs}};
  for (const QList<Value>& row : rows) session->execute(insert, row);
  QStringList sent;
  for (const TdsRequest& request : peer.requests()) {
    if (!request.statement.startsWith(u"insert"_qs)) continue;  // but a question for the table's columns
    QStringList values;
    for (const TdsParameter& parameter : request.parameters) values.append(parameter.value);
    sent.append(request.statement.section(u"values "_qs, 1).section(u'\n', 0, 0) + u' ' + values.join(u','));
  }
  EXPECT_EQ(sent,
            QStringList({u"(@P1, @P2) 1,x"_qs, u"(NULL, @P1) y"_qs, u"(@P1, @P2) 2,z"_qs, u"(@P1, NULL) 3"_qs,
                         u"(NULL, @P1) v"_qs, u"(NULL, NULL) "_qs, u"(@P1, @P2) 4,w"_qs}));
}

TEST_F(SqlServerWire, AStatementWithoutParametersIsABatchInUnicode) {
  connect()->execute(u"select * from t where n = 'Åsa 漢 𝄞' and d < #2/5/2024#"_qs);
  ASSERT_EQ(peer.requests().size(), 1);
  EXPECT_FALSE(peer.requests().first().isCall);
  EXPECT_EQ(
      peer.statements().first(),
      u"select * from t where n = N'Åsa 漢 𝄞' and d < CONVERT(datetime, '2024-02-05T00:00:00', 126)"_qs);
}

TEST_F(SqlServerWire, TheCounterIsFoundBehindWhateverTriggersSay) {
  peer.answerWith([](const TdsRequest&) {
    return TdsAnswer()
        .info(50000, u"a trigger prints"_qs)
        .columns({{u"x"_qs, TdsType::Int}})
        .row({qint32{5}})
        .done()
        .counted(3)
        .columns({{{}, TdsType::Int}, {{}, TdsType::BigInt}})
        .row({qint32{1}, qint64{12}})
        .done();
  });
  const Result result = connect()->execute(u"insert into t (a) values (1)"_qs);
  EXPECT_EQ(result.lastId, 12);
  EXPECT_EQ(result.affected, 1);
  EXPECT_TRUE(peer.statements().first().endsWith(u"\nSELECT @@ROWCOUNT, CAST(SCOPE_IDENTITY() AS bigint)"));
}

TEST_F(SqlServerWire, WithoutARowThereIsNoNewCounter) {
  peer.answerWith([](const TdsRequest&) { return counts(0, 12); });
  const Result result = connect()->execute(u"insert into t (a) select a from u"_qs);
  EXPECT_EQ(result.lastId, 0);
  EXPECT_EQ(result.affected, 0);
}

TEST_F(SqlServerWire, AFailureCarriesTheServersNumberAndTextAndTheNextStatementRuns) {
  struct Case {
    int number;
    QString text;
    qint32 ours;
  };
  const QList<Case> cases{{208, u"Invalid object name 'tblÅ'."_qs, errors::tableNotFound},
                          {207, u"Invalid column name 'strNone'."_qs, errors::noSuchColumn},
                          {2627, u"Violation of PRIMARY KEY constraint 'PK'."_qs, errors::duplicateKey},
                          {547, u"The INSERT statement conflicted with the FOREIGN KEY constraint \"R\"."_qs,
                           errors::relatedRecordRequired},
                          {1205, u"Transaction was deadlocked."_qs, errors::locked},
                          {50000, u"own text"_qs, errors::statementFailed}};
  Case now = cases.first();
  peer.answerWith([&](const TdsRequest& request) {
    if (request.statement == u"select 1")
      return TdsAnswer().columns({{u"a"_qs, TdsType::Int}}).row({qint32{1}}).done();
    // the batch goes on behind it, as servers do
    TdsAnswer answer;
    answer.error(now.number, now.text).info(3621, u"The statement has been terminated."_qs);
    return answer.columns({{{}, TdsType::Int}, {{}, TdsType::BigInt}}).row({qint32{0}, Null{}}).done();
  });
  const auto session = connect();
  for (const Case& each : cases) {
    now = each;
    for (const QList<Value>& parameters : {QList<Value>(), QList<Value>{qint32{1}}}) {
      const QString statement =
          parameters.isEmpty() ? u"insert into t (a) values (1)"_qs : u"insert into t (a) values (?)"_qs;
      try {
        session->execute(statement, parameters);
        ADD_FAILURE() << each.number;
      } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), each.ours) << qPrintable(failure.description());
        for (const QString& part :
             {each.text, u"[%1]"_qs.arg(each.number), u"Hourbook3SQL on "_qs + server()})
          EXPECT_TRUE(failure.description().contains(part)) << qPrintable(failure.description());
        EXPECT_FALSE(failure.description().contains(u"FreeTDS"));
      }
      EXPECT_EQ(session->execute(u"select 1"_qs).rows.size(), 1);
    }
  }
}

TEST_F(SqlServerWire, AFailureBehindTheFirstRowsIsAFailure) {
  peer.answerWith([](const TdsRequest&) {
    return TdsAnswer().columns({{u"a"_qs, TdsType::Int}}).row({qint32{1}}).error(1205, u"deadlocked"_qs, 13);
  });
  EXPECT_EQ(failureNumber([&] { connect()->execute(u"select a from t"_qs); }), errors::locked);
}

TEST_F(SqlServerWire, ATextThatCannotBeConvertedIsNamed) {
  peer.answerWith([](const TdsRequest&) {
    return TdsAnswer().error(257, u"Implicit conversion from data type nvarchar to money is not allowed."_qs);
  });
  const auto write = [&] { connect()->execute(u"insert into t (cur) values (?)"_qs, {u"450,5"_qs}); };
  EXPECT_EQ(failureNumber(write), errors::unreadableValue);
  EXPECT_TRUE(failureText(write).contains(u"\"450,5\"")) << qPrintable(failureText(write));
}

TEST_F(SqlServerWire, ADatabaseOpenedForReadingTakesNoRows) {
  const auto session = connect(u"Mode=Read"_qs);
  session->execute(u"select * from t"_qs);
  for (const QString& sql :
       {u"insert into t (a) values (1)"_qs, u"select * into u from t"_qs, u"DROP TABLE t"_qs})
    EXPECT_EQ(failureNumber([&] { session->execute(sql); }), errors::readOnly) << qPrintable(sql);
  EXPECT_EQ(peer.statements(), QStringList{u"select * from t"_qs});
}

TEST_F(SqlServerWire, ASessionHoldsALockOfItsOwnByWhichAnotherOneKnowsItsEnd) {
  qint32 given = 0;
  peer.answerWith([&](const TdsRequest&) {
    return TdsAnswer().columns({{{}, TdsType::Int}}).row({given}).done();
  });
  QString token;
  {
    const auto session = connect();
    token = session->token();
    EXPECT_TRUE(token.startsWith(u"session "_qs)) << qPrintable(token);
    EXPECT_EQ(session->token(), token) << "which is asked for once";
    session->settle(token);
  }
  const QString lock =
      u"DECLARE @given int; EXEC @given = sys.sp_getapplock @Resource = N'%1', @LockMode = "
      "'Exclusive', @LockOwner = 'Session', @LockTimeout = %2; SELECT @given"_qs;
  EXPECT_EQ(peer.statements(), QStringList{lock.arg(token, u"0"_qs)});
  connect()->settle(token);
  EXPECT_EQ(
      peer.statements().mid(1),
      QStringList({lock.arg(token, u"10000"_qs),
                   u"EXEC sys.sp_releaseapplock @Resource = N'%1', @LockOwner = 'Session'"_qs.arg(token)}));
  given = -1;  // not within its time
  EXPECT_EQ(failureNumber([&] { connect()->settle(token); }), errors::timeout);
  EXPECT_EQ(connect()->token(), QString());
}

TEST_F(SqlServerWire, AServerThatGivesNoLocksHasNoTokens) {
  peer.answerWith(
      [](const TdsRequest&) { return TdsAnswer().error(229, u"The EXECUTE permission was denied"_qs); });
  EXPECT_EQ(connect()->token(), QString());
}

}  // namespace contract
