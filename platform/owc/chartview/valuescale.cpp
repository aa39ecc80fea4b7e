#include "platform/owc/chartview/valuescale.h"

#include "platform/locale/locale.h"
#include "platform/owc/chartview/chartfigures.h"

#include <algorithm>
#include <cmath>

namespace platform::owc {

namespace {

/// 1, 2, 2.5, 5 and 10 times a power of ten.
double stepAbove(double step) {
  const double power = std::pow(10, std::floor(std::log10(step) + 1e-9));
  for (const double factor : {1.0, 2.0, 2.5, 5.0, 10.0})
    if (factor * power > step * (1 + 1e-9)) return factor * power;
  return 20 * power;
}

int decimalsOf(double step) {
  int decimals = 0;
  constexpr int most = 9;
  for (double rest = step; decimals < most && std::abs(rest - std::round(rest)) > 1e-6; rest *= 10)
    ++decimals;
  return decimals;
}

void fit(ValueScale& scale, double low, double high) {
  constexpr double grain = 1e-9;  // what arithmetic may be off by
  scale.from = static_cast<int>(std::floor(low / scale.step + grain));
  scale.to = static_cast<int>(std::ceil(high / scale.step - grain));
}

}  // namespace

ValueScale scaleFor(double low, double high, int mostSteps, bool percent) {
  constexpr double nothing = 1e-290;
  low = std::min(low, 0.0);
  high = std::max(high, 0.0);
  ValueScale scale;
  scale.percent = percent;
  const double span = high - low;
  if (!(span > nothing)) return scale;
  mostSteps = std::max(mostSteps, 2);
  const double raw = span / mostSteps;
  scale.step = std::pow(10, std::floor(std::log10(raw)));
  while (scale.step < raw * (1 - 1e-9)) scale.step = stepAbove(scale.step);
  fit(scale, low, high);
  while (scale.steps() > mostSteps) {
    scale.step = stepAbove(scale.step);
    fit(scale, low, high);
  }
  return scale;
}

QString ValueScale::label(int tick) const {
  constexpr double plainUpTo = 1e9, plainFrom = 1e-6;
  const double value = tick * step;
  const double farthest = std::max(std::abs(from), std::abs(to)) * step;
  QString text;
  if (farthest >= plainUpTo || step < plainFrom) {
    text = localNumber(value);
  } else {
    text = localNumber(value);
    const int decimals = decimalsOf(step);
    const QString sign = locale::current().decimalSign();
    const qsizetype point = text.indexOf(sign);
    const qsizetype there = point < 0 ? 0 : text.size() - point - sign.size();
    if (decimals > 0 && point < 0) text += sign;
    text += QString(std::max<qsizetype>(0, decimals - there), u'0');
  }
  return percent ? text + u'%' : text;
}

}  // namespace platform::owc
