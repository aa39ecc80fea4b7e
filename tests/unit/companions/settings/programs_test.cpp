// The program itself, and the script that opens it.
#include "settingshome.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

constexpr int patience = 60000;

class Programs : public SettingsHome {
 protected:
  void script(const QString& name, const QByteArray& text) {
    write(name, "#!/bin/sh\n" + text);
    QFile::setPermissions(name, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  }
  /// ./run in a tree whose programs only tell that they were called; `settingsEnd` is what the settings
  /// program ends with.
  QString run(const QStringList& arguments, int settingsEnd, int* code = nullptr) {
    const QString tree = path(u"tree"_s), bin = tree + u"/build/release/bin/"_s;
    script(tree + u"/tools/install-packages"_s, "");
    script(path(u"path/cmake"_s), "");
    write(tree + u"/run"_s, content(QStringLiteral(RUN_SCRIPT)));
    script(bin + u"hourbook"_s, "echo hourbook on ${HOURBOOK_CONFIG##*/home/} \"$@\"\n");
    script(bin + u"hourbook-settings"_s,
           "echo settings \"$@\"\nexit " + QByteArray::number(settingsEnd) + "\n");
    script(bin + u"hourbook-sampledata"_s,
           "echo sampledata\nmkdir -p \"$2/config\"\ntouch \"$2/config/platform.ini\"\n");
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(u"PATH"_s, path(u"path"_s) + u':' + variables.value(u"PATH"_s));
    variables.insert(u"HOME"_s, path(u"home"_s));
    variables.insert(u"DISPLAY"_s, u":99"_s);
    for (const char* name : {"HOURBOOK_CONFIG", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "WAYLAND_DISPLAY"})
      variables.remove(QString::fromLatin1(name));
    if (!configuration.isEmpty()) variables.insert(u"HOURBOOK_CONFIG"_s, configuration);
    QDir().mkpath(path(u"home"_s));
    process.setWorkingDirectory(path(u"home"_s));
    process.setProcessEnvironment(variables);
    process.start(u"bash"_s, QStringList{tree + u"/run"_s} + arguments);
    EXPECT_TRUE(process.waitForFinished(patience));
    if (code) *code = process.exitCode();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed().replace(u'\n', u'|');
  }
  QString configuration;  // what HOURBOOK_CONFIG names, from the home folder

  void haveSettings() { write(path(u"home/.config/hourbook/platform.ini"_s), ""); }
};

TEST_F(Programs, RunAsksFirstAndStartsOnTheSettingsMade) {
  EXPECT_EQ(run({u"more"_s}, 0), u"settings --first-start|hourbook on .config/hourbook more"_s);
}

TEST_F(Programs, RunStartsOnTheSampleWhereThatIsWanted) {
  const QString sample = u"hourbook on .local/share/hourbook-sample/config"_s;
  EXPECT_TRUE(run({}, 10).endsWith(u"|sampledata|"_s + sample));
  EXPECT_TRUE(run({u"--sample"_s}, 1).startsWith(u"Starting on the sample"_s)) << "it stands there already";
  EXPECT_TRUE(run({u"--sample"_s}, 1).endsWith(sample));
}

TEST_F(Programs, RunWithoutSettingsEndsWhereNoneWereSaved) {
  int code = -1;
  EXPECT_EQ(run({}, 2, &code), u"settings --first-start|No settings were saved."_s);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(run({}, 1, &code), u"settings --first-start"_s);
  EXPECT_EQ(code, 1);
}

TEST_F(Programs, RunOnSettingsAsksNothing) {
  haveSettings();
  EXPECT_EQ(run({}, 1), u"hourbook on .config/hourbook"_s);
}

TEST_F(Programs, RunFindsANamedConfigurationFromWhereItIsCalled) {
  write(path(u"home/own/platform.ini"_s), "");
  configuration = u"own"_s;
  EXPECT_EQ(run({}, 1), u"hourbook on own"_s);
}

TEST_F(Programs, RunOpensTheSettingsOnRequest) {
  EXPECT_EQ(run({u"--settings"_s}, 0), u"settings|hourbook on .config/hourbook"_s);
  haveSettings();
  EXPECT_EQ(run({u"--settings"_s}, 2), u"settings|hourbook on .config/hourbook"_s);
}

TEST_F(Programs, SettingsThatCannotBeReadAreNamedAndStay) {
  write(configFile(u"registry.ini"_s), "torn");
  QProcess program;
  QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
  variables.insert(u"HOURBOOK_CONFIG"_s, config());
  variables.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
  variables.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
  program.setProcessEnvironment(variables);
  program.setReadChannel(QProcess::StandardError);
  program.start(QStringLiteral(SETTINGS_PROGRAM), QStringList());
  ASSERT_TRUE(program.waitForStarted(patience));
  QString told;
  while (!told.contains(u"registry.ini"_s)) {
    if (!program.canReadLine() && !program.waitForReadyRead(patience)) break;
    told = QString::fromUtf8(program.readLine()).trimmed();
  }
  EXPECT_TRUE(told.startsWith(configFile(u"registry.ini"_s) + u": not an INI file"_s)) << qPrintable(told);
  program.kill();
  program.waitForFinished(patience);
  EXPECT_EQ(content(configFile(u"registry.ini"_s)), "torn");
}

}  // namespace
}  // namespace hourbook::tests
