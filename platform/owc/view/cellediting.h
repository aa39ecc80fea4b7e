#pragma once
#include "platform/owc/view/celleditor.h"
#include "platform/owc/view/sheetview.h"

#include <QPointer>

namespace platform::owc {

struct Step;

/// The user's hand in a view that may be edited: keys, the editor over a cell, the clipboard. The sheet's
/// Editing does what they mean.
class CellEditing : public QObject {
  Q_OBJECT
 public:
  CellEditing(SheetView& view, Spreadsheet& sheet);
  ~CellEditing() override;

  bool isOpen() const { return editor_; }
  /// True when the key meant something here.
  bool keyPressed(QKeyEvent& event);
  /// One cell to the side, as Tab goes; false at the end of the row.
  bool moveAside(bool right);
  /// Opens an editor on the cell's text; not on a locked cell.
  void beginOnText(const CellRect& cell);
  /// Opens one for what an input method is about to write.
  bool beginForInput(QInputMethodEvent& event);
  void end(CellEditor::Way way);
  void cancel();
  void followCell();  // the cell stands elsewhere

 private:
  bool navigates(const QKeyEvent& event);
  bool changes(const QKeyEvent& event);
  bool types(const QKeyEvent& event);
  bool begin(const CellRect& cell, CellEditor::Begun begun, const QString& text);
  std::optional<CellRect> goal(const CellRect& cell, CellEditor::Way way) const;
  void jump(const Step& step, bool extend);
  void close();

  SheetView* view_;
  QPointer<Spreadsheet> sheet_;
  QPointer<CellEditor> editor_;
  CellRect cell_;
  bool typed_ = false;  // the edit began with what was typed, so it is a change whatever it is
};

}  // namespace platform::owc
