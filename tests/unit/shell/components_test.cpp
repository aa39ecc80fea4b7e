#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/modScriptingDic.h"
#include "tests/unit/shell/shellworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::dialogs::vbCritical;
using platform::dialogs::vbOK;
using platform::scripting::DictionaryComponent;
using platform::scripting::FileSystemObject;
using platform::scripting::WshShell;

class ScriptingComponents : public ShellWorld {
 protected:
  /// A component that answers from the n-th attempt on.
  template <class T>
  void answersFrom(int attempt, const QString& progId) {
    world.components.add<T>(progId, [this, attempt]() -> std::shared_ptr<T> {
      return ++attempts >= attempt ? std::make_shared<T>() : nullptr;
    });
  }
  const QStringList repairOfScrrun{u"regsvr32"_s, u"scrrun.dll"_s, u"/s"_s};
  int attempts = 0;
};

TEST_F(ScriptingComponents, TheFileSystemObjectIsMadeOnce) {
  subSetupFS();
  EXPECT_EQ(
      fncLastLogText(),
      u"Creating Scripting.FileSystemObject\r\nThis component is normally installed with Internet Explorer "
      "4.0 or later"_s);
  const auto made = values.gFileSystem;
  ASSERT_TRUE(made);
  subLog(u"between"_s);
  subSetupFS();
  EXPECT_EQ(values.gFileSystem, made);
  EXPECT_EQ(fncLastLogText(), u"between"_s);
}

TEST_F(ScriptingComponents, AFileSystemObjectThatOnlyTheNameFindsIsTaken) {
  answersFrom<FileSystemObject>(2, u"Scripting.FileSystemObject"_s);
  subSetupFS();
  EXPECT_TRUE(values.gFileSystem);
  EXPECT_TRUE(world.process.started.isEmpty());
}

TEST_F(ScriptingComponents, AMissingFileSystemObjectIsRepairedOnce) {
  answersFrom<FileSystemObject>(3, u"Scripting.FileSystemObject"_s);
  subSetupFS();
  EXPECT_TRUE(values.gFileSystem);
  EXPECT_EQ(world.process.started, QList<QStringList>{repairOfScrrun});
}

TEST_F(ScriptingComponents, AFileSystemObjectThatTheRepairDoesNotBringIsReported) {
  world.components.remove(u"Scripting.FileSystemObject"_s);
  EXPECT_REPORTED(world, "subSetupFS", subSetupFS());
  EXPECT_EQ(world.process.started.size(), 1);
  EXPECT_FALSE(values.gFileSystem);
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"#429\r\n"_s));
}

TEST_F(ScriptingComponents, ARepairThatDoesNotStartIsPassedOver) {
  world.process.startFailure = u"not found"_s;
  answersFrom<FileSystemObject>(3, u"Scripting.FileSystemObject"_s);
  subSetupFS();
  EXPECT_TRUE(values.gFileSystem);
}

TEST_F(ScriptingComponents, ADictionarysKeysCompareWithoutRegardToCase) {
  const auto dictionary = fncCreateDic<int>();
  dictionary->Add(u"Acme"_s, 1);
  EXPECT_TRUE(dictionary->Exists(u"ACME"_s));
  EXPECT_EQ(
      fncLastLogText(),
      u"Attempting to create a new Scripting.Dictionary object. This component is usually installed with "
      "Internet Explorer 4.0 or later"_s);
}

TEST_F(ScriptingComponents, EachDictionaryIsItsOwn) {
  const auto first = fncCreateDic<int>();
  first->Add(u"a"_s, 1);
  EXPECT_EQ(fncCreateDic<int>()->Count(), 0);
}

TEST_F(ScriptingComponents, ADictionaryThatOnlyTheNameFindsIsTaken) {
  answersFrom<DictionaryComponent>(2, u"Scripting.Dictionary"_s);
  EXPECT_TRUE(fncCreateDic<int>());
  EXPECT_TRUE(world.process.started.isEmpty());
}

TEST_F(ScriptingComponents, AMissingDictionaryIsRepairedOnce) {
  answersFrom<DictionaryComponent>(3, u"Scripting.Dictionary"_s);
  EXPECT_TRUE(fncCreateDic<int>());
  EXPECT_EQ(world.process.started, QList<QStringList>{repairOfScrrun});
}

TEST_F(ScriptingComponents, ADictionaryThatTheRepairDoesNotBringIsReported) {
  world.components.remove(u"Scripting.Dictionary"_s);
  EXPECT_REPORTED(world, "modScriptingDic.fncCreateDic", fncCreateDic<int>());
  EXPECT_EQ(world.process.started.size(), 1);
}

TEST_F(ScriptingComponents, TheShellIsMadeAnewForEachCaller) {
  EXPECT_TRUE(fncGetShell());
  EXPECT_NE(fncGetShell(), fncGetShell());
}

TEST_F(ScriptingComponents, AMissingShellIsRepairedAndTriedOnceMore) {
  answersFrom<WshShell>(2, u"Wscript.Shell"_s);
  EXPECT_TRUE(fncGetShell());
  EXPECT_EQ(world.process.started, (QList<QStringList>{{u"regsvr32"_s, u"wshom.ocx"_s, u"/s"_s}}));
}

TEST_F(ScriptingComponents, AShellThatTheRepairDoesNotBringIsToldInTheWordsOfTheDictionary) {
  world.components.remove(u"Wscript.Shell"_s);
  world.dialogs.expect({}, vbOK);
  EXPECT_EQ(fncGetShell(), nullptr);
  const auto& box = world.dialogs.shown.first();
  EXPECT_EQ(box.title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_EQ(box.options, vbCritical);
  EXPECT_EQ(
      box.text,
      u"Attempting to create a new Scripting.Dictionary object.\r\n"
      "This component is usually installed with Internet Explorer 4.0 or later\r\n"
      "Please download the Windows Scripting Runtime from Microsoft Downloads to resolve this issue!"_s);
}

}  // namespace hourbook::tests
