#pragma once
#include "platform/owc/chartview/chartcolors.h"
#include "platform/owc/chartview/chartfigures.h"
#include "platform/owc/chartview/valuescale.h"

#include <QColor>
#include <QFont>
#include <QList>
#include <QRectF>

#include <optional>

namespace platform::owc {

/// A text of the picture. Texts are painted as they stand: they are nobody's markup.
struct ChartText {
  enum class Part { Category, Value, Legend, Share };
  Part part;
  qsizetype index;  // of the category, tick or entry
  QString text;     // as it fits, in one line or two
  QRectF place;
  QColor color;
  Qt::Alignment alignment = Qt::AlignCenter;
  bool upright = false;
};

/// A spot of colour in the legend.
struct ChartSwatch {
  QRectF place;
  QColor fill, outline;
};

/// Rings of slices around a centre, innermost first; a pie is one ring without a hole.
struct SliceRings {
  static constexpr double explosion = 0.15;  // how far slices move out, in parts of the outer radius
  struct Ring {
    double inner, outer;
    QList<double> shares;
  };
  QPointF centre;
  double half = 0;  // of the square they stand in
  bool exploded = false;
  QList<Ring> rings;
};

/// Where everything stands in a picture of a given size.
struct ChartFrame {
  /// What lies on the plot's edge, such as a spot at the highest value, reaches so many pixels beyond it.
  static constexpr double bleed = 6;

  QRectF plot;                // nothing is drawn when it is empty
  ValueScale values, across;  // `across` only where the categories are numbers
  QList<double> places;       // of the categories: their number from 0, a number of their own, or degrees
  SliceRings slices;
  QList<ChartText> texts;
  QList<ChartSwatch> swatches;

  /// A place around the plot's centre: degrees clockwise from the top, and a part of the radius.
  QPointF outFromCentre(double degrees, double part) const;
  /// Pixels of a category along its axis.
  double slot(const ChartFigures& figures) const;
  /// What belongs to a category, in whole: a band of the plot, or a sector's surrounding rectangle.
  QRectF areaOf(const ChartFigures& figures, qsizetype category) const;
  std::optional<qsizetype> categoryAt(const ChartFigures& figures, const QPointF& point) const;
};

ChartFrame frameFor(const ChartFigures& figures, const QRectF& room, const QFont& font,
                    const ChartColors& colors);

/// Puts the legend at the right side of `room` or, where that takes less, along its top, and gives what is
/// left of it. Where there is too little room for both there is no legend.
QRectF addLegend(ChartFrame& frame, const ChartFigures& figures, const QRectF& room, const QFont& font,
                 const ChartColors& colors);

}  // namespace platform::owc
