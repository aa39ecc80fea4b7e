#include "platform/calendar/icalendar/icalendarstore.h"
#include "tests/contract/calendarstore/calendarstore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace platform::calendar;

namespace contract {

namespace {

QString escaped(QString text) {
  text.replace(u"\\"_s, u"\\\\"_s).replace(u";"_s, u"\\;"_s).replace(u","_s, u"\\,"_s);
  return text.replace(u"\r\n"_s, u"\\n"_s);
}

QString dateLine(const QString& name, const QDateTime& time, bool allDay) {
  if (allDay) return name + u";VALUE=DATE:"_s + time.date().toString(u"yyyyMMdd"_s);
  const QString text = time.toString(u"yyyyMMdd'T'HHmmss"_s);
  if (time.timeSpec() == Qt::LocalTime) return name + u":"_s + text;
  if (time.timeSpec() == Qt::UTC) return name + u":"_s + text + u"Z"_s;
  return name + u";TZID="_s + QString::fromLatin1(time.timeZone().id()) + u":"_s + text;
}

/// A recurrence id in the form in which the items of its series are written.
QString idLine(const QString& name, const QString& id, const QDateTime& like) {
  if (id.size() == 8) return name + u";VALUE=DATE:"_s + id;
  if (like.timeSpec() == Qt::TimeZone)
    return name + u";TZID="_s + QString::fromLatin1(like.timeZone().id()) + u":"_s + id;
  return name + u":"_s + id;
}

/// An event as some other program might write it; quite without this program's own properties.
QString eventOf(const Described& described) {
  const Item& item = described.item;
  QStringList lines{u"BEGIN:VEVENT"_s, u"UID:"_s + item.key.uid,
                    dateLine(u"DTSTART"_s, item.start, item.allDay),
                    dateLine(u"DTEND"_s, item.end, item.allDay), u"SUMMARY:"_s + escaped(item.subject)};
  if (!item.key.recurrenceId.isEmpty())
    lines.append(idLine(u"RECURRENCE-ID"_s, item.key.recurrenceId, item.start));
  if (!item.body.isEmpty()) lines.append(u"DESCRIPTION:"_s + escaped(item.body));
  for (const QString& category : item.categories) lines.append(u"CATEGORIES:"_s + escaped(category));
  static const QStringList classes{QString(), u"PERSONAL"_s, u"PRIVATE"_s, u"CONFIDENTIAL"_s};
  if (item.sensitivity != Sensitivity::Normal)
    lines.append(u"CLASS:"_s + classes.at(static_cast<int>(item.sensitivity)));
  if (const auto& rule = described.rule) {
    lines.append(u"RRULE:FREQ=%1;INTERVAL=%2;COUNT=%3"_s
                     .arg(rule->unit == Recurrence::Unit::Day ? u"DAILY"_s : u"WEEKLY"_s)
                     .arg(rule->interval)
                     .arg(rule->count));
    for (const QString& id : rule->excluded) lines.append(idLine(u"EXDATE"_s, id, item.start));
  }
  lines.append(u"END:VEVENT"_s);
  return lines.join(u"\r\n"_s) + u"\r\n"_s;
}

QString calendarOf(const QString& events) {
  return u"BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another//EN\r\n"_s + events + u"END:VCALENDAR\r\n"_s;
}

class FileMaker : public StoreMaker {
 public:
  explicit FileMaker(bool oneFile, bool indexed = false) : oneFile_(oneFile), indexed_(indexed) {}

  std::shared_ptr<Store> make(const QList<DescribedFolder>& folders) override {
    for (const DescribedFolder& described : folders) {
      const QString id = u"calendar-%1"_s.arg(configured_.size());
      const QString path = root_.filePath(oneFile_ ? id + u".ics"_s : id);
      configured_.append({id, described.name, u"Mailbox"_s, path, described.readOnly});
      QMap<QString, QString> byUid;
      for (const Described& item : described.items) byUid[item.item.key.uid] += eventOf(item);
      if (!oneFile_) QDir().mkpath(path);
      QString all;
      for (auto events = byUid.cbegin(); events != byUid.cend(); ++events) {
        all += *events;
        if (!oneFile_) write(path + u'/' + events.key() + u".ics"_s, calendarOf(*events));
      }
      if (oneFile_) write(path, calendarOf(all));
    }
    return reopened();
  }
  std::shared_ptr<Store> reopened() override {
    return std::make_shared<IcalendarStore>(configured_, indexed_ ? root_.filePath(u"index"_s) : QString());
  }

  void changeSubjectByAnother(int folder, const QString& uid, const QString& subject) override {
    const QString path = fileOf(folder, uid);
    QString text = read(path);
    const qsizetype summary = text.indexOf(u"SUMMARY:"_s, text.indexOf(u"UID:"_s + uid + u"\r\n"_s));
    text.replace(summary, text.indexOf(u"\r\n"_s, summary) - summary, u"SUMMARY:"_s + subject);
    write(path, text);
  }
  void removeByAnother(int folder, const QString& uid) override {
    const QString path = fileOf(folder, uid);
    if (!oneFile_) {
      QFile::remove(path);
      return;
    }
    QString text = read(path);
    const qsizetype from = text.lastIndexOf(u"BEGIN:VEVENT"_s, text.indexOf(u"UID:"_s + uid + u"\r\n"_s));
    const QString last = u"END:VEVENT\r\n"_s;
    text.remove(from, text.indexOf(last, from) + last.size() - from);
    write(path, text);
  }

  bool hasMailFolders() const override { return false; }
  bool keepsChangesBack() const override { return oneFile_; }

 private:
  QString fileOf(int folder, const QString& uid) const {
    const QString& path = configured_.at(folder).path;
    return oneFile_ ? path : path + u'/' + uid + u".ics"_s;
  }
  static QString read(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return QString::fromUtf8(file.readAll());
  }
  static void write(const QString& path, const QString& text) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    file.write(text.toUtf8());
  }

  bool oneFile_, indexed_;
  QTemporaryDir root_;
  QList<IcalendarFolder> configured_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(
    Icalendar, CalendarStoreContract,
    testing::Values(NamedMaker{"Folder", [] { return std::make_unique<FileMaker>(false); }},
                    NamedMaker{"OneFile", [] { return std::make_unique<FileMaker>(true); }},
                    NamedMaker{"FolderWithIndex", [] { return std::make_unique<FileMaker>(false, true); }},
                    NamedMaker{"OneFileWithIndex", [] { return std::make_unique<FileMaker>(true, true); }}),
    [](const auto& info) { return info.param.name; });

}  // namespace contract
