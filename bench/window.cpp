#include "bench/pairs.h"
#include "bench/roads.h"
#include "platform/owc/view/sheetview.h"

#include <QHeaderView>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QTableView>

namespace bench {

using namespace Qt::StringLiterals;
using platform::basic::Value;

namespace {

constexpr int rows = 199, columns = 7;

QString textOf(int row, int column) {
  static const QStringList texts{u"Weekly planning with the customer"_s,
                                 u"Acme"_s,
                                 u"Website"_s,
                                 u"Design"_s,
                                 u"Wed 5/15/2024"_s,
                                 u"1.25"_s,
                                 u"Not Posted"_s};
  return column == 0 ? texts[0] + u' ' + QString::number(row) : texts[column];
}

void fill(platform::owc::Spreadsheet& sheet) {
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column)
      sheet.Cell(row + 2, column + 1).setValue(Value(textOf(row, column)));
  auto list = sheet.Range(u"a2:g199"_s);
  list.setFontName(u"Tahoma"_s);
  list.setFontSize(8);
  sheet.setViewableRange(u"A1:G200"_s);
}

void fill(QStandardItemModel& model) {
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column)
      model.setItem(row, column, new QStandardItem(textOf(row, column)));
}

/// From the first row to the last, painted at each step.
void scrollThrough(QTableView& view, QImage& paper) {
  QScrollBar& bar = *view.verticalScrollBar();
  for (int value = bar.minimum(); value <= bar.maximum(); ++value) {
    bar.setValue(value);
    QPainter painter(&paper);
    view.viewport()->render(&painter, QPoint(), QRegion(), QWidget::DrawWindowBackground);
  }
}

}  // namespace

void measureWindow() {
  platform::owc::Spreadsheet sheet(platform::owc::Generation::Office2003);
  fill(sheet);
  platform::owc::SheetView ours(sheet);
  QStandardItemModel model(rows, columns);
  fill(model);
  QTableView bare;
  bare.setModel(&model);
  bare.setWordWrap(false);
  for (QTableView* view : {static_cast<QTableView*>(&ours), &bare}) {
    view->resize(1000, 500);
    view->show();
  }
  // The same cells in sight: the floor takes the sizes of ours.
  bare.verticalHeader()->setDefaultSectionSize(ours.verticalHeader()->defaultSectionSize());
  for (int column = 0; column < columns; ++column) bare.setColumnWidth(column, ours.columnWidth(column));
  QCoreApplication::processEvents();
  QImage paper(1000, 500, QImage::Format_RGB32);
  compare(
      u"scroll through 199 rows of the list"_s, 9, [&] { scrollThrough(ours, paper); },
      [&] { scrollThrough(bare, paper); });
}

}  // namespace bench
