#include "bench/pairs.h"

#include <QElapsedTimer>
#include <QList>

#include <algorithm>
#include <cstdio>

namespace bench {

namespace {

double milliseconds(const std::function<void()>& work) {
  QElapsedTimer timer;
  timer.start();
  work();
  return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(QList<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

void compare(const QString& name, int rounds, const std::function<void()>& ours,
             const std::function<void()>& floor) {
  ours();
  floor();
  QList<double> mine, bare, ratios;
  for (int i = 0; i < rounds; ++i) {
    mine.append(milliseconds(ours));
    bare.append(milliseconds(floor));
    ratios.append(mine.last() / bare.last());
  }
  std::printf("%-52s %10.2f ms   floor %10.2f ms   ratio %6.3f\n", qPrintable(name), median(mine),
              median(bare), median(ratios));
  std::fflush(stdout);
}

}  // namespace bench
