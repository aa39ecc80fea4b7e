#include "platform/owc/chartview/chartcolors.h"

#include "platform/forms/widgets/look.h"
#include "platform/owc/chartspace.h"

#include <array>
#include <cmath>

namespace platform::owc {

namespace {

using Eight = std::array<QRgb, 8>;
constexpr Eight onLight{0xff0072b2, 0xffe69f00, 0xff009e73, 0xffd55e00,
                        0xffcc79a7, 0xff56b4e9, 0xfff0e442, 0xff5a5a5a};
constexpr Eight onDark{0xff56b4e9, 0xffe69f00, 0xff009e73, 0xffd55e00,
                       0xffcc79a7, 0xfff0e442, 0xff8454fc, 0xffc8c8c8};

QColor mixed(const QColor& a, const QColor& b, double partOfA) {
  const auto mix = [partOfA](float x, float y) {
    return static_cast<float>(x * partOfA + y * (1 - partOfA));
  };
  const QColor fine =
      QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()));
  return QColor(fine.rgb());  // as the screen has it
}

bool isDark(const QColor& color) {
  return forms::readableOn(color) == QColor(Qt::white);
}

/// As the guidelines for accessible contents reckon it.
double luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

}  // namespace

ChartColors::ChartColors(const QPalette& palette)
    : base_(palette.color(QPalette::Base)),
      text_(palette.color(QPalette::Text)),
      paletteBase_(base_),
      paletteText_(text_),
      dark_(isDark(base_)) {}

QColor ChartColors::axis() const {
  return mixed(text_, base_, 0.62);
}

QColor ChartColors::grid() const {
  return mixed(text_, base_, 0.16);
}

QColor ChartColors::fill(qsizetype index) const {
  const Eight& eight = dark_ ? onDark : onLight;
  const auto size = static_cast<qsizetype>(eight.size());
  const QColor color = QColor::fromRgb(eight[static_cast<std::size_t>(index % size)]);
  switch (index / size % 3) {
    case 1:
      return mixed(color, Qt::white, 0.55);
    case 2:
      return mixed(color, Qt::black, 0.6);
    default:
      return color;
  }
}

QColor ChartColors::outline(qsizetype index) const {
  return mixed(fill(index), dark_ ? Qt::white : Qt::black, 0.55);
}

QColor ChartColors::onFill(qsizetype index) const {
  constexpr double equalContrast = 0.179;  // to black and to white
  return luminance(fill(index)) > equalContrast ? QColor(Qt::black) : QColor(Qt::white);
}

void ChartColors::putOn(qint32 interior) {
  const bool own = interior < 0 || interior == chartWhite;
  base_ = own ? paletteBase_ : forms::colorFromBgr(interior);
  text_ = own ? paletteText_ : forms::readableOn(base_);
  dark_ = isDark(base_);
}

}  // namespace platform::owc
