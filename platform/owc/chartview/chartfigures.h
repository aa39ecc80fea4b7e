#pragma once
#include "platform/owc/charttypes.h"

#include <QList>
#include <QStringList>

namespace platform::owc {

class ChartSpace;

/// What a chart's data come to: every series has a value for every category, and stacking and shares are
/// worked out.
struct ChartFigures {
  ChartKind kind;
  bool legend = false;
  QStringList names;            // of the series
  QStringList categories;       // in one line each, as long as a line can be
  QList<QList<double>> values;  // by series and category, as told; NaN where there is none
  /// As drawn: percents for 100 %, on top of each other for stacked lines and areas. Infinite values are
  /// missing, and none is so large that sums of them would be.
  QList<QList<double>> drawn;

  qsizetype count() const { return categories.size(); }
  bool isEmpty() const { return categories.isEmpty() || names.isEmpty(); }
  bool isPercent() const { return kind.stacking == Stacking::Percent; }
  /// The lowest and the highest place that something is drawn at; 0 is always between them.
  double lowest() const;
  double highest() const;
};

ChartFigures figuresOf(const ChartSpace& space);

/// As the user's regional settings write it, at most ten digits.
QString localNumber(double value);
/// Category and values of one category, in one line: "Mon: 7.5", or "Mon: Hours 7.5, Breaks 1".
QString categoryInWords(const ChartFigures& figures, qsizetype category);
/// All of them, a line each.
QString figuresInWords(const ChartFigures& figures);
/// The part that each value of a series has in the sum of their amounts, 0 to 1.
QList<double> sharesOf(const QList<double>& values);

}  // namespace platform::owc
