#include "platform/owc/chartview/chartcolors.h"

#include <QPalette>

#include <algorithm>
#include <array>
#include <cmath>

using platform::owc::ChartColors;

// How colours look to people who lack one of the three kinds of cones, after Machado, Oliveira and Fernandes
// (2009), and how far apart two of them are in the space of CIE 1976, where 2.3 can just be noticed.

namespace {

using Three = std::array<double, 3>;
using Matrix = std::array<Three, 3>;

constexpr Matrix everyCone{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr Matrix protanopia{
    {{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}};
constexpr Matrix deuteranopia{
    {{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}};
constexpr Matrix tritanopia{
    {{1.255528, -0.076749, -0.178779}, {-0.078411, 0.930809, 0.147602}, {0.004733, 0.691367, 0.303900}}};
constexpr Matrix toXyz{{{0.4124564, 0.3575761, 0.1804375},
                        {0.2126729, 0.7151522, 0.0721750},
                        {0.0193339, 0.1191920, 0.9503041}}};

Three times(const Matrix& matrix, const Three& value) {
  Three product{};
  for (std::size_t row = 0; row < 3; ++row)
    for (std::size_t i = 0; i < 3; ++i) product[row] += matrix[row][i] * value[i];
  return product;
}

Three linear(const QColor& color) {
  const auto part = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
  return {part(color.redF()), part(color.greenF()), part(color.blueF())};
}

Three lab(const QColor& color, const Matrix& eye) {
  Three seen = times(eye, linear(color));
  for (double& part : seen) part = std::clamp(part, 0.0, 1.0);
  const Three xyz = times(toXyz, seen);
  const auto bent = [](double v) { return v > 0.008856 ? std::cbrt(v) : 7.787 * v + 16.0 / 116; };
  const double x = bent(xyz[0] / 0.95047), y = bent(xyz[1]), z = bent(xyz[2] / 1.08883);
  return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double distance(const QColor& a, const QColor& b, const Matrix& eye) {
  const Three one = lab(a, eye), other = lab(b, eye);
  return std::hypot(one[0] - other[0], one[1] - other[1], one[2] - other[2]);
}

/// As the guidelines for accessible contents reckon it; they ask for 3 between things and 4.5 for texts.
double contrast(const QColor& a, const QColor& b) {
  const double one = times(toXyz, linear(a))[1], other = times(toXyz, linear(b))[1];
  return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

ChartColors colorsOn(const QColor& ground, const QColor& text) {
  QPalette palette;
  palette.setColor(QPalette::Base, ground);
  palette.setColor(QPalette::Text, text);
  return ChartColors(palette);
}

class ColoursOfCharts : public testing::TestWithParam<std::pair<QColor, QColor>> {
 protected:
  const ChartColors colors = colorsOn(GetParam().first, GetParam().second);
  static constexpr qsizetype strong = 8;  // those that come before there are shades
  static constexpr qsizetype all = 24;    // after which they come again
};

}  // namespace

TEST_P(ColoursOfCharts, CanBeToldApartWithEveryKindOfEye) {
  constexpr double clear = 15;
  for (const Matrix& eye : {everyCone, protanopia, deuteranopia, tritanopia})
    for (qsizetype a = 0; a < strong; ++a)
      for (qsizetype b = a + 1; b < strong; ++b)
        EXPECT_GE(distance(colors.fill(a), colors.fill(b), eye), clear) << a << ", " << b;
}

TEST_P(ColoursOfCharts, DifferClearlyFromTheirNeighboursInShadesToo) {
  constexpr double clear = 10;
  for (const Matrix& eye : {everyCone, protanopia, deuteranopia, tritanopia})
    for (qsizetype i = 0; i < all; ++i)
      EXPECT_GE(distance(colors.fill(i), colors.fill(i + 1), eye), clear) << i;
}

TEST_P(ColoursOfCharts, StandOutFromTheGroundByFillOrOutline) {
  for (qsizetype i = 0; i < all; ++i)
    EXPECT_GE(std::max(contrast(colors.fill(i), colors.background()),
                       contrast(colors.outline(i), colors.background())),
              3)
        << i;
  EXPECT_GE(contrast(colors.fill(0), colors.background()), 4.5);
}

TEST_P(ColoursOfCharts, LetTextsAndSharesBeRead) {
  EXPECT_GE(contrast(colors.text(), colors.background()), 4.5);
  EXPECT_GE(contrast(colors.axis(), colors.background()), 3);
  for (qsizetype i = 0; i < all; ++i) EXPECT_GE(contrast(colors.onFill(i), colors.fill(i)), 4.5) << i;
}

INSTANTIATE_TEST_SUITE_P(OnGrounds, ColoursOfCharts,
                         testing::Values(std::pair(QColor(Qt::white), QColor(Qt::black)),
                                         std::pair(QColor(30, 30, 30), QColor(230, 230, 230)),
                                         std::pair(QColor(Qt::black), QColor(Qt::white)),
                                         std::pair(QColor(253, 246, 227), QColor(60, 70, 75)),
                                         std::pair(QColor(42, 46, 50), QColor(252, 252, 252))));
