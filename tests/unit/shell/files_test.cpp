#include "platform/process/process.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "tests/unit/shell/shellworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::Failure;
using platform::dialogs::vbCritical;
using platform::dialogs::vbOK;
using platform::scripting::FileSystemObject;
using platform::scripting::WshShell;

namespace {

/// Refuses to delete or to write the files that are named.
class StubbornFiles : public FileSystemObject {
 public:
  QStringList locked;
  QStringList unwritable;
  void DeleteFile(const QString& path, bool force) override {
    forced = force;
    for (const QString& name : locked)
      if (path.endsWith(name)) throw Failure(70, u"Permission denied"_s);
    FileSystemObject::DeleteFile(path, force);
  }
  std::shared_ptr<platform::scripting::TextStream> CreateTextFile(const QString& path, bool overwrite,
                                                                  bool unicode) override {
    for (const QString& name : unwritable)
      if (path.endsWith(name)) throw Failure(70, u"Permission denied"_s);
    return FileSystemObject::CreateTextFile(path, overwrite, unicode);
  }
  bool forced = false;
};

class RecordingShell : public WshShell {
 public:
  struct Call {
    QString command;
    int windowStyle;
  };
  void Run(const QString& command, int windowStyle) override {
    calls.append({command, windowStyle});
    if (failure) throw *failure;
  }
  QList<Call> calls;
  std::optional<Failure> failure;
};

}  // namespace

class TextFiles : public ShellWorld {
 protected:
  TextFiles() {
    values.gFileSystem = files;
    values.temporaryFolder = temp.path();
    values.temporaryFolderFound = true;
  }
  std::shared_ptr<StubbornFiles> files = std::make_shared<StubbornFiles>();
  QTemporaryDir temp;
};

TEST_F(TextFiles, AFileIsWrittenWhereItsNameSays) {
  QString name = documents.filePath(u"report.htm"_s);
  EXPECT_EQ(fncSaveTextFile(name, u"text\r\nwith å"_s, false), documents.filePath(u"report.htm"_s));
  EXPECT_EQ(contentOf(documents.filePath(u"report.htm"_s)), u"text\r\nwith å"_s);
  EXPECT_EQ(fncLastLogText(), u"Saving textfile "_s + name);
}

TEST_F(TextFiles, ASavedFileHoldsNoDoubleQuotes) {
  QString name = documents.filePath(u"a.txt"_s);
  fncSaveTextFile(name, u"<td class=\"x\">\"\"</td>"_s, false);
  EXPECT_EQ(contentOf(name), u"<td class=x></td>"_s);
}

TEST_F(TextFiles, ATemporaryFileStandsInTheTemporaryFolderAndTheCallerGetsItsPath) {
  QString name = u"HBKReport.htm"_s;
  const QString path = fncSaveTextFile(name, u"x"_s, true);
  EXPECT_EQ(path, temp.path() + u"\\HBKReport.htm"_s);
  EXPECT_EQ(name, path);
  EXPECT_EQ(contentOf(temp.filePath(u"HBKReport.htm"_s)), u"x"_s);
}

TEST_F(TextFiles, AFileWithoutANameGetsOneOfItsOwnKind) {
  QString name;
  fncSaveTextFile(name, u"x"_s, false);
  EXPECT_TRUE(name.startsWith(temp.path() + u"\\rad"_s)) << qPrintable(name);
  EXPECT_TRUE(name.endsWith(u".ndf"_s));
  EXPECT_EQ(QDir(temp.path()).entryList(QDir::Files).size(), 1);
}

TEST_F(TextFiles, AnOldFileIsReplacedByForce) {
  QString name = documents.filePath(u"a.txt"_s);
  writeFile(name, u"a much longer old text"_s);
  fncSaveTextFile(name, u"new"_s, false);
  EXPECT_EQ(contentOf(name), u"new"_s);
  EXPECT_TRUE(files->forced);
}

TEST_F(TextFiles, ALockedFileIsReportedAndNothingIsWritten) {
  QString name = documents.filePath(u"a.txt"_s);
  writeFile(name, u"old"_s);
  files->locked = {u"a.txt"_s};
  EXPECT_REPORTED(world, "fncSaveTextFile", fncSaveTextFile(name, u"new"_s, false));
  EXPECT_EQ(contentOf(documents.filePath(u"a.txt"_s)), u"old"_s);
  EXPECT_EQ(fncLastLogText(), u"Checking for previoius existance of "_s + name);
}

TEST_F(TextFiles, ALockedTemporaryFileGivesWayToANumberedName) {
  writeFile(temp.filePath(u"a.txt"_s), u"old"_s);
  writeFile(temp.filePath(u"a1.txt"_s), u"old"_s);
  files->locked = {u"a.txt"_s, u"a1.txt"_s};
  QString name = u"a.txt"_s;
  EXPECT_EQ(fncSaveTextFile(name, u"new"_s, true), temp.path() + u"\\a2.txt"_s);
  EXPECT_EQ(name, temp.path() + u"\\a2.txt"_s);
  EXPECT_EQ(contentOf(temp.filePath(u"a2.txt"_s)), u"new"_s);
  EXPECT_EQ(contentOf(temp.filePath(u"a.txt"_s)), u"old"_s);
}

TEST_F(TextFiles, ANumberedNameThatCanBeDeletedIsUsedAgain) {
  writeFile(temp.filePath(u"a.txt"_s), u"old"_s);
  writeFile(temp.filePath(u"a1.txt"_s), u"old"_s);
  files->locked = {u"a.txt"_s};
  QString name = u"a.txt"_s;
  EXPECT_EQ(fncSaveTextFile(name, u"new"_s, true), temp.path() + u"\\a1.txt"_s);
}

TEST_F(TextFiles, TheNumberStandsInFrontOfTheLastFourCharactersWhateverTheExtension) {
  writeFile(temp.filePath(u"report.html"_s), u"old"_s);
  files->locked = {u"report.html"_s};
  QString name = u"report.html"_s;
  EXPECT_EQ(fncSaveTextFile(name, u"new"_s, true), temp.path() + u"\\report.1html"_s);
}

TEST_F(TextFiles, AFileThatCannotBeWrittenIsReported) {
  files->unwritable = {u"a.txt"_s};
  QString name = documents.filePath(u"a.txt"_s);
  EXPECT_REPORTED(world, "fncSaveTextFile", fncSaveTextFile(name, u"new"_s, false));
}

TEST_F(TextFiles, TheTemporaryFolderIsLookedForOnce) {
  values.temporaryFolderFound = false;
  QString name = u"a.txt"_s;
  const QString path = fncSaveTextFile(name, u"x"_s, true);
  EXPECT_TRUE(values.temporaryFolderFound);
  EXPECT_EQ(path, fncGetTempPath() + u"\\a.txt"_s);
  values.temporaryFolder = temp.path();
  name = u"b.txt"_s;
  EXPECT_EQ(fncSaveTextFile(name, u"x"_s, true), temp.path() + u"\\b.txt"_s);
}

TEST_F(TextFiles, TheTemporaryFolderIsTheSystemsOwn) {
  EXPECT_EQ(QDir(fncGetTempPath()).canonicalPath(), QDir::temp().canonicalPath());
  EXPECT_EQ(fncLastLogText(), u"Finding Temp folder path"_s);
}

TEST_F(TextFiles, AFoldersPathWithLongNamesStaysAsItIs) {
  EXPECT_EQ(fncLongFolderPath(files->GetFolder(u"/"_s)), files->GetFolder(u"/"_s)->Path());
  QDir(temp.path()).mkpath(u"one/two"_s);
  EXPECT_EQ(fncLongFolderPath(files->GetFolder(temp.filePath(u"one/two"_s))), temp.filePath(u"one/two"_s));
}

/// A folder of a system that knows two names of each.
class TwoNames : public platform::scripting::Folder {
 public:
  TwoNames(std::shared_ptr<TwoNames> parent, const QString& shortName, const QString& name)
      : Folder(parent ? parent->Path() + u'/' + shortName : shortName),
        parent_(std::move(parent)),
        shortName_(shortName),
        name_(name) {}
  std::shared_ptr<TwoNames> add(const std::shared_ptr<TwoNames>& self, const QString& shortName,
                                const QString& name) {
    below_.append(std::make_shared<TwoNames>(self, shortName, name));
    return below_.last();
  }
  QString Name() const override { return name_; }
  QString ShortName() const override { return shortName_; }
  bool IsRootFolder() const override { return !parent_; }
  std::shared_ptr<Folder> ParentFolder() const override { return parent_; }
  QList<std::shared_ptr<Folder>> SubFolders() const override { return {below_.begin(), below_.end()}; }
  void clear() { below_.clear(); }

 private:
  std::shared_ptr<TwoNames> parent_;
  QString shortName_, name_;
  QList<std::shared_ptr<TwoNames>> below_;
};

TEST_F(TextFiles, AFoldersPathWithShortNamesIsWrittenWithTheLongOnes) {
  const auto root = std::make_shared<TwoNames>(nullptr, u"C:\\"_s, u"C:\\"_s);
  root->add(root, u"DOCUME~2"_s, u"Documents of others"_s);
  const auto documents = root->add(root, u"DOCUME~1"_s, u"Documents and Settings"_s);
  const auto user = documents->add(documents, u"ann"_s, u"ann"_s);
  const auto temp = user->add(user, u"LOCALS~1"_s, u"Local Settings"_s);
  EXPECT_EQ(fncLongFolderPath(temp), u"C:\\Documents and Settings\\ann\\Local Settings"_s);
  EXPECT_EQ(fncLongFolderPath(user), u"C:\\Documents and Settings\\ann"_s);
  EXPECT_EQ(fncLongFolderPath(root), u"C:\\"_s);
  for (const auto& folder : {root, documents, user}) folder->clear();  // they know each other
}

TEST_F(TextFiles, OneTrailingSeparatorIsStripped) {
  EXPECT_EQ(fncStripSlash(u"C:\\Data\\"_s), u"C:\\Data"_s);
  EXPECT_EQ(fncStripSlash(u"/data/"_s), u"/data"_s);
  EXPECT_EQ(fncStripSlash(u"/data"_s), u"/data"_s);
  EXPECT_EQ(fncStripSlash(u"/data//"_s), u"/data/"_s);
  EXPECT_EQ(fncStripSlash({}), QString());
}

class StartingPrograms : public ShellWorld {
 protected:
  StartingPrograms() {
    world.components.add<WshShell>(u"Wscript.Shell"_s, [this] { return shell; });
  }
  QString folder(const QString& name) const { return documents.filePath(name); }
  std::shared_ptr<RecordingShell> shell = std::make_shared<RecordingShell>();
};

TEST_F(StartingPrograms, AnAddressIsRunAsItStandsWithoutLookingForAFile) {
  for (const QString& address : {u"http://example.org/a b"_s, u"HTTPS://example.org"_s,
                                 u"mailto:a@example.org"_s, u"MailTo:x"_s, u"hTTpd"_s}) {
    shell->calls.clear();
    subExecute(address, documents.path(), u"-x"_s);
    ASSERT_EQ(shell->calls.size(), 1);
    EXPECT_EQ(shell->calls.first().command, address);
  }
  EXPECT_EQ(fncLastLogText(), u"Attempting to execute hTTpd"_s);
}

TEST_F(StartingPrograms, AProgramOfTheFolderIsRunInQuotesWithItsParameters) {
  writeFile(folder(u"HBCube.exe"_s), u"x"_s);
  writeFile(inProgramFolder(u"HBCube.exe"_s), u"x"_s);
  subExecute(u"HBCube"_s, documents.path() + u'/', u"-a \"b c\""_s);
  ASSERT_EQ(shell->calls.size(), 1);
  EXPECT_EQ(shell->calls.first().command, u"\""_s + folder(u"HBCube.exe"_s) + u"\" -a \"b c\""_s);
  EXPECT_EQ(shell->calls.first().windowStyle, 1);
  EXPECT_EQ(fncLastLogText(), u"Attempting to execute the path '"_s + documents.path() + u"\\HBCube.exe"_s);
}

TEST_F(StartingPrograms, AProgramThatTheFolderLacksIsTakenFromTheProgramsOwn) {
  writeFile(inProgramFolder(u"HBCube.exe"_s), u"x"_s);
  subExecute(u"HBCube"_s, documents.path());
  ASSERT_EQ(shell->calls.size(), 1);
  EXPECT_EQ(shell->calls.first().command, u"\""_s + inProgramFolder(u"HBCube.exe"_s) + u'"');
}

TEST_F(StartingPrograms, WithoutAFolderTheProgramsOwnIsLookedIn) {
  writeFile(inProgramFolder(u"HBCube.exe"_s), u"x"_s);
  subExecute(u"HBCube"_s);
  EXPECT_EQ(shell->calls.size(), 1);
}

TEST_F(StartingPrograms, AProgramMayLackTheExtension) {
  writeFile(folder(u"HBCube"_s), u"x"_s);
  subExecute(u"HBCube"_s, documents.path());
  ASSERT_EQ(shell->calls.size(), 1);
  EXPECT_EQ(shell->calls.first().command, u"\""_s + folder(u"HBCube"_s) + u'"');
}

TEST_F(StartingPrograms, AMissingProgramIsToldAndTheProgramGoesOn) {
  const QString path = world.programFolder() + u"\\HBCube.exe"_s;
  world.dialogs.expect(path + u"\r\nFile not found\r\n#53"_s, vbOK);
  subExecute(u"HBCube"_s, documents.path());
  EXPECT_EQ(world.dialogs.shown.first().options, vbCritical);
  EXPECT_EQ(world.dialogs.shown.first().title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_TRUE(shell->calls.isEmpty());
}

TEST_F(StartingPrograms, AProgramThatDoesNotStartIsToldWithTheReason) {
  writeFile(folder(u"HBCube.exe"_s), u"x"_s);
  shell->failure = Failure(-2147024894, u"The system cannot find the file specified."_s);
  world.dialogs.expect(
      documents.path() + u"\\HBCube.exe\r\nThe system cannot find the file specified.\r\n#-2147024894"_s,
      vbOK);
  subExecute(u"HBCube"_s, documents.path());
}

TEST_F(StartingPrograms, AnAddressThatCannotBeOpenedIsReported) {
  shell->failure = Failure(-2147024894, u"No browser"_s);
  EXPECT_REPORTED(world, "modFileHandling.subExecute", subExecute(u"http://example.org"_s));
}

TEST_F(StartingPrograms, WithoutAShellNothingIsRunAfterItsMessage) {
  world.components.remove(u"Wscript.Shell"_s);
  world.dialogs.expect(u"Scripting.Dictionary"_s, vbOK);
  subExecute(u"http://example.org"_s);
}

class FilesOfTheDesktop : public ShellWorld {
 protected:
  FilesOfTheDesktop() { writeFile(report, u"x"_s); }
  const QString report = documents.filePath(u"HBKReport.htm"_s);
};

TEST_F(FilesOfTheDesktop, AFileIsPrintedByTheSystem) {
  keepLog();
  fncPrintFile(documents.path() + u"\\HBKReport.htm"_s);
  EXPECT_EQ(world.process.started, (QList<QStringList>{{u"lp"_s, report}}));
  EXPECT_TRUE(wasLogged(u"Attempting to print the file "_s + documents.path() + u"\\HBKReport.htm"_s));
  EXPECT_EQ(fncLastLogText(), u"Trying to execute "_s + documents.path());
}

TEST_F(FilesOfTheDesktop, AMissingFileIsReportedUnderTheNameOfTheSavingProcedure) {
  EXPECT_REPORTED(world, "fncSaveTextFile", fncPrintFile(documents.filePath(u"gone.htm"_s)));
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"#53\r\n"_s));
  EXPECT_TRUE(world.process.started.isEmpty());
}

TEST_F(FilesOfTheDesktop, AMachineThatCannotPrintIsReportedWithTheReason) {
  world.process.startFailure = u"lp: No such file or directory"_s;
  EXPECT_REPORTED(world, "frmDummy.Form_Load", fncPrintFile(report));
  const QString text = world.dialogs.shown.first().text;
  EXPECT_TRUE(text.contains(u"cannot be printed"_s)) << qPrintable(text);
  EXPECT_TRUE(text.contains(u"lp: No such file or directory"_s)) << qPrintable(text);
}

TEST_F(FilesOfTheDesktop, AnEmptyVerbOpensTheFile) {
  fncInvokeVerb(documents.path(), u"HBKReport.htm"_s, {});
  EXPECT_EQ(world.process.opened, QStringList{report});
}

TEST_F(FilesOfTheDesktop, AnUnknownVerbIsReported) {
  EXPECT_REPORTED(world, "frmDummy.Form_Load",
                  fncInvokeVerb(documents.path(), u"HBKReport.htm"_s, u"fold"_s));
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"\"fold\""_s));
}

TEST_F(FilesOfTheDesktop, AFileAFolderOrADesktopThatIsNotThereIsReported) {
  const auto numberOf = [this](const QString& folder, const QString& file) {
    values.gInErrorReport = false;
    EXPECT_REPORTED(world, "frmDummy.Form_Load", fncInvokeVerb(folder, file, u"Print"_s));
    return world.dialogs.shown.last().text.section(u'#', 1).section(u'\r', 0, 0);
  };
  EXPECT_EQ(numberOf(documents.path(), u"gone.htm"_s), u"91"_s);
  EXPECT_EQ(numberOf(documents.filePath(u"gone"_s), u"HBKReport.htm"_s), u"91"_s);
  world.components.remove(u"Shell.Application"_s);
  EXPECT_EQ(numberOf(documents.path(), u"HBKReport.htm"_s), u"429"_s);
}

}  // namespace hourbook::tests
