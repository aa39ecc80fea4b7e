// hourbook-bench: the roads that a user waits for, each against its floor in the same run.
#include "bench/roads.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  bench::measureOpening();
  bench::measureReporting();
  return 0;
}
