#include "platform/owc/address.h"

#include <algorithm>

namespace platform::owc {

namespace {

/// One corner of an address; 0 where the text names no column or no row.
struct Corner {
  int column = 0;
  int row = 0;
};

void skipDollar(QStringView text, qsizetype& at) {
  if (at < text.size() && text[at] == u'$') ++at;
}

int readColumn(QStringView text, qsizetype& at) {
  int column = 0;
  for (; at < text.size() && column <= maxColumns; ++at) {
    const char16_t letter = text[at].unicode() & ~char16_t(0x20);  // ASCII upper case
    if (text[at].unicode() > 0x7f || letter < u'A' || letter > u'Z') break;
    column = column * 26 + (letter - u'A' + 1);
  }
  return column;
}

int readRow(QStringView text, qsizetype& at) {
  int row = 0;
  for (; at < text.size() && row <= maxRows; ++at) {
    const char16_t digit = text[at].unicode();
    if (digit < u'0' || digit > u'9') break;
    row = row * 10 + (digit - u'0');
  }
  return row;
}

std::optional<Corner> readCorner(QStringView text) {
  Corner corner;
  qsizetype at = 0;
  skipDollar(text, at);
  corner.column = readColumn(text, at);
  if (corner.column > 0 && at < text.size()) skipDollar(text, at);
  const qsizetype beforeRow = at;
  corner.row = readRow(text, at);
  const bool readsRow = at > beforeRow;
  if (at != text.size() || (corner.column == 0 && !readsRow) || (readsRow && corner.row == 0)) return {};
  if (corner.column > maxColumns || corner.row > maxRows || text.back() == u'$') return {};
  return corner;
}

CellRect spanning(const Corner& a, const Corner& b) {
  const auto [left, right] = std::minmax(a.column, b.column);
  const auto [top, bottom] = std::minmax(a.row, b.row);
  return {top, left, bottom - top + 1, right - left + 1};
}

}  // namespace

CellRect unitedWith(const CellRect& a, const CellRect& b) {
  const int row = std::min(a.row, b.row), column = std::min(a.column, b.column);
  return {row, column, std::max(a.lastRow(), b.lastRow()) - row + 1,
          std::max(a.lastColumn(), b.lastColumn()) - column + 1};
}

std::optional<CellRect> commonTo(const CellRect& a, const CellRect& b) {
  if (!a.intersects(b)) return {};
  const int row = std::max(a.row, b.row), column = std::max(a.column, b.column);
  return CellRect{row, column, std::min(a.lastRow(), b.lastRow()) - row + 1,
                  std::min(a.lastColumn(), b.lastColumn()) - column + 1};
}

std::optional<CellRect> parseAddress(const QString& address) {
  const QStringView text = QStringView(address).trimmed();
  const qsizetype colon = text.indexOf(u':');
  const std::optional<Corner> from = readCorner(colon < 0 ? text : text.left(colon));
  const std::optional<Corner> to = colon < 0 ? from : readCorner(text.mid(colon + 1));
  if (!from || !to) return {};
  const bool cells = from->column && from->row && to->column && to->row;
  const bool columns = colon >= 0 && !from->row && !to->row;
  const bool rows = colon >= 0 && !from->column && !to->column;
  if (cells) return spanning(*from, *to);
  if (columns) return spanning({from->column, 1}, {to->column, maxRows});
  if (rows) return spanning({1, from->row}, {maxColumns, to->row});
  return {};
}

QString columnLetters(int column) {
  QString letters;
  for (; column > 0; column = (column - 1) / 26) letters.prepend(QChar(u'A' + (column - 1) % 26));
  return letters;
}

QString addressOf(const CellRect& rect) {
  const QString left = u'$' + columnLetters(rect.column), right = u'$' + columnLetters(rect.lastColumn());
  const QString top = u'$' + QString::number(rect.row), bottom = u'$' + QString::number(rect.lastRow());
  if (rect.rows == maxRows && rect.columns < maxColumns) return left + u':' + right;
  if (rect.columns == maxColumns) return top + u':' + bottom;
  if (rect.rows == 1 && rect.columns == 1) return left + top;
  return left + top + u':' + right + bottom;
}

}  // namespace platform::owc
