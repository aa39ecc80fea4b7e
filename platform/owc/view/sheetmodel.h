#pragma once
#include "platform/owc/spreadsheet.h"

#include <QAbstractTableModel>
#include <QFont>
#include <QPointer>

namespace platform::owc {

/// The viewable range of a sheet as a table. A range that begins at row 1 has that row as the table's header;
/// another range shows the columns' letters there. Row numbers are the sheet's.
///
/// Contents are read from the sheet when asked for, so they are never old. Told changes are gathered until
/// control returns to the event loop and then passed on as one; only a change of the range itself is passed
/// on at once.
class SheetModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  /// The cell's whole text as shown, line breaks included. DisplayRole has its beginning, in one line.
  static constexpr int wholeTextRole = Qt::UserRole;

  explicit SheetModel(Spreadsheet& sheet, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// The part of the sheet that the table's body shows.
  const CellRect& body() const { return body_; }
  QModelIndex indexOf(int row, int column) const;  // of a cell of the sheet; invalid outside of the body
  CellFormat formatAt(const QModelIndex& index) const;
  /// Whether cells that the user may change say so; off at first.
  void setEditable(bool editable) { editable_ = editable; }
  /// The font from which the cells' own fonts are made.
  void setDesktopFont(const QFont& font) { desktopFont_ = font; }

 Q_SIGNALS:
  void reshaping();  // around every change of the number of rows and columns
  void reshaped();

 private:
  void gather(const CellRect& rect);
  void flush();
  void reshape();
  QVariant font(int row, int column) const;
  Qt::Alignment alignment(int row, int column) const;
  Qt::Alignment headerAlignment(int column) const;

  QPointer<Spreadsheet> sheet_;
  bool header_ = true;
  bool editable_ = false;
  CellRect body_{2, 1, 0, 0};
  std::optional<CellRect> gathered_;
  QFont desktopFont_;
};

/// The beginning of a text in one line: line breaks and tabs become blanks, and what no column is wide enough
/// to show is left off. A text of any length costs the same.
QString beginningInOneLine(const QString& text);

}  // namespace platform::owc
