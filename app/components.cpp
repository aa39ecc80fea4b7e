#include "app/components.h"

#include "platform/ado/registration.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/dao/registration.h"
#include "platform/dialogs/dialogs.h"
#include "platform/forms/controls.h"
#include "platform/outlook/application.h"
#include "platform/owc/chartspace.h"
#include "platform/owc/spreadsheet.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/shell.h"
#include "platform/scripting/shellapplication.h"
#include "platform/sql/odbc/driver.h"
#include "platform/sql/postgresql/driver.h"
#include "platform/sql/sqlite/engine.h"
#include "platform/sql/sqlite/session.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace hourbook {

using platform::automation::Components;

namespace {

template <class T>
void addPlain(Components& components, const QString& progId) {
  components.add<T>(progId, [] { return std::make_shared<T>(); });
}

/// May be thrown away at any time, and is nobody else's business.
QString indexFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
         QStringLiteral("/hourbook/calendars");
}

/// What was there is kept beside the window's place; a calendar that has become empty asks.
platform::calendar::IcalendarSafety safety() {
  using namespace platform::dialogs;
  return {QFileInfo(Configuration::placesFile()).path(), [](const QString& text) {
            return Dialogs::current().MsgBox(text, vbYesNo + vbQuestion, gTitle) == vbYes;
          }};
}

std::shared_ptr<platform::outlook::Application> openOutlook(const Configuration& configuration) {
  QList<platform::calendar::IcalendarFolder> folders;
  for (const CalendarEntry& entry : configuration.calendars)
    folders.append({entry.id, entry.name, configuration.mailboxName, entry.path, entry.readOnly});
  platform::outlook::Profile profile;
  const auto store = std::make_shared<platform::calendar::IcalendarStore>(folders, indexFolder(), safety());
  profile.stores.append(store);
  // what has changed since the last run is looked for while the window is made
  tolerate([&] { store->othersTag(configuration.openCalendar, platform::calendar::Look::Glance); });
  profile.openFolder = configuration.openCalendar;
  profile.version = configuration.outlookVersion;
  profile.draftFolder = configuration.draftFolder();
  return std::make_shared<platform::outlook::Application>(profile);
}

void registerOutlook(Components& components, const Configuration& configuration) {
  const auto application = openOutlook(configuration);
  components.addRunning<platform::outlook::Application>(QStringLiteral("Outlook.Application"),
                                                        [application] { return application; });
}

void registerDatabases(Components& components) {
  using namespace platform::sql;
  const auto driver = std::make_shared<sqlite::SqliteDriver>();
  const auto drivers = std::make_shared<Drivers>();
  drivers->add(QStringLiteral("Microsoft.Jet.OLEDB.4.0"), driver);
  const auto sqlServer = odbc::makeDriver();
  for (const QString& provider : odbc::providers()) drivers->add(provider, sqlServer);
  const auto postgres = postgresql::makeDriver();
  for (const QString& provider : postgresql::providers()) drivers->add(provider, postgres);
  platform::ado::registerComponents(components, drivers);
  platform::dao::registerComponents(components, driver, std::make_shared<sqlite::SqliteEngine>());
}

void registerScripting(Components& components) {
  using namespace platform::scripting;
  addPlain<DictionaryComponent>(components, QStringLiteral("Scripting.Dictionary"));
  addPlain<FileSystemObject>(components, QStringLiteral("Scripting.FileSystemObject"));
  addPlain<ShellApplication>(components, QStringLiteral("Shell.Application"));
  addPlain<WshShell>(components, QStringLiteral("Wscript.Shell"));
}

struct Named {
  platform::owc::Generation generation;
  QString chart, spreadsheet;
};

/// What each generation calls its two components.
const QList<Named>& generations() {
  using platform::owc::Generation;
  static const QList<Named> all{
      {Generation::Office2000, QStringLiteral("OWC.Chart"), QStringLiteral("OWC.Spreadsheet")},
      {Generation::OfficeXP, QStringLiteral("OWC10.Chartspace"), QStringLiteral("OWC10.Spreadsheet")},
      {Generation::Office2003, QStringLiteral("OWC11.ChartSpace"), QStringLiteral("OWC11.Spreadsheet")}};
  return all;
}

void registerControls(Components& components, const Configuration& configuration) {
  using namespace platform::owc;
  for (const auto& [generation, chart, spreadsheet] : generations()) {
    if (!configuration.spreadsheetGenerations.contains(static_cast<int>(generation))) continue;
    components.add<ChartSpace>(chart, [of = generation] { return std::make_shared<ChartSpace>(of); });
    components.add<Spreadsheet>(spreadsheet, [of = generation] { return std::make_shared<Spreadsheet>(of); });
  }
  if (!configuration.datePickers) return;
  components.add<platform::forms::DTPicker>(QStringLiteral("MSComCtl2.DTPicker"), [] {
    return std::make_shared<platform::forms::DTPicker>(QString());
  });
}

}  // namespace

void registerComponents(Components& components, const Configuration& configuration) {
  registerOutlook(components, configuration);
  registerDatabases(components);
  registerScripting(components);
  registerControls(components, configuration);
}

}  // namespace hourbook
