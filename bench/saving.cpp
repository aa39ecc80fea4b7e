#include "bench/generator.h"
#include "bench/pairs.h"
#include "bench/roads.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/files/atomicfile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

namespace bench {

using namespace Qt::StringLiterals;
using platform::calendar::Change;
using platform::calendar::IcalendarStore;
using platform::calendar::Item;
using platform::calendar::Query;

namespace {

void mustBe(bool done, const char* what) {
  if (!done) qFatal("%s failed", what);
}

/// The least that a durable save is: a new file beside the old one, synced, renamed over it, the folder
/// synced. Of `from` everything but `with`'s length at the middle is copied by the system.
void bareSave(const QByteArray& folder, const QByteArray& name, const QByteArray& with,
              const QByteArray& from) {
  const QByteArray temporary = folder + "/.bare.tmp", path = folder + '/' + name;
  const int file = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  mustBe(file >= 0, "open");
  off_t at = 0, size = 0;
  int source = -1;
  if (!from.isEmpty()) {
    source = ::open(from.constData(), O_RDONLY | O_CLOEXEC);
    size = ::lseek(source, 0, SEEK_END);
  }
  const auto copyUntil = [&](off_t end) {
    while (at < end)
      mustBe(::copy_file_range(source, &at, file, nullptr, static_cast<size_t>(end - at), 0) > 0, "copy");
  };
  copyUntil(size / 2);
  mustBe(::write(file, with.constData(), static_cast<size_t>(with.size())) == with.size(), "write");
  at = qMin<off_t>(size, size / 2 + with.size());
  copyUntil(size);
  if (source >= 0) ::close(source);
  mustBe(::fsync(file) == 0, "fsync");
  ::close(file);
  mustBe(::rename(temporary.constData(), path.constData()) == 0, "rename");
  const int home = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  mustBe(::fsync(home) == 0, "fsync of the folder");
  ::close(home);
}

Item anItem(IcalendarStore& store) {
  Query query;
  query.zone = QTimeZone("Europe/Stockholm");
  query.startFrom = QDateTime(QDate(2024, 6, 10), QTime(0, 0), query.zone);
  query.startTo = query.startFrom.addDays(7);
  for (const Item& item : store.items(u"bench"_s, query))
    if (item.kind == platform::calendar::Kind::Single) return item;
  qFatal("the week is empty");
}

void measure(const QString& name, const QString& path, const QString& indexFolder, const QByteArray& bareName,
             const QByteArray& bareWith, const QByteArray& bareFrom, int rounds) {
  IcalendarStore store({{u"bench"_s, u"Bench"_s, u"Bench"_s, path, false}}, indexFolder);
  Item item = anItem(store);
  const QByteArray folder = QFile::encodeName(QFileInfo(path).isDir() ? path : QFileInfo(path).path());
  int count = 0;
  compare(
      name, rounds,
      [&] {
        Change change;
        change.billingInformation = QString::number(++count);
        item = store.save(u"bench"_s, item.key, item.tag, change);
      },
      [&] { bareSave(folder, bareName, bareWith, bareFrom); });
  if (item.billingInformation != QString::number(count)) qFatal("nothing was saved");
}

}  // namespace

void measureSaving() {
  QTemporaryDir index;
  for (const int items : {1000, 10000, 200000}) {
    QTemporaryDir folder;
    const QString file = folder.filePath(u"calendar.ics"_s);
    platform::files::replaceFile(file, bigFile({items}));
    measure(u"save one of %1 items in one file"_s.arg(items), file, index.path(), "bare.copy", "one line\r\n",
            QFile::encodeName(file), items > 100000 ? 5 : 15);
  }
  // a folder of 200,000 files says nothing that one of 10,000 does not, and takes minutes to make
  for (const int items : {1000, 10000}) {
    QTemporaryDir folder;
    const QString path = folder.filePath(u"calendar"_s);
    folderOfFiles({items}, path);
    measure(u"save one of %1 items in a folder"_s.arg(items), path, index.path(), "bare.txt",
            QByteArray(800, 'n'), {}, 31);
  }
}

}  // namespace bench
