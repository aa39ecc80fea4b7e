#include "platform/owc/chartview/labelfit.h"

#include <algorithm>
#include <cmath>

namespace platform::owc {

namespace {

double widest(const QStringList& texts, const QFontMetricsF& metrics) {
  double width = 0;
  for (const QString& text : texts)
    for (const QString& line : text.split(u'\n')) width = std::max(width, metrics.horizontalAdvance(line));
  return std::ceil(width);
}

/// Each name that has a blank broken where its longer line is shortest.
QStringList brokenInTwo(const QStringList& names, const QFontMetricsF& metrics) {
  QStringList all;
  for (const QString& name : names) {
    QString best = name;
    for (qsizetype blank = name.indexOf(u' '); blank >= 0; blank = name.indexOf(u' ', blank + 1)) {
      QString broken = name;
      broken[blank] = u'\n';
      if (widest({broken}, metrics) < widest({best}, metrics)) best = broken;
    }
    all.append(best);
  }
  return all;
}

QStringList shortened(const QStringList& names, double width, const QFontMetricsF& metrics) {
  QStringList texts;
  for (const QString& name : names) texts.append(metrics.elidedText(name, Qt::ElideRight, width));
  return texts;
}

/// Each name on two lines, as much of it as they hold: the first as long as the width allows.
QStringList brokenAndShortened(const QStringList& names, double width, const QFontMetricsF& metrics) {
  QStringList all;
  for (const QString& name : names) {
    qsizetype end = -1;
    for (qsizetype blank = name.indexOf(u' '); blank >= 0; blank = name.indexOf(u' ', blank + 1))
      if (end < 0 || metrics.horizontalAdvance(name.left(blank)) <= width) end = blank;
    const bool whole = end < 0 || metrics.horizontalAdvance(name) <= width;
    const QStringList lines = whole ? QStringList{name} : QStringList{name.left(end), name.mid(end + 1)};
    all.append(shortened(lines, width, metrics).join(u'\n'));
  }
  return all;
}

qsizetype everyIn(double slot, double needed) {
  return slot >= needed ? 1 : static_cast<qsizetype>(std::ceil(needed / std::max(slot, 0.01)));
}

}  // namespace

LabelFit fitBelow(const QStringList& names, double slot, double mostDepth, const QFontMetricsF& metrics) {
  const double width = widest(names, metrics), room = slot - metrics.averageCharWidth();
  const double upright = std::min(width, std::max(mostDepth, metrics.height()));
  LabelFit fit;
  if (width <= room) {
    fit.texts = names;
    fit.depth = metrics.height();
    return fit;
  }
  const QStringList broken = brokenInTwo(names, metrics);
  if (widest(broken, metrics) <= room) {
    fit.texts = broken;
    fit.depth = 2 * metrics.height();
    return fit;
  }
  const double dots = metrics.horizontalAdvance(QChar(0x2026));
  const bool breakable = broken != names && 2 * metrics.height() <= mostDepth;
  if (breakable && 2 * (room - dots) >= upright) {
    fit.texts = brokenAndShortened(names, room, metrics);
    fit.depth = 2 * metrics.height();
    return fit;
  }
  if (room >= upright) {
    fit.texts = shortened(names, room, metrics);
    fit.depth = metrics.height();
    return fit;
  }
  fit.upright = true;
  fit.depth = upright;
  fit.texts = shortened(names, upright, metrics);
  fit.every = everyIn(slot, metrics.height());
  return fit;
}

LabelFit fitBeside(const QStringList& names, double slot, double mostDepth, const QFontMetricsF& metrics) {
  LabelFit fit;
  fit.depth = std::min(widest(names, metrics), mostDepth);
  fit.texts = shortened(names, fit.depth, metrics);
  fit.every = everyIn(slot, metrics.height());
  return fit;
}

}  // namespace platform::owc
