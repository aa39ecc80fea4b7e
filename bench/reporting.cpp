#include "bench/pairs.h"
#include "bench/roads.h"
#include "companions/sampledata/sampledatabase.h"
#include "companions/sampledata/samplelists.h"
#include "database/DatabaseValues.h"
#include "outlook/OutlookValues.h"
#include "platform/ado/registration.h"
#include "platform/automation/components.h"
#include "platform/basic/convert.h"
#include "platform/dao/registration.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/sql/sqlite/engine.h"
#include "reporting/cReportMemory.h"
#include "reporting/modReportRecordset.h"
#include "reporting/modReportToAccess.h"
#include "reporting/ReportingValues.h"
#include "settings/cGlobalSettings.h"
#include "settings/cPersonalSettings.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"

#include <QFile>
#include <QTemporaryDir>

#include <sqlite3.h>

namespace bench {

using namespace Qt::StringLiterals;
using platform::ado::Recordset;

namespace {

constexpr int rows = 199;

/// The parts of the program that store reports, over one database in a temporary folder.
struct Program {
  Program() : componentsInForce(components) {
    auto driver = std::make_shared<platform::sql::sqlite::SqliteDriver>();
    auto drivers = std::make_shared<platform::sql::Drivers>();
    drivers->add(u"Microsoft.Jet.OLEDB.4.0"_s, driver);
    platform::ado::registerComponents(components, drivers);
    platform::dao::registerComponents(components, driver,
                                      std::make_shared<platform::sql::sqlite::SqliteEngine>());
    components.add<platform::scripting::FileSystemObject>(u"Scripting.FileSystemObject"_s, [] {
      return std::make_shared<platform::scripting::FileSystemObject>();
    });
    components.add<platform::scripting::DictionaryComponent>(u"Scripting.Dictionary"_s, [] {
      return std::make_shared<platform::scripting::DictionaryComponent>();
    });
    hourbook::LoadLanguages(4);
    sampledata::makeDatabase(folder.path(), {});
    settings->gPersonalSettings = std::make_shared<hourbook::cPersonalSettings>();
    settings->gGlobalSettings = std::make_shared<hourbook::cGlobalSettings>();
    settings->gGlobalSettings->ReadGlobalSettings(2, folder.path());
    outlook->gCurrentUser = sampledata::personName();
    reporting->journalFolder = folder.filePath(u"state/reports"_s);
  }

  QString databaseFile() const { return folder.filePath(u"Hourbook3.mdb"_s); }

  platform::automation::Components components;
  platform::automation::ScopedComponents componentsInForce;
  hourbook::Shared<hourbook::ShellValues>::Scope shell;
  hourbook::Shared<hourbook::OutlookValues>::Scope outlook;
  hourbook::Shared<hourbook::DatabaseValues>::Scope database;
  hourbook::Shared<hourbook::SettingsValues>::Scope settings;
  hourbook::Shared<hourbook::ReportingValues>::Scope reporting;
  QTemporaryDir folder;
};

std::shared_ptr<Recordset> reportRecordset() {
  auto rs = hourbook::fncReportRecordset();
  for (int i = 1; i <= rows; ++i) {
    rs->AddNew();
    (*rs)[u"intRowCounter"_s].setValue(qint64(i));
    (*rs)[u"dteStartDate"_s].setValue(platform::basic::Date::of(2024, 6, 10));
    (*rs)[u"strSubject"_s].setValue(u"Row %1"_s.arg(i));
    (*rs)[u"intHours"_s].setValue(u"1.25"_s);
    int n = 0;
    for (const auto& list : sampledata::metaLists())
      (*rs)[u"strMeta%1"_s.arg(++n)].setValue(list.values.first().name);
    (*rs)[u"strBody"_s].setValue(u"Some notes"_s);
    rs->Update();
  }
  return rs;
}

/// What is written down of the rows before the first of them is stored.
hourbook::ReportRun noteOf(Recordset& rs, qint16 person) {
  const auto target = hourbook::fncAskableTarget(2, person);
  hourbook::ReportRun run;
  run.target = 2;
  run.place = target->Place();
  run.mark = target->Mark();
  for (rs.MoveFirst(); !rs.isEOF(); rs.MoveNext()) {
    hourbook::ReportedRow row;
    row.folder = u"calendar"_s;
    row.entryId = u"0123456789abcdef@calendar.example//0123456789abcdef.ics"_s;
    row.tag = u"0123456789012345678901234567890123456789"_s;
    row.line = hourbook::fncReportLine(rs);
    row.subject = row.line.subject;
    row.start = u"2024-06-10T08:00:00Z"_s;
    if (!target->TakeKeys(row.line)) qFatal("a value is missing");
    run.rows.append(row);
  }
  rs.MoveFirst();
  return run;
}

void require(int code, sqlite3* db) {
  if (code != SQLITE_OK && code != SQLITE_DONE && code != SQLITE_ROW)
    qFatal("SQLite: %s", sqlite3_errmsg(db));
}

/// The same rows into a copy of the same file, as durable: nothing but the engine.
void insertWithSqlite(const QString& file) {
  sqlite3* db = nullptr;
  require(sqlite3_open(file.toUtf8().constData(), &db), db);
  require(sqlite3_exec(db, "PRAGMA foreign_keys=ON; PRAGMA synchronous=EXTRA", nullptr, nullptr, nullptr),
          db);
  sqlite3_stmt* insert = nullptr;
  require(sqlite3_prepare_v2(
              db,
              "insert into tblReports (numHours, strSubject, strMonthName, strWeekdayName, dtmDate, "
              "curCost, dteReported, intPersonID, intMeta1ID, intMeta2ID, intMeta3ID, strBody) values "
              "(1.25, ?, 'June', 'Monday', '2024-06-10T00:00:00', 1187.5, '2024-06-15T10:00:00', 1, "
              "1, 1, 1, 'Some notes')",
              -1, &insert, nullptr),
          db);
  for (int i = 1; i <= rows; ++i) {
    const QByteArray subject = "Row " + QByteArray::number(i);
    sqlite3_bind_text(insert, 1, subject.constData(), static_cast<int>(subject.size()), SQLITE_TRANSIENT);
    require(sqlite3_step(insert), db);
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  sqlite3_close(db);
}

}  // namespace

void measureReporting() {
  Program program;
  const QString bare = program.folder.filePath(u"bare.sqlite"_s);
  QFile::copy(program.databaseFile(), bare);
  compare(
      u"report 199 rows, each committed by itself"_s, 7,
      [] {
        const auto rs = reportRecordset();
        hourbook::cReportMemory memory;
        if (!memory.Begin()) qFatal("the journal is locked");
        hourbook::fncReportToAccess(rs, true, nullptr,
                                    [&](qint16 person) { memory.Note(noteOf(*rs, person)); });
        if (!memory.IsNoted()) qFatal("nothing was written down");
        memory.Finish();
        rs->MoveFirst();
        if (platform::basic::IsNull((*rs)[u"intResult"_s].Value())) qFatal("the rows were not stored");
      },
      [&] { insertWithSqlite(bare); });
}

}  // namespace bench
