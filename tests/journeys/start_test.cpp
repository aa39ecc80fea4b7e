// The program itself, started as a user starts it, where it cannot begin its work.
#include "journey.h"

#include <QDir>
#include <QFile>
#include <QProcess>

namespace tests {
namespace {

using namespace Qt::StringLiterals;

/// What the program tells on its error output before it shows the same in a box and waits.
QString refusal(const QString& configuration) {
  constexpr int patience = 60000;
  QProcess program;
  QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
  variables.insert(u"HOURBOOK_CONFIG"_s, configuration);
  variables.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
  variables.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
  program.setProcessEnvironment(variables);
  program.setReadChannel(QProcess::StandardError);
  program.start(QStringLiteral(HOURBOOK_PROGRAM), QStringList());
  EXPECT_TRUE(program.waitForStarted(patience)) << qPrintable(program.errorString());
  QString line;
  while (line.isEmpty()) {
    while (!program.canReadLine() && program.waitForReadyRead(patience)) {
    }
    if (!program.canReadLine()) break;
    const QString next = QString::fromUtf8(program.readLine()).trimmed();
    if (!next.startsWith(u"This plugin does not support"_s)) line = next;
  }
  EXPECT_EQ(program.state(), QProcess::Running) << "It went without waiting for the user.";
  program.kill();
  program.waitForFinished(patience);
  return line;
}

TEST(StartJourney, WithoutAConfigurationTheProgramSaysWhatIsMissing) {
  Journey j;
  const QString file = j.configuration() + u"/platform.ini"_s;
  ASSERT_TRUE(QFile::remove(file));
  EXPECT_EQ(refusal(j.configuration()),
            u"There is no configuration: %1 does not exist. It tells which calendars there are and which of "
            u"them is "
            "open. Another folder is taken when HOURBOOK_CONFIG names one."_s.arg(file));
}

TEST(StartJourney, ACalendarFolderThatHasVanishedIsNamed) {
  Journey j;
  ASSERT_TRUE(QDir(j.calendar()).removeRecursively());
  EXPECT_EQ(refusal(j.configuration()),
            u"The configuration in %1/platform.ini cannot be used: the calendar \"Calendar\" was not found: "
            u"%2 does not "
            "exist."_s.arg(j.configuration(), j.calendar()));
}

TEST(StartJourney, AConfigurationThatIsNoneIsNamed) {
  Journey j;
  outside::write(j.configuration() + u"/platform.ini"_s, "[calendars]\nsize=many\n");
  EXPECT_EQ(refusal(j.configuration()),
            u"The configuration in %1/platform.ini cannot be used: \"calendars/size\" is "
            "\"many\" and not a number of calendars."_s.arg(j.configuration()));
}

TEST(StartJourney, WithoutAnOpenCalendarTheFirstOneIsOpened) {
  Journey j;
  const QString file = j.configuration() + u"/platform.ini"_s;
  outside::write(file, outside::content(file).replace("open=calendar\n", ""));
  j.start();
  EXPECT_EQ(j.rows().size(), 6);
}

TEST(StartJourney, WithoutPersonalSettingsTheProgramTellsAndStartsNothing) {
  Journey j;
  ASSERT_TRUE(QFile::remove(j.configuration() + u"/registry.ini"_s));
  j.world.dialogs.expect(u"Failed to read settings for the active Outlook folder!"_s,
                         platform::dialogs::vbOK);
  j.start();
  EXPECT_FALSE(j.hasWindow());
}

}  // namespace
}  // namespace tests
