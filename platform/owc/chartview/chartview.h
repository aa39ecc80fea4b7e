#pragma once
#include "platform/owc/chartspace.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <optional>

namespace platform::owc {

class ChartDrawing;

/// Shows a chart space and follows its changes; gives it the means to make pictures. The mouse at rest over a
/// category, or the arrow keys while the view has the focus, show its values. Its accessible name and
/// description are the names of the series and the data as text, where none were set. The chart space may be
/// destroyed first; the view is then empty.
class ChartView : public QWidget {
  Q_OBJECT
 public:
  explicit ChartView(ChartSpace& space, QWidget* parent = nullptr);
  ~ChartView() override;

  /// The picture as it is now. It holds until the chart space, the view's size or its look changes.
  const ChartDrawing& drawing() const;
  /// Category and values at a place of the view; empty where there is nothing.
  QString textAt(const QPoint& place) const;
  /// The category that the arrow keys have reached.
  std::optional<qsizetype> currentCategory() const { return current_; }
  QString seriesInWords() const;
  QString dataInWords() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void followChange();
  void outdate();
  void moveTo(qsizetype category);
  QString toolTipOf(qsizetype category) const;

  QPointer<ChartSpace> space_;
  mutable std::unique_ptr<ChartDrawing> drawing_;  // made when it is needed
  std::optional<qsizetype> current_;
};

}  // namespace platform::owc
