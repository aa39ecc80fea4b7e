#include "platform/owc/view/sheetmodel.h"

#include "platform/forms/widgets/look.h"

#include <QBrush>

#include <algorithm>

namespace platform::owc {

namespace {

/// Digits with at most one decimal sign, as hours stand in a list; long rows of digits are names, not
/// numbers.
bool readsAsNumber(QStringView text) {
  constexpr qsizetype longest = 15;
  if (text.startsWith(u'-')) text = text.mid(1);
  if (text.isEmpty() || text.size() > longest) return false;
  int signs = 0;
  for (const QChar c : text) {
    if (c == u'.' || c == u',')
      ++signs;
    else if (c < u'0' || c > u'9')
      return false;
  }
  return signs <= 1 && text.front().isDigit() && text.back().isDigit();
}

Qt::Alignment generalAlignment(const basic::Value& value) {
  if (std::holds_alternative<bool>(value)) return Qt::AlignHCenter;
  const auto* text = std::get_if<QString>(&value);
  const bool number = text ? readsAsNumber(*text) : !basic::IsEmpty(value);
  return number ? Qt::AlignRight : Qt::AlignLeft;
}

}  // namespace

QString beginningInOneLine(const QString& text) {
  constexpr qsizetype longest = 1000;
  QString line = text.left(longest);
  if (text.size() > longest) {
    if (line.back().isHighSurrogate()) line.chop(1);
    line.append(u'\u2026');
  }
  line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
  for (QChar& c : line)
    if (c == u'\n' || c == u'\r' || c == u'\t' || c == u'\u2028' || c == u'\u2029') c = u' ';
  return line;
}

SheetModel::SheetModel(Spreadsheet& sheet, QObject* parent) : QAbstractTableModel(parent), sheet_(&sheet) {
  connect(&sheet, &Spreadsheet::cellsChanged, this, &SheetModel::gather);
  connect(&sheet, &Spreadsheet::layoutChanged, this, &SheetModel::reshape);
  connect(&sheet, &Spreadsheet::layoutChanged, this, [this] {
    if (gathered_) QMetaObject::invokeMethod(this, &SheetModel::flush, Qt::QueuedConnection);
  });
  connect(&sheet, &QObject::destroyed, this, &SheetModel::reshape);
  reshape();
}

int SheetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : body_.rows;
}

int SheetModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : body_.columns;
}

QModelIndex SheetModel::indexOf(int row, int column) const {
  return body_.contains(row, column) ? index(row - body_.row, column - body_.column) : QModelIndex();
}

Qt::ItemFlags SheetModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  const bool open = editable_ && sheet_ && index.isValid() &&
                    sheet_->mayChange(body_.row + index.row(), body_.column + index.column());
  return open ? flags | Qt::ItemIsEditable : flags;
}

QVariant SheetModel::data(const QModelIndex& index, int role) const {
  if (!sheet_ || !index.isValid()) return {};
  const int row = body_.row + index.row(), column = body_.column + index.column();
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      return beginningInOneLine(sheet_->text(row, column));
    case wholeTextRole:
      return sheet_->text(row, column);
    case Qt::FontRole:
      return font(row, column);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(alignment(row, column));
    case Qt::BackgroundRole: {
      const QColor color = forms::colorFromBgr(sheet_->format(row, column).color);
      return color.isValid() ? QVariant(QBrush(color)) : QVariant();
    }
    default:
      return {};
  }
}

CellFormat SheetModel::formatAt(const QModelIndex& index) const {
  if (!sheet_ || !index.isValid()) return {};
  return sheet_->format(body_.row + index.row(), body_.column + index.column());
}

QVariant SheetModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (!sheet_) return {};
  if (orientation == Qt::Vertical)
    return role == Qt::DisplayRole ? QVariant(body_.row + section) : QVariant();
  const int column = body_.column + section;
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      return header_ ? beginningInOneLine(sheet_->text(1, column)) : columnLetters(column);
    case Qt::ToolTipRole: {
      const QString text = header_ ? sheet_->text(1, column) : QString();
      return text.isEmpty() ? QVariant()
                            : QVariant(QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()));
    }
    case Qt::FontRole: {
      QFont bold = desktopFont_;
      bold.setBold(true);
      return bold;
    }
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(headerAlignment(column));
    default:
      return {};
  }
}

QVariant SheetModel::font(int row, int column) const {
  static const CellFormat plain;
  const CellFormat format = sheet_->format(row, column);
  if (format.fontName == plain.fontName && format.fontSize == plain.fontSize && !format.bold) return {};
  QFont font = forms::fontFor(format.fontName, format.fontSize, desktopFont_);
  font.setBold(format.bold);
  return font;
}

Qt::Alignment SheetModel::alignment(int row, int column) const {
  switch (sheet_->format(row, column).horizontalAlignment) {
    case 1:
      return Qt::AlignLeft | Qt::AlignVCenter;
    case 2:
      return Qt::AlignHCenter | Qt::AlignVCenter;
    case 3:
      return Qt::AlignRight | Qt::AlignVCenter;
    default:
      return generalAlignment(sheet_->value(row, column)) | Qt::AlignVCenter;
  }
}

/// A column's heading stands over its contents.
Qt::Alignment SheetModel::headerAlignment(int column) const {
  const bool own = header_ && sheet_->format(1, column).horizontalAlignment != 0;
  const int row = own || body_.rows == 0 ? 1 : body_.row;
  Qt::Alignment over = alignment(row, column) | Qt::AlignAbsolute;  // left and right as one sees them
  if (over & Qt::AlignLeft && sheet_->text(row, column).isRightToLeft())
    over = (over & ~Qt::AlignLeft) | Qt::AlignRight;
  return over;
}

void SheetModel::gather(const CellRect& rect) {
  if (gathered_) {
    gathered_ = unitedWith(*gathered_, rect);
    return;
  }
  gathered_ = rect;
  QMetaObject::invokeMethod(this, &SheetModel::flush, Qt::QueuedConnection);
}

void SheetModel::flush() {
  if (!gathered_ || !sheet_ || !sheet_->ScreenUpdating) return;
  const CellRect rect = *gathered_;
  gathered_.reset();
  const int top = std::max(rect.row, body_.row), bottom = std::min(rect.lastRow(), body_.lastRow());
  const int left = std::max(rect.column, body_.column),
            right = std::min(rect.lastColumn(), body_.lastColumn());
  if (left > right) return;
  if (rect.row <= body_.row)  // the header row, or the row that says how the header is aligned
    Q_EMIT headerDataChanged(Qt::Horizontal, left - body_.column, right - body_.column);
  if (top <= bottom) Q_EMIT dataChanged(indexOf(top, left), indexOf(bottom, right));
}

void SheetModel::reshape() {
  CellRect body{2, 1, 0, 0};
  bool header = true;
  if (sheet_) {
    body = sheet_->viewableRect();
    header = body.row == 1;
    if (header) {
      ++body.row;
      --body.rows;
    }
  }
  if (body == body_ && header == header_) return;
  Q_EMIT reshaping();
  const bool rowsOnly = header == header_ && body.row == body_.row && body.column == body_.column &&
                        body.columns == body_.columns;
  if (rowsOnly && body.rows > body_.rows) {
    beginInsertRows({}, body_.rows, body.rows - 1);
    body_ = body;
    endInsertRows();
  } else if (rowsOnly) {
    beginRemoveRows({}, body.rows, body_.rows - 1);
    body_ = body;
    endRemoveRows();
  } else {
    beginResetModel();
    body_ = body;
    header_ = header;
    endResetModel();
  }
  Q_EMIT reshaped();
}

}  // namespace platform::owc
