#include "platform/outlook/application.h"
#include "shell/modErrorReport.h"
#include "tests/unit/shell/shellworld.h"

#include <QRegularExpression>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::Failure;
using platform::dialogs::vbCritical;
using platform::dialogs::vbNo;
using platform::dialogs::vbYes;
using platform::dialogs::vbYesNo;
using platform::outlook::Application;

class ErrorReport : public ShellWorld {
 protected:
  ErrorReport() {
    values.LNGERRINAPP = u"There has been an error in this application."_s;
    values.LNGERRTHISERROR = u"This error has occured:"_s;
    values.LNGERRSYSTEMERROR = u"The system error message was:"_s;
    values.LNGSUBROUTINE = u"Sub routine"_s;
    values.LNGERRLINE = u"Error on line"_s;
    values.LNGERRSENDREPORT = u"Would you like to send an e-mail with an error report?"_s;
    profile.draftFolder = drafts.path();
  }

  /// Outlook as it would be found; `connected` says whether it is connected when the failure comes.
  void installOutlook(bool connected) {
    if (connected) application = std::make_shared<Application>(profile);
    values.outlook.gOutlookApp = [this] { return application; };
    values.outlook.fncConnectOutlook = [this](qint32 folderType) {
      folderTypes.append(folderType);
      application = std::make_shared<Application>(profile);
    };
  }

  QString onlyDraft() const {
    const QStringList names = QDir(drafts.path()).entryList(QDir::Files);
    return names.size() == 1 ? contentOf(drafts.filePath(names.first())) : u"<%1 drafts>"_s.arg(names.size());
  }

  QTemporaryDir drafts;
  platform::outlook::Profile profile;
  std::shared_ptr<Application> application;
  QList<qint32> folderTypes;
};

TEST_F(ErrorReport, TheDialogQuotesStepMessageNumberProcedureAndLineInThisOrder) {
  subLog(u"Looping through current appointments"_s);
  world.dialogs.expect({}, vbNo);
  EXPECT_ENDS_PROCESS(subHandleError(u"Type mismatch"_s, 13, 42, u"subGetData"_s));
  ASSERT_EQ(world.dialogs.shown.size(), 1);
  const auto& box = world.dialogs.shown.first();
  EXPECT_EQ(box.kind, platform::dialogs::Shown::Kind::MsgBox);
  EXPECT_EQ(box.title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_EQ(box.options, vbYesNo);
  EXPECT_EQ(box.text, u"There has been an error in this application. Hourbook for Outlook Reporting ("_s +
                          fncOSName() + u")\r\n"_s + QString(70, u'-') +
                          u"\r\n\r\n"
                          "This error has occured: :\r\n"
                          "Looping through current appointments\r\n"
                          "\r\n"
                          "The system error message was: :\r\n"
                          "Type mismatch\r\n"
                          "#13\r\n"
                          "\r\n"
                          "Sub routine : subGetData \r\n"
                          "Error on line: 42\r\n\r\n"
                          "Would you like to send an e-mail with an error report??"_s);
}

TEST_F(ErrorReport, BeforeThePhrasesAreReadTheLabelsAreEmpty) {
  static_cast<Phrases&>(values) = {};
  world.dialogs.expect({}, vbNo);
  EXPECT_ENDS_PROCESS(subHandleError(u"Type mismatch"_s, 13, 7, u"Main"_s));
  EXPECT_TRUE(world.dialogs.shown.first().text.startsWith(u" Hourbook for Outlook Reporting ("_s));
  EXPECT_TRUE(world.dialogs.shown.first().text.endsWith(
      u" :\r\n\r\n\r\n :\r\nType mismatch\r\n#13\r\n\r\n : Main \r\n: 7\r\n\r\n?"_s));
}

TEST_F(ErrorReport, AFailureIsReportedWithTheLineOfTheNewestLogStep) {
  subLog(u"first"_s);
  const int line = __LINE__ + 1;
  subLog(u"second"_s);
  world.dialogs.expect(u"\r\nsecond\r\n"_s, vbNo);
  EXPECT_ENDS_PROCESS(subHandleError(Failure(-2147217900, u"Syntax error"_s), u"Report"_s));
  const QString text = world.dialogs.shown.first().text;
  EXPECT_TRUE(text.contains(u"Syntax error\r\n#-2147217900\r\n"_s));
  EXPECT_TRUE(text.contains(u"Error on line: %1\r\n"_s.arg(line)));
}

TEST_F(ErrorReport, AnsweringNoEndsTheProgramAllTheSame) {
  installOutlook(true);
  world.dialogs.expect({}, vbNo);
  EXPECT_ENDS_PROCESS(subHandleError(u"x"_s, 1, 1, u"Main"_s));
  EXPECT_EQ(onlyDraft(), u"<0 drafts>"_s);
  EXPECT_TRUE(world.process.opened.isEmpty());
}

TEST_F(ErrorReport, AnsweringYesSavesAndShowsAMailToTheSupportMailbox) {
  installOutlook(true);
  subLog(u"Doing"_s);
  world.dialogs.expect({}, vbYes);
  EXPECT_ENDS_PROCESS(subHandleError(u"Broken"_s, 5, 1, u"Main"_s));
  EXPECT_TRUE(folderTypes.isEmpty());
  const QString draft = onlyDraft();
  EXPECT_TRUE(draft.contains(fncSupportMailbox()));
  EXPECT_TRUE(draft.contains(u"Error in Hourbook for Outlook Reporting "_s)) << qPrintable(draft);
  EXPECT_EQ(world.process.opened.size(), 1);
  EXPECT_TRUE(values.gErrorBody.endsWith(u"Error on line: 1\r\nOutlook Version: 11.0.0.8169\r\n"_s));
}

TEST_F(ErrorReport, TheMailsSubjectNamesTitleVersionAndSystem) {
  installOutlook(true);
  values.gErrorBody = u"body of the mail"_s;
  EXPECT_ENDS_PROCESS(subSendErrorMail());
  ASSERT_EQ(world.process.opened.size(), 1);
  const QString link = QUrl::fromPercentEncoding(world.process.opened.first().toUtf8());
  EXPECT_TRUE(link.startsWith(u"mailto:"_s + fncSupportMailbox()));
  EXPECT_TRUE(link.contains(u"subject=Error in Hourbook for Outlook Reporting "_s + fncProgramVersion() +
                            u" ("_s + fncOSName() + u")&"_s))
      << qPrintable(link);
  EXPECT_TRUE(link.endsWith(u"body=body of the mail"_s));
}

TEST_F(ErrorReport, WithoutAConnectionOutlookIsConnectedToTheInboxFirst) {
  installOutlook(false);
  world.dialogs.expect({}, vbYes);
  EXPECT_ENDS_PROCESS(subHandleError(u"Broken"_s, 5, 1, u"Main"_s));
  EXPECT_EQ(folderTypes, QList<qint32>{6});
  EXPECT_TRUE(values.gErrorBody.contains(u"Outlook Version: 11.0.0.8169"_s));
}

TEST_F(ErrorReport, AMailThatCannotBeMadeIsToldAndTheProgramEnds) {
  world.dialogs.expect({}, vbYes);
  world.dialogs.expect(u"Failed to send error email using MS Outlook!"_s, platform::dialogs::vbOK);
  EXPECT_ENDS_PROCESS(subHandleError(u"Broken"_s, 5, 1, u"Main"_s));
  EXPECT_EQ(world.dialogs.shown.last().options, vbCritical);
  EXPECT_FALSE(values.gErrorBody.contains(u"Outlook Version"_s));
}

TEST_F(ErrorReport, AMailThatCannotBeSavedIsToldAndShownAllTheSame) {
  profile.draftFolder.clear();
  installOutlook(true);
  world.dialogs.expect(u"Failed to send error email using MS Outlook!"_s, platform::dialogs::vbOK);
  EXPECT_ENDS_PROCESS(subSendErrorMail());
  EXPECT_EQ(world.process.opened.size(), 1);
}

TEST_F(ErrorReport, ASecondFailureWhileTheDialogIsUpEndsTheProgramWithoutAWord) {
  values.gInErrorReport = true;
  EXPECT_ENDS_PROCESS(subHandleError(u"Second"_s, 5, 1, u"timCheckDateChange_Timer"_s));
  EXPECT_TRUE(world.dialogs.shown.isEmpty());
  EXPECT_TRUE(values.gErrorBody.isEmpty());
}

TEST_F(ErrorReport, TheDialogMarksThatAReportIsUnderWay) {
  world.dialogs.expect({}, vbNo);
  EXPECT_ENDS_PROCESS(subHandleError(u"First"_s, 5, 1, u"Main"_s));
  EXPECT_TRUE(values.gInErrorReport);
}

TEST_F(ErrorReport, AnEmptyLogTextReplacesTheNewestOne) {
  subLog(u"Doing"_s);
  EXPECT_EQ(fncLastLogText(), u"Doing"_s);
  subLog({});
  EXPECT_EQ(fncLastLogText(), QString());
}

TEST_F(ErrorReport, WithTheSwitchOffNoLogFileIsMade) {
  subLog(u"Doing"_s);
  EXPECT_FALSE(QFile::exists(inProgramFolder(u"NorrdalenLog.txt"_s)));
}

TEST_F(ErrorReport, WithTheSwitchOnEachTextIsALineWithTitleAndMoment) {
  values.gLogToFile = true;
  subLog(u"One"_s);
  subLog({});
  subLog(u"Two"_s);
  const QString moment = u"Hourbook for Outlook Reporting\t5/15/2024 10:00:00 AM\t"_s;
  EXPECT_EQ(contentOf(inProgramFolder(u"NorrdalenLog.txt"_s)), moment + u"One\r\n"_s + moment + u"Two\r\n"_s);
}

TEST_F(ErrorReport, ALogFileThatCannotBeWrittenIsPassedOver) {
  values.gLogToFile = true;
  QDir().mkpath(inProgramFolder(u"NorrdalenLog.txt"_s));
  EXPECT_NO_THROW(subLog(u"One"_s));
}

TEST_F(ErrorReport, TheOperatingSystemIsNamedWithItsMainVersion) {
  EXPECT_TRUE(QRegularExpression(u"^[A-Z][A-Za-z ]+ [0-9]+\\.[0-9]+$"_s).match(fncOSName()).hasMatch())
      << qPrintable(fncOSName());
}

TEST_F(ErrorReport, WindowsIsNamedByPlatformAndVersion) {
  EXPECT_EQ(fncWindowsName(2, 5, 1), u"Windows NT 5.1"_s);
  EXPECT_EQ(fncWindowsName(2, 10, 0), u"Windows NT 10.0"_s);
  EXPECT_EQ(fncWindowsName(1, 4, 0), u"Windows 95"_s);
  EXPECT_EQ(fncWindowsName(1, 4, 10), u"Windows 98"_s);
  EXPECT_EQ(fncWindowsName(1, 4, 90), u"Windows Me"_s);
  EXPECT_EQ(fncWindowsName(1, 4, 5), QString());
  EXPECT_EQ(fncWindowsName(3, 4, 0), QString());
}

TEST_F(ErrorReport, TheProgramsVersionHasThreeNumbers) {
  EXPECT_TRUE(QRegularExpression(u"^\\d+\\.\\d+\\.\\d+$"_s).match(fncProgramVersion()).hasMatch());
}

TEST_F(ErrorReport, ADialogThatCannotBeShownEndsTheProgramAndNoMailIsMade) {
  installOutlook(true);
  NoDialogs none;
  const platform::dialogs::ScopedDialogs scope(none);
  EXPECT_ENDS_PROCESS(subHandleError(u"Broken"_s, 5, 1, u"Main"_s));
  EXPECT_EQ(onlyDraft(), u"<0 drafts>"_s);
  EXPECT_TRUE(world.process.opened.isEmpty());
}

TEST_F(ErrorReport, AConnectionThatFailsOnYesStillGoesOnToTheMail) {
  installOutlook(false);
  values.outlook.fncConnectOutlook = [this](qint32) {
    application = std::make_shared<Application>(profile);
    throw Failure(5, u"No window can be opened"_s);
  };
  world.dialogs.expect({}, vbYes);
  EXPECT_ENDS_PROCESS(subHandleError(u"Broken"_s, 5, 1, u"Main"_s));
  EXPECT_TRUE(onlyDraft().contains(fncSupportMailbox())) << qPrintable(onlyDraft());
}

}  // namespace hourbook::tests
