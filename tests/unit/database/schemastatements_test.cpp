// What is sent to make a database and to bring an older one up to date, statement by statement.
#include "golden.h"
#include "serverworld.h"

using namespace hourbook;

namespace {

/// A state that a database may be found in.
struct State {
  const char* name;
  bool otherSettings = false;
  QList<int> enabled;  // lists that have the column
  bool body = false;
};
void PrintTo(const State& state, std::ostream* out) {
  *out << state.name;
}

void bringTo(const State& state, platform::sql::Session& session) {
  if (state.otherSettings) {
    session.execute(
        u"create table tblOtherSettings (intSettingID integer primary key autoincrement, strPropName "
        "varchar(255), strPropValue longtext)"_qs);
    session.execute(u"alter table tblPersons add strPersonCategory varchar(255)"_qs);
  }
  for (const int n : state.enabled)
    session.execute(u"alter table tblMeta%1 add blnEnabled boolean"_qs.arg(n));
  if (state.body) session.execute(u"alter table tblReports add strBody longtext"_qs);
}

class SchemaStatements : public testing::TestWithParam<State> {
 protected:
  /// The file's statements go through the recorder too, those of its engine included.
  void recordFile() {
    using namespace platform::sql;
    const auto driver = std::make_shared<tests::RecordingDriver>(
        std::make_shared<sqlite::SqliteDriver>(0, tests::noWait), w.sent);
    w.drivers->add(u"Microsoft.Jet.OLEDB.4.0"_qs, driver);
    platform::dao::registerComponents(w.world.components, driver,
                                      std::make_shared<sqlite::SqliteEngine>(0, tests::noWait));
  }
  tests::ServerWorld w;
};

}  // namespace

TEST_F(SchemaStatements, OfANewFile) {
  recordFile();
  w.createOld();
  tests::expectGolden(u"file/creation.txt"_qs, *w.sent);
}

TEST_F(SchemaStatements, OfANewDatabaseOnASqlServer) {
  w.installScript(w.shippedScript());
  w.answers.append(w.logOn(u"Team"_qs));
  w.database->blnMayCreateDatabase = true;
  w.database->frmChooseConnection = [](const QString&) { return ConnectionChoice{2, false}; };
  fncGetConnection();
  QStringList lines;
  for (const QString& piece : *w.sent) lines += piece.trimmed().split(u'\n') + QStringList{u"----"_qs};
  tests::expectGolden(u"sqlserver/creation.txt"_qs, lines);
}

TEST_P(SchemaStatements, OfAnUpgradeOfAFile) {
  recordFile();
  w.createOld();
  bringTo(GetParam(), *w.other());
  w.sent->clear();
  subCheckUpgrade(w.shownPath());
  tests::expectGolden(u"file/upgrade-from-%1.txt"_qs.arg(QLatin1String(GetParam().name)), *w.sent);
}

TEST_P(SchemaStatements, OfAnUpgradeOnASqlServer) {
  w.createOldOnServer();
  bringTo(GetParam(), *w.server->open(u"hours"_qs));
  reportTarget().ReportTo = 3;
  reportTarget().ReportToValue = w.connectionTo(u"hours"_qs);
  subCheckSQLUpgrade();
  tests::expectGolden(u"sqlserver/upgrade-from-%1.txt"_qs.arg(QLatin1String(GetParam().name)), *w.sent);
}

INSTANTIATE_TEST_SUITE_P(From, SchemaStatements,
                         testing::Values(State{"TheFirstRelease", false, {}, false},
                                         State{"OtherSettings", true, {}, false},
                                         State{"Enabled", true, {1, 2, 3}, false},
                                         State{"TheFirstListEnabledAlone", true, {1}, false},
                                         State{"BodyWithoutEnabled", true, {}, true},
                                         State{"Current", true, {1, 2, 3}, true}),
                         [](const auto& info) { return std::string(info.param.name); });
