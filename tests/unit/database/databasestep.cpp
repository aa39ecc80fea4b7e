// One step of the database code on the database of a folder, as a program of its own that a test can kill.
#include "database/DatabaseValues.h"
#include "database/modCreateDB.h"
#include "database/modUpgrade.h"
#include "platform/ado/registration.h"
#include "platform/automation/components.h"
#include "platform/dao/registration.h"
#include "platform/dialogs/scripted.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/sql/sqlite/engine.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  const QString step = arguments.value(1), database = arguments.value(2) + u"\\Hourbook3.mdb"_s;

  platform::automation::Components components;
  const auto driver = std::make_shared<platform::sql::sqlite::SqliteDriver>();
  const auto drivers = std::make_shared<platform::sql::Drivers>();
  drivers->add(u"Microsoft.Jet.OLEDB.4.0"_s, driver);
  platform::ado::registerComponents(components, drivers);
  platform::dao::registerComponents(components, driver,
                                    std::make_shared<platform::sql::sqlite::SqliteEngine>());
  components.add<platform::scripting::FileSystemObject>(u"Scripting.FileSystemObject"_s, [] {
    return std::make_shared<platform::scripting::FileSystemObject>();
  });
  components.add<platform::scripting::DictionaryComponent>(
      u"Scripting.Dictionary"_s, [] { return std::make_shared<platform::scripting::DictionaryComponent>(); });
  const platform::automation::ScopedComponents componentsInForce(components);
  platform::dialogs::ScriptedDialogs dialogs;
  const platform::dialogs::ScopedDialogs dialogsInForce(dialogs);
  const hourbook::Shared<hourbook::ShellValues>::Scope shell;
  const hourbook::Shared<hourbook::DatabaseValues>::Scope values;
  hourbook::LoadLanguages(4);
  hourbook::reportTarget().ReportToValue = database;

  if (step == u"create") hourbook::subCreateHBDatabase(database);
  if (step == u"upgrade") hourbook::subCheckUpgrade(database);
  if (step == u"compact") hourbook::subCompactDatabase(true);
  return 0;
}
