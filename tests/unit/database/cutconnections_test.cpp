// Connection texts that are cut off anywhere: each ends in a working connection or in a message, and what is
// kept stays as it was.
#include "serverworld.h"
#include "shell/Tolerate.h"

using namespace hourbook;

namespace {

struct Form {
  const char* name;
  QString (*text)(tests::ServerWorld&);
};
void PrintTo(const Form& form, std::ostream* out) {
  *out << form.name;
}

class CutConnections : public testing::TestWithParam<Form> {
 protected:
  CutConnections() {
    w.createOldOnServer();
    text = GetParam().text(w);
  }
  /// Connects as the start does. True when there is a connection then; else the user was told why.
  bool connects(const QString& where) {
    w.database->gConnection.reset();
    w.database->blnCheckingServer = false;
    w.shell->gInErrorReport = false;
    if (w.world.dialogs.outstanding().isEmpty())
      w.world.dialogs.expect(w.shell->LNGSUBROUTINE, platform::dialogs::vbNo);
    const auto before = w.world.dialogs.shown.size();
    const bool ended = tests::endsProcess([] { subSetupConnection(); });
    EXPECT_EQ(w.world.dialogs.shown.size(), before + (ended ? 1 : 0)) << qPrintable(where);
    if (ended) {
      // "procedure", number, line and the reason itself
      EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(u"#"_qs)) << qPrintable(where);
      return false;
    }
    EXPECT_TRUE(w.database->gConnection && w.database->gConnection->State() == platform::ado::adStateOpen)
        << qPrintable(where);
    return true;
  }
  void takeBackTheLastExpectation() {
    if (!w.world.dialogs.outstanding().isEmpty()) w.world.dialogs.MsgBox(w.shell->LNGSUBROUTINE, 0, {});
  }
  QStringList names() const {
    return QDir(w.folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
  }

  tests::ServerWorld w;
  QString text;
};

}  // namespace

TEST_P(CutConnections, InTheConnectionFileAreToldAndTheFileStays) {
  for (qsizetype length = 1; length <= text.size(); ++length) {
    const QByteArray cut = text.left(length).toUtf8();
    reportTarget().ReportTo = 2;
    w.write(connectionFileName, cut);
    const bool good = connects(text.left(length));
    EXPECT_EQ(good, length == text.size()) << cut.constData();
    EXPECT_EQ(w.read(connectionFileName), cut);
    EXPECT_EQ(reportTarget().ReportTo, 3);
    EXPECT_EQ(reportTarget().ReportToValue, QString::fromUtf8(cut));
    EXPECT_EQ(names(), QStringList{connectionFileName}) << "nothing is made beside it";
  }
  takeBackTheLastExpectation();
}

TEST_P(CutConnections, InTheSettingsAreTold) {
  for (qsizetype length = 1; length <= text.size(); ++length) {
    reportTarget().ReportTo = 3;
    reportTarget().ReportToValue = text.left(length);
    const QString cut = text.left(length);
    // without a database the login's own is meant
    const bool withoutDatabase = cut.endsWith(u"Data Source=server"_qs) ||
                                 cut.endsWith(u"Data Source=server;"_qs) ||
                                 cut.endsWith(u"Initial Catalog="_qs);
    EXPECT_EQ(connects(cut), length == text.size() || withoutDatabase) << qPrintable(cut);
    EXPECT_EQ(reportTarget().ReportToValue, text.left(length));
    EXPECT_EQ(names(), QStringList()) << "nothing is made of it";
  }
  takeBackTheLastExpectation();
}

INSTANTIATE_TEST_SUITE_P(
    Of, CutConnections,
    testing::Values(Form{"ATrustedConnection",
                         [](tests::ServerWorld& w) { return w.connectionTo(u"hours"_qs); }},
                    Form{"AConnectionWithAPassword",
                         [](tests::ServerWorld&) {
                           return u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=ann;"
                                  "Password=\"s;e'c\";Data Source=server;Initial Catalog=hours"_qs;
                         }},
                    Form{"AnAccessDatabase",
                         [](tests::ServerWorld& w) {
                           // another folder's, so that what is made in this one would show
                           static const QTemporaryDir elsewhere;
                           const QString path = elsewhere.filePath(u"Hourbook3.mdb"_qs);
                           subCreateHBDatabase(path);
                           subCheckUpgrade(path);
                           w.database->gConnection.reset();
                           return fncAccessConnection(path);
                         }}),
    [](const auto& info) { return std::string(info.param.name); });
