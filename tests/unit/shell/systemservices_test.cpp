#include "shell/clsAlwaysOnTop.h"
#include "shell/modAPI.h"
#include "shell/modErrorReport.h"
#include "shell/modGetDefaultFolders.h"
#include "shell/modXPlooks.h"
#include "tests/unit/shell/shellworld.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace hourbook::tests {

namespace {

class TestWindow : public FormWindow {
 public:
  qint32 ExtendedStyle() const override { return style; }
  void setExtendedStyle(qint32 value) override { style = value; }
  void Activate() override {
    if (failing) throw platform::Failure(5, u"no such window"_s);
    calls.append(u"activate"_s);
  }
  bool Visible() const override { return visible; }
  void SetFocus() override {
    if (failing) throw platform::Failure(5, u"no such window"_s);
    calls.append(u"focus"_s);
  }
  void SetWindowPos(int insertAfter, quint32 flags) override {
    calls.append(u"%1 %2"_s.arg(insertAfter).arg(flags));
  }
  qint32 style = 0x100;
  bool visible = true;
  bool failing = false;
  QStringList calls;
};

/// Each pixel's colour tells where it stands.
class TestPicture : public DeviceContext {
 public:
  qint32 GetPixel(int x, int y) const override {
    if (failing) throw platform::Failure(5, u"no picture"_s);
    return x < 0 || y < 0 || x >= 1000 || y >= 1000 ? -1 : x * 1000 + y;
  }
  bool failing = false;
};

}  // namespace

class SystemServices : public ShellWorld {
 protected:
  void registerBrowser(const platform::basic::Value& command) {
    world.registry.setValue(u"Software\\Classes\\http\\shell\\open\\command"_s, {}, command);
  }
};

TEST_F(SystemServices, TheListSeparatorIsTheSystems) {
  world.setLocale(u"sv_SE"_s);
  EXPECT_EQ(fncGetListSeparator(), u";"_s);
  world.setLocale(u"en_US"_s);
  EXPECT_EQ(fncGetListSeparator(), u","_s);
  EXPECT_EQ(fncLastLogText(), u"Getting List separator from computer settings!"_s);
}

TEST_F(SystemServices, ABrowsersPathStandsBetweenTheFirstTwoQuotes) {
  EXPECT_EQ(fncProgramOfCommand(u"\"C:\\Program Files\\Web\\b.exe\" -url \"%1\""_s),
            u"C:\\Program Files\\Web\\b.exe"_s);
}

TEST_F(SystemServices, ABrowsersPathWithoutQuotesEndsAtTheFirstBlankBehindTheLastFolder) {
  EXPECT_EQ(fncProgramOfCommand(u"C:\\Program Files\\Web\\b.exe -url %1"_s),
            u"C:\\Program Files\\Web\\b.exe"_s);
  EXPECT_EQ(fncProgramOfCommand(u"C:\\Web\\b.exe"_s), u"C:\\Web\\b.exe"_s);
  EXPECT_EQ(fncProgramOfCommand(u"/usr/bin/browser %u"_s), u"/usr/bin/browser"_s);
  EXPECT_EQ(fncProgramOfCommand({}), QString());
}

TEST_F(SystemServices, AUrlIsOpenedWithTheRegisteredBrowser) {
  registerBrowser(u"\"/opt/web/browser\" %1"_s);
  subOpenInBrowser(u"http://example.org/"_s);
  EXPECT_EQ(world.process.started, (QList<QStringList>{{u"/opt/web/browser"_s, u"http://example.org/"_s}}));
  EXPECT_TRUE(world.process.opened.isEmpty());
}

TEST_F(SystemServices, TheBrowserIsLookedForOnce) {
  registerBrowser(u"/opt/web/browser %1"_s);
  EXPECT_EQ(fncGetDefaultBrowser(), u"/opt/web/browser"_s);
  registerBrowser(u"/opt/other %1"_s);
  EXPECT_EQ(fncGetDefaultBrowser(), u"/opt/web/browser"_s);
}

TEST_F(SystemServices, WithoutARegisteredBrowserTheDesktopOpensTheUrl) {
  EXPECT_EQ(fncGetDefaultBrowser(), QString());
  subOpenInBrowser(u"http://example.org/"_s);
  EXPECT_EQ(world.process.opened, QStringList{u"http://example.org/"_s});
  EXPECT_TRUE(world.process.started.isEmpty());
}

TEST_F(SystemServices, ABrowserThatDoesNotStartSaysNothing) {
  world.process.startFailure = u"not found"_s;
  EXPECT_NO_THROW(subOpenInBrowser(u"http://example.org/"_s));
  registerBrowser(u"/opt/web/browser %1"_s);
  EXPECT_NO_THROW(subOpenInBrowser(u"http://example.org/"_s));
  EXPECT_TRUE(world.dialogs.shown.isEmpty());
}

TEST_F(SystemServices, ABrowserRegisteredAsAnythingButATextIsNone) {
  registerBrowser(qint32(1));
  EXPECT_EQ(fncGetDefaultBrowser(), QString());
}

TEST_F(SystemServices, AnOpenWindowGetsAnEntryInTheTaskBarAndTheFocus) {
  TestWindow window;
  subEnsureVisibleTaskBar(window);
  EXPECT_EQ(window.style, 0x40100);
  EXPECT_EQ(window.calls, (QStringList{u"activate"_s, u"focus"_s}));
  EXPECT_EQ(fncLastLogText(), u"Trying to make sure the form appears in the Activity bar"_s);
}

TEST_F(SystemServices, AHiddenWindowGetsNoFocusAndAFailingOneIsPassedOver) {
  TestWindow window;
  window.visible = false;
  subEnsureVisibleTaskBar(window);
  EXPECT_EQ(window.calls, QStringList{u"activate"_s});
  window.visible = window.failing = true;
  EXPECT_NO_THROW(subEnsureVisibleTaskBar(window));
}

TEST_F(SystemServices, AWindowGoesOnTopAndBackWithoutMoving) {
  TestWindow window;
  clsAlwaysOnTop().MakeTopMost(window);
  clsAlwaysOnTop().MakeNormal(window);
  EXPECT_EQ(window.calls, (QStringList{u"-1 3"_s, u"-2 3"_s}));
}

TEST_F(SystemServices, AControlTakesTheColourOfThePictureBehindItsMiddle) {
  platform::forms::Label label(u"lblText"_s);
  label.place(150, 300, 60, 90);
  subApplyBackColorToControl(TestPicture(), label);
  EXPECT_EQ(label.BackColor(), 12 * 1000 + 23);
  EXPECT_EQ(fncLastLogText(), u"Setting the background color of the control"_s);
}

TEST_F(SystemServices, AControlBesideThePictureKeepsItsColour) {
  platform::forms::Label label(u"lblText"_s);
  label.setBackColor(255);
  label.place(-3000, 0, 15, 15);
  subApplyBackColorToControl(TestPicture(), label);
  EXPECT_EQ(label.BackColor(), 255);
  TestPicture failing;
  failing.failing = true;
  EXPECT_NO_THROW(subApplyBackColorToControl(failing, label));
  EXPECT_EQ(label.BackColor(), 255);
}

TEST_F(SystemServices, TheCubeFolderStandsInTheDocumentsAndIsMade) {
  EXPECT_EQ(fncLocalCubePathOnly(), documents.path() + u"\\OLAP Cubes"_s);
  EXPECT_FALSE(QDir(documents.filePath(u"OLAP Cubes"_s)).exists());
  EXPECT_EQ(fncGetLocalCubePath(), documents.path() + u"\\OLAP Cubes"_s);
  EXPECT_TRUE(QDir(documents.filePath(u"OLAP Cubes"_s)).exists());
  EXPECT_EQ(fncGetLocalCubePath(), documents.path() + u"\\OLAP Cubes"_s);
}

TEST_F(SystemServices, ADocumentsFolderThatNobodyHasMadeYetIsMadeToo) {
  values.documentsFolder = documents.filePath(u"Documents"_s);
  fncGetLocalCubePath();
  EXPECT_TRUE(QDir(documents.filePath(u"Documents/OLAP Cubes"_s)).exists());
}

TEST_F(SystemServices, TheDocumentsFolderIsTheDesktopsUnlessItIsSet) {
  values.documentsFolder.clear();
  EXPECT_EQ(fncLocalCubePathOnly(),
            QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + u"\\OLAP Cubes"_s);
}

}  // namespace hourbook::tests
