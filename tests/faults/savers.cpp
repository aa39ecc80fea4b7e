#include "tests/faults/savers.h"

#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/registry/ini/inifile.h"
#include "platform/sql/sqlite/engine.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>

namespace faults {

using namespace Qt::StringLiterals;
using namespace platform;
using calendar::Change;
using calendar::Item;

QStringList Saver::names() const {
  return QDir(folder_).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                 QDir::Name);
}

QStringList Saver::litter() const {
  QStringList found;
  for (const QString& place : {folder(), userFolder()})
    for (const QString& name : QDir(place).entryList({u".*.tmp"_s}, QDir::Files | QDir::Hidden))
      found.append(place + u'/' + name);
  found.removeDuplicates();
  return found;
}

void Saver::age() const {
  const timespec past[2] = {{0, UTIME_OMIT}, {1'600'000'000, 0}};
  for (const QString& path : litter())
    ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), past, AT_SYMLINK_NOFOLLOW);
}

namespace {

QByteArray read(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

void write(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || file.write(bytes) != bytes.size())
    throw std::runtime_error("cannot prepare " + path.toStdString());
}

/// A text of that many letters in lines of 75.
QByteArray description(int letters) {
  QByteArray text;
  for (int at = 0; at < letters; at += 74) text += (at > 0 ? "\r\n " : "") + QByteArray(74, 'd');
  return text;
}

QByteArray event(const QByteArray& uid, const QByteArray& day, int letters = 300) {
  return "BEGIN:VEVENT\r\nUID:" + uid + "\r\nDTSTAMP:20240101T000000Z\r\nSUMMARY:Meeting " + uid +
         "\r\nDTSTART;TZID=Europe/Stockholm:" + day +
         "T090000\r\nDURATION:PT45M\r\nDESCRIPTION:" + description(letters) +
         "\r\nX-KEPT:by others\r\nEND:VEVENT\r\n";
}

QByteArray calendarOf(const QByteArray& events) {
  return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another maker//Calendar 7//SV\r\n" + events +
         "END:VCALENDAR\r\n";
}

/// A calendar of its own: opened anew for each save, as by a program that has just been started.
class CalendarSaver : public Saver {
 public:
  using Saver::Saver;
  void startAgain() override { change(u"other"_s, u"Next start"_s); }

 protected:
  virtual QString calendarPath() const { return folder(); }
  virtual std::unique_ptr<calendar::Store> opened() const {
    return std::make_unique<calendar::IcalendarStore>(QList<calendar::IcalendarFolder>{
        {u"calendar"_s, u"Calendar"_s, u"Mailbox"_s, calendarPath(), false}});
  }
  Item itemOf(calendar::Store& store, const QString& uid) const {
    calendar::Query query;
    query.uid = uid;
    query.zone = QTimeZone("Europe/Stockholm");
    const QList<Item> items = store.items(u"calendar"_s, query);
    if (items.isEmpty())
      throw Failure(calendar::errNotFound, u"\"%1\" is not listed in %2"_s.arg(uid, calendarPath()));
    return items.first();
  }
  void change(const QString& uid, const QString& subject) const {
    const auto store = opened();
    const Item item = itemOf(*store, uid);
    Change change;
    change.subject = subject;
    change.body = u"A longer text than before, with more of everything."_s;
    change.categories = QStringList{u"Acme AB"_s, u"Website"_s};
    store->save(u"calendar"_s, item.key, item.tag, change);
  }
  Contents filesIn(const QString& place) const {
    Contents found;
    for (const QString& name : QDir(place).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name))
      found.insert(name, read(place + u'/' + name));
    return found;
  }
};

class FolderSaver : public CalendarSaver {
 public:
  using CalendarSaver::CalendarSaver;
  const char* name() const override { return "an event in a folder"; }
  void prepare() override {
    for (const QByteArray uid : {"first", "other", "third"})
      write(path(QString::fromLatin1(uid) + u".ics"_s), calendarOf(event(uid, "20240219")));
  }
  void save() override { change(u"first"_s, u"Changed"_s); }
  void saveElse() override {
    const auto store = opened();
    const Item item = itemOf(*store, u"first"_s);
    Change stamp;
    stamp.billingInformation = u"Next start"_s;
    store->save(u"calendar"_s, item.key, item.tag, stamp);
  }
  Contents contents() override { return filesIn(folder()); }
  QStringList places() const override { return {folder()}; }
};

class NewEventSaver : public FolderSaver {
 public:
  using FolderSaver::FolderSaver;
  const char* name() const override { return "a new event in a folder"; }
  void save() override {
    Change change;
    change.subject = u"Made"_s;
    change.start = QDateTime(QDate(2024, 5, 20), QTime(9, 0), QTimeZone("Europe/Stockholm"));
    change.durationMinutes = 30;
    opened()->save(u"calendar"_s, {}, {}, change);
  }
  Contents contents() override {  // the new one's name is never the same
    Contents found = filesIn(folder());
    for (const QString& name : found.keys()) {
      if (name.size() < 30) continue;
      QByteArray bytes = found.take(name);
      bytes.replace(QFileInfo(name).completeBaseName().toLatin1(), "made");
      if (found.contains(u"made.ics"_s)) bytes = "(made twice)";
      found.insert(u"made.ics"_s, bytes);
    }
    return found;
  }
};

class RemovalSaver : public FolderSaver {
 public:
  using FolderSaver::FolderSaver;
  const char* name() const override { return "the removal of an event in a folder"; }
  void save() override {
    const auto store = opened();
    const Item item = itemOf(*store, u"first"_s);
    store->remove(u"calendar"_s, item.key, item.tag);
  }
};

/// `letters` of each event make the file small (compared by its bytes) or big (above the megabyte from which
/// stretches are spliced).
class FileSaver : public CalendarSaver {
 public:
  FileSaver(const QString& folder, int letters, const char* name)
      : CalendarSaver(folder), letters_(letters), name_(name) {}
  const char* name() const override { return name_; }
  void prepare() override {
    QByteArray events;
    for (int i = 0; i < 20; ++i) {
      if (i == 10) events += event("first", "20240219") + event("other", "20240220");
      events += event("event-" + QByteArray::number(i), "20240" + QByteArray::number(201 + i), letters_);
    }
    write(calendarPath(), calendarOf(events));
  }
  void save() override { change(u"first"_s, u"Changed"_s); }
  Contents contents() override {
    Contents found = filesIn(folder());
    for (const QString& name : found.keys())
      if (name != u"calendar.ics"_s) found.remove(name);
    return found;
  }
  QStringList places() const override { return {folder()}; }

 protected:
  QString calendarPath() const override { return path(u"calendar.ics"_s); }

 private:
  int letters_;
  const char* name_;
};

QByteArray rowsOf(calendar::Store& store) {
  calendar::Query query;
  query.zone = QTimeZone("Europe/Stockholm");
  query.expandSeries = true;
  query.startFrom = QDateTime(QDate(2024, 1, 1), QTime(0, 0), query.zone);
  query.startTo = QDateTime(QDate(2024, 12, 31), QTime(0, 0), query.zone);
  QByteArray rows;
  for (const Item& item : store.items(u"calendar"_s, query))
    rows += (item.key.place + u' ' + item.key.uid + u' ' + item.key.recurrenceId + u' ' + item.tag + u' ' +
             item.subject + u' ' + item.start.toString(Qt::ISODate) + u'\n')
                .toUtf8();
  return rows;
}

/// A calendar with an index beside it: in a folder, where the index is there before and is brought up to
/// date, or in one file, of which it is made. Whatever becomes of the index, the rows are those of the files.
class IndexedSaver : public CalendarSaver {
 public:
  IndexedSaver(const QString& folder, bool isFile) : CalendarSaver(folder), isFile_(isFile) {}
  const char* name() const override {
    return isFile_ ? "an event in a file without its index" : "an event in a folder with an index";
  }
  QString place() const override { return u"calendar"_s; }
  bool isVarying() const override { return true; }
  void prepare() override {
    QDir(folder()).mkdir(u"calendar"_s);
    QByteArray events;
    for (const QByteArray uid : {"first", "other", "third"}) {
      events += event(uid, "20240219");
      if (!isFile_)
        write(userFolder() + u'/' + QString::fromLatin1(uid) + u".ics"_s, calendarOf(event(uid, "20240219")));
    }
    if (isFile_)
      write(calendarPath(), calendarOf(events));
    else
      rowsOf(*opened());
  }
  void save() override {
    rowsOf(*opened());
    change(u"first"_s, u"Changed"_s);
  }
  Contents contents() override {
    Contents found = filesIn(userFolder());
    found.insert(u"rows"_s, rowsOf(*opened()));
    const QByteArray plain = rowsOf(*CalendarSaver::opened());
    if (found.value(u"rows"_s) != plain) found.insert(u"index"_s, "it lies: these are the rows:\n" + plain);
    return found;
  }
  QStringList places() const override { return {folder()}; }

 protected:
  QString calendarPath() const override { return isFile_ ? userFolder() + u"/calendar.ics"_s : userFolder(); }
  std::unique_ptr<calendar::Store> opened() const override {
    return std::make_unique<calendar::IcalendarStore>(
        QList<calendar::IcalendarFolder>{{u"calendar"_s, u"Calendar"_s, u"Mailbox"_s, calendarPath(), false}},
        path(u"index"_s));
  }

 private:
  bool isFile_;
};

class SettingsSaver : public Saver {
 public:
  using Saver::Saver;
  const char* name() const override { return "settings"; }
  void prepare() override {
    registry::IniRegistry registry(file());
    for (int i = 0; i < 30; ++i) put(registry, u"Setting%1"_s.arg(i), u"Value of it %1"_s.arg(i));
  }
  void save() override {
    registry::IniRegistry registry(file());
    put(registry, u"Setting7"_s, u"Another value, longer than what was there"_s);
  }
  void startAgain() override {
    registry::IniRegistry registry(file());
    put(registry, u"Setting8"_s, u"Next start"_s);
  }
  Contents contents() override { return {{u"registry.ini"_s, read(file())}}; }
  QStringList places() const override { return {folder()}; }

 private:
  QString file() const { return path(u"registry.ini"_s); }
  static void put(registry::IniRegistry& registry, const QString& name, const QString& value) {
    const QString key = u"Software\\Norrdalen\\Hourbook for Outlook\\Settings"_s;
    int code = registry.openKey(key);
    if (code == 0) code = registry.setValue(key, name, value);
    if (code != 0) throw Failure(code, registry.lastError());
  }
};

/// A row into the database, then the stamp into the calendar: never a stamp without its row.
class ReportSaver : public CalendarSaver {
 public:
  using CalendarSaver::CalendarSaver;
  const char* name() const override { return "a report"; }
  void prepare() override {
    QDir(folder()).mkdir(u"calendar"_s);
    for (const QByteArray uid : {"first", "other"})
      write(calendarPath() + u'/' + QString::fromLatin1(uid) + u".ics"_s, calendarOf(event(uid, "20240219")));
    sql::sqlite::SqliteEngine engine;
    engine.createDatabase(database());
    const auto session = connect();
    sql::Column key{u"intReportID"_s, sql::Type::Long, 0, true, true, true, {}};
    sql::Column subject{u"strSubject"_s, sql::Type::Text, 50, false, false, true, {}};
    engine.createTable(*session, u"tblReports"_s, {key, subject});
    for (int i = 0; i < 3; ++i) insert(*session, u"Reported before %1"_s.arg(i));
  }
  void save() override { report(u"first"_s); }
  void startAgain() override { report(u"other"_s); }
  Contents contents() override {
    Contents found = filesIn(calendarPath());
    const auto session = connect();
    const auto check = session->execute(u"PRAGMA integrity_check"_s).rows;
    found.insert(u"integrity"_s, std::get<QString>(check.at(0).at(0)).toUtf8());
    QByteArray rows;
    for (const auto& row : session->execute(u"SELECT strSubject FROM tblReports ORDER BY intReportID"_s).rows)
      rows += std::get<QString>(row.at(0)).toUtf8() + '\n';
    found.insert(u"rows"_s, rows);
    return found;
  }
  bool isBetween(const Contents& now, const Contents& before, const Contents& after) override {
    Contents reported = before;
    reported[u"rows"_s] = after[u"rows"_s];
    return now == reported;
  }
  QStringList places() const override { return {folder()}; }
  QString place() const override { return u"calendar"_s; }

 protected:
  QString calendarPath() const override { return path(u"calendar"_s); }

 private:
  QString database() const { return path(u"reports.mdb"_s); }
  std::unique_ptr<sql::Session> connect() const {
    sql::ConnectionString connection;
    connection.set(u"Provider"_s, u"Microsoft.Jet.OLEDB.4.0"_s);
    connection.set(u"Data Source"_s, database());
    return sql::sqlite::SqliteDriver().connect(connection);
  }
  static void insert(sql::Session& session, const QString& subject) {
    session.execute(u"INSERT INTO tblReports (strSubject) VALUES (?)"_s, {subject});
  }
  void report(const QString& uid) const {
    const auto store = opened();
    const Item item = itemOf(*store, uid);
    {
      const auto session = connect();
      insert(*session, item.subject);
    }
    Change stamp;
    stamp.billingInformation = u"5/15/2024 10:00:00 AM"_s;
    store->save(u"calendar"_s, item.key, item.tag, stamp);
  }
};

}  // namespace

std::vector<std::unique_ptr<Saver>> savers(const QString& folder) {
  int count = 0;
  const auto place = [&] {
    const QString made = folder + u"/"_s + QString::number(count++);
    QDir().mkpath(made);
    return made;
  };
  std::vector<std::unique_ptr<Saver>> all;
  all.push_back(std::make_unique<FolderSaver>(place()));
  all.push_back(std::make_unique<NewEventSaver>(place()));
  all.push_back(std::make_unique<RemovalSaver>(place()));
  all.push_back(std::make_unique<FileSaver>(place(), 300, "an event in a small file"));
  all.push_back(std::make_unique<FileSaver>(place(), 60'000, "an event in a big file"));
  all.push_back(std::make_unique<SettingsSaver>(place()));
  all.push_back(std::make_unique<ReportSaver>(place()));
  all.push_back(std::make_unique<IndexedSaver>(place(), false));
  all.push_back(std::make_unique<IndexedSaver>(place(), true));
  return all;
}

}  // namespace faults
