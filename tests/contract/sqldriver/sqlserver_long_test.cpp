// Answers and texts of an SQL Server that fill many packets, encrypted ones too, and what breaks inside of
// one.
#include "platform/sql/literals.h"
#include "sqlserverwire.h"

namespace contract {

using namespace platform;
using namespace platform::sql;
using basic::Value;

namespace {

constexpr int manyCharacters = 100000;
const QList<TdsColumn> longColumns{
    {u"lng"_qs, TdsType::Int}, {u"max"_qs, TdsType::NVarCharMax}, {u"memo"_qs, TdsType::NText}};

/// Letters of one, two and three bytes in UTF-8, and pairs, so that no border falls at the same place in all.
QString longText(int characters) {
  static const QString letters = u"aж漢𝄞é週次Ω\r\n😀ß"_qs;
  QString text;
  while (text.size() < characters) text += letters;
  return text.left(characters - 1) + u'.';
}

TdsAnswer answerWith(const QString& text) {
  return TdsAnswer().columns(longColumns).row({qint32{1}, text, text}).row({qint32{2}, text, u"x"_qs}).done();
}

struct Line {
  const char* name;
  TdsPeer::Encryption encryption;
  int packetSize;
  const char* asked;
};
void PrintTo(const Line& line, std::ostream* out) {
  *out << line.name;
}

class SqlServerLongTexts : public SqlServerWire, public testing::WithParamInterface<Line> {
 protected:
  SqlServerLongTexts() {
    peer.encrypt(GetParam().encryption);
    peer.usePackets(GetParam().packetSize);
  }
  std::unique_ptr<Session> open() const { return connect(QString::fromLatin1(GetParam().asked)); }
};

}  // namespace

TEST_P(SqlServerLongTexts, AreReadWhole) {
  const QString text = wholeText(longText(manyCharacters));
  peer.answerWith([&](const TdsRequest&) { return answerWith(text); });
  const Result result = open()->execute(u"select * from t"_qs);
  ASSERT_EQ(result.rows.size(), 2);
  EXPECT_TRUE(result.rows[0][1] == Value(text));
  EXPECT_TRUE(result.rows[0][2] == Value(text));
  EXPECT_TRUE(result.rows[1] == QList<Value>({qint32{2}, text, u"x"_qs}));
}

TEST_P(SqlServerLongTexts, AreSentWholeAsParametersAndWithinAStatement) {
  const QString text = longText(manyCharacters);
  peer.answerWith([](const TdsRequest& request) {
    return request.statement.startsWith(u"insert") ? counts(1, 1) : TdsAnswer();
  });
  const auto session = open();
  session->execute(u"insert into t (a, b, c) values (?, ?, ?)"_qs, {text, qint32{7}, text});
  session->execute(u"insert into t (a) values ('%1')"_qs.arg(QString(text).replace(u"\r\n"_qs, u"  "_qs)));
  const QList<TdsRequest> requests = peer.requests();
  ASSERT_EQ(requests.size(), 2);
  ASSERT_EQ(requests[0].parameters.size(), 3);
  EXPECT_TRUE(requests[0].parameters[0].value == wholeText(text));
  EXPECT_EQ(requests[0].parameters[1].value, u"7"_qs);
  EXPECT_TRUE(requests[0].parameters[2].value == wholeText(text));
  EXPECT_TRUE(requests[1].statement.contains(
      u"values (N'"_qs + wholeText(QString(text).replace(u"\r\n"_qs, u"  "_qs)) + u"')"_qs));
}

TEST_P(SqlServerLongTexts, EndWhereverAPacketEnds) {
  // so that each byte of the last letters, of the length and of the end comes first in a packet once
  QString text;
  peer.answerWith([&](const TdsRequest&) {
    return TdsAnswer().columns({{u"s"_qs, TdsType::NVarCharMax}}).row({text}).row({u"𝄞"_qs}).done();
  });
  const auto session = open();
  const int characters = GetParam().packetSize / 2;
  for (int length = characters - 60; length <= characters + 4; ++length) {
    text = QString(length, u'ж') + u"𝄞"_qs;
    const Result result = session->execute(u"select s from t"_qs);
    ASSERT_EQ(result.rows.size(), 2) << length;
    EXPECT_TRUE(result.rows[0][0] == Value(text)) << length;
    EXPECT_TRUE(result.rows[1][0] == Value(u"𝄞"_qs)) << length;
  }
}

TEST_P(SqlServerLongTexts, ThatBreakOffInsideOfAPacketAreToldAndNothingIsSentAgain) {
  const QString text = longText(20000);
  const QString lost = u"The connection to the database Hourbook3SQL on %1 is broken: "_qs.arg(server());
  // inside of the first header, of the first packet, at its end, in the next one's header, deep in the answer
  for (const int bytes : {1, 7, 8, 9, 30, 2000, 4095, 4096, 4097, 4100, 8192, 20000, 60000, 80000}) {
    peer.answerWith([&](const TdsRequest&) { return answerWith(text).tear(bytes); });
    const auto session = open();
    const qsizetype before = peer.requests().size();
    const QString told = failureText([&] { session->execute(u"select * from t"_qs); });
    EXPECT_TRUE(told.startsWith(lost)) << bytes << qPrintable(told);
    EXPECT_EQ(failureNumber([&] { session->execute(u"select 1"_qs); }), errors::connectionFailed) << bytes;
    EXPECT_EQ(peer.requests().size(), before + 1) << bytes;
  }
}

TEST_P(SqlServerLongTexts, OfARowThatIsStoredMayBeLostInTheAnswerAndThatIsNotClaimedOtherwise) {
  for (const int bytes : {0, 3, 8, 20}) {
    peer.answerWith([&](const TdsRequest&) { return counts(1, 1).tear(bytes); });
    const auto session = open();
    const QString told = failureText(
        [&] { session->execute(u"insert into t (a) values (?)"_qs, {longText(manyCharacters)}); });
    EXPECT_TRUE(told.endsWith(u"Whether the last statement was carried out is not known."_qs))
        << bytes << qPrintable(told);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Over, SqlServerLongTexts,
    testing::Values(Line{"APlainLine", TdsPeer::Encryption::None, 4096, ""},
                    Line{"SmallPackets", TdsPeer::Encryption::None, 512, ""},
                    Line{"TheLargestPackets", TdsPeer::Encryption::None, 32767, "Packet Size=32767"},
                    Line{"AnEncryptedLogin", TdsPeer::Encryption::Login, 4096, ""},
                    Line{"AnEncryptedLine", TdsPeer::Encryption::All, 4096, "Encrypt=yes"},
                    // of which each record holds several packets, or a part of one
                    Line{"AnEncryptedLineOfSmallPackets", TdsPeer::Encryption::All, 512, "Encrypt=yes"},
                    Line{"AnEncryptedLineOfTheLargestPackets", TdsPeer::Encryption::All, 32767,
                         "Encrypt=yes;Packet Size=32767"}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- the login

TEST_F(SqlServerWire, ALoginIsEncryptedWhereTheServerCan) {
  connect();
  EXPECT_FALSE(peer.isLoginEncrypted());
  peer.encrypt(TdsPeer::Encryption::Login);
  for (const QString& more : {QString(), u"Encrypt=no"_qs}) {
    connect(more);
    EXPECT_TRUE(peer.isLoginEncrypted()) << qPrintable(more);
    EXPECT_FALSE(peer.isAllEncrypted()) << qPrintable(more);
    EXPECT_EQ(peer.login().password, u"secret1"_qs);
  }
}

TEST_F(SqlServerWire, AllIsEncryptedWhereTheStringOrTheServerAsksForIt) {
  for (const auto what : {TdsPeer::Encryption::Login, TdsPeer::Encryption::All})
    for (const QString& more :
         {u"Encrypt=yes"_qs, u"Encrypt=Mandatory"_qs, u"Use Encryption for Data=True"_qs, QString()}) {
      if (more.isEmpty() && what == TdsPeer::Encryption::Login) continue;
      peer.encrypt(what);
      peer.answerWith([](const TdsRequest&) {
        return TdsAnswer().columns({{u"a"_qs, TdsType::Int}}).row({qint32{5}}).done();
      });
      const Result result = connect(more)->execute(u"select a from t"_qs);
      EXPECT_TRUE(peer.isLoginEncrypted() && peer.isAllEncrypted()) << qPrintable(more);
      ASSERT_EQ(result.rows.size(), 1);
      EXPECT_TRUE(result.rows[0][0] == Value(qint32{5}));
    }
}

TEST_F(SqlServerWire, AnEncryptedLoginThatIsRefusedIsToldInTheServersWords) {
  for (const auto what : {TdsPeer::Encryption::Login, TdsPeer::Encryption::All}) {
    peer.encrypt(what);
    peer.refuseLogin(18456, u"Login failed for user 'ann'."_qs);
    const auto open = [&] { connect(); };
    EXPECT_EQ(failureNumber(open), errors::loginFailed);
    EXPECT_TRUE(failureText(open).contains(u"Login failed for user 'ann'. [18456]"));
    EXPECT_FALSE(failureText(open).contains(u"secret1"));
  }
}

}  // namespace contract
