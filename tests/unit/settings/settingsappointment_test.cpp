#include "outlook/modItemProperties.h"
#include "outlook/modOutlookSession.h"
#include "platform/basic/convert.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "settings/cPersonalSettings.h"
#include "shell/modErrorReport.h"
#include "shell/modRegistryEntry.h"
#include "tests/unit/settings/settingsworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::basic::CDbl;
using platform::basic::Currency;
using platform::basic::Value;
using platform::calendar::FailingStore;
using platform::outlook::AppointmentItem;

class SettingsAppointment : public SettingsWorld {
 protected:
  SettingsAppointment() {
    appointment = addAppointment(settingAppointmentName);
    appointment->setStart(platform::basic::Date::of(2050, 1, 1));
    appointment->Save();
  }

  void storeText(const QString& text) {
    subFixLongProperty(*appointment, text, u"Settings"_s);
    appointment->Save();
  }
  void storeProperty(const QString& name, int type, const Value& value) {
    appointment->userProperties().Add(name, type)->setValue(value);
    appointment->Save();
  }
  void installSingleUser() { writeFile(inProgramFolder(u"HBPersonalSettingsSingle.exe"_s), u"x"_s); }
  void installShared() { writeFile(inProgramFolder(u"HBPersonalSettings.exe"_s), u"x"_s); }
  QString ownFolder() const { return documents.path() + u"\\My Hourbooks"_s; }
  void makeDatabase(const QString& folder) { writeFile(folder + u"/Hourbook3.mdb"_s, u"x"_s); }
  static QString textFor(const QString& choice, const QString& value) {
    return choice + u"\r\n"_s + value +
           u"\r\n450\r\nTrue\r\nFalse\r\nTrue\r\nCustomer:Acme;Bolt;\r\nTask:Support;\r\n"_s;
  }
  cPersonalSettings read() {
    cPersonalSettings settings;
    EXPECT_TRUE(settings.GetValuesFromSettings());
    return settings;
  }
  /// The appointment's text was taken over.
  static bool wasTaken(const cPersonalSettings& settings) { return settings.MetaDataLists.Count() == 2; }

  std::shared_ptr<AppointmentItem> appointment;
};

TEST_F(SettingsAppointment, DecidesWhenTheRegistryHasNoReportChoice) {
  fncSaveRegistryValue(u"Settings"_s, u"PersonalRate"_s, u"999"_s);
  fncSaveRegistryValue(u"Settings"_s, u"MetadataList"_s, u"Other:x;\r\n"_s);
  storeText(textFor(u"3"_s, u"Provider=x"_s));
  const cPersonalSettings settings = read();
  EXPECT_EQ(settings.ReportChoice, 3);
  EXPECT_EQ(settings.ReportValue, u"Provider=x"_s);
  EXPECT_EQ(settings.PersonalRate, Currency::fromDouble(450));
  EXPECT_TRUE(settings.FilterEvents);
  EXPECT_FALSE(settings.FilterPrivate);
  EXPECT_TRUE(settings.FilterRecurring);
  EXPECT_EQ(settings.fncMetadataList(), u"Customer:Acme;Bolt;\r\nTask:Support;\r\n"_s);
}

TEST_F(SettingsAppointment, IsNotLookedAtWhenTheRegistryHasSettings) {
  fncSaveRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"2"_s);
  storeText(textFor(u"3"_s, u"Provider=x"_s));
  EXPECT_EQ(read().ReportChoice, 2);
}

TEST_F(SettingsAppointment, IsReadAgainOnEachStartSinceTheRegistryStaysAsItIs) {
  storeText(textFor(u"3"_s, u"Provider=x"_s));
  read();
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"NULL"_s), u"NULL"_s);
}

TEST_F(SettingsAppointment, MayBeMissing) {
  memory->removeByAnother(folderInfo.id, stored(settingAppointmentName).key);
  const cPersonalSettings settings = read();
  EXPECT_EQ(settings.ReportChoice, 2);
  EXPECT_EQ(settings.MetaDataLists.Count(), 0);
  EXPECT_EQ(CDbl(settings.Convert24Hours), 8);
}

TEST_F(SettingsAppointment, LosesTheDecimalsOfTheRateHalvesToEven) {
  const QString text = textFor(u"3"_s, u"Provider=x"_s);
  storeText(QString(text).replace(u"\r\n450\r\n"_s, u"\r\n450.5\r\n"_s));
  EXPECT_EQ(read().PersonalRate, Currency::fromDouble(450));
  storeText(QString(text).replace(u"\r\n450\r\n"_s, u"\r\n451.5\r\n"_s));
  EXPECT_EQ(read().PersonalRate, Currency::fromDouble(452));
}

TEST_F(SettingsAppointment, WithARateAbove32767IsReported) {
  QString text = textFor(u"3"_s, u"Provider=x"_s);
  storeText(text.replace(u"\r\n450\r\n"_s, u"\r\n32768\r\n"_s));
  cPersonalSettings settings;
  EXPECT_REPORTED(world, "subReadExistingSettingAppointment2050", settings.GetValuesFromSettings());
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"#6\r\n"_s));
}

TEST_F(SettingsAppointment, GivesItsOwnPropertiesAsWell) {
  using namespace platform::outlook;
  storeText(textFor(u"3"_s, u"Provider=x"_s));
  storeProperty(u"blnConvert24"_s, olYesNo, true);
  storeProperty(u"intConvert24Hours"_s, olNumber, 7.0);
  storeProperty(u"blnRemoveLunch"_s, olYesNo, true);
  storeProperty(u"intRemoveLunchHours"_s, olNumber, 1.0);
  storeProperty(u"blnCreateLocalCube"_s, olYesNo, true);
  storeProperty(u"blnStartGrid"_s, olYesNo, true);
  storeProperty(u"blnWriteSubject"_s, olYesNo, true);
  const cPersonalSettings settings = read();
  EXPECT_TRUE(settings.Convert24 && settings.RemoveLunch && settings.CreateLocalCube);
  EXPECT_TRUE(settings.StartGrid && settings.WriteSubject);
  EXPECT_EQ(CDbl(settings.Convert24Hours), 7);
  EXPECT_EQ(CDbl(settings.RemoveLunchHours), 1);
}

TEST_F(SettingsAppointment, WithoutItsPropertiesTurnsThemOff) {
  storeText(textFor(u"3"_s, u"Provider=x"_s));
  const cPersonalSettings settings = read();
  EXPECT_FALSE(settings.Convert24 || settings.RemoveLunch || settings.CreateLocalCube);
  EXPECT_EQ(CDbl(settings.Convert24Hours), 0);
  EXPECT_EQ(CDbl(settings.RemoveLunchHours), 0);
}

TEST_F(SettingsAppointment, WithATextOfSixLinesOrFewerGivesItsPropertiesOnly) {
  storeText(u"3\r\nProvider=x\r\n450\r\nTrue\r\nTrue\r\nTrue"_s);
  storeProperty(u"blnStartGrid"_s, platform::outlook::olYesNo, true);
  const cPersonalSettings settings = read();
  EXPECT_EQ(settings.ReportChoice, 2);
  EXPECT_FALSE(settings.FilterEvents);
  EXPECT_TRUE(settings.StartGrid);
}

TEST_F(SettingsAppointment, WithAChoiceThatIsNoNumberLeavesAllDefaults) {
  storeText(textFor(u"x"_s, u"Provider=x"_s));
  storeProperty(u"blnStartGrid"_s, platform::outlook::olYesNo, true);
  const cPersonalSettings settings = read();
  EXPECT_EQ(settings.ReportChoice, 2);
  EXPECT_FALSE(wasTaken(settings));
  EXPECT_FALSE(settings.StartGrid);
  EXPECT_EQ(CDbl(settings.Convert24Hours), 8);
}

TEST_F(SettingsAppointment, ASingleUserInstallationTakesItsOwnDatabase) {
  installSingleUser();
  makeDatabase(documents.filePath(u"My Hourbooks"_s));
  storeText(textFor(u"2"_s, ownFolder() + u'\\'));
  EXPECT_TRUE(wasTaken(read()));
  EXPECT_EQ(read().ReportValue, ownFolder() + u'\\');
}

TEST_F(SettingsAppointment, TheFolderComparesWithEitherSeparator) {
  installSingleUser();
  makeDatabase(documents.filePath(u"My Hourbooks"_s));
  storeText(textFor(u"2"_s, documents.filePath(u"My Hourbooks"_s) + u'/'));
  EXPECT_TRUE(wasTaken(read()));
}

TEST_F(SettingsAppointment, TheFolderComparesWithoutRegardToCase) {
  const QString sameFolder = documents.filePath(u"MY HOURBOOKS"_s);
  makeDatabase(sameFolder);  // on most systems that is the folder itself
  storeText(textFor(u"2"_s, sameFolder + u'\\'));
  installShared();
  EXPECT_FALSE(wasTaken(read()));
  installSingleUser();
  EXPECT_TRUE(wasTaken(read()));
}

TEST_F(SettingsAppointment, ASingleUserInstallationRefusesAnotherDatabase) {
  installSingleUser();
  QTemporaryDir shared;
  makeDatabase(shared.path());
  storeText(textFor(u"2"_s, shared.path() + u'\\'));
  const cPersonalSettings settings = read();
  EXPECT_FALSE(wasTaken(settings));
  EXPECT_EQ(CDbl(settings.Convert24Hours), 8);
}

TEST_F(SettingsAppointment, ASingleUserInstallationRefusesADatabaseThatIsMissing) {
  installSingleUser();
  storeText(textFor(u"2"_s, ownFolder() + u'\\'));
  EXPECT_FALSE(wasTaken(read()));
}

TEST_F(SettingsAppointment, ASharedInstallationTakesASharedDatabase) {
  installShared();
  QTemporaryDir shared;
  makeDatabase(shared.path());
  storeText(textFor(u"2"_s, shared.path() + u'\\'));
  EXPECT_TRUE(wasTaken(read()));
}

TEST_F(SettingsAppointment, ASharedInstallationRefusesTheUsersOwnDatabase) {
  installShared();
  makeDatabase(documents.filePath(u"My Hourbooks"_s));
  storeText(textFor(u"2"_s, ownFolder() + u'\\'));
  EXPECT_FALSE(wasTaken(read()));
}

TEST_F(SettingsAppointment, ASharedInstallationRefusesADatabaseThatIsMissing) {
  installShared();
  storeText(textFor(u"2"_s, u"/nowhere/\\"_s));
  EXPECT_FALSE(wasTaken(read()));
}

TEST_F(SettingsAppointment, WithoutASettingsProgramNoStoredDatabaseIsTaken) {
  QTemporaryDir shared;
  makeDatabase(shared.path());
  storeText(textFor(u"2"_s, shared.path() + u'\\'));
  EXPECT_FALSE(wasTaken(read()));
}

TEST_F(SettingsAppointment, TheSettingsProgramMayLackTheExtension) {
  writeFile(inProgramFolder(u"HBPersonalSettings"_s), u"x"_s);
  QTemporaryDir shared;
  makeDatabase(shared.path());
  storeText(textFor(u"2"_s, shared.path() + u'\\'));
  EXPECT_TRUE(wasTaken(read()));
}

TEST_F(SettingsAppointment, TheSettingsProgramMayStandThereAsALinkThatLeadsToIt) {
  makeDatabase(documents.filePath(u"My Hourbooks"_s));
  storeText(textFor(u"2"_s, ownFolder() + u'\\'));
  ASSERT_TRUE(QFile::link(u"hourbook-settings"_s, inProgramFolder(u"HBPersonalSettingsSingle"_s)));
  EXPECT_FALSE(wasTaken(read()));
  writeFile(inProgramFolder(u"hourbook-settings"_s), u"x"_s);
  EXPECT_TRUE(wasTaken(read()));
}

TEST_F(SettingsAppointment, WhichInstallationItIsAndWhereItsOwnDatabaseStandsCanBeAsked) {
  EXPECT_EQ(cPersonalSettings().fncHourbooksFolder(), ownFolder());
  EXPECT_FALSE(cPersonalSettings::fncIsSingleUser());
  installShared();
  EXPECT_FALSE(cPersonalSettings::fncIsSingleUser());
  installSingleUser();
  EXPECT_TRUE(cPersonalSettings::fncIsSingleUser());
}

TEST_F(SettingsAppointment, WithBothSettingsProgramsTheInstallationIsASingleUsers) {
  installSingleUser();
  installShared();
  QTemporaryDir shared;
  makeDatabase(shared.path());
  storeText(textFor(u"2"_s, shared.path() + u'\\'));
  EXPECT_FALSE(wasTaken(read()));
}

TEST_F(SettingsAppointment, AnyOtherTargetIsTakenWithoutAQuestion) {
  storeText(textFor(u"1"_s, u"http://example.org/hours"_s));
  EXPECT_EQ(read().ReportChoice, 1);
}

TEST_F(SettingsAppointment, WithALineThatCannotBeReadIsReported) {
  QString text = textFor(u"3"_s, u"Provider=x"_s);
  storeText(text.replace(u"\r\nTrue\r\nFalse"_s, u"\r\nperhaps\r\nFalse"_s));
  cPersonalSettings settings;
  EXPECT_REPORTED(world, "subReadExistingSettingAppointment2050", settings.GetValuesFromSettings());
}

TEST_F(SettingsAppointment, ThatLacksAPieceOfItsTextIsReportedAndNothingIsTaken) {
  storeText(textFor(u"3"_s, QString(2600, u'x')));
  addAppointment(u"torn"_s);
  const auto torn = outlook.gCalendarFolder->Items().Item(u"torn"_s);
  for (const QString& name : {u"Settings0"_s, u"Settings2"_s, u"Settings3"_s})
    torn->userProperties()
        .Add(name, platform::outlook::olText)
        ->setValue(appointment->userProperties().Find(name)->Value());
  torn->userProperties().Add(u"SettingsCount"_s, platform::outlook::olNumber)->setValue(3.0);
  memory->removeByAnother(folderInfo.id, stored(settingAppointmentName).key);
  torn->setSubject(settingAppointmentName);
  torn->Save();
  cPersonalSettings settings;
  EXPECT_REPORTED(world, "subReadExistingSettingAppointment2050", settings.GetValuesFromSettings());
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(
      u"\r\nThe settings appointment is incomplete: \"Settings1\" is missing.\r\n"_s));
  EXPECT_EQ(settings.ReportChoice, 2);
  EXPECT_EQ(settings.MetaDataLists.Count(), 0);
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"NULL"_s), u"NULL"_s);
}

TEST_F(SettingsAppointment, WhoseTextEndsInTheMiddleOfALineLosesThatLine) {
  QString text = textFor(u"3"_s, u"Provider=x"_s);
  storeText(text.chopped(4));
  EXPECT_EQ(read().fncMetadataList(), u"Customer:Acme;Bolt;\r\n"_s);
}

TEST_F(SettingsAppointment, MayHoldListsOfOneNameAndAValueTwice) {
  QString text = textFor(u"3"_s, u"Provider=x"_s);
  storeText(text.replace(u"Task:Support;"_s, u"customer:b;B;a;"_s));
  const cPersonalSettings settings = read();
  EXPECT_EQ(settings.fncMetadataList(), u"Customer:Acme;Bolt;\r\ncustomer:b;a;\r\n"_s);
}

TEST_F(SettingsAppointment, TakesBodyTextAndCategoriesWhenSettingsAreSaved) {
  cPersonalSettings settings;
  settings.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s}));
  settings.SaveSettings();
  const auto item = stored(settingAppointmentName);
  EXPECT_EQ(item.body, settings.fncBuildBody());
  EXPECT_EQ(item.categoriesText, u"Customer:Acme;\r\n"_s);
  EXPECT_EQ(item.userProperties.value(u"Settings0"_s).value, settings.fncBuildBody());
  EXPECT_EQ(item.userProperties.value(u"SettingsCount"_s).value, u"0"_s);
}

TEST_F(SettingsAppointment, TakesTheFirst4000CharactersOfTheListsAndTheFullTextInItsProperties) {
  QStringList names;
  for (int i = 0; i < 900; ++i) names.append(u"Name%1"_s.arg(i));
  cPersonalSettings settings;
  settings.ReportChoice = 3;
  settings.ReportValue = u"Provider=x"_s;
  settings.MetaDataLists.Add(listOf(u"Customer"_s, names));
  settings.SaveSettings();
  EXPECT_EQ(stored(settingAppointmentName).categoriesText, settings.fncMetadataList().left(4000));
  const auto again = fncGetSettingAppointment();
  EXPECT_EQ(fncGetLongProperty(*again, u"Settings"_s), settings.fncBuildBody());
}

TEST_F(SettingsAppointment, WhoseCategoriesAreCutInTheMiddleOfACharacterEndsBeforeIt) {
  cPersonalSettings settings;
  settings.MetaDataLists.Add(listOf(u"L"_s, {QString(3997, u'x') + u"😀"_s}));
  settings.SaveSettings();
  EXPECT_EQ(stored(settingAppointmentName).categoriesText, u"L:"_s + QString(3997, u'x'));
}

/// A folder of iCalendar files in place of the calendar in memory.
class SettingsAppointmentFile : public SettingsWorld {
 protected:
  SettingsAppointmentFile() {
    using namespace platform::calendar;
    const auto files = std::make_shared<IcalendarStore>(
        QList<IcalendarFolder>{{u"c"_s, u"Calendar"_s, QString(), folder.path(), false}});
    outlook.gCalendarFolder =
        std::make_shared<platform::outlook::MAPIFolder>(files, files->folders().first());
  }
  /// As the settings program makes it, with what the report program only reads.
  void makeAppointment() {
    using namespace platform::outlook;
    const auto item = outlook.gCalendarFolder->Items().Add();
    item->setSubject(settingAppointmentName);
    item->setStart(platform::basic::Date::of(2050, 1, 1));
    const auto set = [&](const QString& name, int type, const Value& value) {
      item->userProperties().Add(name, type)->setValue(value);
    };
    set(u"blnConvert24"_s, olYesNo, true);
    set(u"intConvert24Hours"_s, olNumber, 7.5);
    set(u"blnRemoveLunch"_s, olYesNo, true);
    set(u"intRemoveLunchHours"_s, olNumber, 0.5);
    set(u"blnCreateLocalCube"_s, olYesNo, true);
    set(u"blnStartGrid"_s, olYesNo, true);
    set(u"blnWriteSubject"_s, olYesNo, true);
    item->Save();
  }
  static QStringList registryTexts() {
    QStringList texts;
    for (const QString& key :
         {u"ReportChoice"_s, u"ReportValue"_s, u"PersonalRate"_s, u"FilterEvents"_s, u"FilterPrivate"_s,
          u"FilterRecurring"_s, u"MetadataList"_s, u"Convert24"_s, u"Convert24Hours"_s, u"StartGrid"_s,
          u"RemoveLunch"_s, u"RemoveLunchHours"_s, u"CreateLocalCube"_s, u"WriteSubject"_s, u"PaneWidth"_s,
          u"PaneHeight"_s, u"PaneDockPos"_s})
      texts << key + u'=' + fncGetRegistryValue(u"Settings"_s, key, u"<none>"_s);
    return texts;
  }
  QTemporaryDir folder;
};

TEST_F(SettingsAppointmentFile, CarriesTheRegistrysSettingsToAnotherMachineWithoutLoss) {
  for (const QString& locale : {u"en_US"_s, u"de_DE"_s, u"sv_SE"_s}) {
    world.setLocale(locale);
    platform::registry::MemoryRegistry first, second;
    QStringList sent;
    if (!fncGetSettingAppointment()) makeAppointment();
    {
      const platform::registry::ScopedRegistry inForce(first);
      cPersonalSettings settings;
      settings.ReportChoice = 3;
      settings.ReportValue = u"Provider=x;Data Source=a\\b, \"c\";Password=ä;e:f"_s;
      settings.PersonalRate = Currency::fromDouble(450);
      settings.FilterEvents = settings.FilterRecurring = true;
      settings.Convert24 = settings.RemoveLunch = settings.CreateLocalCube = true;
      settings.StartGrid = settings.WriteSubject = true;
      settings.Convert24Hours = 7.5;
      settings.RemoveLunchHours = 0.5;
      QStringList names;
      for (int i = 0; i < 700; ++i) names << u"Wert \\%1 😀 , \"ß\" : x "_s.arg(i);
      settings.MetaDataLists.Add(listOf(u"Kunde, \\n; 😀"_s, names));
      settings.MetaDataLists.Add(listOf(u"Leer"_s, {}));
      settings.MetaDataLists.Add(listOf(u"Aufgabe"_s, {u"  a  "_s, u"%b"_s}));
      settings.SaveSettings();
      sent = registryTexts();
    }
    const platform::registry::ScopedRegistry inForce(second);
    cPersonalSettings settings;
    ASSERT_TRUE(settings.GetValuesFromSettings());
    settings.SaveSettings();
    EXPECT_EQ(registryTexts(), sent) << qPrintable(locale);
  }
}

TEST_F(SettingsAppointmentFile, KeepsALineBreakThatWouldFallBetweenTwoPieces) {
  makeAppointment();
  cPersonalSettings settings;
  settings.ReportChoice = 3;
  // "3", a line break and 996 characters: the next line break begins at the 1000th character
  settings.ReportValue = QString(996, u'x');
  settings.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s}));
  settings.SaveSettings();
  ASSERT_EQ(settings.fncBuildBody().mid(999, 2), u"\r\n"_s);
  EXPECT_EQ(fncGetLongProperty(*fncGetSettingAppointment(), u"Settings"_s), settings.fncBuildBody());
  world.registry = platform::registry::MemoryRegistry();
  cPersonalSettings again;
  EXPECT_TRUE(again.GetValuesFromSettings());
  EXPECT_EQ(again.fncBuildBody(), settings.fncBuildBody());
}

TEST_F(SettingsAppointmentFile, KeepsATextThatEndsWithAPiece) {
  makeAppointment();
  for (const int length : {500, 501, 1000, 1500, 2000, 2500}) {
    cPersonalSettings settings;
    settings.ReportChoice = 3;
    settings.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s}));
    settings.ReportValue =
        QString(length - settings.fncBuildBody().size() + settings.ReportValue.size(), u'x');
    settings.SaveSettings();
    ASSERT_EQ(settings.fncBuildBody().size(), length);
    world.registry = platform::registry::MemoryRegistry();
    cPersonalSettings again;
    EXPECT_TRUE(again.GetValuesFromSettings());
    EXPECT_EQ(again.fncBuildBody(), settings.fncBuildBody());
    EXPECT_EQ(fncGetSettingAppointment()->Categories(), settings.fncMetadataList());
  }
}

TEST_F(SettingsAppointment, IsNotMadeBySaving) {
  memory->removeByAnother(folderInfo.id, stored(settingAppointmentName).key);
  cPersonalSettings().SaveSettings();
  EXPECT_EQ(stored(settingAppointmentName).subject, QString());
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"NULL"_s), u"2"_s);
}

TEST_F(SettingsAppointment, ThatCannotBeSavedDoesNotKeepTheRegistryFromBeingWritten) {
  store->failAlways(FailingStore::Operation::Save, platform::Failure(5, u"full"_s));
  cPersonalSettings().SaveSettings();
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"NULL"_s), u"2"_s);
}

TEST_F(SettingsAppointment, WhosePropertiesAndMessageFailStillGetsItsCategories) {
  storeProperty(u"Settings0"_s, platform::outlook::olDateTime, platform::basic::Date::of(2024, 1, 1));
  cPersonalSettings settings;
  settings.MetaDataLists.Add(listOf(u"Customer"_s, {u"Acme"_s}));
  NoDialogs none;
  const platform::dialogs::ScopedDialogs dialogs(none);
  settings.SaveSettings();
  const auto item = stored(settingAppointmentName);
  EXPECT_EQ(item.body, settings.fncBuildBody());
  EXPECT_EQ(item.categoriesText, u"Customer:Acme;\r\n"_s);
  EXPECT_FALSE(item.userProperties.contains(u"SettingsCount"_s));
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"NULL"_s), u"2"_s);
}

}  // namespace hourbook::tests
