// hourbook-sampledata: writes a sample profile, to try the program on without touching a real calendar.
#include "companions/console/consoledialogs.h"
#include "companions/sampledata/sampleprofile.h"
#include "database/DatabaseValues.h"
#include "outlook/OutlookValues.h"
#include "platform/ado/registration.h"
#include "platform/automation/components.h"
#include "platform/basic/clock.h"
#include "platform/dao/registration.h"
#include "platform/locale/locale.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/sql/sqlite/engine.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void registerComponents(platform::automation::Components& components) {
  auto driver = std::make_shared<platform::sql::sqlite::SqliteDriver>();
  auto drivers = std::make_shared<platform::sql::Drivers>();
  drivers->add(u"Microsoft.Jet.OLEDB.4.0"_s, driver);
  platform::ado::registerComponents(components, drivers);
  platform::dao::registerComponents(components, driver,
                                    std::make_shared<platform::sql::sqlite::SqliteEngine>());
  components.add<platform::scripting::FileSystemObject>(u"Scripting.FileSystemObject"_s, [] {
    return std::make_shared<platform::scripting::FileSystemObject>();
  });
  components.add<platform::scripting::DictionaryComponent>(
      u"Scripting.Dictionary"_s, [] { return std::make_shared<platform::scripting::DictionaryComponent>(); });
}

int fail(const QString& text) {
  std::fprintf(stderr, "hourbook-sampledata: %s\n", qUtf8Printable(text));
  return 1;
}

int make(const QString& folder, const sampledata::Plan& plan) {
  platform::automation::Components components;
  registerComponents(components);
  const platform::automation::ScopedComponents componentsInForce(components);
  companions::ConsoleDialogs dialogs;
  const platform::dialogs::ScopedDialogs dialogsInForce(dialogs);
  const hourbook::Shared<hourbook::ShellValues>::Scope shell;
  const hourbook::Shared<hourbook::OutlookValues>::Scope outlook;
  const hourbook::Shared<hourbook::DatabaseValues>::Scope database;
  try {
    hourbook::LoadLanguages(hourbook::fncGetlocalLanguage());
    sampledata::makeProfile(folder, plan);
  } catch (const platform::Failure& failure) {
    return fail(failure.description());
  }
  companions::say(u"A sample profile stands in "_s + folder);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(u"Writes a sample profile: calendar, lists, database, settings."_s);
  parser.addHelpOption();
  parser.addOption({u"folder"_s, u"where the profile is made; must be empty or missing"_s, u"folder"_s});
  parser.addOption({u"seed"_s, u"the same seed gives the same profile"_s, u"number"_s, u"1"_s});
  parser.addOption({u"today"_s, u"the day that the three months lie round, yyyy-mm-dd"_s, u"date"_s});
  parser.process(application);
  if (!parser.isSet(u"folder"_s)) return fail(u"--folder is missing."_s);

  sampledata::Plan plan;
  bool numeric = false;
  plan.seed = parser.value(u"seed"_s).toUInt(&numeric);
  if (!numeric) return fail(u"--seed takes a whole number."_s);
  plan.today = parser.isSet(u"today"_s) ? QDate::fromString(parser.value(u"today"_s), Qt::ISODate)
                                        : platform::basic::Clock::current().now().date();
  if (!plan.today.isValid()) return fail(u"--today takes a date such as 2024-05-15."_s);
  plan.zone = platform::basic::Clock::current().zone();
  plan.listSeparator = platform::locale::current().listSeparator();
  return make(QFileInfo(parser.value(u"folder"_s)).absoluteFilePath(), plan);
}
