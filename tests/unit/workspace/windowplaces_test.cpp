#include "platform/forms/widgets/windowplaces.h"

#include "reportwindow.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScreen>
#include <QSplitter>

namespace tests {
namespace {

class RememberedPlace : public Window {
 protected:
  RememberedPlace() { placesFile = folder.filePath(QStringLiteral("state/hourbook/window.json")); }
  QSplitter* splitter() const { return window->findChild<QSplitter*>(QStringLiteral("listAndStatistics")); }
  void closeIt() {
    EXPECT_ENDS_PROCESS(window->close());
    letGo();
  }
  void write(const QByteArray& text) {
    QDir().mkpath(QFileInfo(placesFile).path());
    QFile file(placesFile);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }
  QRect screen() const { return QGuiApplication::primaryScreen()->availableGeometry(); }
  QTemporaryDir folder;
};

TEST_F(RememberedPlace, IsTheSameInTheNextRun) {
  open();
  window->move(17, 23);
  window->resize(700, 520);
  QCoreApplication::processEvents();
  closeIt();
  openWithWhatThereIs();
  EXPECT_EQ(window->pos(), QPoint(17, 23));
  EXPECT_EQ(window->size(), QSize(700, 520));
}

TEST_F(RememberedPlace, IsTheSameForTheThreeForms) {
  open();
  window->resize(710, 530);
  QCoreApplication::processEvents();
  closeIt();
  generation = 9;
  openWithWhatThereIs();
  EXPECT_EQ(window->size(), QSize(710, 530));
}

TEST_F(RememberedPlace, HoldsForTheSplitterToo) {
  open();
  QCoreApplication::processEvents();
  const int whole = splitter()->sizes()[0] + splitter()->sizes()[1];
  splitter()->setSizes({whole - 160, 160});
  const QList<int> sizes = splitter()->sizes();
  closeIt();
  openWithWhatThereIs();
  QCoreApplication::processEvents();
  EXPECT_EQ(splitter()->sizes(), sizes);
}

TEST_F(RememberedPlace, IsKeptAlsoWhenTheUserLeavesByTheButton) {
  open();
  window->resize(690, 510);
  QCoreApplication::processEvents();
  EXPECT_ENDS_PROCESS(QTest::mouseClick(control("cmdCancel"), Qt::LeftButton));
  EXPECT_TRUE(QFileInfo::exists(placesFile));
}

TEST_F(RememberedPlace, IsMaximisedAgainOverThePlaceThatItHadBefore) {
  open();
  window->move(11, 12);
  window->resize(700, 500);
  QCoreApplication::processEvents();
  window->showMaximized();
  QCoreApplication::processEvents();
  closeIt();
  openWithWhatThereIs();
  EXPECT_TRUE(window->isMaximized());
  window->showNormal();
  QCoreApplication::processEvents();
  EXPECT_EQ(window->size(), QSize(700, 500));
}

TEST_F(RememberedPlace, IsBroughtBackFromAScreenThatIsGone) {
  write(R"({"window":{"x":9000,"y":-4000,"width":700,"height":500}})");
  open();
  EXPECT_EQ(window->size(), QSize(700, 500));
  EXPECT_TRUE(screen().contains(QRect(window->pos(), window->size())));
}

TEST_F(RememberedPlace, IsMadeSmallerForASmallerScreen) {
  write(R"({"window":{"x":0,"y":0,"width":90000,"height":80000}})");
  open();
  EXPECT_EQ(window->size(), screen().size());
}

TEST_F(RememberedPlace, IsForgottenWhereItsFileIsBroken) {
  open();
  const QSize usual = window->size();
  const QList<int> sizes = splitter()->sizes();
  closeIt();
  for (const char* text :
       {"", "no file of ours", "[1,2]", "{\"window\":7}", R"({"window":{"x":"a"},"splitters":[]})",
        R"({"window":{"x":0,"y":0,"width":5,"height":-4}})", R"({"splitters":{"listAndStatistics":[1,2,3]}})",
        R"({"splitters":{"listAndStatistics":[0,0]}})",
        R"({"splitters":{"listAndStatistics":["x",null]}})"}) {
    write(text);
    openWithWhatThereIs();
    EXPECT_EQ(window->size(), usual) << text;
    letGo();
  }
}

TEST_F(RememberedPlace, IsDoneWithoutWhereItCannotBeWritten) {
  write("a file where the folder should be");
  placesFile += QStringLiteral("/below/window.json");
  open();
  closeIt();
  EXPECT_FALSE(QFileInfo::exists(placesFile));
}

TEST_F(RememberedPlace, IsNoneWithoutAFile) {
  placesFile.clear();
  open();
  closeIt();
  EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(Window, LeavesRoomForListAndChartWhereverTheSplitterIsPulled) {
  open();
  auto* splitter = window->findChild<QSplitter*>(QStringLiteral("listAndStatistics"));
  for (const QList<int>& pulled : {QList<int>{10000, 0}, QList<int>{0, 10000}}) {
    splitter->setSizes(pulled);
    EXPECT_GE(control("exsThisWeek")->height(), 6 * window->fontMetrics().height());
    EXPECT_GE(control("excThisWeek")->height(), 6 * window->fontMetrics().height());
  }
}

}  // namespace
}  // namespace tests
