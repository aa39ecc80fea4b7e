#pragma once
#include <QLineEdit>

namespace platform::owc {

/// The line in which a cell is edited. It only reads keys: who put it there ends the edit.
class CellEditor : public QLineEdit {
  Q_OBJECT
 public:
  /// Begun by typing, the arrows end the edit; begun on the cell's own text, they move in it (F2 changes
  /// over).
  enum class Begun { ByTyping, OnText };
  enum class Way { Stay, Return, ReturnBack, Right, Left, Up, Down, PageUp, PageDown };

  CellEditor(Begun begun, QWidget* parent);

 Q_SIGNALS:
  void ended(platform::owc::CellEditor::Way way);
  void escaped();

 protected:
  bool event(QEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  std::optional<Way> wayOf(const QKeyEvent& event) const;
  Begun begun_;
};

}  // namespace platform::owc
