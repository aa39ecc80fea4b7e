#include "outside.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace outside {

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60000;  // milliseconds; for a machine under load

QString missing(const QProcess& process) {
  return u"%1 cannot be run (%2). The journeys look at the files with the programs of the Debian packages "
         u"sqlite3, "
         "khal and python3-icalendar; they have to be installed."_s.arg(process.program(),
                                                                        process.errorString());
}

}  // namespace

QString run(const QString& program, const QStringList& arguments, const QMap<QString, QString>& environment) {
  QProcess process;
  QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
  variables.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
  variables.insert(u"PYTHONIOENCODING"_s, u"utf-8"_s);
  for (auto it = environment.cbegin(); it != environment.cend(); ++it) variables.insert(it.key(), it.value());
  process.setProcessEnvironment(variables);
  process.start(program, arguments);
  if (!process.waitForStarted(patience) || !process.waitForFinished(patience)) {
    ADD_FAILURE() << qPrintable(missing(process));
    return {};
  }
  EXPECT_TRUE(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
      << qPrintable(program + u' ' + arguments.join(u' ')) << "\n"
      << process.readAllStandardError().constData();
  return QString::fromUtf8(process.readAllStandardOutput());
}

QStringList sql(const QString& database, const QString& query) {
  const QString separator = u"\x1f"_s, end = u"\x1e"_s;
  const QString output = run(u"sqlite3"_s, {u"-batch"_s, u"-readonly"_s, u"-separator"_s, separator,
                                            u"-newline"_s, end, database, query});
  QStringList rows = output.split(end, Qt::SkipEmptyParts);
  for (QString& row : rows)
    row.replace(separator, u"|"_s).replace(u"\r\n"_s, u"\\n"_s).replace(u'\n', u"\\n"_s);
  return rows;
}

Lock::Lock(const QString& database) {
  shell_.start(u"sqlite3"_s, {u"-batch"_s, database});
  if (!shell_.waitForStarted(patience)) {
    ADD_FAILURE() << qPrintable(missing(shell_));
    return;
  }
  shell_.write("begin exclusive;\nselect 'locked';\n");
  while (!shell_.canReadLine() && shell_.waitForReadyRead(patience)) {
  }
  EXPECT_EQ(shell_.readLine().trimmed(), "locked") << shell_.readAllStandardError().constData();
}

Lock::~Lock() {
  shell_.write("rollback;\n.quit\n");
  shell_.closeWriteChannel();
  shell_.waitForFinished(patience);
}

QList<Event> events(const QString& path) {
  const QString output = run(u"/usr/bin/python3"_s, {QStringLiteral(CALENDAR_READER), path});
  QList<Event> found;
  for (const QString& line : output.split(u'\n', Qt::SkipEmptyParts)) {
    const QStringList f = line.split(u'\t');
    if (f.size() == 10)
      found.append({f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7], f[8], f[9]});
    else
      ADD_FAILURE() << "An odd line: " << qPrintable(line);
  }
  return found;
}

QStringList khalList(const QString& calendar, const QString& scratch, const QString& from,
                     const QString& to) {
  QDir().mkpath(scratch);
  const QString configuration = scratch + u"/khal.conf"_s;
  write(configuration,
        u"[calendars]\n[[work]]\npath = %1\nreadonly = True\n"
        "[sqlite]\npath = %2/khal.db\n"
        "[locale]\nlocal_timezone = Europe/Stockholm\ndefault_timezone = Europe/Stockholm\n"
        "timeformat = %H:%M\ndateformat = %Y-%m-%d\nlongdateformat = %Y-%m-%d\n"
        "datetimeformat = %Y-%m-%d %H:%M\nlongdatetimeformat = %Y-%m-%d %H:%M\n"
        "[default]\nhighlight_event_days = False\n"_s.arg(calendar, scratch)
            .toUtf8());
  const QString output = run(u"khal"_s,
                             {u"-c"_s, configuration, u"list"_s, u"--day-format"_s, QString(), u"--format"_s,
                              u"{start} {end} {title} [{categories}]"_s, from, to},
                             {{u"HOME"_s, scratch},
                              {u"XDG_CONFIG_HOME"_s, scratch},
                              {u"XDG_CACHE_HOME"_s, scratch},
                              {u"XDG_DATA_HOME"_s, scratch}});
  return output.split(u'\n', Qt::SkipEmptyParts);
}

QMap<QString, QByteArray> files(const QString& folder) {
  QMap<QString, QByteArray> found;
  for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden))
    found[name] = content(folder + u'/' + name);
  return found;
}

QStringList changed(const QMap<QString, QByteArray>& before, const QMap<QString, QByteArray>& after) {
  QStringList names;
  for (auto it = before.cbegin(); it != before.cend(); ++it)
    if (!after.contains(it.key()) || after[it.key()] != it.value()) names.append(it.key());
  for (auto it = after.cbegin(); it != after.cend(); ++it)
    if (!before.contains(it.key())) names.append(it.key());
  names.sort();
  return names;
}

QByteArray content(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
  return file.readAll();
}

void write(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
  ASSERT_EQ(file.write(bytes), bytes.size()) << qPrintable(path);
}

}  // namespace outside
