#include "shell/start/modMain.h"

#include "database/DatabaseValues.h"
#include "outlook/modOutlookSession.h"
#include "outlook/OutlookValues.h"
#include "platform/automation/components.h"
#include "platform/dialogs/dialogs.h"
#include "platform/outlook/constants.h"
#include "platform/owc/chartspace.h"
#include "reporting/modFinishReports.h"
#include "settings/cGlobalSettings.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/modAPI.h"
#include "shell/modAssistant.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/modLanguage.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

using platform::Failure;

namespace {

const QString componentsPage = QStringLiteral("https://www.microsoft.com/download");

void showCritical(const QString& text) {
  platform::dialogs::Dialogs::current().MsgBox(text, platform::dialogs::vbCritical, gTitle);
}

void connectAndReadPhrases() {
  // The common controls of this desktop need no initialising; they always draw in its current style.
  tolerate([] { fncConnectOutlook(platform::outlook::olFolderCalendar); });
  // kept: the phrases come after the connection, so its own failures quote empty phrases
  tolerate([] { LoadLanguages(fncGetlocalLanguage()); });
}

/// Takes the folder that the user has open. False: the program has nothing to report from.
bool openCalendarFolder() {
  OutlookValues& values = outlookValues();
  if (!values.gOutlookApp) {
    showCritical(phrases().LNGO2KNEEDED);
    return false;
  }
  values.gCalendarFolder = present(values.gOutlookApp->ActiveExplorer()).CurrentFolder();
  // kept: from a folder of mails the program goes without a word
  return present(values.gCalendarFolder).DefaultItemType() == platform::outlook::olAppointmentItem;
}

bool readPersonalSettings() {
  SettingsValues& values = settingsValues();
  values.gPersonalSettings = std::make_shared<cPersonalSettings>();
  if (values.gPersonalSettings->GetValuesFromSettings() &&
      values.gPersonalSettings->MetaDataLists.Count() > 0)
    return true;
  showCritical(QStringLiteral("Failed to read settings for the active Outlook folder!"));
  return false;
}

void readGlobalSettings() {
  SettingsValues& values = settingsValues();
  const cPersonalSettings& personal = *values.gPersonalSettings;
  databaseValues().gReportValue = personal.ReportValue;
  values.gGlobalSettings = std::make_shared<cGlobalSettings>();
  values.gGlobalSettings->ReportTo = personal.ReportChoice;
  values.gGlobalSettings->ReportToValue = personal.ReportValue;
  if (values.gGlobalSettings->ReadGlobalSettings(personal.ReportChoice, personal.ReportValue)) return;
  // kept: the file of the one database stands in the message for every kind of target
  showCritical(QStringLiteral("Unable to reach \r\n") + personal.ReportValue +
               QStringLiteral("\\Hourbook3.mdb"));
  subEndProcess();
}

void loadReportForm(const StartParts& parts) {
  WorkspaceValues& values = workspaceValues();
  const auto make = parts.reportForms.value(values.gOWCVersion);
  if (!make)
    throw Failure(
        platform::failure::cantCreateObject,
        QStringLiteral("This version has no report form for generation %1 of the spreadsheet component")
            .arg(values.gOWCVersion));
  values.gReportForm = make();
  values.gReportForm->Load();
}

void showReportForm() {
  WorkspaceValues& values = workspaceValues();
  values.gReportForm->Show();
  // A program without the grid stays in the list, whatever the settings ask for.
  if (settingsValues().gPersonalSettings->StartGrid && values.gGridView)
    values.gReportForm->chkGrid.setValue(1);
}

/// A failure before the calendar is known has a message of its own, without the report that others get.
void start(const StartParts& parts) try {
  if (!openCalendarFolder()) return;
  if (!readPersonalSettings()) return;
  readGlobalSettings();
  outlookValues().gCurrentUser = fncGetUserName();
  workspaceValues().gOWCVersion = fncGetOWCVersion();
  workspaceValues().newGridView = parts.newGridView;
  if (parts.newGridView) workspaceValues().gGridView = parts.newGridView();
  // before the first rows are shown: appointments that an interrupted report has stored are none of them
  subFinishReportsAtStart();
  loadReportForm(parts);
  showReportForm();
} catch (const Failure&) {
  if (outlookValues().gCalendarFolder) throw;
  showCritical(QStringLiteral("Failed to connect to your current Outlook calendar folder"));
}

bool canCreateChart(const QString& progId) {
  return !tolerate([&] { platform::automation::CreateObject<platform::owc::ChartSpace>(progId); });
}

int ask(const QString& question) {
  int answer = 0;
  const auto failed = tolerate([&] { answer = fncAskAssistant(outlookValues().gOutlookApp, question); });
  if (!failed) return answer;
  return platform::dialogs::Dialogs::current().MsgBox(
      question, platform::dialogs::vbYesNo + platform::dialogs::vbQuestion, gTitle);
}

[[noreturn]] void offerComponents() {
  const QString question = QStringLiteral(
      "Unable to start the MS Office Web Components!\r\n"
      "Please download these FREE component from Microsoft Download\r\n"
      "Do you want to go to that website now?");
  if (ask(question) == platform::dialogs::vbYes)
    subOpenInBrowser(componentsPage);
  else
    fncShowAssistantMessage(outlookValues().gOutlookApp, gTitle + QStringLiteral(" will now shut down!"));
  subEndProcess();
}

}  // namespace

void Main(const StartParts& parts) try {
  subSetOutlookHooks();
  // Made for its look at the connection files; the object that counts is made once the calendar is known.
  settingsValues().gPersonalSettings = std::make_shared<cPersonalSettings>();
  shellValues().gListSeparator = fncGetListSeparator();
  connectAndReadPhrases();
  start(parts);
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("Main"));
}

qint16 fncGetOWCVersion() {
  // kept: generation 11 is used only where neither older one is there
  if (canCreateChart(QStringLiteral("OWC10.Chartspace"))) return 10;
  if (canCreateChart(QStringLiteral("OWC.Chart"))) return 9;
  if (canCreateChart(QStringLiteral("OWC11.ChartSpace"))) return 11;
  offerComponents();
}

}  // namespace hourbook
