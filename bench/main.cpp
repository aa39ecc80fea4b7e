// hourbook-bench [ROAD...]: the roads that a user waits for, each against its floor in the same run. Without
// a name, all.
#include "bench/roads.h"

#include <QApplication>

#include <utility>

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  const std::pair<const char*, void (*)()> roads[] = {
      {"opening", bench::measureOpening}, {"index", bench::measureIndex},
      {"saving", bench::measureSaving},   {"reporting", bench::measureReporting},
      {"drivers", bench::measureDrivers}, {"chart", bench::measureChart},
      {"window", bench::measureWindow},   {"editing", bench::measureEditing}};
  const QStringList wanted = QCoreApplication::arguments().mid(1);
  for (const auto& [name, measure] : roads)
    if (wanted.isEmpty() || wanted.contains(QLatin1String(name))) measure();
  return 0;
}
