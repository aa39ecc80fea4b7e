#include "companions/settings/connectiontest.h"

#include "companions/settings/texts.h"
#include "settingshome.h"

#include <QSemaphore>
#include <QTest>

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

class TryingAConnection : public SettingsHome {
 protected:
  TryingAConnection() {
    QObject::connect(&test, &ConnectionTest::finished, [this](bool ok, const QString& text) {
      answers.append((ok ? u"yes: "_s : u"no: "_s) + text);
    });
  }
  void wait(qsizetype count) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return answers.size() >= count; }, 60000));
  }
  ConnectionTest test;
  QStringList answers;
};

TEST_F(TryingAConnection, GivesTheAnswerOfTheWork) {
  test.start([] { return ConnectionTest::Answer{true, u"fine"_s}; });
  wait(1);
  EXPECT_EQ(answers, QStringList{u"yes: fine"_s});
  EXPECT_FALSE(test.isRunning());
}

TEST_F(TryingAConnection, SaysSoWhenNoAnswerComes) {
  const auto never = std::make_shared<QSemaphore>();
  test.patienceMs = 0;
  test.start([never] {
    never->acquire();
    return ConnectionTest::Answer{true, u"too late"_s};
  });
  wait(1);
  EXPECT_EQ(answers, QStringList{u"no: "_s + phrases().LNGCONNECTIONFAILED +
                                 u"\nThere was no answer within 0 seconds."_s});
  never->release();
}

TEST_F(TryingAConnection, OnlyTheLastOneBegunAnswers) {
  const auto first = std::make_shared<QSemaphore>();
  test.start([first] {
    first->acquire();
    return ConnectionTest::Answer{true, u"first"_s};
  });
  test.start([] { return ConnectionTest::Answer{true, u"second"_s}; });
  wait(1);
  first->release();
  EXPECT_EQ(answers, QStringList{u"yes: second"_s});
}

TEST_F(TryingAConnection, MayBeThrownAwayMeanwhile) {
  const auto block = std::make_shared<QSemaphore>();
  const auto done = std::make_shared<QSemaphore>();
  {
    ConnectionTest gone;
    gone.start([block, done] {
      block->acquire();
      done->release();
      return ConnectionTest::Answer{};
    });
  }
  block->release();
  done->acquire();
  EXPECT_TRUE(answers.isEmpty());
}

/// A server that nobody has told where it is.
class UnnamedServer : public platform::sql::Driver {
 public:
  std::unique_ptr<platform::sql::Session> connect(const platform::sql::ConnectionString&) override {
    throw platform::Failure(17, u"No server was named."_s);
  }
};

TEST_F(TryingAConnection, FindsOutWhetherThereIsADriverForTheServer) {
  EXPECT_FALSE(hasDriver(u"None"_s));
  useDrivers({{u"SQLOLEDB.1"_s, std::make_shared<UnnamedServer>()}});
  EXPECT_TRUE(hasDriver(u"SQLOLEDB.1"_s));
}

TEST_F(TryingAConnection, TellsWhatTheServerSays) {
  useDrivers({{u"SQLOLEDB.1"_s, std::make_shared<UnnamedServer>()}});
  test.start(connectionWork(withLogin({}, {u"box"_s, u"Hours"_s, true, {}, {}}), {}));
  wait(1);
  EXPECT_EQ(answers, QStringList{u"no: "_s + phrases().LNGCONNECTIONFAILED + u"\nNo server was named."_s});
}

}  // namespace
}  // namespace hourbook::tests
