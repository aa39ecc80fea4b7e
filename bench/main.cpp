// hourbook-bench: the roads that a user waits for, each against its floor in the same run.
#include "bench/roads.h"

#include <QApplication>

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  bench::measureOpening();
  bench::measureReporting();
  bench::measureChart();
  bench::measureWindow();
  bench::measureEditing();
  return 0;
}
