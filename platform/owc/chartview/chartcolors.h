#pragma once
#include <QColor>
#include <QPalette>

namespace platform::owc {

/// The colours of a chart on a desktop's palette, light or dark. Those of series and slices are the ones of
/// Okabe and Ito, which people with every kind of colour blindness can tell apart, with a grey for their
/// black and, on dark, a violet for their second blue; behind the eighth they come again in other shades.
class ChartColors {
 public:
  explicit ChartColors(const QPalette& palette);

  QColor background() const { return base_; }
  QColor text() const { return text_; }
  QColor axis() const;
  QColor grid() const;
  QColor fill(qsizetype index) const;
  /// Of a bar or slice, so that it stands out from the background whatever its fill.
  QColor outline(qsizetype index) const;
  /// Black or white, whichever has the greater contrast to a fill. (forms::readableOn judges backgrounds; on
  /// strong colours in the middle it would take white where black is clearer.)
  QColor onFill(qsizetype index) const;

  /// How a told interior is shown: white, and none, are the palette's own background. From then on texts and
  /// lines are such as can be read on it.
  void putOn(qint32 interior);

 private:
  QColor base_, text_, paletteBase_, paletteText_;
  bool dark_ = false;
};

}  // namespace platform::owc
