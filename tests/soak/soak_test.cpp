// Eight users report into one database at once. In the usual run each has a report of some rows;
// HOURBOOK_SOAK=10000 in the environment gives each of them so many.
#include "database/DatabaseValues.h"
#include "platform/basic/convert.h"
#include "platform/sql/postgresql/driver.h"
#include "tests/contract/sqldriver/postgresqlserver.h"
#include "tests/unit/database/databaseworld.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

using namespace Qt::StringLiterals;
using platform::sql::Session;

constexpr int users = 8;

int rowsOfEach() {
  const int wanted = qEnvironmentVariableIntValue("HOURBOOK_SOAK");
  return wanted > 1 ? wanted : 50;
}

int number(Session& session, const QString& sql) {
  return platform::basic::CLng(session.execute(sql).rows.value(0).value(0));
}

/// All at once, each a process of its own; every one of them must end well. The captions of the lists are put
/// in before, as the first user of a new database does.
void letAllReport(const QString& folder) {
  ASSERT_EQ(QProcess::execute(QStringLiteral(HOURBOOK_SOAK_REPORTER), {folder, u"First"_s, u"0"_s}), 0);
  std::vector<std::unique_ptr<QProcess>> programs;
  for (int user = 1; user <= users; ++user) {
    programs.push_back(std::make_unique<QProcess>());
    programs.back()->start(QStringLiteral(HOURBOOK_SOAK_REPORTER),
                           {folder, u"User%1"_s.arg(user), QString::number(rowsOfEach())});
  }
  for (const auto& program : programs) {
    EXPECT_TRUE(program->waitForFinished(3600 * 1000));
    EXPECT_EQ(program->exitCode(), 0) << program->readAllStandardError().constData();
    EXPECT_EQ(program->readAllStandardOutput().trimmed().toInt(), rowsOfEach());
  }
}

void expectEveryRowOnce(Session& session) {
  const int rows = rowsOfEach();
  EXPECT_EQ(number(session, u"select count(*) from tblReports"_s), users * rows);
  EXPECT_EQ(number(session, u"select count(*) from (select distinct strSubject from tblReports) as x"_s),
            users * rows);
  EXPECT_EQ(number(session, u"select count(*) from tblPersons"_s), users);
  EXPECT_EQ(number(session,
                   u"select count(*) from (select intPersonID from tblReports group by intPersonID having "
                   u"count(*) = %1) as x"_s.arg(rows)),
            users);
}

TEST(Soak, EightUsersReportIntoOneFileOnASharedFolderAndEveryRowIsThereOnce) {
  tests::DatabaseWorld world;
  world.createCurrent();
  letAllReport(world.folder.path());
  const auto session = world.other();
  expectEveryRowOnce(*session);
  EXPECT_EQ(platform::basic::CStr(session->execute(u"pragma integrity_check"_s).rows[0][0]), u"ok"_s);
}

TEST(Soak, EightUsersReportIntoOneServerAndEveryRowIsThereOnce) {
  const contract::PostgresqlServer server;
  ASSERT_TRUE(server.problem().isEmpty()) << qPrintable(server.problem());
  QProcess psql;
  psql.start(u"psql"_s, {u"-X"_s, u"-q"_s, u"-v"_s, u"ON_ERROR_STOP=1"_s, u"-h"_s, server.dataSource(),
                         u"-U"_s, server.user(), u"-d"_s, u"postgres"_s, u"-f"_s,
                         QStringLiteral(HOURBOOK_RESOURCES "/CreateDBHB-PostgreSQL.sql")});
  ASSERT_TRUE(psql.waitForFinished() && psql.exitCode() == 0) << psql.readAllStandardError().constData();
  QTemporaryDir folder;
  const QString text = u"Provider=PostgreSQL;User ID=%1;Data Source=%2;Initial Catalog=Hourbook3SQL"_s.arg(
      server.user(), server.dataSource());
  QFile file(folder.filePath(hourbook::connectionFileName));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(text.toUtf8());
  file.close();
  letAllReport(folder.path());
  const auto session =
      platform::sql::postgresql::makeDriver()->connect(platform::sql::ConnectionString(text));
  expectEveryRowOnce(*session);
}

}  // namespace
