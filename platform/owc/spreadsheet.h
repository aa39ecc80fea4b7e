#pragma once
#include "platform/owc/events.h"
#include "platform/owc/generation.h"
#include "platform/owc/property.h"
#include "platform/owc/range.h"
#include "platform/owc/window.h"
#include "platform/owc/worksheet.h"

#include <QHash>
#include <QObject>
#include <QSet>

#include <functional>
#include <memory>

namespace platform::owc {

/// `OWCn.Spreadsheet`: one engine for all generations, with one sheet. It needs no screen; a view follows it
/// through `cellsChanged`, `layoutChanged` and `selectionMoved`, which always come. The other signals are the
/// component's events; they come while `EnableEvents` is on, in this order when the user ends an edit:
///
/// - generation 9: `EndEdit`, the cell still old; the value; `SelectionChanging`, the selection still old.
///   Nothing tells of the value itself.
/// - generations 10 and 11: `EndEdit`, the cell still old; the value, with what formulas make of it;
///   `SheetChange`; `SelectionChange`; `Calculate`.
///
/// What a handler cancels ends there. An edit that leaves the text as it was changes nothing and raises
/// `EndEdit` and the selection's event only. Pasting, clearing, `Undo` and every change of contents by code
/// raise `SheetChange` and `Calculate` in generations 10 and 11, so a handler that writes needs a guard of
/// its own. `Calculate` comes with automatic calculation and from Worksheet::Calculate.
class Spreadsheet : public QObject {
  Q_OBJECT
  struct Data;
  std::unique_ptr<Data> d_;
  Generation generation_;

 public:
  explicit Spreadsheet(Generation generation = Generation::Office2003, QObject* parent = nullptr);
  ~Spreadsheet() override;
  Generation generation() const { return generation_; }
  bool isGeneration9() const { return generation_ == Generation::Office2000; }

  owc::Range Range(const QString& address);  // Failure 1004 for what is no address
  owc::Range Cell(int row, int column) { return {*this, {row, column, 1, 1}}; }
  Worksheet ActiveSheet;
  Window& ActiveWindow();  // generations 10 and 11
  /// What the user sees of the sheet, as the address text that was set; the whole sheet ("1:65536") at first.
  QString ViewableRange() const { return viewable_; }
  void setViewableRange(const QString& address);  // Failure 1004 for what is no address
  bool EnableEvents = true;
  /// While off, formulas wait for Worksheet::Calculate; only one just entered is calculated, alone. Turned on
  /// again, what waits is calculated.
  Property<bool> EnableAutoCalculate;  // generation 9
  Property<int> Calculation;           // generations 10 and 11: xlCalculationManual, xlCalculationAutomatic
  /// While off, a view goes on showing the old contents.
  Property<bool> ScreenUpdating;
  Property<bool> DisplayGridlines;
  Property<bool> DisplayColHeaders, DisplayRowHeaders;                  // generation 9
  Property<bool> DisplayHorizontalScrollBar, DisplayVerticalScrollBar;  // generation 9
  Property<bool> DisplayColumnHeadings, DisplayRowHeadings;             // generations 10 and 11
  Property<bool> DisplayWorkbookTabs;                                   // generations 10 and 11
  bool AllowPropertyToolbox = true, DisplayTitleBar = true, DisplayToolbar = true;
  static constexpr SheetConstants Constants{};
  QString TitleBarCaption() const { return title_; }
  void setTitleBarCaption(const QString& text);
  owc::Range Selection();   // A1 at first
  owc::Range ActiveCell();  // the cell of the selection that typing goes to

  /// Whether Enter moves the selection, and where to: in generation 9 0 down and 2 right, in 10 and 11
  /// xlDown, xlUp, xlToLeft, xlToRight; another number is Failure 1004. Down at first.
  bool MoveAfterReturn = true;
  int MoveAfterReturnDirection() const;
  void setMoveAfterReturnDirection(int direction);
  std::pair<int, int> returnStep() const;  // rows down and columns right

  /// Takes back the last edit, paste or clearing of the user, or the last change of a single cell by code
  /// with `EnableEvents` on, if nothing else has changed since. One step: then there is nothing to take back, and it does nothing.
  /// Failure 1004 when protection has locked one of the cells meanwhile.
  void Undo();

  // for the view
  CellRect viewableRect() const;
  CellRect selectionRect() const;
  CellRect activeCell() const;
  basic::Value value(int row, int column) const;
  QString text(int row, int column) const;  // as shown
  QString formula(int row, int column) const;
  CellFormat format(int row, int column) const;
  bool columnHidden(int column) const { return hidden_.contains(column); }
  double columnWidth(int column) const { return widths_.value(column, 0); }  // 0: the view's own
  /// The older generation counts pixels; the newer ones count characters, 0.1384 of them to a pixel.
  double widthFromPixels(int pixels) const { return isGeneration9() ? pixels : pixels * 0.1384; }
  int widthInPixels(double width) const { return qRound(isGeneration9() ? width : width / 0.1384); }
  const SheetDisplay& display() const;
  FrozenAt frozenAt() const;
  /// Moves the selection, as the user does; `active` is the cell in it that typing goes to.
  void select(const CellRect& rect, const CellRect& active);
  /// Whether the user may change the cell.
  bool mayChange(int row, int column) const;
  /// The view that shows the sheet; nullptr when it goes. The sheet does not own it.
  void setScreen(const SheetScreen* screen);
  const SheetScreen& screen() const;

 Q_SIGNALS:
  // The component's events. The handlers run within the change.
  void EndEdit(platform::owc::EndEditEvent& event);
  void SelectionChanging(const platform::owc::SelectionChangingEvent& event);  // generation 9
  void SelectionChange();                                                      // generations 10 and 11
  void SheetChange(const platform::owc::Range& target);                        // generations 10 and 11
  void Calculate();                                                            // generations 10 and 11

  // for the view
  void cellsChanged(const platform::owc::CellRect& rect);
  void layoutChanged();   // viewable range, hidden columns, widths, title, what surrounds the cells
  void selectionMoved();  // by code or by the user

 private:
  friend class owc::Range;
  friend class Borders;
  friend class Worksheet;
  friend class Window;
  friend class Editing;
  friend class PlainScreen;
  void refuseLocked(const CellRect& rect) const;
  void changeContents(const CellRect& rect, const std::function<void()>& change);
  void contentsChanged(const CellRect& rect);
  void calculate(const std::optional<CellRect>& changed);
  void calculationTurned();
  bool calculatesItself() const;
  void tellChange(const CellRect& rect);
  void tellCalculation();
  void freezeAt(const FrozenAt& cell);
  QString viewable_;
  QString title_;
  QSet<int> hidden_;
  QHash<int, double> widths_;
};

}  // namespace platform::owc
