#pragma once
#include <QByteArray>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

// What other programs find in the files of a journey. A program that is missing fails the test.
namespace outside {

/// Runs a program to its end; its output. Fails the test when it cannot be started or ends with another code
/// than 0.
QString run(const QString& program, const QStringList& arguments,
            const QMap<QString, QString>& environment = {});

/// Rows of a query by the sqlite3 shell, columns joined by "|"; a line break in a text reads "\n".
QStringList sql(const QString& database, const QString& query);

/// Holds a database locked, as another program at work in it does, until it goes.
class Lock {
 public:
  explicit Lock(const QString& database);
  ~Lock();

 private:
  QProcess shell_;
};

/// One VEVENT.
struct Event {
  QString uid, recurrenceId, start, summary, categories, stamp, classification, minutes, repeats, description;
};
/// As python3-icalendar reads a calendar's folder or one file of it.
QList<Event> events(const QString& path);

/// A calendar folder as khal lists it from one day up to another (left out), a line an appointment: start,
/// end, subject and categories. khal keeps its own files in `scratch`.
QStringList khalList(const QString& calendar, const QString& scratch, const QString& from, const QString& to);

/// The content of every file of a folder, by name.
QMap<QString, QByteArray> files(const QString& folder);
/// Names of the files whose content differs, that came or that went.
QStringList changed(const QMap<QString, QByteArray>& before, const QMap<QString, QByteArray>& after);

QByteArray content(const QString& path);
void write(const QString& path, const QByteArray& bytes);

}  // namespace outside
