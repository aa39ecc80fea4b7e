// What a step leaves that is killed at one of its system calls. Each step is run under strace, which kills it
// at the call wanted; HOURBOOK_KILL_POINTS says at how many of them, spread over the step (12 unless told).
#include "databaseworld.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

using namespace hourbook;

namespace {

const QString calls =
    u"write,pwrite64,ftruncate,fsync,fdatasync,rename,renameat,renameat2,link,linkat,unlink,"
    "unlinkat"_qs;

/// A system call of a step: the n-th of its name.
struct Point {
  QString call;
  int n = 0;
};

class Interruptions : public testing::Test {
 protected:
  /// Runs the step in a process of its own; killed at the point, when one is given.
  static QByteArray run(const QString& step, const QString& folder, const Point* point = nullptr) {
    QTemporaryDir traces;
    const QString trace = traces.filePath(u"trace"_qs);
    QStringList arguments{u"-f"_qs, u"-qq"_qs, u"-o"_qs, trace, u"-e"_qs, u"trace="_qs + calls};
    if (point) arguments << u"-e"_qs << u"inject=%1:signal=KILL:when=%2"_qs.arg(point->call).arg(point->n);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_qs, u"detect_leaks=0"_qs);  // which cannot look under a tracer
    process.setProcessEnvironment(environment);
    process.start(u"strace"_qs,
                  arguments + QStringList{QString::fromUtf8(HOURBOOK_DATABASE_STEP), step, folder});
    EXPECT_TRUE(process.waitForFinished(60000)) << qPrintable(process.errorString());
    const bool killed = process.exitStatus() == QProcess::CrashExit;
    EXPECT_EQ(killed, point != nullptr) << process.readAllStandardError().constData();
    if (!killed) {
      EXPECT_EQ(process.exitCode(), 0);
    }
    QFile file(trace);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  /// The calls at which the step is to be killed, spread over all that it makes in the folder.
  static QList<Point> pointsOf(const QByteArray& trace) {
    static const QRegularExpression call(u"^\\d+\\s+(\\w+)\\("_qs);
    QList<Point> all;
    QMap<QString, int> counts;
    for (const QByteArray& line : trace.split('\n'))
      if (const auto match = call.match(QString::fromUtf8(line)); match.hasMatch())
        all.append({match.captured(1), ++counts[match.captured(1)]});
    bool told = false;
    const int wanted = qEnvironmentVariableIntValue("HOURBOOK_KILL_POINTS", &told);
    const qsizetype most = told ? wanted : 12;
    QList<Point> points;
    const qsizetype number = qMin(all.size(), most);
    for (qsizetype i = 0; i < number; ++i)
      points.append(all[number < 2 ? 0 : i * (all.size() - 1) / (number - 1)]);
    return points;
  }

  void empty() const {
    for (const QString& name : QDir(w.folder.path()).entryList(QDir::Files | QDir::Hidden))
      QFile::remove(w.path(name));
  }
  void prepare(const QByteArray& database) {
    empty();
    w.database->gConnection.reset();
    if (!database.isEmpty()) w.write(u"Hourbook3.mdb"_qs, database);
  }
  /// The database has all its tables and relations, and works.
  void expectWhole(const std::string& when) {
    w.database->gConnection.reset();
    subSetupConnection();
    ASSERT_TRUE(w.database->gConnection) << when;
    const auto file = w.other();
    for (const SchemaTable& table : fncSchemaTables()) {
      QStringList expected, found;
      for (const SchemaColumn& column : table.columns) expected.append(column.strName);
      for (const auto& column : file->columns(table.strName)) found.append(column.name);
      EXPECT_EQ(found, expected) << when;
    }
    EXPECT_EQ(platform::sql::sqlite::SqliteEngine(0, tests::noWait).relations(*file).size(), 4) << when;
    EXPECT_TRUE(file->execute(u"pragma integrity_check"_qs).rows[0][0] == platform::basic::Value(u"ok"_qs));
  }
  QStringList names(const QString& sql) const {
    QStringList list;
    for (const auto& row : w.other()->execute(sql).rows)
      list.append(platform::basic::IsNull(row[0]) ? QString() : std::get<QString>(row[0]));
    return list;
  }
  void addRows() {
    const auto file = w.other();
    file->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
    for (int n = 1; n <= 3; ++n) file->execute(u"insert into tblMeta%1 (strName) values ('v')"_qs.arg(n));
    for (int i = 0; i < 20; ++i)
      file->execute(u"insert into tblReports (strSubject, intPersonID, intMeta1ID) values ('r', 1, 1)"_qs);
  }
  void expectRows(const std::string& when) {
    EXPECT_EQ(names(u"select strPersonName from tblPersons"_qs), QStringList{u"Ann"_qs}) << when;
    EXPECT_EQ(names(u"select strSubject from tblReports"_qs).size(), 20) << when;
    for (int n = 1; n <= 3; ++n)
      EXPECT_EQ(names(u"select strName from tblMeta%1"_qs.arg(n)), QStringList{u"v"_qs}) << when;
  }
  static std::string at(const Point& point) {
    return "killed at " + point.call.toStdString() + ' ' + std::to_string(point.n);
  }

  tests::DatabaseWorld w;
};

}  // namespace

TEST_F(Interruptions, ACreationThatIsKilledIsCompletedAtTheNextStart) {
  empty();
  const QList<Point> points = pointsOf(run(u"create"_qs, w.folder.path()));
  ASSERT_GT(points.size(), 5);
  for (const Point& point : points) {
    prepare({});
    run(u"create"_qs, w.folder.path(), &point);
    if (!w.exists()) subCreateHBDatabase(w.shownPath());  // asked for again
    expectWhole(at(point));
  }
}

TEST_F(Interruptions, AnUpgradeThatIsKilledIsCompletedAtTheNextStartAndNoRowIsLost) {
  w.createOld();
  addRows();
  const QByteArray old = w.read(u"Hourbook3.mdb"_qs);
  prepare(old);
  const QList<Point> points = pointsOf(run(u"upgrade"_qs, w.folder.path()));
  ASSERT_GT(points.size(), 5);
  for (const Point& point : points) {
    prepare(old);
    run(u"upgrade"_qs, w.folder.path(), &point);
    expectWhole(at(point));
    expectRows(at(point));
    for (int n = 1; n <= 3; ++n)
      EXPECT_EQ(w.rows(u"select * from tblMeta%1 where blnEnabled = -1"_qs.arg(n)), 1) << at(point);
  }
}

TEST_F(Interruptions, ACompactionThatIsKilledLeavesTheDatabaseOrItsWholeCopy) {
  w.createCurrent();
  addRows();
  const QByteArray current = w.read(u"Hourbook3.mdb"_qs);
  const QString copy = u"tmpHourbook3.mdb.mdb"_qs;
  prepare(current);
  const QList<Point> points = pointsOf(run(u"compact"_qs, w.folder.path()));
  ASSERT_GT(points.size(), 5);
  for (const Point& point : points) {
    prepare(current);
    run(u"compact"_qs, w.folder.path(), &point);
    if (!w.exists()) {
      w.expectFailure(u"fncGetConnection"_qs, u"Rename it to \"Hourbook3.mdb\""_qs,
                      [] { subSetupConnection(); });
      ASSERT_TRUE(QFile::rename(w.path(copy), w.path())) << at(point);  // as an administrator would
    }
    expectWhole(at(point));
    expectRows(at(point));
    // what is left of the copy stands in the way of the next one, which says so; without it all is well
    w.database->gConnection.reset();
    QFile::remove(w.path(copy));
    subCompactDatabase(true);
    expectRows(at(point));
  }
}
