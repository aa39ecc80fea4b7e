#include "platform/owc/view/celleditor.h"
#include "platform/owc/view/sheetmodel.h"
#include "platform/owc/view/sheetview.h"

#include <QCoreApplication>
#include <QScrollBar>
#include <QTest>

using namespace platform::owc;
using platform::basic::Value;
using namespace Qt::StringLiterals;

namespace {

/// Twenty columns and sixty rows, of which a part is in sight.
class Panes : public testing::Test {
 protected:
  Panes() {
    for (int row = 1; row <= 60; ++row)
      for (int column = 1; column <= 20; ++column)
        sheet.Cell(row, column).setValue(Value(u"r%1c%2"_s.arg(row).arg(column)));
    sheet.setViewableRange(u"A1:T60"_s);
    view.resize(500, 300);
    view.show();
    QCoreApplication::processEvents();
  }
  void freeze(const QString& address) {
    sheet.Range(address).FreezePanes(ssFreezeTopLeft);
    QCoreApplication::processEvents();
  }
  void scroll() {
    view.verticalScrollBar()->setValue(20);
    view.horizontalScrollBar()->setValue(300);
    QCoreApplication::processEvents();
  }
  QList<QTableView*> panes() {
    QList<QTableView*> shown;
    for (QTableView* pane : view.findChildren<QTableView*>())
      if (!pane->isHidden()) shown.append(pane);
    return shown;
  }
  void click(int row, int column) {
    const QPoint place = view.cellGeometry(row, column).center();
    QWidget* target = view.childAt(place);
    QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(&view, place));
  }

  Spreadsheet sheet{Generation::Office2000};
  SheetView view{sheet};
};

}  // namespace

TEST_F(Panes, RowOneNeedsNone) {
  freeze(u"A2"_s);
  scroll();
  EXPECT_TRUE(panes().isEmpty());
  EXPECT_EQ(view.cellAtPoint({100, 3})->row, 1);
}

TEST_F(Panes, FrozenRowsAndColumnsStayWhereTheyAre) {
  freeze(u"B4"_s);
  const QRect corner = view.cellGeometry(2, 1), inRows = view.cellGeometry(3, 1),
              inColumn = view.cellGeometry(4, 1);
  scroll();
  EXPECT_EQ(panes().size(), 3);
  EXPECT_EQ(view.cellGeometry(2, 1), corner);
  EXPECT_EQ(view.cellGeometry(3, 1), inRows);
  EXPECT_TRUE(view.cellGeometry(4, 1).isEmpty()) << "scrolled away";
  EXPECT_EQ(view.cellGeometry(24, 1).left(), inColumn.left());
  EXPECT_EQ(view.cellAt(corner.center()), (CellRect{2, 1, 1, 1}));
  EXPECT_EQ(sheet.Range(u"A3"_s).Top(), inRows.top());
}

TEST_F(Panes, CellsBehindAPaneAreNotInSight) {
  freeze(u"B4"_s);
  scroll();
  for (int row = 4; row <= 60; ++row)
    for (int column = 2; column <= 20; ++column) {
      const QRect cell = view.cellGeometry(row, column);
      if (cell.isEmpty()) continue;
      EXPECT_EQ(view.cellAt(cell.center()), (CellRect{row, column, 1, 1}));
    }
}

TEST_F(Panes, ThePanesScrollWithTheViewTheOtherWay) {
  freeze(u"B4"_s);
  scroll();
  for (int column = 3; column <= 20; ++column) {
    const QRect below = view.cellGeometry(25, column), frozen = view.cellGeometry(2, column);
    EXPECT_EQ(frozen.isEmpty(), below.isEmpty()) << column;
  }
}

TEST_F(Panes, AClickInAPaneMovesTheSelection) {
  freeze(u"B4"_s);
  scroll();
  click(3, 1);
  EXPECT_EQ(sheet.Selection().Address(), u"$A$3"_s);
  click(24, 1);
  EXPECT_EQ(sheet.Selection().Address(), u"$A$24"_s);
}

TEST_F(Panes, ASelectedCellIsBroughtOutFromBehindThePanes) {
  freeze(u"B4"_s);
  scroll();
  sheet.Range(u"C10"_s).Select();
  EXPECT_FALSE(view.cellGeometry(10, 3).isEmpty());
  EXPECT_EQ(view.cellAt(view.cellGeometry(10, 3).center()), (CellRect{10, 3, 1, 1}));
}

TEST_F(Panes, ACellOfAPaneIsEditedThere) {
  view.setEditable(true);
  freeze(u"B4"_s);
  scroll();
  const QPoint place = view.cellGeometry(3, 1).center();
  QWidget* target = view.childAt(place);
  QTest::mouseDClick(target, Qt::LeftButton, {}, target->mapFrom(&view, place));
  auto* editor = view.findChild<CellEditor*>();
  ASSERT_TRUE(editor);
  EXPECT_TRUE(QRect(editor->mapTo(&view, QPoint()), editor->size()).contains(place));
  QTest::keyClicks(editor, u"x"_s);
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(sheet.Range(u"A3"_s).Text(), u"r3c1x"_s);
}

TEST_F(Panes, UnfreezingTakesThemAway) {
  freeze(u"C4"_s);
  sheet.ActiveSheet.Columns().FreezePanes(ssUnfreeze);
  EXPECT_TRUE(panes().isEmpty());
  scroll();
  EXPECT_TRUE(view.cellGeometry(3, 1).isEmpty());
}

TEST_F(Panes, WidthsAndHiddenColumnsFollowTheView) {
  constexpr int gridLine = 1;
  freeze(u"C2"_s);
  const int left = view.cellGeometry(3, 3).left();
  view.setColumnWidth(0, view.columnWidth(0) + 30);
  QCoreApplication::processEvents();
  EXPECT_EQ(view.cellGeometry(3, 3).left(), left + 30);
  EXPECT_EQ(view.cellGeometry(3, 2).right() + 1 + gridLine, left + 30);
  sheet.Range(u"B:B"_s).setEntireColumnHidden(true);
  EXPECT_EQ(view.cellGeometry(3, 1).right() + 1 + gridLine, view.cellGeometry(3, 3).left());
}
