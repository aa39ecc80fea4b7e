// hourbook-settings: sets up whose calendar is reported from, where the reports go and what else belongs to
// one user, and for an administrator what all users share.
#include "app/components.h"
#include "companions/settings/common/commonpage.h"
#include "companions/settings/connectiontest.h"
#include "companions/settings/settingswindow.h"
#include "companions/settings/texts.h"
#include "database/DatabaseValues.h"
#include "outlook/OutlookValues.h"
#include "platform/dialogs/qt/qtdialogs.h"
#include "platform/locale/locale.h"
#include "platform/process/process.h"
#include "platform/registry/ini/inifile.h"
#include "settings/frmResolveRemovedItemWindow.h"
#include "settings/SettingsValues.h"
#include "shell/modAPI.h"
#include "shell/modLanguage.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>

namespace {

using namespace Qt::StringLiterals;
using namespace hourbook;

// What a script learns from the end of the program.
constexpr int saved = 0, failed = 1, cancelled = 2, sampleWanted = 10;

/// Told in a box and on the error output, for who starts the program from a terminal or a script.
int refuse(const QString& text) {
  std::fprintf(stderr, "%s\n", qUtf8Printable(text));
  platform::dialogs::Dialogs::current().MsgBox(text, platform::dialogs::vbCritical, texts::windowTitle);
  return failed;
}

/// Who has no settings yet may look at the sample first.
int askFirst() {
  switch (desktopQuestions().choice(nullptr, texts::firstQuestion + u"\n\n"_s + texts::firstDetail,
                                    {texts::trySample, texts::setUp})) {
    case 0:
      return sampleWanted;
    case 1:
      return saved;
    default:
      return cancelled;
  }
}

int show(bool isFirstStart) {
  const QString folder = Configuration::defaultFolder();
  platform::automation::Components components;
  registerComponents(components, {});  // without a calendar: which one it is, is only chosen here
  platform::registry::IniRegistry registry(folder + u"/registry.ini"_s);
  const platform::automation::ScopedComponents componentsInForce(components);
  const platform::registry::ScopedRegistry registryInForce(registry);
  const platform::process::ScopedProcess processInForce(platform::process::systemProcess());
  const Shared<ShellValues>::Scope shell;
  const Shared<OutlookValues>::Scope outlook;
  const Shared<DatabaseValues>::Scope database;
  Shared<SettingsValues>::Scope settings;
  settings->showResolveRemovedItem = subShowResolveRemovedItem;
  LoadLanguages(fncGetlocalLanguage());
  shellValues().gListSeparator = fncGetListSeparator();
  if (isFirstStart)
    if (const int answer = askFirst(); answer != saved) return answer;
  SettingsStore store(folder);
  SettingsWindow window(store, desktopQuestions(), hasDriver, [](std::function<ReportPlace()> place) {
    return makeCommonSettingsPage(std::move(place));
  });
  return window.exec() == QDialog::Accepted ? saved : cancelled;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationName(u"hourbook-settings"_s);
  QApplication::setDesktopFileName(u"hourbook"_s);
  QCommandLineParser parser;
  parser.setApplicationDescription(
      u"Sets up Hourbook. Ends with 0 when settings were saved, 1 after a failure, 2 when they were not, and "
      u"10 "
      "when the sample is wanted first."_s);
  parser.addHelpOption();
  parser.addOption({u"first-start"_s, u"first ask whether the sample is wanted instead"_s});
  parser.process(application);
  platform::dialogs::QtDialogs dialogs;
  const platform::dialogs::ScopedDialogs dialogsInForce(dialogs);
  try {
    return show(parser.isSet(u"first-start"_s));
  } catch (const platform::Failure& failure) {
    return refuse(failure.description());
  }
}
