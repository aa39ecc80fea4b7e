#include "platform/owc/chartview/chartframe.h"

#include "platform/basic/numbers.h"
#include "platform/owc/chartview/labelfit.h"

#include <QFontMetricsF>
#include <QLineF>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace platform::owc {

namespace {

using Part = ChartText::Part;

constexpr double degree = std::numbers::pi / 180;

/// Clockwise from twelve o'clock.
QPointF outFrom(const QPointF& centre, double degrees, double distance) {
  return centre + QPointF(std::sin(degrees * degree), -std::cos(degrees * degree)) * distance;
}

double degreesOf(const QPointF& fromCentre) {
  const double degrees = std::atan2(fromCentre.x(), -fromCentre.y()) / degree;
  return degrees < 0 ? degrees + 360 : degrees;
}

/// The categories' own numbers, if every one of them is a number.
QList<double> numbersOf(const QStringList& categories) {
  constexpr double largest = 1e300;  // so that distances are finite as well
  QList<double> numbers;
  for (const QString& category : categories) {
    const std::optional<QByteArray> plain = basic::plainNumber(category);
    if (!plain) return {};
    numbers.append(std::clamp(basic::valueOfPlain(*plain), -largest, largest));
  }
  return numbers;
}

QList<double> placesOf(const ChartFigures& figures) {
  const bool scatter = figures.kind.family == ChartFamily::Scatter;
  QList<double> places;
  if (scatter || figures.kind.family == ChartFamily::Polar) places = numbersOf(figures.categories);
  if (!places.isEmpty()) {
    if (!scatter)
      for (double& place : places) place = std::fmod(std::fmod(place, 360) + 360, 360);
    return places;
  }
  const auto count = static_cast<double>(figures.count());
  for (qsizetype i = 0; i < figures.count(); ++i) {
    const auto place = static_cast<double>(i);
    places.append(figures.kind.isPolar() ? 360 * place / count : scatter ? place + 1 : place);
  }
  return places;
}

/// What the frame is laid out with.
class Layouter {
 public:
  Layouter(ChartFrame& frame, const ChartFigures& figures, const QFont& font, const ChartColors& colors)
      : frame_(frame),
        figures_(figures),
        metrics_(font),
        colors_(colors),
        line_(std::ceil(metrics_.height())) {}

  void layOut(const QRectF& room) {
    frame_.places = placesOf(figures_);
    if (figures_.kind.isRound())
      layOutSlices(room);
    else if (figures_.kind.isPolar())
      layOutAround(room);
    else if (figures_.kind.family == ChartFamily::Bar)
      layOutBars(room);
    else if (figures_.kind.family == ChartFamily::Scatter)
      layOutScatter(room);
    else
      layOutColumns(room);
  }

 private:
  ValueScale valueScale(double pixels, double perStep, int most = 8) const {
    const int steps = std::clamp(static_cast<int>(pixels / perStep), 2, most);
    return scaleFor(figures_.lowest(), figures_.highest(), steps, figures_.isPercent());
  }
  /// A scale for a horizontal axis: as fine as its labels allow.
  template <class Make>
  ValueScale widestScale(double pixels, Make make) const {
    ValueScale scale;
    for (int steps = 8; steps >= 2; --steps) {
      scale = make(steps);
      if ((labelWidth(scale) + 2 * air()) * scale.steps() <= pixels) break;
    }
    return scale;
  }
  double labelWidth(const ValueScale& scale) const {
    double width = 0;
    for (int tick = scale.from; tick <= scale.to; ++tick)
      width = std::max(width, metrics_.horizontalAdvance(scale.label(tick)));
    return std::ceil(width);
  }
  /// The least distance of two values on an upright axis.
  double perStep() const { return 1.5 * line_; }
  double air() const { return std::ceil(metrics_.averageCharWidth()); }

  void addText(Part part, qsizetype index, const QString& text, const QRectF& place, Qt::Alignment alignment,
               bool upright = false) {
    if (!text.isEmpty()) frame_.texts.append({part, index, text, place, colors_.text(), alignment, upright});
  }

  /// Values up the left side of the plot, as many as there is room for.
  void addValuesBeside(const ValueScale& scale) {
    const double width = labelWidth(scale), each = frame_.plot.height() / scale.steps();
    const int every = std::max(1, static_cast<int>(std::ceil(line_ / std::max(each, 1.0))));
    for (int tick = scale.from; tick <= scale.to; tick += every) {
      const double y = frame_.plot.bottom() - frame_.plot.height() * (tick - scale.from) / scale.steps();
      const QRectF place(frame_.plot.left() - air() - width, y - line_ / 2, width, line_);
      addText(Part::Value, tick - scale.from, scale.label(tick), place, Qt::AlignRight | Qt::AlignVCenter);
    }
  }
  /// Values along the bottom of the plot, as many as there is room for.
  void addValuesBelow(const ValueScale& scale, Part part) {
    const double width = labelWidth(scale), each = frame_.plot.width() / scale.steps();
    const int every = std::max(1, static_cast<int>(std::ceil((width + air()) / std::max(each, 1.0))));
    for (int tick = scale.from; tick <= scale.to; tick += every) {
      const double x = frame_.plot.left() + each * (tick - scale.from);
      const QRectF place(x - width / 2, frame_.plot.bottom() + air() / 2, width, line_);
      addText(part, tick - scale.from, scale.label(tick), place, Qt::AlignCenter);
    }
  }

  void layOutColumns(const QRectF& room) {
    frame_.values = valueScale(room.height() - 2.5 * line_, perStep());
    double slot = 0;
    LabelFit fit;
    // How high the plot is depends on the names below it, and these on the width that the values leave.
    for (const bool last : {false, true}) {
      const double left = labelWidth(frame_.values) + air();
      slot = (room.width() - left) / static_cast<double>(figures_.count());
      fit = fitBelow(figures_.categories, slot, room.height() * 0.35, metrics_);
      frame_.plot = room.adjusted(left, line_ / 2, 0, -fit.depth - air() / 2);
      if (!last) frame_.values = valueScale(frame_.plot.height(), perStep());
    }
    addValuesBeside(frame_.values);
    for (qsizetype i = 0; i < figures_.count(); i += fit.every) {
      const double centre = frame_.plot.left() + slot * (static_cast<double>(i) + 0.5);
      const double width = fit.upright ? line_ : slot;
      const QRectF place(centre - width / 2, frame_.plot.bottom() + air() / 2, width, fit.depth);
      addText(Part::Category, i, fit.texts[i], place,
              fit.upright ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignCenter, fit.upright);
    }
  }

  void layOutBars(const QRectF& room) {
    const double height = room.height() - line_ - air() / 2;
    const double slot = height / static_cast<double>(figures_.count());
    const LabelFit fit = fitBeside(figures_.categories, slot, room.width() * 0.35, metrics_);
    frame_.plot = room.adjusted(fit.depth + air(), 0, 0, height - room.height());
    frame_.values = widestScale(frame_.plot.width(), [&](int steps) { return valueScale(steps, 1, steps); });
    frame_.plot.setRight(frame_.plot.right() - labelWidth(frame_.values) / 2);
    addValuesBelow(frame_.values, Part::Value);
    for (qsizetype i = 0; i < figures_.count(); i += fit.every) {
      const double centre = frame_.plot.top() + slot * (static_cast<double>(i) + 0.5);
      const QRectF place(room.left(), centre - line_ / 2, fit.depth, line_);
      addText(Part::Category, i, fit.texts[i], place, Qt::AlignRight | Qt::AlignVCenter);
    }
  }

  void layOutScatter(const QRectF& room) {
    frame_.values = valueScale(room.height() - 2.5 * line_, perStep());
    frame_.plot = room.adjusted(labelWidth(frame_.values) + air(), line_ / 2, 0, -line_ - air() / 2);
    const auto [low, high] = std::minmax_element(frame_.places.begin(), frame_.places.end());
    frame_.across = widestScale(frame_.plot.width(), [&](int steps) { return scaleFor(*low, *high, steps); });
    frame_.plot.setRight(frame_.plot.right() - labelWidth(frame_.across) / 2);
    addValuesBeside(frame_.values);
    addValuesBelow(frame_.across, Part::Category);
  }

  void layOutSlices(const QRectF& room) {
    constexpr double whole = 0.96, burst = 0.8, pieHole = 0, ringHole = 0.5, hole = 0.35;
    SliceRings& slices = frame_.slices;
    frame_.plot = room;
    slices.centre = room.center();
    slices.half = std::min(room.width(), room.height()) / 2;
    slices.exploded = figures_.kind.exploded;
    const double outer = slices.half * (slices.exploded ? burst : whole);
    const bool pie = figures_.kind.family == ChartFamily::Pie;
    const qsizetype rings = pie ? 1 : figures_.names.size();
    const double inner = outer * (pie ? pieHole : rings == 1 ? ringHole : hole);
    const double thickness = (outer - inner) / static_cast<double>(rings);
    for (qsizetype i = 0; i < rings; ++i) {
      const double from = inner + thickness * static_cast<double>(i);
      slices.rings.append({from, from + thickness, sharesOf(figures_.drawn[i])});
      addShares(slices.rings.back());
    }
  }

  /// The share of each slice that is large enough for its text.
  void addShares(const SliceRings::Ring& ring) {
    constexpr double inPie = 0.66, inRing = 0.5;
    const double middle =
        ring.inner > 0 ? ring.inner + (ring.outer - ring.inner) * inRing : ring.outer * inPie;
    double from = 0;
    for (qsizetype i = 0; i < ring.shares.size(); ++i) {
      const double sweep = ring.shares[i] * 360, mid = from + sweep / 2;
      const QString text = localNumber(std::round(ring.shares[i] * 100)) + u'%';
      const double width = metrics_.horizontalAdvance(text) + 2;
      const double distance = ring.inner == 0 && sweep > 359 ? 0 : middle;
      QRectF place(0, 0, width, line_);
      place.moveCenter(outFrom({0, 0}, mid, distance));
      if (lies(place, ring, from, sweep)) {
        const double out = frame_.slices.exploded ? ring.outer * SliceRings::explosion : 0;
        place.translate(frame_.slices.centre + outFrom({0, 0}, mid, out));
        addText(Part::Share, i, text, place, Qt::AlignCenter);
        frame_.texts.back().color = colors_.onFill(i);
      }
      from += sweep;
    }
  }
  /// Whether a place, told from the centre, lies within a slice.
  static bool lies(const QRectF& place, const SliceRings::Ring& ring, double from, double sweep) {
    constexpr double edge = 2;
    const QPointF middle = place.center();
    for (const QPointF& point : {place.topLeft(), place.topRight(), place.bottomLeft(), place.bottomRight(),
                                 QPointF(middle.x(), place.top()), QPointF(middle.x(), place.bottom()),
                                 QPointF(place.left(), middle.y()), QPointF(place.right(), middle.y())}) {
      const double distance = std::hypot(point.x(), point.y());
      if (distance > ring.outer - edge || (ring.inner > 0 && distance < ring.inner + edge)) return false;
      const double turn = std::fmod(degreesOf(point) - from + 720, 360);
      if (sweep < 359 && turn > sweep) return false;
    }
    return true;
  }

  void layOutAround(const QRectF& room) {
    double widest = 0;
    for (const QString& name : figures_.categories)
      widest = std::max(widest, metrics_.horizontalAdvance(name));
    const double beside = std::min(std::ceil(widest), room.width() * 0.22) + air();
    const double side = std::min(room.width() - 2 * beside, room.height() - 2 * (line_ + air()));
    if (side < 2 * line_) return;
    frame_.plot = QRectF(0, 0, side, side);
    frame_.plot.moveCenter(room.center());
    frame_.values = valueScale(side / 2, 1.5 * line_, 5);
    addValuesInside();
    addCategoriesAround(room);
  }
  void addValuesInside() {
    const double width = labelWidth(frame_.values), radius = frame_.plot.width() / 2;
    if (radius / frame_.values.steps() < line_) return;
    for (int tick = frame_.values.from; tick < frame_.values.to; ++tick) {
      const double out = radius * (tick - frame_.values.from) / frame_.values.steps();
      const QRectF place(frame_.plot.center().x() - width - air() / 2, frame_.plot.center().y() - out - line_,
                         width, line_);
      addText(Part::Value, tick - frame_.values.from, frame_.values.label(tick), place,
              Qt::AlignRight | Qt::AlignVCenter);
    }
  }
  /// Each name outside of the circle at its own angle. One that would touch another, or for which nothing but
  /// dots is left, is left out.
  void addCategoriesAround(const QRectF& room) {
    const QPointF centre = frame_.plot.center();
    const double radius = frame_.plot.width() / 2;
    QList<QRectF> taken;
    for (qsizetype i = 0; i < figures_.count(); ++i) {
      const double degrees = frame_.places[i];
      const double sine = std::sin(degrees * degree), cosine = std::cos(degrees * degree);
      const QPointF anchor = outFrom(centre, degrees, radius + air() / 2);
      const bool level = std::abs(sine) < 0.05;  // above or below the centre
      const double toEdge = level      ? 2 * std::min(anchor.x() - room.left(), room.right() - anchor.x())
                            : sine > 0 ? room.right() - anchor.x()
                                       : anchor.x() - room.left();
      const QString text = metrics_.elidedText(figures_.categories[i], Qt::ElideRight, std::max(0.0, toEdge));
      const double width = std::ceil(metrics_.horizontalAdvance(text)) + 1;
      QRectF place(anchor.x() - width / 2 + (level ? 0 : std::copysign(width / 2, sine)),
                   anchor.y() - line_ / 2 - cosine * line_ / 2, width, line_);
      const bool touches = std::any_of(taken.begin(), taken.end(), [&](const QRectF& other) {
        return other.intersects(place.adjusted(-2, 0, 2, 0));
      });
      if (touches || text.isEmpty() || text == QStringLiteral("\u2026")) continue;
      taken.append(place);
      addText(Part::Category, i, text, place, Qt::AlignCenter);
    }
  }

  ChartFrame& frame_;
  const ChartFigures& figures_;
  QFontMetricsF metrics_;
  const ChartColors& colors_;
  double line_;
};

qsizetype nearest(const QList<double>& places, double place, double around) {
  qsizetype best = 0;
  double least = std::numeric_limits<double>::max();
  for (qsizetype i = 0; i < places.size(); ++i) {
    double distance = std::abs(places[i] - place);
    if (around > 0) distance = std::min(distance, around - distance);
    if (distance >= least) continue;
    least = distance;
    best = i;
  }
  return best;
}

std::optional<qsizetype> sliceAt(const SliceRings& slices, const QPointF& point) {
  const double distance = QLineF(slices.centre, point).length();
  const double turn = degreesOf(point - slices.centre) / 360;
  for (qsizetype ring = slices.rings.size() - 1; ring >= 0; --ring) {
    const SliceRings::Ring& each = slices.rings[ring];
    const double out = slices.exploded ? each.outer * SliceRings::explosion : 0;
    if (distance < each.inner || distance > each.outer + out) continue;
    double to = 0;
    for (qsizetype i = 0; i < each.shares.size(); ++i)
      if (turn < (to += each.shares[i])) return i;
  }
  return {};
}

QRectF sliceArea(const SliceRings& slices, qsizetype category) {
  const SliceRings::Ring& ring = slices.rings.back();
  double from = 0;
  for (qsizetype i = 0; i < category; ++i) from += ring.shares[i] * 360;
  const double sweep = ring.shares[category] * 360;
  const double out = slices.exploded ? ring.outer * SliceRings::explosion : 0;
  QPolygonF corners;
  constexpr int parts = 12;
  for (int i = 0; i <= parts; ++i) {
    corners << outFrom(slices.centre, from + sweep * i / parts, ring.outer + out);
    corners << outFrom(slices.centre, from + sweep * i / parts, ring.inner);
  }
  return corners.boundingRect();
}

}  // namespace

QPointF ChartFrame::outFromCentre(double degrees, double part) const {
  return outFrom(plot.center(), degrees, plot.width() / 2 * part);
}

double ChartFrame::slot(const ChartFigures& figures) const {
  const double length = figures.kind.family == ChartFamily::Bar ? plot.height() : plot.width();
  return length / static_cast<double>(std::max<qsizetype>(1, figures.count()));
}

QRectF ChartFrame::areaOf(const ChartFigures& figures, qsizetype category) const {
  const auto index = static_cast<double>(category);
  if (figures.kind.isRound()) return sliceArea(slices, category);
  if (figures.kind.isPolar()) {
    const QPointF rim = outFromCentre(places[category], 1);
    return QRectF(plot.center(), rim).normalized();
  }
  if (figures.kind.family == ChartFamily::Bar)
    return {plot.left(), plot.top() + slot(figures) * index, plot.width(), slot(figures)};
  if (figures.kind.family != ChartFamily::Scatter)
    return {plot.left() + slot(figures) * index, plot.top(), slot(figures), plot.height()};
  constexpr double narrow = 6;
  const double part = (across.inSteps(places[category]) - across.from) / across.steps();
  return {plot.left() + plot.width() * part - narrow, plot.top(), 2 * narrow, plot.height()};
}

std::optional<qsizetype> ChartFrame::categoryAt(const ChartFigures& figures, const QPointF& point) const {
  if (plot.isEmpty() || figures.isEmpty() || !plot.contains(point)) return {};
  if (figures.kind.isRound()) return sliceAt(slices, point);
  if (figures.kind.isPolar()) {
    if (QLineF(plot.center(), point).length() > plot.width() / 2) return {};
    return nearest(places, degreesOf(point - plot.center()), 360);
  }
  if (figures.kind.family == ChartFamily::Scatter) {
    const double part = (point.x() - plot.left()) / plot.width();
    return nearest(places, (across.from + part * across.steps()) * across.step, 0);
  }
  const bool lying = figures.kind.family == ChartFamily::Bar;
  const double along = lying ? point.y() - plot.top() : point.x() - plot.left();
  return std::clamp<qsizetype>(static_cast<qsizetype>(along / slot(figures)), 0, figures.count() - 1);
}

ChartFrame frameFor(const ChartFigures& figures, const QRectF& room, const QFont& font,
                    const ChartColors& colors) {
  constexpr double least = 16;  // pixels; below that there is nothing to be seen
  ChartFrame frame;
  const double margin = std::ceil(QFontMetricsF(font).height() / 2);
  QRectF rest = room.adjusted(margin, margin, -margin, -margin);
  if (rest.width() < least || rest.height() < least) return frame;
  rest = addLegend(frame, figures, rest, font, colors);
  if (figures.isEmpty())
    frame.plot = rest;
  else
    Layouter(frame, figures, font, colors).layOut(rest);
  if (frame.plot.width() < least || frame.plot.height() < least) {
    frame.plot = {};
    frame.texts.clear();
    frame.swatches.clear();
  }
  return frame;
}

}  // namespace platform::owc
