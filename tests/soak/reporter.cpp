// One user's program that reports rows into a shared database: FOLDER NAME ROWS. The folder holds either the
// database file or the text that leads to a server. Says on the standard output how many rows were accepted.
#include "database/DatabaseValues.h"
#include "outlook/OutlookValues.h"
#include "platform/ado/registration.h"
#include "platform/automation/components.h"
#include "platform/basic/convert.h"
#include "platform/dao/registration.h"
#include "platform/dialogs/scripted.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/sql/postgresql/driver.h"
#include "platform/sql/sqlite/engine.h"
#include "reporting/modReportRecordset.h"
#include "reporting/modReportToAccess.h"
#include "reporting/ReportingValues.h"
#include "settings/cGlobalSettings.h"
#include "settings/cPersonalSettings.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"

#include <QCoreApplication>

#include <cstdio>

using namespace Qt::StringLiterals;
namespace ado = platform::ado;

namespace {

constexpr int rowsOfAReport = 199;

void registerComponents(platform::automation::Components& components) {
  const auto driver = std::make_shared<platform::sql::sqlite::SqliteDriver>();
  const auto drivers = std::make_shared<platform::sql::Drivers>();
  drivers->add(u"Microsoft.Jet.OLEDB.4.0"_s, driver);
  drivers->add(u"PostgreSQL"_s, platform::sql::postgresql::makeDriver());
  ado::registerComponents(components, drivers);
  platform::dao::registerComponents(components, driver,
                                    std::make_shared<platform::sql::sqlite::SqliteEngine>());
  components.add<platform::scripting::FileSystemObject>(u"Scripting.FileSystemObject"_s, [] {
    return std::make_shared<platform::scripting::FileSystemObject>();
  });
  components.add<platform::scripting::DictionaryComponent>(
      u"Scripting.Dictionary"_s, [] { return std::make_shared<platform::scripting::DictionaryComponent>(); });
}

std::shared_ptr<ado::Recordset> rowsFrom(int first, int count, const QString& name) {
  auto rs = hourbook::fncReportRecordset();
  for (int i = first; i < first + count; ++i) {
    rs->AddNew();
    (*rs)[u"intRowCounter"_s].setValue(qint64(i));
    (*rs)[u"dteStartDate"_s].setValue(platform::basic::Date::of(2024, 6, 10));
    (*rs)[u"strSubject"_s].setValue(u"%1 %2"_s.arg(name).arg(i));
    (*rs)[u"intHours"_s].setValue(u"1.25"_s);
    for (int n = 1; n <= 3; ++n) (*rs)[u"strMeta%1"_s.arg(n)].setValue(QString());
    (*rs)[u"strBody"_s].setValue(u"Some notes"_s);
    rs->Update();
  }
  return rs;
}

int accepted(ado::Recordset& rs) {
  int count = 0;
  for (rs.MoveFirst(); !rs.isEOF(); rs.MoveNext()) {
    const auto result = rs[u"intResult"_s].Value();
    count += !platform::basic::IsNull(result) && platform::basic::CLng(result) == hourbook::resultAccepted;
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  const QString folder = arguments.value(1), name = arguments.value(2);
  const int rows = arguments.value(3).toInt();

  platform::automation::Components components;
  registerComponents(components);
  const platform::automation::ScopedComponents componentsInForce(components);
  platform::dialogs::ScriptedDialogs dialogs;
  const platform::dialogs::ScopedDialogs dialogsInForce(dialogs);
  const hourbook::Shared<hourbook::ShellValues>::Scope shell;
  const hourbook::Shared<hourbook::OutlookValues>::Scope outlook;
  const hourbook::Shared<hourbook::DatabaseValues>::Scope database;
  const hourbook::Shared<hourbook::SettingsValues>::Scope settings;
  const hourbook::Shared<hourbook::ReportingValues>::Scope reporting;
  hourbook::LoadLanguages(4);
  hourbook::databaseValues().gReportValue = folder;
  hourbook::outlookValues().gCurrentUser = name;
  auto& values = hourbook::settingsValues();
  values.gPersonalSettings = std::make_shared<hourbook::cPersonalSettings>();
  values.gGlobalSettings = std::make_shared<hourbook::cGlobalSettings>();
  values.gGlobalSettings->ReadGlobalSettings(2, folder);

  int count = 0;
  for (int first = 1; first <= rows; first += rowsOfAReport)
    count += accepted(
        *hourbook::fncReportToAccess(rowsFrom(first, std::min(rowsOfAReport, rows + 1 - first), name), true));
  std::printf("%d\n", count);
  return count == rows ? 0 : 2;
}
