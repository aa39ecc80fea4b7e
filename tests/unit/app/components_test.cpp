#include "app/components.h"

#include "platform/ado/connection.h"
#include "platform/basic/failure.h"
#include "platform/dao/dao.h"
#include "platform/forms/controls.h"
#include "platform/outlook/application.h"
#include "platform/owc/chartspace.h"
#include "platform/owc/spreadsheet.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/shell.h"
#include "platform/scripting/shellapplication.h"
#include "platform/sql/errors.h"
#include "shell/start/modMain.h"
#include "tests/support/testworld.h"

#include <QFile>

namespace tests {
namespace {

using platform::automation::CreateObject;

class ComponentsOfTheMachine : public testing::Test {
 protected:
  ComponentsOfTheMachine() {
    QFile file(calendar.filePath(QStringLiteral("one.ics")));
    if (file.open(QIODevice::WriteOnly))
      file.write(
          "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Hourbook//Test//EN\r\nBEGIN:VEVENT\r\nUID:one\r\n"
          "DTSTAMP:20240501T000000Z\r\nDTSTART:20240515T090000Z\r\nDTEND:20240515T100000Z\r\nSUMMARY:"
          "Planning\r\n"
          "END:VEVENT\r\nEND:VCALENDAR\r\n");
    configuration.folder = calendar.path();
    configuration.mailboxName = QStringLiteral("Mailbox - Jane Doe");
    configuration.outlookVersion = QStringLiteral("11.0.0.8169");
    configuration.calendars.append(
        {QStringLiteral("work"), QStringLiteral("Calendar"), calendar.path(), false});
    configuration.openCalendar = QStringLiteral("work");
  }
  TestWorld world;
  QTemporaryDir calendar;
  hourbook::Configuration configuration;
};

TEST_F(ComponentsOfTheMachine, RunOutlookOverTheConfiguredCalendars) {
  hourbook::registerComponents(world.components, configuration);
  const auto outlook =
      platform::automation::GetObject<platform::outlook::Application>(QStringLiteral("Outlook.Application"));
  const auto folder = outlook->ActiveExplorer()->CurrentFolder();
  EXPECT_EQ(folder->Name(), QStringLiteral("Calendar"));
  EXPECT_EQ(folder->ParentName(), QStringLiteral("Mailbox - Jane Doe"));
  ASSERT_EQ(folder->Items().Count(), 1);
  EXPECT_EQ(folder->Items().Item(1)->Subject(), QStringLiteral("Planning"));
}

TEST_F(ComponentsOfTheMachine, AskBeforeACalendarThatHasBecomeEmptyIsWrittenTo) {
  const QString path = calendar.filePath(QStringLiteral("one.ics"));
  QByteArray events;
  for (int i = 0; i < 21; ++i)
    events +=
        "BEGIN:VEVENT\r\nUID:" + QByteArray::number(i) + "\r\nDTSTART:20240515T090000Z\r\nEND:VEVENT\r\n";
  const auto write = [&](const QByteArray& content) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + content + "END:VCALENDAR\r\n");
  };
  write(events);
  hourbook::registerComponents(world.components, configuration);
  const auto folder =
      platform::automation::GetObject<platform::outlook::Application>(QStringLiteral("Outlook.Application"))
          ->ActiveExplorer()
          ->CurrentFolder();
  EXPECT_EQ(folder->Items().Count(), 21);
  write({});
  const auto item = folder->Items().Add();
  world.dialogs.expect(
      QStringLiteral("had more than 20 appointments and shows none now. May it be written to?"),
      platform::dialogs::vbNo);
  EXPECT_THROW(item->Save(), platform::Failure);
  EXPECT_EQ(folder->Items().Count(), 0);
  world.dialogs.expect(QStringLiteral("May it be written to?"), platform::dialogs::vbYes);
  item->Save();
  EXPECT_EQ(folder->Items().Count(), 1);
}

TEST_F(ComponentsOfTheMachine, ReachServersOfBothKindsByTheirProviders) {
  hourbook::registerComponents(world.components, configuration);
  for (const char* provider :
       {"SQLOLEDB.1", "sqloledb", "SQLNCLI11", "MSOLEDBSQL", "PostgreSQL", "postgresql"}) {
    const auto connection = CreateObject<platform::ado::Connection>(QStringLiteral("ADODB.Connection"));
    connection->setConnectionString(
        QStringLiteral("Provider=%1;Integrated Security=SSPI").arg(QLatin1String(provider)));
    try {
      connection->Open();
      ADD_FAILURE() << provider << " connects to no server";
    } catch (const platform::Failure& failure) {
      EXPECT_EQ(failure.number(), platform::sql::errors::connectionFailed) << provider << failure.what();
    }
  }
}

TEST_F(ComponentsOfTheMachine, OpenNoWindowUnlessTheConfigurationNamesIt) {
  configuration.openCalendar.clear();
  hourbook::registerComponents(world.components, configuration);
  const auto outlook =
      platform::automation::GetObject<platform::outlook::Application>(QStringLiteral("Outlook.Application"));
  EXPECT_EQ(outlook->ActiveExplorer(), nullptr);
}

TEST_F(ComponentsOfTheMachine, AreFoundUnderTheirNames) {
  hourbook::registerComponents(world.components, configuration);
  EXPECT_NO_THROW(CreateObject<platform::ado::Connection>(QStringLiteral("ADODB.Connection")));
  EXPECT_NO_THROW(CreateObject<platform::dao::DBEngine>(QStringLiteral("DAO.DBEngine")));
  EXPECT_NO_THROW(
      CreateObject<platform::scripting::FileSystemObject>(QStringLiteral("Scripting.FileSystemObject")));
  EXPECT_NO_THROW(CreateObject<platform::scripting::WshShell>(QStringLiteral("Wscript.Shell")));
  EXPECT_NO_THROW(CreateObject<platform::scripting::ShellApplication>(QStringLiteral("Shell.Application")));
  EXPECT_NO_THROW(CreateObject<platform::forms::DTPicker>(QStringLiteral("MSComCtl2.DTPicker")));
  EXPECT_EQ(CreateObject<platform::owc::Spreadsheet>(QStringLiteral("OWC11.Spreadsheet"))->generation(),
            platform::owc::Generation::Office2003);
}

TEST_F(ComponentsOfTheMachine, HaveGeneration11AloneUnlessTheConfigurationSaysOtherwise) {
  hourbook::registerComponents(world.components, configuration);
  EXPECT_NO_THROW(CreateObject<platform::owc::ChartSpace>(QStringLiteral("OWC11.ChartSpace")));
  for (const char* progId : {"OWC10.Chartspace", "OWC.Chart", "OWC10.Spreadsheet", "OWC.Spreadsheet"})
    EXPECT_FALSE(world.components.has(QString::fromLatin1(progId))) << progId;
}

TEST_F(ComponentsOfTheMachine, HaveEachConfiguredGenerationUnderItsNames) {
  configuration.spreadsheetGenerations = {9, 10, 11};
  hourbook::registerComponents(world.components, configuration);
  const QList<std::tuple<int, QString, QString>> all{
      {9, QStringLiteral("OWC.Spreadsheet"), QStringLiteral("OWC.Chart")},
      {10, QStringLiteral("OWC10.Spreadsheet"), QStringLiteral("OWC10.Chartspace")},
      {11, QStringLiteral("OWC11.Spreadsheet"), QStringLiteral("OWC11.ChartSpace")}};
  for (const auto& [generation, spreadsheet, chart] : all) {
    EXPECT_EQ(static_cast<int>(CreateObject<platform::owc::Spreadsheet>(spreadsheet)->generation()),
              generation);
    EXPECT_NO_THROW(CreateObject<platform::owc::ChartSpace>(chart)) << generation;
  }
}

TEST_F(ComponentsOfTheMachine, LeadToTheFormOfTheirGenerationInTheOrder10Then9Then11) {
  const QList<std::pair<QList<int>, int>> machines{
      {{11}, 11}, {{10}, 10}, {{9}, 9}, {{9, 11}, 9}, {{10, 11}, 10}, {{9, 10}, 10}, {{9, 10, 11}, 10}};
  for (const auto& [installed, chosen] : machines) {
    platform::automation::Components components;
    const platform::automation::ScopedComponents inForce(components);
    configuration.spreadsheetGenerations = installed;
    hourbook::registerComponents(components, configuration);
    EXPECT_EQ(hourbook::fncGetOWCVersion(), chosen) << installed.size() << ' ' << installed.first();
  }
}

TEST_F(ComponentsOfTheMachine, LackTheSpreadsheetWhereTheConfigurationNamesNone) {
  configuration.spreadsheetGenerations.clear();
  hourbook::registerComponents(world.components, configuration);
  for (const char* progId : {"OWC11.ChartSpace", "OWC10.Chartspace", "OWC.Chart"})
    EXPECT_FALSE(world.components.has(QString::fromLatin1(progId))) << progId;
}

TEST_F(ComponentsOfTheMachine, TakeInTheLibrariesOfServersOnlyWhenOneIsTalkedTo) {
  hourbook::registerComponents(world.components, configuration);
  QFile maps(QStringLiteral("/proc/self/maps"));
  ASSERT_TRUE(maps.open(QIODevice::ReadOnly));
  EXPECT_FALSE(maps.readAll().contains("libpq.so"));
}

TEST_F(ComponentsOfTheMachine, LackTheDatePickersWhereTheConfigurationSwitchesThemOff) {
  configuration.datePickers = false;
  hourbook::registerComponents(world.components, configuration);
  EXPECT_FALSE(world.components.has(QStringLiteral("MSComCtl2.DTPicker")));
}

}  // namespace
}  // namespace tests
