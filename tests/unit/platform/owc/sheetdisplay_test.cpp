#include "platform/owc/view/sheetmodel.h"
#include "platform/owc/view/sheetview.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>

using namespace platform::owc;
using platform::basic::Value;
using namespace Qt::StringLiterals;

namespace {

class Displays : public testing::Test {
 protected:
  Displays() {
    for (int row = 1; row <= 60; ++row)
      for (int column = 1; column <= 7; ++column) set(row, column, u"r%1c%2"_s.arg(row).arg(column));
    sheet.setViewableRange(u"A1:G60"_s);
    view.resize(900, 400);
    view.show();
    QCoreApplication::processEvents();
  }
  void set(int row, int column, const QString& text) { sheet.Cell(row, column).setValue(Value(text)); }
  Window& window() { return sheet.ActiveWindow(); }

  Spreadsheet sheet;
  SheetView view{sheet};
};

}  // namespace

TEST_F(Displays, HeadingsScrollBarsAndGridFollowTheSheet) {
  EXPECT_TRUE(view.showGrid() && view.verticalHeader()->isVisible());
  sheet.DisplayGridlines = false;
  sheet.DisplayRowHeadings = false;
  window().DisplayVerticalScrollBar = false;
  window().DisplayHorizontalScrollBar = false;
  EXPECT_FALSE(view.showGrid());
  EXPECT_FALSE(view.verticalHeader()->isVisible());
  EXPECT_EQ(view.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
  EXPECT_EQ(view.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
  window().DisplayVerticalScrollBar = true;
  EXPECT_EQ(view.verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
}

TEST_F(Displays, TheLettersGoWithTheirSettingButTheFirstRowStays) {
  sheet.DisplayColumnHeadings = false;
  EXPECT_TRUE(view.horizontalHeader()->isVisible());
  sheet.setViewableRange(u"A2:G60"_s);
  EXPECT_FALSE(view.horizontalHeader()->isVisible());
  sheet.DisplayColumnHeadings = true;
  EXPECT_TRUE(view.horizontalHeader()->isVisible());
}

TEST_F(Displays, ColumnsKeepTheirSizeWhereProtectionDoesNotAllowIt) {
  sheet.ActiveSheet.Protection.Enabled = true;
  sheet.ActiveSheet.Protection.AllowFormattingColumns = false;
  EXPECT_EQ(view.horizontalHeader()->sectionResizeMode(1), QHeaderView::Fixed);
  sheet.ActiveSheet.Protection.AllowFormattingColumns = true;
  EXPECT_EQ(view.horizontalHeader()->sectionResizeMode(1), QHeaderView::Interactive);
}

TEST_F(Displays, NothingNewIsShownWhileScreenUpdatingIsOff) {
  QCoreApplication::processEvents();
  int shown = 0;
  QObject::connect(view.model(), &QAbstractItemModel::dataChanged, &view, [&] { ++shown; });
  sheet.ScreenUpdating = false;
  set(3, 3, u"new"_s);
  QCoreApplication::processEvents();
  EXPECT_EQ(shown, 0);
  sheet.ScreenUpdating = true;
  QCoreApplication::processEvents();
  EXPECT_EQ(shown, 1);
}

TEST_F(Displays, ARowIsFoundByPointsDownTheControl) {
  const auto topOf = [&](int row) {
    for (int y = 0; y < view.height() + 3; y += 2)
      if (const auto range = window().RangeFromPoint(150, y); range && range->Row() == row) return y;
    return 0;
  };
  EXPECT_NEAR(topOf(5), view.cellGeometry(5, 1).top(), 1);
  EXPECT_NEAR(topOf(5), sheet.Range(u"B5"_s).Top(), 1);
  view.verticalScrollBar()->setValue(2);
  EXPECT_NEAR(topOf(5), sheet.Range(u"B5"_s).Top(), 1) << "as scrolled";
  view.verticalScrollBar()->setValue(30);
  EXPECT_EQ(topOf(5), 0) << "out of sight";
  EXPECT_LT(sheet.Range(u"B5"_s).Top(), 0);
}

TEST_F(Displays, TheHeaderIsRowOneAndNothingLiesOutside) {
  EXPECT_EQ(window().RangeFromPoint(150, 3)->Row(), 1);
  EXPECT_EQ(sheet.Range(u"B1"_s).Top(), view.horizontalHeader()->y());
  EXPECT_FALSE(window().RangeFromPoint(3, 60)) << "on the row numbers";
  EXPECT_FALSE(window().RangeFromPoint(150, 5000));
  EXPECT_FALSE(window().RangeFromPoint(-5, 60));
}

TEST_F(Displays, FittingAColumnTakesItsLongestText) {
  set(3, 2, QString(20, u'w'));
  sheet.Range(u"B1:C1"_s).EntireColumn().AutoFit();
  EXPECT_GT(view.columnWidth(1), view.fontMetrics().horizontalAdvance(QString(20, u'w')));
  EXPECT_LT(view.columnWidth(2), view.columnWidth(1));
}

TEST_F(Displays, BordersAreDrawnOverTheGrid) {
  sheet.Range(u"B3"_s).Borders().setColor(0x0000FF);
  const QRect cell = view.cellGeometry(3, 2).translated(-view.viewport()->pos());
  QCoreApplication::processEvents();
  const QImage image = view.viewport()->grab().toImage();
  EXPECT_EQ(image.pixelColor(cell.left(), cell.center().y()), QColor(Qt::red));
  EXPECT_EQ(image.pixelColor(cell.center().x(), cell.top()), QColor(Qt::red));
  EXPECT_EQ(image.pixelColor(cell.right(), cell.center().y()), QColor(Qt::red));
  EXPECT_NE(image.pixelColor(cell.left() + 2, cell.top() + 2), QColor(Qt::red));
}
