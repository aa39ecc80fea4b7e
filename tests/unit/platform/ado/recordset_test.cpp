// Recordsets over a connection.
#include "ado_fixture.h"

using namespace platform;
using namespace platform::ado;
using basic::Currency;
using basic::Value;

TEST_F(AdoTest, ATableIsReadByItsName) {
  fill({u"b"_qs, u"a"_qs});
  const auto rs = open(u"tblMeta1"_qs);
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->Fields().Count(), 5);
  EXPECT_TRUE((*rs)[u"STRNAME"_qs].Value() == Value(u"b"_qs));
  EXPECT_TRUE(rs->Fields().Item(1).Value() == Value(u"b"_qs));
  EXPECT_EQ(rs->Fields().Item(1).Name(), u"strName"_qs);
  EXPECT_EQ(rs->Fields().Item(1).Type(), adVarWChar);
  EXPECT_EQ(rs->Fields().Item(1).DefinedSize(), 20);
  EXPECT_EQ(rs->Fields().Item(0).Type(), adInteger);
  EXPECT_EQ(rs->Fields().Item(2).Type(), adCurrency);
  EXPECT_EQ(rs->Fields().Item(3).Type(), adBoolean);
  EXPECT_EQ(rs->Fields().Item(4).Type(), adDate);
  EXPECT_EQ(rs->Source(), u"tblMeta1"_qs);
}

TEST_F(AdoTest, ATableComesInTheOrderOfItsKey) {
  connection->session().execute(
      u"create table tblKeyed (strKey varchar(20) primary key, intValue integer)"_qs);
  for (const QString& key : {u"b"_qs, u"a"_qs})
    connection->session().execute(u"insert into tblKeyed (strKey) values (?)"_qs, {key});
  const auto rs = open(u"tblKeyed"_qs);
  EXPECT_TRUE((*rs)[u"strKey"_qs].Value() == Value(u"a"_qs));
  rs->MoveNext();
  EXPECT_TRUE((*rs)[u"strKey"_qs].Value() == Value(u"b"_qs));
}

TEST_F(AdoTest, ASelectIsReadInItsOrder) {
  fill({u"b"_qs, u"A"_qs, u"c"_qs});
  const auto rs = open(u"select * from tblMeta1 order by strName"_qs, false);
  QStringList names;
  while (!rs->isEOF()) {
    names.append(std::get<QString>((*rs)[u"strName"_qs].Value()));
    rs->MoveNext();
  }
  EXPECT_EQ(names, QStringList({u"A"_qs, u"b"_qs, u"c"_qs}));
  EXPECT_EQ(numberOf([&] { rs->MoveNext(); }), adErrNoCurrentRecord);
  rs->MoveFirst();
  EXPECT_TRUE((*rs)[u"strName"_qs].Value() == Value(u"A"_qs));
}

TEST_F(AdoTest, AnEmptyTableHasNeitherBeginningNorEnd) {
  const auto rs = open(u"tblMeta1"_qs);
  EXPECT_TRUE(rs->isEOF());
  EXPECT_TRUE(rs->isBOF());
  EXPECT_EQ(rs->RecordCount(), 0);
  EXPECT_EQ(numberOf([&] { rs->MoveFirst(); }), adErrNoCurrentRecord);
  EXPECT_EQ(numberOf([&] { (*rs)[u"strName"_qs].Value(); }), adErrNoCurrentRecord);
  EXPECT_EQ(numberOf([&] { rs->Find(u"strName = 'x'"_qs); }), adErrNoCurrentRecord);
}

TEST_F(AdoTest, AMissingFieldIsRefused) {
  const auto rs = open(u"tblMeta1"_qs);
  EXPECT_EQ(numberOf([&] { (*rs)[u"strBody"_qs]; }), adErrItemNotFound);
  EXPECT_EQ(numberOf([&] { rs->Fields().Item(5); }), adErrItemNotFound);
  EXPECT_EQ(numberOf([&] { rs->Fields().Item(-1); }), adErrItemNotFound);
}

TEST_F(AdoTest, ANewRowIsStoredByUpdateAndItsKeyReadBack) {
  const auto rs = open(u"tblMeta1"_qs);
  rs->AddNew();
  (*rs)[u"strName"_qs].setValue(u"Acme"_qs);
  (*rs)[u"curRate"_qs].setValue(100.5);
  EXPECT_TRUE(stored().isEmpty());
  EXPECT_FALSE(rs->isEOF());
  rs->Update();
  EXPECT_EQ(stored(), QStringList{u"Acme"_qs});
  EXPECT_TRUE((*rs)[u"intID"_qs].Value() == Value(qint32{1}));
  EXPECT_TRUE((*rs)[u"curRate"_qs].Value() == Value(Currency::fromTenThousandths(1005000)));
  EXPECT_TRUE((*rs)[u"blnEnabled"_qs].Value() == Value(false)) << "a Yes/No column knows no Null";
  EXPECT_TRUE(basic::IsNull((*rs)[u"dteWhen"_qs].Value()));
  EXPECT_EQ(rs->RecordCount(), 1);
}

TEST_F(AdoTest, ARowWithoutAnyValueCanBeStored) {
  const auto rs = open(u"tblMeta1"_qs);
  rs->AddNew();
  rs->Update();
  EXPECT_EQ(stored(), QStringList{u"(Null)"_qs});
}

TEST_F(AdoTest, ANewRowWithItsFieldIsStoredAtOnce) {
  const auto rs = open(u"tblMeta1"_qs);
  rs->AddNew(u"strName"_qs, u"Customer"_qs);
  EXPECT_EQ(stored(), QStringList{u"Customer"_qs});
  rs->Update();  // nothing more to do
  EXPECT_EQ(stored().size(), 1);
}

TEST_F(AdoTest, AChangeGoesToItsRowAlone) {
  fill({u"a"_qs, u"b"_qs, u"c"_qs});
  const auto rs = open(u"select * from tblMeta1 order by strName"_qs);
  rs->MoveNext();
  (*rs)[u"strName"_qs].setValue(u"B"_qs);
  EXPECT_TRUE((*rs)[u"strName"_qs].Value() == Value(u"B"_qs));
  rs->Update();
  EXPECT_EQ(stored(), QStringList({u"a"_qs, u"B"_qs, u"c"_qs}));
  EXPECT_TRUE(plan->statements.last().startsWith(u"select strName"));
  EXPECT_TRUE(plan->statements.contains(u"update [tblMeta1] set [strName] = ? where [intID] = ?"_qs));
}

TEST_F(AdoTest, MovingOnWritesWhatIsPending) {
  fill({u"a"_qs, u"b"_qs});
  const auto rs = open(u"tblMeta1"_qs);
  (*rs)[u"strName"_qs].setValue(u"x"_qs);
  rs->MoveNext();
  EXPECT_EQ(stored(), QStringList({u"x"_qs, u"b"_qs}));
  rs->AddNew();
  (*rs)[u"strName"_qs].setValue(u"c"_qs);
  rs->AddNew();
  EXPECT_EQ(stored(), QStringList({u"x"_qs, u"b"_qs, u"c"_qs}))
      << "beginning a new row writes the one before";
}

TEST_F(AdoTest, CancelDropsANewRowAndAChange) {
  fill({u"a"_qs});
  const auto rs = open(u"tblMeta1"_qs);
  rs->AddNew();
  (*rs)[u"strName"_qs].setValue(u"dropped"_qs);
  rs->Cancel();
  rs->AddNew();
  rs->Cancel();
  (*rs)[u"strName"_qs].setValue(u"dropped"_qs);
  rs->Cancel();
  rs->Update();
  EXPECT_EQ(stored(), QStringList{u"a"_qs});
  EXPECT_TRUE((*rs)[u"strName"_qs].Value() == Value(u"a"_qs));
}

TEST_F(AdoTest, CloseDropsWhatIsPending) {
  const auto rs = open(u"tblMeta1"_qs);
  rs->AddNew();
  (*rs)[u"strName"_qs].setValue(u"dropped"_qs);
  rs->Close();
  EXPECT_EQ(rs->State(), adStateClosed);
  EXPECT_EQ(numberOf([&] { rs->Close(); }), adErrObjectClosed);
  EXPECT_EQ(numberOf([&] { rs->isEOF(); }), adErrObjectClosed);
  EXPECT_TRUE(stored().isEmpty());
}

TEST_F(AdoTest, AFailingUpdateStoresNothingAndKeepsTheRowPending) {
  const auto rs = open(u"tblMeta1"_qs);
  plan->failContaining(u"insert into"_qs, Failure(sql::errors::diskFull, u"Not enough space on disk."_qs));
  rs->AddNew();
  (*rs)[u"strName"_qs].setValue(u"x"_qs);
  EXPECT_EQ(numberOf([&] { rs->Update(); }), sql::errors::diskFull);
  EXPECT_TRUE(stored().isEmpty());
  plan->clear();
  rs->Update();
  EXPECT_EQ(stored(), QStringList{u"x"_qs});
}

TEST_F(AdoTest, ADeletedRowIsGoneAndTheNextMoveReachesTheOneBehindIt) {
  fill({u"a"_qs, u"b"_qs, u"c"_qs});
  const auto rs = open(u"tblMeta1"_qs);
  rs->MoveNext();
  rs->Delete();
  EXPECT_EQ(stored(), QStringList({u"a"_qs, u"c"_qs}));
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_FALSE(rs->isEOF());
  EXPECT_EQ(numberOf([&] { (*rs)[u"strName"_qs].Value(); }), adErrNoCurrentRecord);
  rs->MoveNext();
  EXPECT_TRUE((*rs)[u"strName"_qs].Value() == Value(u"c"_qs));
  rs->Delete();
  rs->MoveNext();
  EXPECT_TRUE(rs->isEOF());
  EXPECT_EQ(numberOf([&] { rs->Delete(); }), adErrNoCurrentRecord);
}

TEST_F(AdoTest, ARowThatAnotherHasDeletedCannotBeUpdated) {
  fill({u"a"_qs});
  const auto rs = open(u"tblMeta1"_qs);
  connection->session().execute(u"delete from tblMeta1"_qs);
  (*rs)[u"strName"_qs].setValue(u"x"_qs);
  EXPECT_EQ(numberOf([&] { rs->Update(); }), adErrRowNotLocated);
}

TEST_F(AdoTest, ASelectWithoutTheKeyCannotBeUpdatedButTakesNewRows) {
  fill({u"a"_qs});
  const auto rs = open(u"Select strName from tblMeta1"_qs);
  EXPECT_EQ(rs->Fields().Count(), 1);
  (*rs)[u"strName"_qs].setValue(u"x"_qs);
  EXPECT_EQ(numberOf([&] { rs->Update(); }), adErrNoKeyColumn);
  rs->Cancel();
  rs->AddNew(u"strName"_qs, u"b"_qs);
  EXPECT_EQ(stored(), QStringList({u"a"_qs, u"b"_qs}));
}

TEST_F(AdoTest, AReadOnlyRecordsetRefusesChanges) {
  fill({u"a"_qs});
  const auto rs = open(u"tblMeta1"_qs, false);
  EXPECT_EQ(numberOf([&] { rs->AddNew(); }), adErrFeatureNotAvailable);
  EXPECT_EQ(numberOf([&] { rs->AddNew(u"strName"_qs, u"x"_qs); }), adErrFeatureNotAvailable);
  EXPECT_EQ(numberOf([&] { (*rs)[u"strName"_qs].setValue(u"x"_qs); }), adErrFeatureNotAvailable);
  EXPECT_EQ(numberOf([&] { rs->Delete(); }), adErrFeatureNotAvailable);
  EXPECT_EQ(stored(), QStringList{u"a"_qs});
}

TEST_F(AdoTest, FindGoesToTheRowWithoutRegardToCase) {
  fill({u"Ann"_qs, u"Åsa Ek"_qs, u"Bo"_qs});
  const auto rs = open(u"tblMeta1"_qs);
  rs->Find(u"strName = 'ÅSA ek'"_qs);
  EXPECT_TRUE((*rs)[u"strName"_qs].Value() == Value(u"Åsa Ek"_qs));
  rs->Find(u"strName = 'Ann'"_qs);
  EXPECT_TRUE(rs->isEOF()) << "it looks from the current row on";
  EXPECT_EQ(numberOf([&] { rs->Find(u"strName = 'Ann'"_qs); }), adErrNoCurrentRecord);
  rs->MoveFirst();
  rs->Find(u"[intID] = 3"_qs);
  EXPECT_TRUE((*rs)[u"strName"_qs].Value() == Value(u"Bo"_qs));
}

TEST_F(AdoTest, FindRefusesAQuoteInTheTextAndAnUnknownField) {
  fill({u"O'Hara"_qs});
  const auto rs = open(u"tblMeta1"_qs);
  EXPECT_EQ(numberOf([&] { rs->Find(u"strName = 'O'Hara'"_qs); }), adErrInvalidArgument);
  EXPECT_EQ(numberOf([&] { rs->Find(u"strOther = 'x'"_qs); }), adErrItemNotFound);
}

TEST_F(AdoTest, ATextOverItsColumnsSizeIsRefused) {
  const auto rs = open(u"tblMeta1"_qs);
  rs->AddNew();
  (*rs)[u"strName"_qs].setValue(QString(20, u'x'));
  EXPECT_EQ(numberOf([&] { (*rs)[u"strName"_qs].setValue(QString(21, u'x')); }), 3163);
  rs->Update();
  EXPECT_EQ(stored(), QStringList{QString(20, u'x')});
}

TEST_F(AdoTest, ARecordsetNeedsAnOpenConnection) {
  connection->Close();
  EXPECT_EQ(numberOf([&] { open(u"tblMeta1"_qs); }), adErrInvalidConnection);
  EXPECT_EQ(numberOf([] { Recordset().Open(); }), adErrInvalidConnection);
}

TEST_F(AdoTest, AMissingTableFailsAtOpen) {
  EXPECT_EQ(numberOf([&] { open(u"tblOtherSettings"_qs); }), sql::errors::tableNotFound);
  EXPECT_NE(numberOf([&] { open(u"select top 1 strBody from tblMeta1"_qs); }), 0);
}

TEST_F(AdoTest, AnOpenRecordsetIsNotOpenedAgain) {
  const auto rs = open(u"tblMeta1"_qs);
  EXPECT_EQ(numberOf([&] { rs->Open(); }), adErrObjectOpen);
  rs->Close();
  rs->Open();
  EXPECT_EQ(rs->Fields().Count(), 5);
}

TEST_F(AdoTest, ABatchRefusesChangesSinceNothingWouldSendThem) {
  fill({u"a"_qs});
  Recordset rs;
  rs.setActiveConnection(connection);
  rs.setSource(u"tblMeta1"_qs);
  rs.LockType = adLockBatchOptimistic;
  rs.Open();
  const QList<std::function<void()>> changes{[&] { rs.AddNew(); }, [&] { rs.AddNew(u"strName"_qs, u"y"_qs); },
                                             [&] { rs[u"strName"_qs].setValue(u"x"_qs); },
                                             [&] { rs.Update(); }, [&] { rs.Delete(); }};
  for (const auto& change : changes) {
    try {
      change();
      ADD_FAILURE();
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.number(), adErrFeatureNotAvailable);
      EXPECT_TRUE(failure.description().contains(u"UpdateBatch"));
    }
  }
  rs.MoveFirst();
  EXPECT_TRUE(rs[u"strName"_qs].Value() == Value(u"a"_qs));
  rs.MoveNext();
  EXPECT_TRUE(rs.isEOF());
  EXPECT_EQ(stored(), QStringList{u"a"_qs});
}
