// hourbook-bench [ROAD...]: the roads that a user waits for, each against its floor in the same run. Without
// a name, all.
#include "bench/roads.h"

#include <QApplication>

#include <cstring>
#include <utility>

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--open-week") == 0) {
    const QCoreApplication application(argc, argv);
    return bench::openedAs(QCoreApplication::arguments()) ? 0 : 1;
  }
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  if (bench::startedAs(QCoreApplication::arguments())) return 0;
  const std::pair<const char*, void (*)()> roads[] = {
      {"opening", bench::measureOpening}, {"index", bench::measureIndex},
      {"saving", bench::measureSaving},   {"reporting", bench::measureReporting},
      {"drivers", bench::measureDrivers}, {"chart", bench::measureChart},
      {"window", bench::measureWindow},   {"editing", bench::measureEditing},
      {"start", bench::measureStart}};
  const QStringList wanted = QCoreApplication::arguments().mid(1);
  for (const auto& [name, measure] : roads)
    if (wanted.isEmpty() || wanted.contains(QLatin1String(name))) measure();
  return 0;
}
