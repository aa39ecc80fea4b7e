#include "platform/basic/convert.h"
#include "settings/cPersonalSettings.h"
#include "shell/modErrorReport.h"
#include "shell/modRegistryEntry.h"
#include "tests/unit/settings/settingsworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::basic::Currency;
using platform::basic::Value;

class PersonalSettings : public SettingsWorld {
 protected:
  PersonalSettings() { values.gLastLogText.clear(); }

  void writeReportPath(const QString& text) {
    writeFile(documents.filePath(u"My Hourbooks/ReportPath.txt"_s), text);
  }
  void setRegistry(const QString& key, const QString& text) {
    fncSaveRegistryValue(u"Settings"_s, key, text);
  }
  QString registry(const QString& key) { return fncGetRegistryValue(u"Settings"_s, key, u"<none>"_s); }
  static QStringList linesOf(const cPersonalSettings& settings) {
    return settings.fncMetadataList().split(u"\r\n"_s, Qt::SkipEmptyParts);
  }
};

TEST_F(PersonalSettings, WithoutAConnectionFileTheProgramsFolderHoldsAnAccessDatabase) {
  const cPersonalSettings settings;
  EXPECT_EQ(settings.ReportChoice, 2);
  EXPECT_EQ(settings.ReportValue, world.programFolder() + u'\\');
  EXPECT_EQ(fncLastLogText(), u"Assuming Access database"_s);
}

TEST_F(PersonalSettings, TheDefaultsOfANewObject) {
  const cPersonalSettings settings;
  EXPECT_EQ(settings.MetaDataLists.Count(), 0);
  EXPECT_EQ(settings.PersonalRate, Currency());
  EXPECT_FALSE(settings.FilterPrivate);
  EXPECT_FALSE(settings.FilterRecurring);
  EXPECT_FALSE(settings.FilterEvents);
  EXPECT_LT(settings.DateLastReport.year(), 1900);
  EXPECT_FALSE(settings.Convert24);
  EXPECT_EQ(platform::basic::CDbl(settings.Convert24Hours), 8);
  EXPECT_FALSE(settings.RemoveLunch);
  EXPECT_EQ(platform::basic::CDbl(settings.RemoveLunchHours), 0.75);
  EXPECT_FALSE(settings.CreateLocalCube);
  EXPECT_FALSE(settings.StartGrid);
  EXPECT_FALSE(settings.WriteSubject);
  EXPECT_EQ(settings.PaneWidth, 185);
  EXPECT_EQ(settings.PaneHeight, 600);
  EXPECT_EQ(settings.PaneDockPos, 2);
}

TEST_F(PersonalSettings, AConnectionFileInTheProgramsFolderSelectsTheServer) {
  writeFile(inProgramFolder(u"HourbookConnection.txt"_s), u"Provider=SQLOLEDB;\r\nInitial Catalog=å"_s);
  const cPersonalSettings settings;
  EXPECT_EQ(settings.ReportChoice, 3);
  EXPECT_EQ(settings.ReportValue, u"Provider=SQLOLEDB;\r\nInitial Catalog=å"_s);
  EXPECT_EQ(fncLastLogText(), u"Checking for HourbookConnection.txt"_s);
}

TEST_F(PersonalSettings, AnEmptyConnectionFileSelectsTheServerWithoutAText) {
  writeFile(inProgramFolder(u"HourbookConnection.txt"_s), {});
  const cPersonalSettings settings;
  EXPECT_EQ(settings.ReportChoice, 3);
  EXPECT_EQ(settings.ReportValue, QString());
}

TEST_F(PersonalSettings, TheReportPathFileNamesTheFolder) {
  QTemporaryDir shared;
  writeReportPath(shared.path() + u"/\r\n"_s);
  EXPECT_EQ(cPersonalSettings().fncReadReportPath(), shared.path() + u'/');
  EXPECT_EQ(cPersonalSettings().ReportValue, shared.path() + u'\\');
  writeFile(shared.filePath(u"HourbookConnection.txt"_s), u"Provider=x"_s);
  EXPECT_EQ(cPersonalSettings().ReportChoice, 3);
  EXPECT_EQ(cPersonalSettings().ReportValue, u"Provider=x"_s);
}

TEST_F(PersonalSettings, TheReportPathFileHidesTheProgramsFolder) {
  writeReportPath(documents.path());
  writeFile(inProgramFolder(u"HourbookConnection.txt"_s), u"Provider=x"_s);
  EXPECT_EQ(cPersonalSettings().ReportChoice, 2);
}

TEST_F(PersonalSettings, LookingForTheReportPathMakesNoFolder) {
  cPersonalSettings().fncReadReportPath();
  EXPECT_TRUE(QDir(documents.path()).isEmpty());
}

TEST_F(PersonalSettings, AFailureOfTheConstructorIsReported) {
  world.components.remove(u"Scripting.FileSystemObject"_s);
  class Files : public platform::scripting::FileSystemObject {
   public:
    bool FileExists(const QString&) const override { throw platform::Failure(70, u"Permission denied"_s); }
  };
  values.gFileSystem = std::make_shared<Files>();
  EXPECT_REPORTED(world, "cPersonalSettings.Class_Initialize", cPersonalSettings());
}

TEST_F(PersonalSettings, TheSettingsTextHasSixLinesAndOneForEachNamedList) {
  cPersonalSettings settings;
  settings.ReportChoice = 2;
  settings.ReportValue = u"C:\\Data\\"_s;
  settings.PersonalRate = Currency::fromDouble(450.5);
  settings.FilterEvents = true;
  settings.FilterRecurring = true;
  settings.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s, u"Bolt"_s}));
  settings.MetaDataLists.Add(listOf({}, {u"Lost"_s}));
  settings.MetaDataLists.Add(listOf(u"Task"_s, {}));
  EXPECT_EQ(settings.fncBuildBody(),
            u"2\r\nC:\\Data\\\r\n450.5\r\nTrue\r\nFalse\r\nTrue\r\nCustomer:Acme;Bolt;\r\nTask:\r\n"_s);
  EXPECT_EQ(settings.fncMetadataList(), u"Customer:Acme;Bolt;\r\nTask:\r\n"_s);
}

TEST_F(PersonalSettings, AConnectionTextOfSeveralLinesIsOneLineOfTheSettingsText) {
  for (const QString& lineBreak : {u"\r\n"_s, u"\n"_s}) {
    writeFile(inProgramFolder(u"HourbookConnection.txt"_s),
              u"Provider=SQLOLEDB;"_s + lineBreak + u"Data Source=x;"_s + lineBreak);
    cPersonalSettings first;
    first.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s}));
    EXPECT_EQ(
        first.fncBuildBody(),
        u"3\r\nProvider=SQLOLEDB;Data Source=x;\r\n0\r\nFalse\r\nFalse\r\nFalse\r\nCustomer:Acme;\r\n"_s);
    cPersonalSettings second;
    second.FromString(first.fncBuildBody());
    EXPECT_EQ(second.ReportValue, u"Provider=SQLOLEDB;Data Source=x;"_s);
    EXPECT_EQ(second.fncMetadataList(), first.fncMetadataList());
  }
}

TEST_F(PersonalSettings, EveryJoinedElementIsFollowedByTheSeparator) {
  EXPECT_EQ(cPersonalSettings().fncJoinDic({u"a"_s, u"b"_s}, u";"_s), u"a;b;"_s);
  EXPECT_EQ(cPersonalSettings().fncJoinDic({}, u";"_s), QString());
}

TEST_F(PersonalSettings, MetaLinesBecomeListsOfNames) {
  cPersonalSettings settings;
  settings.subPopulateMetadataList(u"Customer:Acme;Bolt;\r\nTask:;Support;;\r\n"_s);
  ASSERT_EQ(settings.MetaDataLists.Count(), 2);
  EXPECT_EQ(settings.MetaDataLists.Item(1)->MetaName(), u"Customer"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(1)->MetaDic->Keys(), (QStringList{u"Acme"_s, u"Bolt"_s}));
  EXPECT_FALSE(settings.MetaDataLists.Item(1)->MetaDic->Item(u"Acme"_s)->Enabled);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->MetaDic->Keys(), QStringList{u"Support"_s});
}

TEST_F(PersonalSettings, ANameWithoutValuesOrColonGivesAnEmptyList) {
  cPersonalSettings settings;
  settings.subPopulateMetadataList(u"Customer:\r\nWhole line\r\n"_s);
  ASSERT_EQ(settings.MetaDataLists.Count(), 2);
  EXPECT_EQ(settings.MetaDataLists.Item(1)->MetaDic->Count(), 0);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->MetaName(), u"Whole line"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(2)->MetaDic->Count(), 0);
}

TEST_F(PersonalSettings, AValueMayHoldAColon) {
  cPersonalSettings settings;
  settings.subPopulateMetadataList(u"Task:a:b;c;\r\n"_s);
  EXPECT_EQ(settings.MetaDataLists.Item(1)->MetaDic->Keys(), (QStringList{u"a:b"_s, u"c"_s}));
}

TEST_F(PersonalSettings, LinesWithoutANameAreSkipped) {
  cPersonalSettings settings;
  settings.subPopulateMetadataList(u":a;b;\r\n\r\nTask:c;\r\n"_s);
  ASSERT_EQ(settings.MetaDataLists.Count(), 1);
  EXPECT_EQ(settings.MetaDataLists.Item(1)->MetaName(), u"Task"_s);
}

TEST_F(PersonalSettings, ATextOfOneLineLeavesTheListsAsTheyAre) {
  cPersonalSettings settings;
  settings.subPopulateMetadataList(u"Task:c;\r\n"_s);
  settings.subPopulateMetadataList({});
  settings.subPopulateMetadataList(u"Customer:Acme;"_s);
  ASSERT_EQ(settings.MetaDataLists.Count(), 1);
  EXPECT_EQ(settings.MetaDataLists.Item(1)->MetaName(), u"Task"_s);
}

TEST_F(PersonalSettings, WhatStandsBehindTheLastLineBreakIsNoLine) {
  cPersonalSettings settings;
  settings.subPopulateMetadataList(u"Task:c;\r\nCustomer:d;"_s);
  EXPECT_EQ(linesOf(settings), QStringList{u"Task:c;"_s});
}

TEST_F(PersonalSettings, ASettingsTextReadsBack) {
  cPersonalSettings first;
  first.ReportChoice = 3;
  first.ReportValue = u"Provider=x"_s;
  first.PersonalRate = Currency::fromDouble(400);
  first.FilterEvents = first.FilterPrivate = true;
  first.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s}));
  cPersonalSettings second;
  second.FromString(first.fncBuildBody());
  EXPECT_EQ(second.fncBuildBody(), first.fncBuildBody());
}

TEST_F(PersonalSettings, TheRegistryIsReadInItsTextForm) {
  setRegistry(u"ReportChoice"_s, u"3"_s);
  setRegistry(u"ReportValue"_s, u"Provider=x"_s);
  setRegistry(u"PersonalRate"_s, u"450.5"_s);
  for (const QString& key : {u"FilterEvents"_s, u"FilterPrivate"_s, u"FilterRecurring"_s, u"Convert24"_s,
                             u"RemoveLunch"_s, u"CreateLocalCube"_s, u"StartGrid"_s, u"WriteSubject"_s})
    setRegistry(key, u"False"_s);
  setRegistry(u"MetadataList"_s, u"Customer:Acme;\r\nTask:Support;\r\n"_s);
  setRegistry(u"Convert24Hours"_s, u"7.5"_s);
  setRegistry(u"RemoveLunchHours"_s, u"0.5"_s);
  setRegistry(u"PaneWidth"_s, u"999"_s);
  cPersonalSettings settings;
  settings.StartGrid = true;
  EXPECT_TRUE(settings.GetValuesFromSettings());
  EXPECT_EQ(settings.ReportChoice, 3);
  EXPECT_EQ(settings.ReportValue, u"Provider=x"_s);
  EXPECT_EQ(settings.PersonalRate, Currency::fromDouble(450.5));
  EXPECT_FALSE(settings.FilterEvents || settings.FilterPrivate || settings.FilterRecurring);
  EXPECT_FALSE(settings.Convert24 || settings.RemoveLunch || settings.CreateLocalCube);
  EXPECT_FALSE(settings.StartGrid || settings.WriteSubject);
  EXPECT_EQ(linesOf(settings), (QStringList{u"Customer:Acme;"_s, u"Task:Support;"_s}));
  EXPECT_EQ(settings.Convert24Hours, Value(u"7.5"_s));
  EXPECT_EQ(settings.RemoveLunchHours, Value(u"0.5"_s));
  EXPECT_EQ(settings.PaneWidth, 185);
}

TEST_F(PersonalSettings, MissingRegistryValuesTakeTheirDefaults) {
  setRegistry(u"ReportChoice"_s, u"2"_s);
  cPersonalSettings settings;
  const QString folder = settings.ReportValue;
  EXPECT_TRUE(settings.GetValuesFromSettings());
  EXPECT_EQ(settings.ReportValue, folder);
  EXPECT_EQ(settings.PersonalRate, Currency());
  EXPECT_TRUE(settings.FilterEvents && settings.FilterPrivate && settings.FilterRecurring);
  EXPECT_TRUE(settings.Convert24 && settings.RemoveLunch && settings.CreateLocalCube);
  EXPECT_TRUE(settings.StartGrid && settings.WriteSubject);
  EXPECT_EQ(settings.Convert24Hours, Value(u"8"_s));
  EXPECT_EQ(settings.RemoveLunchHours, Value(u"0.75"_s));
  EXPECT_EQ(settings.MetaDataLists.Count(), 0);
}

TEST_F(PersonalSettings, ARegistryThatCannotBeReadGivesFalseAndALogText) {
  world.registry.failOpenWith = 5;
  cPersonalSettings settings;
  EXPECT_FALSE(settings.GetValuesFromSettings());
  EXPECT_EQ(fncLastLogText(), u"Could not open registry section"_s);
}

TEST_F(PersonalSettings, ARegistryValueThatIsNoneOfItsKindGivesFalse) {
  setRegistry(u"ReportChoice"_s, u"2"_s);
  setRegistry(u"Convert24"_s, u"perhaps"_s);
  cPersonalSettings settings;
  EXPECT_FALSE(settings.GetValuesFromSettings());
}

TEST_F(PersonalSettings, RubbishInTheRegistryGivesFalseAndALogTextWhicheverValueItIs) {
  const QList<std::pair<QString, QStringList>> rubbish{{u"ReportChoice"_s, {u""_s, u"x"_s, u"99999999999"_s}},
                                                       {u"PersonalRate"_s, {u""_s, u"much"_s, u"1e300"_s}},
                                                       {u"FilterEvents"_s, {u""_s}},
                                                       {u"StartGrid"_s, {u"perhaps"_s}}};
  for (const auto& [key, texts] : rubbish)
    for (const QString& text : texts) {
      world.registry = platform::registry::MemoryRegistry();
      setRegistry(u"ReportChoice"_s, u"2"_s);
      setRegistry(key, text);
      cPersonalSettings settings;
      EXPECT_FALSE(settings.GetValuesFromSettings()) << qPrintable(key) << ' ' << qPrintable(text);
      EXPECT_TRUE(fncLastLogText() == u"Type mismatch"_s || fncLastLogText() == u"Overflow"_s)
          << qPrintable(fncLastLogText());
    }
}

TEST_F(PersonalSettings, ANumberInTheRegistryWhereATextBelongsGivesFalse) {
  world.registry.setValue(u"Software\\Norrdalen\\Hourbook for Outlook\\Settings"_s, u"ReportChoice"_s,
                          qint32(2));
  cPersonalSettings settings;
  EXPECT_FALSE(settings.GetValuesFromSettings());
  EXPECT_EQ(fncLastLogText(), u"Registry data not a string"_s);
}

TEST_F(PersonalSettings, ASecondReadingKeepsTheListsWhereTheRegistryNamesNone) {
  setRegistry(u"ReportChoice"_s, u"2"_s);
  setRegistry(u"MetadataList"_s, u"Customer:Acme;\r\n"_s);
  cPersonalSettings settings;
  EXPECT_TRUE(settings.GetValuesFromSettings());
  EXPECT_TRUE(settings.GetValuesFromSettings());
  EXPECT_EQ(linesOf(settings), QStringList{u"Customer:Acme;"_s});
  setRegistry(u"MetadataList"_s, QString());
  EXPECT_TRUE(settings.GetValuesFromSettings());
  EXPECT_EQ(linesOf(settings), QStringList{u"Customer:Acme;"_s});
}

TEST_F(PersonalSettings, SavingWritesEveryValueToTheRegistryAsText) {
  cPersonalSettings settings;
  settings.ReportChoice = 2;
  settings.ReportValue = u"C:\\Data\\"_s;
  settings.PersonalRate = Currency::fromDouble(450.5);
  settings.FilterEvents = true;
  settings.StartGrid = true;
  settings.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s}));
  settings.SaveSettings();
  const QList<std::pair<QString, QString>> expected{{u"ReportChoice"_s, u"2"_s},
                                                    {u"ReportValue"_s, u"C:\\Data\\"_s},
                                                    {u"PersonalRate"_s, u"450.5"_s},
                                                    {u"FilterEvents"_s, u"True"_s},
                                                    {u"FilterPrivate"_s, u"False"_s},
                                                    {u"FilterRecurring"_s, u"False"_s},
                                                    {u"MetadataList"_s, u"Customer:Acme;\r\n"_s},
                                                    {u"Convert24"_s, u"False"_s},
                                                    {u"Convert24Hours"_s, u"8"_s},
                                                    {u"StartGrid"_s, u"True"_s},
                                                    {u"RemoveLunch"_s, u"False"_s},
                                                    {u"RemoveLunchHours"_s, u"0.75"_s},
                                                    {u"CreateLocalCube"_s, u"False"_s},
                                                    {u"WriteSubject"_s, u"False"_s},
                                                    {u"PaneWidth"_s, u"185"_s},
                                                    {u"PaneHeight"_s, u"600"_s},
                                                    {u"PaneDockPos"_s, u"2"_s}};
  for (const auto& [key, text] : expected) EXPECT_EQ(registry(key), text) << qPrintable(key);
  EXPECT_EQ(fncLastLogText(), u"Saving personal settings to registry"_s);
}

TEST_F(PersonalSettings, WhatWasSavedReadsBackInEveryLocale) {
  for (const QString& locale : {u"de_DE"_s, u"en_US"_s}) {
    world.setLocale(locale);
    cPersonalSettings first;
    first.PersonalRate = Currency::fromDouble(450.5);
    first.RemoveLunch = true;
    first.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s}));
    first.MetaDataLists.Add(listOf(u"Task"_s, {u"Support"_s}));
    first.SaveSettings();
    cPersonalSettings second;
    EXPECT_TRUE(second.GetValuesFromSettings());
    EXPECT_EQ(second.fncBuildBody(), first.fncBuildBody());
    EXPECT_TRUE(second.RemoveLunch);
    EXPECT_EQ(platform::basic::CDbl(second.RemoveLunchHours), 0.75);
  }
}

TEST_F(PersonalSettings, ARegistryThatCannotBeWrittenIsReported) {
  world.registry.failWriteWith = 29;
  EXPECT_REPORTED(world, "SaveSettings", cPersonalSettings().SaveSettings());
  const QString text = world.dialogs.shown.first().text;
  EXPECT_TRUE(text.contains(u"the value \"ReportChoice\" could not be set (29)\r\n"_s)) << qPrintable(text);
  EXPECT_TRUE(text.contains(u"\r\nCould not set key value\r\n"_s)) << qPrintable(text);
}

TEST_F(PersonalSettings, MissingHoursOfLunchAreThreeQuartersInEveryLocale) {
  setRegistry(u"ReportChoice"_s, u"2"_s);
  for (const QString& locale : {u"sv_SE"_s, u"de_DE"_s, u"en_US"_s}) {
    world.setLocale(locale);
    cPersonalSettings settings;
    EXPECT_TRUE(settings.GetValuesFromSettings());
    EXPECT_EQ(platform::basic::CDbl(settings.RemoveLunchHours), 0.75) << qPrintable(locale);
  }
}

TEST_F(PersonalSettings, ReadingAndSavingAreLogged) {
  keepLog();
  cPersonalSettings settings;
  settings.GetValuesFromSettings();
  EXPECT_TRUE(wasLogged(u"Reading Hourbook settings from Registry!"_s));
  EXPECT_TRUE(wasLogged(u"Getting settings from appointment on 1 jan 2050"_s));
  settings.SaveSettings();
  EXPECT_TRUE(wasLogged(u"Saving personal settings to setting appointment of 1/1/2050"_s));
}

TEST_F(PersonalSettings, ASettingsTextOfSixClosedLinesIsTakenAndLeavesNoLists) {
  cPersonalSettings settings;
  settings.subPopulateMetadataList(u"Task:c;\r\n"_s);
  settings.FromString(u"3\r\nProvider=x\r\n450\r\nTrue\r\nFalse\r\nTrue\r\n"_s);
  EXPECT_EQ(settings.ReportChoice, 3);
  EXPECT_EQ(settings.ReportValue, u"Provider=x"_s);
  EXPECT_EQ(settings.PersonalRate, Currency::fromDouble(450));
  EXPECT_TRUE(settings.FilterEvents && settings.FilterRecurring);
  EXPECT_EQ(settings.MetaDataLists.Count(), 0);
}

TEST_F(PersonalSettings, ASettingsTextWithALineThatCannotBeReadIsReported) {
  cPersonalSettings settings;
  EXPECT_REPORTED(world, "FromString",
                  settings.FromString(u"3\r\nProvider=x\r\n450\r\nTrue\r\nperhaps\r\nTrue\r\n"_s));
}

TEST_F(PersonalSettings, ListsOfOneNameStayApart) {
  cPersonalSettings settings;
  settings.subPopulateMetadataList(u"Task:a;\r\nTask:b;A;\r\nTASK:a;A;\r\n"_s);
  EXPECT_EQ(settings.fncMetadataList(), u"Task:a;\r\nTask:b;A;\r\nTASK:a;\r\n"_s);
}

TEST_F(PersonalSettings, TheRegistryIsWrittenInItsOrder) {
  const QStringList order{u"ReportChoice"_s,    u"ReportValue"_s,   u"PersonalRate"_s,
                          u"FilterEvents"_s,    u"FilterPrivate"_s, u"FilterRecurring"_s,
                          u"MetadataList"_s,    u"Convert24"_s,     u"Convert24Hours"_s,
                          u"StartGrid"_s,       u"RemoveLunch"_s,   u"RemoveLunchHours"_s,
                          u"CreateLocalCube"_s, u"WriteSubject"_s,  u"PaneWidth"_s,
                          u"PaneHeight"_s,      u"PaneDockPos"_s};
  for (int passed = 0; passed < order.size(); ++passed) {
    platform::registry::MemoryRegistry memory;
    const platform::registry::ScopedRegistry inForce(memory);
    memory.passWrites = passed;
    memory.failWriteWith = 29;
    values.gInErrorReport = false;
    EXPECT_REPORTED(world, "SaveSettings", cPersonalSettings().SaveSettings());
    for (int i = 0; i < order.size(); ++i)
      EXPECT_EQ(registry(order[i]) != u"<none>"_s, i < passed) << passed << ' ' << qPrintable(order[i]);
  }
}

}  // namespace hourbook::tests
