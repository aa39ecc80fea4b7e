#include "platform/owc/chartview/chartfigures.h"

#include "platform/basic/numbers.h"
#include "platform/locale/locale.h"
#include "platform/owc/chartspace.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace platform::owc {

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = 1e300;

double drawable(double value) {
  return std::isfinite(value) ? std::clamp(value, -largest, largest) : missing;
}

double orZero(double value) {
  return std::isnan(value) ? 0 : value;
}

QString inOneLine(QString text) {
  constexpr qsizetype longest = 200;
  if (text.size() > longest) text = text.left(longest - 1) + u'\u2026';
  for (QChar& c : text)
    if (c.category() == QChar::Other_Control || c == u'\u2028' || c == u'\u2029') c = u' ';
  return text;
}

QStringList inOneLineEach(const QStringList& texts) {
  QStringList lines;
  for (const QString& text : texts) lines.append(inOneLine(text));
  return lines;
}

void readCategories(const Chart& chart, ChartFigures& figures) {
  figures.categories = inOneLineEach(chart.categories());
  qsizetype count = figures.categories.size();
  for (qsizetype i = 0; i < figures.names.size(); ++i) count = std::max(count, chart.values(i).size());
  for (qsizetype i = figures.categories.size(); i < count; ++i)
    figures.categories.append(QString::number(i + 1));
}

void readValues(const Chart& chart, ChartFigures& figures) {
  for (qsizetype i = 0; i < figures.names.size(); ++i) {
    QList<double> values = chart.values(i);
    while (values.size() < figures.count()) values.append(missing);
    QList<double> drawn;
    for (double& value : values) {
      drawn.append(drawable(value));
      if (!std::isfinite(value)) value = missing;
    }
    figures.values.append(values);
    figures.drawn.append(drawn);
  }
}

void turnIntoPercents(ChartFigures& figures) {
  for (qsizetype category = 0; category < figures.count(); ++category) {
    double sum = 0;
    for (const QList<double>& series : figures.drawn) sum += std::abs(orZero(series[category]));
    for (QList<double>& series : figures.drawn)
      series[category] = sum > 0 ? orZero(series[category]) / sum * 100 : 0;
  }
}

void pileUp(ChartFigures& figures) {
  for (qsizetype category = 0; category < figures.count(); ++category) {
    double sum = 0;
    for (QList<double>& series : figures.drawn) series[category] = sum += orZero(series[category]);
  }
}

bool hasBars(const ChartKind& kind) {
  return kind.family == ChartFamily::Column || kind.family == ChartFamily::Bar;
}

/// What the bars of a category reach to, on one side of zero.
double reach(const ChartFigures& figures, qsizetype category, bool above) {
  const bool piled = hasBars(figures.kind) && figures.kind.stacking != Stacking::None;
  double sum = 0, farthest = 0;
  for (const QList<double>& series : figures.drawn) {
    const double value = orZero(series[category]);
    if ((value > 0) != above) continue;
    sum += value;
    if (std::abs(value) > std::abs(farthest)) farthest = value;
  }
  return piled ? sum : farthest;
}

QString valueInWords(double value) {
  return std::isnan(value) ? QStringLiteral("\u2013") : localNumber(value);
}

}  // namespace

double ChartFigures::lowest() const {
  double low = 0;
  for (qsizetype i = 0; i < count(); ++i) low = std::min(low, reach(*this, i, false));
  return low;
}

double ChartFigures::highest() const {
  double high = 0;
  for (qsizetype i = 0; i < count(); ++i) high = std::max(high, reach(*this, i, true));
  return high;
}

ChartFigures figuresOf(const ChartSpace& space) {
  ChartFigures figures;
  const Chart* chart = space.firstChart();
  if (!chart) return figures;
  figures.kind = chartKind(chart->Type()).value_or(ChartKind());
  figures.legend = chart->HasLegend();
  figures.names = inOneLineEach(chart->seriesNames());
  readCategories(*chart, figures);
  readValues(*chart, figures);
  if (figures.isPercent()) turnIntoPercents(figures);
  if (figures.kind.stacking != Stacking::None && !hasBars(figures.kind)) pileUp(figures);
  return figures;
}

QString localNumber(double value) {
  constexpr int digits = 10;
  QString text = basic::numberText(value, digits);
  const qsizetype exponent = text.indexOf(u'E');
  const qsizetype point = text.indexOf(u'.');
  const qsizetype whole = point >= 0 ? point : exponent >= 0 ? exponent : text.size();
  const locale::Locale& settings = locale::current();
  if (point >= 0) text.replace(point, 1, settings.decimalSign());
  const qsizetype first = text.startsWith(u'-') ? 1 : 0;
  for (qsizetype i = whole - 3; exponent < 0 && i > first; i -= 3) text.insert(i, settings.groupSign());
  return text;
}

QString categoryInWords(const ChartFigures& figures, qsizetype category) {
  const QString& name = figures.categories[category];
  QStringList parts;
  for (qsizetype i = 0; i < figures.names.size(); ++i) {
    const QString value = valueInWords(figures.values[i][category]);
    const bool named = figures.names.size() > 1 && !figures.names[i].isEmpty();
    parts.append(named ? figures.names[i] + u' ' + value : value);
  }
  const QString head = name.trimmed().isEmpty() ? QStringLiteral("\u2013") : name;
  return head + QStringLiteral(": ") + parts.join(QStringLiteral(", "));
}

QString figuresInWords(const ChartFigures& figures) {
  QStringList lines;
  if (figures.isEmpty()) return {};
  for (qsizetype i = 0; i < figures.count(); ++i) lines.append(categoryInWords(figures, i));
  return lines.join(u'\n');
}

QList<double> sharesOf(const QList<double>& values) {
  double most = 0;
  for (const double value : values) most = std::max(most, std::abs(orZero(drawable(value))));
  QList<double> shares;
  double sum = 0;
  for (const double value : values) {
    shares.append(most > 0 ? std::abs(orZero(drawable(value))) / most : 0);
    sum += shares.back();
  }
  for (double& share : shares) share = sum > 0 ? share / sum : 0;
  return shares;
}

}  // namespace platform::owc
