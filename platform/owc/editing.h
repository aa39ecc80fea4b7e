#pragma once
#include "platform/owc/address.h"

#include <QList>
#include <QStringList>

namespace platform::owc {

class Spreadsheet;

/// What the user does to contents, for the view: it keeps to unlocked cells of a protected sheet, is one step
/// of undo and raises the events in the order that Spreadsheet tells. Nothing here fails.
class Editing {
 public:
  explicit Editing(Spreadsheet& sheet) : sheet_(&sheet) {}

  /// What an editor begins with: the formula, or the contents as shown. A text that typed in would be
  /// something else stands behind an apostrophe.
  QString textToEdit(int row, int column) const;
  /// Ends an edit. No text: the user has changed nothing. A typed text stays the text that it is, digits
  /// included, so that hours read the same in every locale; with "=" in front it is a formula, and an
  /// apostrophe in front keeps it a text and goes. Then the selection goes to `next`, if there is one. False
  /// when a handler has cancelled.
  bool end(const CellRect& cell, const std::optional<QString>& text, const std::optional<CellRect>& next);

  void clear(const CellRect& rect);
  /// Spreadsheet::Undo, which does nothing here where a cell has been locked meanwhile.
  void undo();
  /// Puts a table of texts into the viewable range from the rectangle's first cell on, hidden columns passed
  /// over; one text fills the whole rectangle. Locked cells stay as they are. Pasted texts stay texts, also
  /// with "=" in front: what comes from elsewhere calculates nothing.
  void paste(const CellRect& rect, const QList<QStringList>& table);

 private:
  struct Change;
  void apply(const QList<Change>& changes);
  QList<int> shownColumns(int first, int last) const;
  Spreadsheet* sheet_;
};

}  // namespace platform::owc
