#pragma once
#include "database/DatabaseValues.h"
#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "database/modUpgrade.h"
#include "platform/ado/registration.h"
#include "platform/dao/registration.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/sql/errors.h"
#include "platform/sql/failing/failing.h"
#include "platform/sql/sqlite/engine.h"
#include "shell/modFileHandling.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"
#include "tests/support/testworld.h"

#include <QFile>
#include <QTemporaryDir>

namespace tests {

/// A file system whose deleting and renaming can be told to fail.
class FailingFiles : public platform::scripting::FileSystemObject {
 public:
  struct Faults {
    QString failDelete;  // part of a path
    bool failRename = false;
    std::function<void(const QString&)> looked;  // after each look for a file
  };
  explicit FailingFiles(std::shared_ptr<Faults> faults) : faults_(std::move(faults)) {}
  bool FileExists(const QString& path) const override {
    const bool found = FileSystemObject::FileExists(path);
    if (faults_->looked) faults_->looked(path);
    return found;
  }
  void DeleteFile(const QString& path, bool force) override {
    if (!faults_->failDelete.isEmpty() && path.contains(faults_->failDelete))
      throw platform::Failure(platform::failure::permissionDenied,
                              QStringLiteral("Permission denied: ") + path);
    FileSystemObject::DeleteFile(path, force);
  }
  std::shared_ptr<platform::scripting::File> GetFile(const QString& path) override {
    if (faults_->failRename)
      throw platform::Failure(platform::failure::permissionDenied,
                              QStringLiteral("Permission denied: ") + path);
    return FileSystemObject::GetFile(path);
  }

 private:
  std::shared_ptr<Faults> faults_;
};

inline constexpr auto noWait = platform::sql::sqlite::Durability::ProcessEnd;

/// What stands in place of the database file: a server's database. A program of tests that runs on one sets
/// how it is made; its tests then find the connection text in the database folder where else the file is.
class DatabaseRoad {
 public:
  virtual ~DatabaseRoad() = default;
  virtual QString name() const = 0;
  virtual QString provider() const = 0;
  virtual std::shared_ptr<platform::sql::Driver> driver() = 0;
  virtual QString connectionText() const = 0;
  /// Makes the database anew, up to date and empty.
  virtual void create() = 0;
  virtual std::unique_ptr<platform::sql::Session> connect() const = 0;
  /// All rows, to go back to.
  virtual QByteArray copy() const = 0;
  virtual void restore(const QByteArray& rows) = 0;

  static std::function<std::unique_ptr<DatabaseRoad>()>& maker() {
    static std::function<std::unique_ptr<DatabaseRoad>()> make;
    return make;
  }
};

/// The world of the database code: a database folder, English phrases, and drivers that can be told to fail.
class DatabaseWorld {
 public:
  DatabaseWorld() {
    using namespace platform;
    world.components.add<scripting::DictionaryComponent>(QStringLiteral("Scripting.Dictionary"), [] {
      return std::make_shared<scripting::DictionaryComponent>();
    });
    world.components.add<scripting::FileSystemObject>(QStringLiteral("Scripting.FileSystemObject"), [this] {
      return std::make_shared<FailingFiles>(files);
    });
    auto driver =
        std::make_shared<sql::FailingDriver>(std::make_shared<sql::sqlite::SqliteDriver>(0, noWait), plan);
    auto engine =
        std::make_shared<sql::FailingEngine>(std::make_shared<sql::sqlite::SqliteEngine>(0, noWait), plan);
    drivers->add(QStringLiteral("Microsoft.Jet.OLEDB.4.0"), driver);
    if (DatabaseRoad::maker()) road = DatabaseRoad::maker()();
    if (road) drivers->add(road->provider(), std::make_shared<sql::FailingDriver>(road->driver(), plan));
    ado::registerComponents(world.components, drivers);
    dao::registerComponents(world.components, driver, engine);
    hourbook::LoadLanguages(4);
    hourbook::subSetupFS();
    database->gReportValue = folder.path();
  }

  QString path(const QString& name = QStringLiteral("Hourbook3.mdb")) const { return folder.filePath(name); }
  /// The path as the program writes it.
  QString shownPath() const { return folder.path() + QStringLiteral("\\Hourbook3.mdb"); }
  bool exists(const QString& name = QStringLiteral("Hourbook3.mdb")) const {
    return QFile::exists(path(name));
  }
  void write(const QString& name, const QByteArray& bytes) const {
    if (road && name == hourbook::databaseFileName) {
      road->restore(bytes);
      return write(hourbook::connectionFileName, road->connectionText().toUtf8());
    }
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  QByteArray read(const QString& name) const {
    if (road && name == hourbook::databaseFileName) return road->copy();
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  /// The texts logged since `gLogToFile` was set.
  QStringList log() const {
    QFile file(world.process.folder + QStringLiteral("/NorrdalenLog.txt"));
    QStringList texts;
    if (!file.open(QIODevice::ReadOnly)) return texts;
    const QStringList lines =
        QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    for (const QString& line : lines) texts.append(line.section(u'\t', 2));
    return texts;
  }
  /// A database as the first release made it.
  void createOld() const { hourbook::subCreateHBDatabase(shownPath()); }
  /// A database that is up to date; nothing is open afterwards.
  void createCurrent() {
    if (road) {
      road->create();
      write(hourbook::connectionFileName, road->connectionText().toUtf8());
      return;
    }
    createOld();
    hourbook::subCheckUpgrade(shownPath());
    database->gConnection.reset();
    plan->clear();
  }
  /// Another program's connection to the file.
  std::unique_ptr<platform::sql::Session> other() const {
    if (road) return road->connect();
    platform::sql::ConnectionString connection;
    connection.set(QStringLiteral("Data Source"), path());
    return platform::sql::sqlite::SqliteDriver(0, noWait).connect(connection);
  }
  QStringList columns(const QString& table) const {
    QStringList names;
    for (const auto& column : other()->columns(table)) names.append(column.name);
    return names;
  }
  int rows(const QString& sql) const { return static_cast<int>(other()->execute(sql).rows.size()); }

  /// The statements must end the process with a failure report of this procedure (of any, when it is empty),
  /// whose text holds `part`.
  void expectFailure(const QString& procedure, const QString& part, const std::function<void()>& statements) {
    shell->gInErrorReport = false;
    const QString name = procedure.isEmpty() ? QString() : procedure + u' ';
    world.dialogs.expect(shell->LNGSUBROUTINE + QStringLiteral(" : ") + name, platform::dialogs::vbNo);
    EXPECT_TRUE(endsProcess(statements));
    ASSERT_FALSE(world.dialogs.shown.isEmpty());
    const QString text = world.dialogs.shown.last().text;
    EXPECT_TRUE(text.contains(part)) << qPrintable(text);
  }

  TestWorld world;
  hourbook::Shared<hourbook::ShellValues>::Scope shell;
  hourbook::Shared<hourbook::DatabaseValues>::Scope database;
  QTemporaryDir folder;
  std::shared_ptr<platform::sql::FaultPlan> plan = std::make_shared<platform::sql::FaultPlan>();
  std::shared_ptr<platform::sql::Drivers> drivers = std::make_shared<platform::sql::Drivers>();
  std::unique_ptr<DatabaseRoad> road;  // none: the database is the file
  std::shared_ptr<FailingFiles::Faults> files = std::make_shared<FailingFiles::Faults>();
};

}  // namespace tests
