// What becomes of a stored connection to a server.
#include "companions/settings/texts.h"
#include "platform/registry/ini/inifile.h"
#include "settingshome.h"
#include "shell/modRegistryEntry.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

const QString rich =
    u"Provider=SQLOLEDB.1;Data Source=box;Initial Catalog=Hours;Integrated Security=SSPI;Encrypt=yes;Application Name=Hours"_s;
const QString postgresql =
    u"Provider=PostgreSQL;Data Source=db.example.org;Initial Catalog=hours;User ID=jane;SSL Mode=require"_s;

class ServerStore : public SettingsHome {
 protected:
  QString registryValue(const QString& name) {
    platform::registry::IniRegistry registry(configFile(u"registry.ini"_s));
    const platform::registry::ScopedRegistry inForce(registry);
    return fncGetRegistryValue(u"Settings"_s, name, u"NULL"_s);
  }
  /// Settings that were saved here, whose target somebody has written otherwise.
  void store(const QString& value) {
    SettingsStore first(config());
    first.save(filledIn(first));
    platform::registry::IniRegistry registry(configFile(u"registry.ini"_s));
    const platform::registry::ScopedRegistry inForce(registry);
    fncSaveRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"3"_s);
    fncSaveRegistryValue(u"Settings"_s, u"ReportValue"_s, value);
  }
  /// Reads, has the buffer changed and saves it.
  void change(const std::function<void(SettingsBuffer&)>& edit) {
    SettingsStore again(config());
    SettingsBuffer buffer = again.read().buffer;
    edit(buffer);
    again.save(buffer);
  }
  static void changeRate(SettingsBuffer& buffer) { buffer.personalRate = u"7"_s; }
  QString ownFile() const { return configFile(u"server/HourbookConnection.txt"_s); }
  QString ownFolder() const { return configFile(u"server"_s) + u'\\'; }
  QByteArray everywhere() {
    QByteArray all;
    for (const QByteArray& bytes : everything()) all += bytes;
    return all;
  }
};

TEST_F(ServerStore, ATextWithFurtherPartsStaysWhenSomethingElseIsSaved) {
  store(rich);
  change(changeRate);
  EXPECT_EQ(registryValue(u"PersonalRate"_s), u"7"_s);
  EXPECT_EQ(registryValue(u"ReportValue"_s), rich);
}

TEST_F(ServerStore, ATextOfAnotherProviderStaysWhenSomethingElseIsSaved) {
  store(postgresql);
  change(changeRate);
  EXPECT_EQ(registryValue(u"ReportValue"_s), postgresql);
  EXPECT_FALSE(QFileInfo::exists(ownFile()));
  const SettingsBuffer buffer = SettingsStore(config()).read().buffer;
  EXPECT_TRUE(buffer.serverByText);
  EXPECT_EQ(buffer.serverText, postgresql);
}

TEST_F(ServerStore, AnotherLoginKeepsTheFurtherParts) {
  store(rich);
  change([](SettingsBuffer& buffer) { buffer.sqlServer.server = u"tower"_s; });
  EXPECT_EQ(registryValue(u"ReportValue"_s),
            u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=tower;"
            "Initial Catalog=Hours;Encrypt=yes;Application Name=Hours"_s);
}

TEST_F(ServerStore, AFolderThatLeadsToTheServerStays) {
  const QByteArray shared =
      "Provider=SQLOLEDB.1;Data Source=box;User ID=jane;Password=s3cret;Encrypt=yes\r\n";
  write(path(u"shared/HourbookConnection.txt"_s), shared);
  store(path(u"shared"_s) + u'\\');
  change(changeRate);
  EXPECT_EQ(registryValue(u"ReportValue"_s), path(u"shared"_s) + u'\\');
  EXPECT_EQ(content(path(u"shared/HourbookConnection.txt"_s)), shared);
  EXPECT_FALSE(QFileInfo::exists(ownFile()));
  EXPECT_EQ(everywhere().count("s3cret"), 1);
}

TEST_F(ServerStore, AnotherLoginLeavesTheFolderOfTheOthers) {
  const QByteArray shared = "Provider=SQLOLEDB.1;Data Source=box;User ID=jane;Password=s3cret;Encrypt=yes";
  write(path(u"shared/HourbookConnection.txt"_s), shared);
  store(path(u"shared"_s) + u'\\');
  change([](SettingsBuffer& buffer) { buffer.sqlServer.user = u"jim"_s; });
  EXPECT_EQ(registryValue(u"ReportValue"_s), ownFolder());
  EXPECT_EQ(content(path(u"shared/HourbookConnection.txt"_s)), shared);
  EXPECT_TRUE(content(ownFile()).endsWith(";Encrypt=yes"));
  EXPECT_TRUE(content(ownFile()).contains("User ID=jim;Password=s3cret"));
}

TEST_F(ServerStore, TheOwnConnectionFileStaysToTheLastByte) {
  store(ownFolder());
  write(ownFile(), "Provider=PostgreSQL;Server=db;UID=jane;PWD=s3cret;\n");
  change(changeRate);
  EXPECT_EQ(content(ownFile()), "Provider=PostgreSQL;Server=db;UID=jane;PWD=s3cret;\n");
  EXPECT_EQ(registryValue(u"ReportValue"_s), ownFolder());
}

TEST_F(ServerStore, APasswordAmongTheSettingsMovesIntoTheConnectionFileAsItIsWritten) {
  const QString text = rich + u";User ID=jane;Password=s3cret"_s;
  store(text);
  change(changeRate);
  EXPECT_EQ(registryValue(u"ReportValue"_s), ownFolder());
  EXPECT_EQ(content(ownFile()), text.toUtf8());
  EXPECT_EQ(everywhere().count("s3cret"), 1);
  EXPECT_EQ(QFileInfo(ownFile()).permissions() & 0x0077, QFile::Permissions());
}

TEST_F(ServerStore, ATypedTextIsStoredWithItsPasswordInTheConnectionFile) {
  store(rich);
  change([](SettingsBuffer& buffer) {
    buffer.serverByText = true;
    buffer.serverText = u"  "_s + postgresql + u' ';
  });
  EXPECT_EQ(registryValue(u"ReportValue"_s), postgresql);
  change([](SettingsBuffer& buffer) { buffer.serverText += u";PWD=s3cret"_s; });
  EXPECT_EQ(registryValue(u"ReportValue"_s), ownFolder());
  EXPECT_EQ(content(ownFile()), (postgresql + u";PWD=s3cret"_s).toUtf8());
  EXPECT_EQ(everywhere().count("s3cret"), 1);
  change([](SettingsBuffer& buffer) {
    buffer.reportChoice = reportToAccess;
    buffer.databaseFolder = buffer.databaseFolder.isEmpty() ? u"/tmp"_s : buffer.databaseFolder;
  });
  EXPECT_FALSE(QFileInfo::exists(ownFile()));
}

TEST_F(ServerStore, ATextThatCannotBeReadIsToldAndShownAsItIs) {
  store(u"Provider=SQLOLEDB.1;Data Source"_s);
  const ReadSettings read = SettingsStore(config()).read();
  EXPECT_TRUE(read.buffer.serverByText);
  EXPECT_EQ(read.buffer.serverText, u"Provider=SQLOLEDB.1;Data Source"_s);
  EXPECT_EQ(read.notes, (QList<FieldText>{{Field::ConnectionText, texts::connectionTextForm}}));
}

TEST_F(ServerStore, AStoredLoginThatCouldNotBeTypedHereIsNoProblem) {
  store(u"Provider=SQLOLEDB.1;Data Source=box;User ID=jane;Password=\"a;b\""_s);
  SettingsBuffer buffer = SettingsStore(config()).read().buffer;
  EXPECT_TRUE(targetProblems(buffer, true).isEmpty());
  buffer.sqlServer.server = u"tower"_s;
  QList<Field> fields;
  for (const FieldText& problem : targetProblems(buffer, true)) fields.append(problem.field);
  EXPECT_EQ(fields, (QList<Field>{Field::ServerDatabase, Field::Password}));
}

TEST_F(ServerStore, SavesOfOneWindowFollowEachOther) {
  store(rich);
  SettingsStore again(config());
  SettingsBuffer buffer = again.read().buffer;
  buffer.sqlServer.server = u"tower"_s;
  again.save(buffer);
  buffer.personalRate = u"8"_s;
  again.save(buffer);
  EXPECT_TRUE(registryValue(u"ReportValue"_s).contains(u"Data Source=tower;"_s));
  EXPECT_TRUE(registryValue(u"ReportValue"_s).endsWith(u";Encrypt=yes;Application Name=Hours"_s));
}

}  // namespace
}  // namespace hourbook::tests
