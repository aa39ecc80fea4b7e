#include "platform/registry/ini/inifile.h"
#include "settings/cPersonalSettings.h"
#include "settingshome.h"
#include "shell/modRegistryEntry.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using platform::Failure;

namespace hourbook::tests {
namespace {

class Store : public SettingsHome {
 protected:
  void save(const SettingsBuffer& buffer, const std::function<void()>& last = {}) {
    store.save(buffer, last);
  }
  /// What the save failed with.
  QString failure(const SettingsBuffer& buffer, const std::function<void()>& last = {}) {
    try {
      store.save(buffer, last);
    } catch (const Failure& failed) {
      return failed.description();
    }
    return u"It did not fail."_s;
  }
  QString registryValue(const QString& name) {
    platform::registry::IniRegistry registry(configFile(u"registry.ini"_s));
    const platform::registry::ScopedRegistry inForce(registry);
    return fncGetRegistryValue(u"Settings"_s, name, u"NULL"_s);
  }
  void setRegistryValue(const QString& name, const QString& value) {
    platform::registry::IniRegistry registry(configFile(u"registry.ini"_s));
    const platform::registry::ScopedRegistry inForce(registry);
    fncSaveRegistryValue(u"Settings"_s, name, value);
  }
  CalendarEntry calendar() { return {u"calendar"_s, u"Work"_s, path(u"calendar"_s), false}; }
  KeptSettings kept() { return AppointmentCopy(calendar()).read(); }
  QString onlyAppointmentFile() {
    const QStringList files = QDir(path(u"calendar"_s)).entryList({u"*.ics"_s});
    EXPECT_EQ(files.size(), 1);
    return path(u"calendar/"_s + files.value(0));
  }
  static QStringList texts(const QList<FieldText>& notes) {
    QStringList found;
    for (const FieldText& note : notes) found.append(note.text);
    return found;
  }

  SettingsStore store{config()};
};

TEST_F(Store, OnAnEmptyMachineGivesTheUsualSettings) {
  world.process.environment.insert(u"USERNAME"_s, u"jane"_s);
  const ReadSettings read = store.read();
  EXPECT_FALSE(read.hasSettings);
  EXPECT_FALSE(read.hasConfiguration);
  EXPECT_EQ(read.buffer.personName, u"jane"_s);
  EXPECT_EQ(read.buffer.reportChoice, reportToAccess);
  EXPECT_EQ(read.buffer.convert24Hours, u"8"_s);
  EXPECT_EQ(read.buffer.removeLunchHours, u"0.75"_s);
  EXPECT_TRUE(read.buffer.lists.isEmpty());
  EXPECT_TRUE(read.notes.isEmpty());
  EXPECT_FALSE(QFileInfo::exists(config()));
}

TEST_F(Store, WritesTheRegistryValuesInTheirForms) {
  SettingsBuffer buffer = filledIn(store);
  buffer.filterEvents = true;
  buffer.convert24 = true;
  buffer.convert24Hours = u"7.5"_s;
  save(buffer);
  EXPECT_EQ(registryValue(u"ReportChoice"_s), u"2"_s);
  EXPECT_EQ(registryValue(u"ReportValue"_s), path(u"database"_s) + u'\\');
  EXPECT_EQ(registryValue(u"PersonalRate"_s), u"450.5"_s);
  EXPECT_EQ(registryValue(u"FilterEvents"_s), u"True"_s);
  EXPECT_EQ(registryValue(u"FilterPrivate"_s), u"False"_s);
  EXPECT_EQ(registryValue(u"MetadataList"_s), u"Customer:Acme;Bolt;\r\nTask:Support;\r\n"_s);
  EXPECT_EQ(registryValue(u"Convert24"_s), u"True"_s);
  EXPECT_EQ(registryValue(u"Convert24Hours"_s), u"7.5"_s);
  EXPECT_EQ(registryValue(u"RemoveLunchHours"_s), u"0.75"_s);
  EXPECT_EQ(registryValue(u"StartGrid"_s), u"False"_s);
  EXPECT_EQ(QFileInfo(configFile(u"registry.ini"_s)).permissions() & 0x0077, QFile::Permissions());
}

TEST_F(Store, ADecimalIsTypedAndStoredInTheFormOfTheSystem) {
  world.setLocale(u"sv_SE"_s);
  SettingsBuffer buffer = filledIn(store);
  EXPECT_EQ(buffer.removeLunchHours, u"0,75"_s);
  buffer.personalRate = u"450,5"_s;
  save(buffer);
  EXPECT_EQ(registryValue(u"PersonalRate"_s), u"450,5"_s);
  EXPECT_EQ(registryValue(u"RemoveLunchHours"_s), u"0,75"_s);
  EXPECT_EQ(SettingsStore(config()).read().buffer.personalRate, u"450,5"_s);
}

TEST_F(Store, MakesTheDatabaseAndTheConfiguration) {
  save(filledIn(store));
  EXPECT_TRUE(content(path(u"database/Hourbook3.mdb"_s)).startsWith("SQLite format 3"));
  const Configuration configuration = Configuration::read(config());
  EXPECT_EQ(configuration.mailboxName, u"Mailbox - Jane Doe"_s);
  EXPECT_EQ(configuration.openCalendar, u"calendar"_s);
  ASSERT_EQ(configuration.calendars.size(), 1);
  EXPECT_EQ(configuration.calendars[0].path, path(u"calendar"_s));
}

TEST_F(Store, LeavesTheSettingsAppointmentInItsForm) {
  SettingsBuffer buffer = filledIn(store);
  buffer.removeLunch = true;
  save(buffer);
  const QByteArray appointment = content(onlyAppointmentFile());
  EXPECT_TRUE(appointment.contains("SUMMARY:Outlook Hourbook 3 Personal Settings"));
  EXPECT_TRUE(appointment.contains("DTSTART;VALUE=DATE:20500101")) << appointment.constData();
  const KeptSettings found = kept();
  ASSERT_EQ(found.state, KeptSettings::State::Intact) << qPrintable(found.reason);
  EXPECT_EQ(
      found.text,
      u"2\r\n%1\\\r\n450.5\r\nFalse\r\nFalse\r\nFalse\r\nCustomer:Acme;Bolt;\r\nTask:Support;\r\n"_s.arg(
          path(u"database"_s)));
  EXPECT_TRUE(found.settings->RemoveLunch);
  EXPECT_FALSE(found.settings->Convert24);
}

TEST_F(Store, WhatIsSavedReadsTheSame) {
  SettingsBuffer buffer = filledIn(store);
  buffer.startGrid = true;
  buffer.filterRecurring = true;
  save(buffer);
  buffer.makeDatabase = false;
  EXPECT_EQ(SettingsStore(config()).read().buffer, buffer);
  EXPECT_TRUE(store.changedOutside().isEmpty());
}

TEST_F(Store, SavingWithoutAChangeWritesNoByte) {
  save(filledIn(store));
  const auto before = everything();
  SettingsStore again(config());
  again.save(again.read().buffer);
  EXPECT_EQ(everything(), before);
}

TEST_F(Store, WithoutACopyInTheCalendarTheCalendarStaysAsItIs) {
  SettingsBuffer buffer = filledIn(store);
  buffer.keepInCalendar = false;
  save(buffer);
  EXPECT_TRUE(QDir(path(u"calendar"_s)).isEmpty());
}

TEST_F(Store, AFailureAtTheEndTakesEverythingBack) {
  SettingsBuffer buffer = filledIn(store);
  buffer.databaseFolder = path(u"database/deep/er"_s);
  const auto before = everything();
  const QString told = failure(buffer, [] { throw Failure(70, u"The last step failed."_s); });
  EXPECT_EQ(told, u"The last step failed."_s);
  EXPECT_EQ(everything(), before);
  EXPECT_FALSE(QFileInfo::exists(path(u"database/deep"_s)));
  EXPECT_FALSE(QFileInfo::exists(config()));
}

TEST_F(Store, AFailureTakesBackAChangeToAnExistingAppointmentAndFiles) {
  save(filledIn(store));
  const auto before = everything();
  SettingsBuffer buffer = store.read().buffer;
  buffer.personalRate = u"1"_s;
  buffer.personName = u"Jim"_s;
  failure(buffer, [] { throw Failure(70, u"no"_s); });
  EXPECT_EQ(everything(), before);
  save(buffer);
  EXPECT_EQ(registryValue(u"PersonalRate"_s), u"1"_s);
}

TEST_F(Store, WhatCannotBeTakenBackIsTold) {
  const QString file = configFile(u"registry.ini"_s);
  const QString told = failure(filledIn(store), [&] {
    write(file, "[x]\ny=another program's\n");
    throw Failure(70, u"The last step failed."_s);
  });
  EXPECT_TRUE(
      told.startsWith(u"The last step failed. What had been written before could not be taken back:"_s))
      << qPrintable(told);
  EXPECT_EQ(content(file), "[x]\ny=another program's\n");
  EXPECT_FALSE(QFileInfo::exists(configFile(u"platform.ini"_s)));
  EXPECT_FALSE(QFileInfo::exists(path(u"database/Hourbook3.mdb"_s)));
}

TEST_F(Store, ACalendarFileWithOthersInItIsRestoredToo) {
  const QByteArray other =
      "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\nBEGIN:VEVENT\r\nUID:a\r\nDTSTART:20240501T100000Z\r\n"
      "DTEND:20240501T110000Z\r\nSUMMARY:Mine\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
  write(path(u"one.ics"_s), other);
  SettingsBuffer buffer = filledIn(store);
  buffer.calendars[0].path = path(u"one.ics"_s);
  failure(buffer, [] { throw Failure(70, u"no"_s); });
  EXPECT_EQ(content(path(u"one.ics"_s)), other);
  save(buffer);
  EXPECT_TRUE(content(path(u"one.ics"_s)).contains("SUMMARY:Mine"));
  EXPECT_TRUE(content(path(u"one.ics"_s)).contains("Personal Settings"));
}

TEST_F(Store, ADatabaseThatHasComeMeanwhileIsNotReplaced) {
  const SettingsBuffer buffer = filledIn(store);
  write(path(u"database/Hourbook3.mdb"_s), "another program's");
  EXPECT_TRUE(failure(buffer).contains(u"holds a database already"_s));
  EXPECT_EQ(content(path(u"database/Hourbook3.mdb"_s)), "another program's");
  EXPECT_FALSE(QFileInfo::exists(configFile(u"registry.ini"_s)));
}

TEST_F(Store, ChangesOfAnotherProgramAreNamed) {
  save(filledIn(store));
  store.read();
  EXPECT_TRUE(store.changedOutside().isEmpty());
  setRegistryValue(u"PersonalRate"_s, u"7"_s);
  EXPECT_EQ(store.changedOutside(), QStringList{u"the personal settings (registry.ini)"_s});
  write(configFile(u"platform.ini"_s), content(configFile(u"platform.ini"_s)) + "[x]\ny=1\n");
  EXPECT_EQ(store.changedOutside().size(), 2);
  store.acceptOutside();
  EXPECT_TRUE(store.changedOutside().isEmpty());
}

TEST_F(Store, AChangedCopyInTheCalendarIsNamed) {
  save(filledIn(store));
  const QString file = onlyAppointmentFile();
  write(file, content(file).replace("SUMMARY:", "X-OTHER:1\r\nSUMMARY:"));
  EXPECT_EQ(store.changedOutside(), QStringList{u"the settings kept in the calendar"_s});
}

TEST_F(Store, WhatAnotherProgramHasWrittenIsNotOverwrittenSilently) {
  save(filledIn(store));
  SettingsBuffer buffer = store.read().buffer;
  buffer.personalRate = u"1"_s;
  setRegistryValue(u"StartGrid"_s, u"True"_s);
  const auto before = everything();
  EXPECT_NE(failure(buffer), u"It did not fail."_s);
  EXPECT_EQ(everything(), before);
  store.acceptOutside();
  save(buffer);
  EXPECT_EQ(registryValue(u"PersonalRate"_s), u"1"_s);
  EXPECT_EQ(registryValue(u"StartGrid"_s), u"False"_s);
}

TEST_F(Store, OnRequestEvenWhatWasNotChangedHereIsWrittenOverAnotherProgramsChange) {
  save(filledIn(store));
  const SettingsBuffer buffer = store.read().buffer;
  setRegistryValue(u"StartGrid"_s, u"True"_s);
  store.acceptOutside();
  save(buffer);
  EXPECT_EQ(registryValue(u"StartGrid"_s), u"False"_s);
}

TEST_F(Store, AMailboxWithoutANameStaysWhileNobodyTypesOne) {
  save(filledIn(store));
  const QString file = configFile(u"platform.ini"_s);
  write(file, content(file).replace("Mailbox - Jane Doe", "Postfach"));
  world.process.environment.insert(u"USERNAME"_s, u"jane"_s);
  const auto before = everything();
  SettingsStore again(config());
  SettingsBuffer buffer = again.read().buffer;
  EXPECT_EQ(buffer.personName, u"jane"_s);
  again.save(buffer);
  EXPECT_EQ(everything(), before);
}

TEST_F(Store, OtherValuesOfTheRegistryStay) {
  setRegistryValue(u"Another"_s, u"kept"_s);
  save(filledIn(store));
  EXPECT_EQ(registryValue(u"Another"_s), u"kept"_s);
}

TEST_F(Store, WithoutSettingsInTheRegistryThoseOfTheCalendarCount) {
  SettingsBuffer buffer = filledIn(store);
  buffer.convert24 = true;
  save(buffer);
  ASSERT_TRUE(QFile::remove(configFile(u"registry.ini"_s)));
  const ReadSettings read = SettingsStore(config()).read();
  EXPECT_FALSE(read.hasSettings);
  EXPECT_EQ(read.kept, KeptSettings::State::Intact);
  EXPECT_EQ(read.buffer.lists, buffer.lists);
  EXPECT_EQ(read.buffer.databaseFolder, path(u"database"_s));
  EXPECT_TRUE(read.buffer.convert24);
}

TEST_F(Store, ATornCopyIsToldAndNothingIsTakenFromIt) {
  save(filledIn(store));
  ASSERT_TRUE(QFile::remove(configFile(u"registry.ini"_s)));
  const QString file = onlyAppointmentFile();
  QByteArray bytes = content(file);
  ASSERT_TRUE(bytes.contains("\\n450.5\\n") || bytes.contains("450.5"));
  // the piece that the text stands in is gone
  QByteArrayList lines = bytes.split('\n'), rest;
  bool skipping = false;
  for (const QByteArray& line : lines) {
    skipping = (skipping && line.startsWith(' ')) || line.toUpper().contains("SETTINGS0");
    if (!skipping) rest.append(line);
  }
  write(file, rest.join('\n'));
  const ReadSettings read = SettingsStore(config()).read();
  EXPECT_EQ(read.kept, KeptSettings::State::Torn);
  ASSERT_EQ(read.notes.size(), 1);
  EXPECT_EQ(read.notes[0].field, Field::KeepInCalendar);
  EXPECT_TRUE(read.notes[0].text.contains(u"\"Settings0\" is missing"_s)) << qPrintable(read.notes[0].text);
  EXPECT_TRUE(read.buffer.lists.isEmpty());
}

TEST_F(Store, ATornCopyIsWrittenAnew) {
  SettingsBuffer buffer = filledIn(store);
  save(buffer);
  const QString file = onlyAppointmentFile();
  write(file, content(file).replace("450.5", "450.x"));
  SettingsStore again(config());
  const ReadSettings read = again.read();
  EXPECT_EQ(read.kept, KeptSettings::State::Torn);
  EXPECT_TRUE(texts(read.notes).value(0).contains(u"line 3 reads \"450.x\""_s));
  again.save(read.buffer);
  EXPECT_EQ(kept().state, KeptSettings::State::Intact);
}

TEST_F(Store, StoredValuesThatCannotBeUsedAreTold) {
  save(filledIn(store));
  setRegistryValue(u"FilterEvents"_s, u"perhaps"_s);
  setRegistryValue(u"PersonalRate"_s, u"much"_s);
  setRegistryValue(u"MetadataList"_s, u"Customer"_s);
  const ReadSettings read = SettingsStore(config()).read();
  EXPECT_EQ(
      texts(read.notes),
      (QStringList{
          u"The stored value \"perhaps\" cannot be used (neither True nor False); the usual one stands here instead."_s,
          u"The stored value \"much\" cannot be used (not a number); the usual one stands here instead."_s,
          u"The stored lists are damaged: Customer"_s}));
  EXPECT_EQ(read.buffer.personalRate, u"0"_s);
}

TEST_F(Store, FilesThatAreNoneOfTheirKindAreNamedAndStay) {
  write(configFile(u"registry.ini"_s), "no registry");
  EXPECT_THROW(store.read(), Failure);
  write(configFile(u"registry.ini"_s), "");
  write(configFile(u"platform.ini"_s), "[calendars\n");
  try {
    store.read();
    ADD_FAILURE() << "It was read.";
  } catch (const Failure& failure) {
    EXPECT_TRUE(failure.description().contains(u"platform.ini"_s));
  }
  EXPECT_EQ(content(configFile(u"platform.ini"_s)), "[calendars\n");
}

TEST_F(Store, ATrustedServerStandsInTheSettingsAsItsConnectionText) {
  SettingsBuffer buffer = filledIn(store);
  buffer.reportChoice = reportToSqlServer;
  buffer.sqlServer = {u"box"_s, u"Hours"_s, true, {}, {}};
  save(buffer);
  EXPECT_EQ(registryValue(u"ReportChoice"_s), u"3"_s);
  EXPECT_EQ(
      registryValue(u"ReportValue"_s),
      u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=box;Initial Catalog=Hours"_s);
  EXPECT_EQ(SettingsStore(config()).read().buffer.sqlServer, buffer.sqlServer);
}

TEST_F(Store, APasswordStandsInTheConnectionFileAloneWhichIsTheOwners) {
  SettingsBuffer buffer = filledIn(store);
  buffer.reportChoice = reportToSqlServer;
  buffer.makeDatabase = false;
  buffer.sqlServer = {u"box"_s, u"Hours"_s, false, u"jane"_s, u"s3cret"_s};
  save(buffer);
  const QString file = configFile(u"server/HourbookConnection.txt"_s);
  EXPECT_EQ(content(file),
            "Provider=SQLOLEDB.1;Persist Security Info=True;User ID=jane;Password=s3cret;Data "
            "Source=box;Initial Catalog=Hours");
  EXPECT_EQ(QFileInfo(file).permissions() & 0x0077, QFile::Permissions());
  const auto files = everything();
  for (auto it = files.cbegin(); it != files.cend(); ++it)
    EXPECT_TRUE(it.key() == file || !it->contains("s3cret")) << qPrintable(it.key());
  EXPECT_EQ(SettingsStore(config()).read().buffer.sqlServer, buffer.sqlServer);

  buffer.sqlServer.trusted = true;
  save(buffer);
  EXPECT_FALSE(QFileInfo::exists(file));
}

TEST_F(Store, ATargetThatThisVersionOnlyKeepsStays) {
  save(filledIn(store));
  setRegistryValue(u"ReportChoice"_s, u"1"_s);
  setRegistryValue(u"ReportValue"_s, u"http://server/asp"_s);
  SettingsStore again(config());
  SettingsBuffer buffer = again.read().buffer;
  buffer.personalRate = u"2"_s;
  again.save(buffer);
  EXPECT_EQ(registryValue(u"ReportChoice"_s), u"1"_s);
  EXPECT_EQ(registryValue(u"ReportValue"_s), u"http://server/asp"_s);
}

TEST_F(Store, TheReportProgramReadsWhatIsSaved) {
  SettingsBuffer buffer = filledIn(store);
  buffer.removeLunch = true;
  save(buffer);
  platform::registry::IniRegistry registry(configFile(u"registry.ini"_s));
  const platform::registry::ScopedRegistry inForce(registry);
  cPersonalSettings read;
  ASSERT_TRUE(read.GetValuesFromSettings());
  EXPECT_EQ(read.ReportChoice, 2);
  EXPECT_EQ(read.ReportValue, path(u"database"_s) + u'\\');
  EXPECT_EQ(read.PersonalRate, platform::basic::Currency::fromDouble(450.5));
  EXPECT_TRUE(read.RemoveLunch);
  EXPECT_EQ(read.fncMetadataList(), u"Customer:Acme;Bolt;\r\nTask:Support;\r\n"_s);
}

TEST_F(Store, AMailboxOfAnotherFormStaysWhileTheNameDoes) {
  save(filledIn(store));
  const QString file = configFile(u"platform.ini"_s);
  write(file, content(file).replace("Mailbox - Jane Doe", "Postfach - Jane Doe"));
  SettingsStore again(config());
  SettingsBuffer buffer = again.read().buffer;
  EXPECT_EQ(buffer.personName, u"Jane Doe"_s);
  buffer.calendars[0].name = u"Other"_s;
  again.save(buffer);
  EXPECT_EQ(Configuration::read(config()).mailboxName, u"Postfach - Jane Doe"_s);
}

}  // namespace
}  // namespace hourbook::tests
