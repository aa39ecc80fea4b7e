#include "bench/generator.h"
#include "bench/pairs.h"
#include "bench/roads.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/files/atomicfile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <libical/ical.h>

namespace bench {

using namespace Qt::StringLiterals;
using platform::calendar::IcalendarStore;
using platform::calendar::Query;

namespace {

QByteArray contentOf(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
  return file.readAll();
}

/// A fresh store each time: what a start of the program costs, without anything kept from the last one.
void openAndAskForAWeek(const QString& path) {
  IcalendarStore store({{u"bench"_s, u"Bench"_s, u"Bench"_s, path, true}});
  Query query;
  query.zone = QTimeZone("Europe/Stockholm");
  query.startFrom = QDateTime(QDate(2024, 6, 10), QTime(0, 0), query.zone);
  query.startTo = query.startFrom.addDays(7);
  query.expandSeries = true;
  if (store.items(u"bench"_s, query).isEmpty()) qFatal("the week is empty");
}

void parseWithLibical(const QStringList& files) {
  for (const QString& file : files) icalcomponent_free(icalparser_parse_string(contentOf(file).constData()));
}

}  // namespace

void measureOpening() {
  for (const int items : {1000, 10000}) {
    QTemporaryDir folder;
    const QString file = folder.filePath(u"calendar.ics"_s);
    platform::files::replaceFile(file, bigFile({items}));
    compare(
        u"open %1 items in one file, ask for a week"_s.arg(items), 7, [&] { openAndAskForAWeek(file); },
        [&] { parseWithLibical({file}); });
  }
  QTemporaryDir folder;
  const QString path = folder.filePath(u"calendar"_s);
  folderOfFiles({1000}, path);
  QStringList files;
  for (const QString& name : QDir(path).entryList(QDir::Files)) files.append(path + u'/' + name);
  compare(
      u"open 1000 items in a folder, ask for a week"_s, 7, [&] { openAndAskForAWeek(path); },
      [&] { parseWithLibical(files); });
}

}  // namespace bench
