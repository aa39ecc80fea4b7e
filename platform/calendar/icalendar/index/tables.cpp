#include "platform/calendar/icalendar/index/tables.h"

#include "platform/calendar/icalendar/index/packs.h"

namespace platform::calendar::icalendar::index {

void createTables(Database& database, const QString& calendarPath) {
  database.script(R"(
    PRAGMA application_id = 0x48426978;
    PRAGMA user_version = 4;
    CREATE TABLE calendar (path TEXT NOT NULL, stamp INTEGER NOT NULL, complete INTEGER NOT NULL);
    CREATE TABLE file (
      id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, stamp INTEGER NOT NULL, content INTEGER NOT NULL,
      form INTEGER NOT NULL, settled INTEGER NOT NULL, linked INTEGER NOT NULL, error TEXT NOT NULL);
    CREATE TABLE pack (id INTEGER PRIMARY KEY, events BLOB);
    CREATE TABLE segment (
      id INTEGER PRIMARY KEY, file INTEGER, start INTEGER, length INTEGER, line INTEGER, lines INTEGER,
      calendar INTEGER, lastEnd INTEGER, sum INTEGER);
    CREATE INDEX segment_file ON segment (file);
    CREATE TABLE head (
      id INTEGER PRIMARY KEY, file INTEGER, segment INTEGER, calendar INTEGER, zone INTEGER, bytes BLOB);
    CREATE INDEX head_calendar ON head (file, calendar);
    CREATE TABLE problem (
      id INTEGER PRIMARY KEY, file INTEGER, segment INTEGER, phase INTEGER, line INTEGER, text TEXT);
    CREATE INDEX problem_file ON problem (file);
    CREATE INDEX file_unsure ON file (id) WHERE settled = 0 OR linked = 1;
  )");
  Runs::createTable(database);
  database.run("INSERT INTO calendar VALUES (?, 0, 0)", calendarPath);
}

bool fits(Database& database, const QString& calendarPath) {
  if (database.number("PRAGMA application_id") != applicationId) return false;
  if (database.number("PRAGMA user_version") != schemaVersion) return false;
  Rows rows = database.ask("SELECT path, complete FROM calendar");
  return rows.next() && rows.text(0) == calendarPath && rows.number(1) == 1;
}

void markComplete(Database& database) {
  database.runs().flush();
  database.run("UPDATE calendar SET complete = 1");
}

std::optional<FileRow> fileNamed(Database& database, const QString& name) {
  Rows rows =
      database.ask("SELECT id, stamp, content, form, settled, linked, error FROM file WHERE name = ?", name);
  if (!rows.next()) return std::nullopt;
  FileRow row;
  row.id = rows.number(0);
  row.name = name;
  row.stamp = rows.bits(1);
  row.content = rows.bits(2);
  row.form = static_cast<Form>(rows.number(3));
  row.settled = rows.number(4) != 0;
  row.linked = rows.number(5) != 0;
  row.error = rows.text(6);
  return row;
}

void store(Database& database, FileRow& row) {
  if (row.id == 0) {
    row.id = database.number("SELECT max(id) FROM file").value_or(0) + 1;
    database.run("INSERT INTO file VALUES (?, ?, ?, ?, ?, ?, ?, ?)", row.id, row.name, row.stamp, row.content,
                 static_cast<int>(row.form), row.settled, row.linked, row.error);
    return;
  }
  database.run(
      "UPDATE file SET stamp = ?, content = ?, form = ?, settled = ?, linked = ?, error = ? WHERE id = ?",
      row.stamp, row.content, static_cast<int>(row.form), row.settled, row.linked, row.error, row.id);
}

void clearRows(Database& database, qint64 file) {
  if (!database.number("SELECT 1 FROM file WHERE id <> ? LIMIT 1", file)) {  // all there are
    database.runs().clear();
    database.run("DELETE FROM pack");
  } else {
    QList<Home> homes{Home::ofWholeFile(file)};
    Rows rows = database.ask("SELECT id FROM segment WHERE file = ?", file);
    while (rows.next()) homes.append(Home::ofSegment(rows.number(0)));
    for (const Home home : std::as_const(homes)) removePack(database, file, home);
  }
  database.run("DELETE FROM segment WHERE file = ?", file);
  database.run("DELETE FROM head WHERE file = ?", file);
  database.run("DELETE FROM problem WHERE file = ?", file);
}

void removeFile(Database& database, qint64 file) {
  clearRows(database, file);
  database.run("DELETE FROM file WHERE id = ?", file);
}

void insertProblem(Database& database, qint64 file, qint64 segment, Phase phase, const Problem& problem) {
  database.run("INSERT INTO problem (file, segment, phase, line, text) VALUES (?, ?, ?, ?, ?)", file, segment,
               static_cast<int>(phase), problem.line, problem.text);
}

QList<Segment> segmentsOf(Database& database, qint64 file) {
  QList<Segment> segments;
  Rows rows = database.ask(
      "SELECT id, start, length, line, lines, calendar, lastEnd, sum FROM segment WHERE file = ? ORDER BY "
      "start",
      file);
  while (rows.next())
    segments.append({rows.number(0), rows.number(1), rows.number(2), static_cast<int>(rows.number(3)),
                     static_cast<int>(rows.number(4)), rows.number(5), rows.number(6), rows.bits(7)});
  return segments;
}

}  // namespace platform::calendar::icalendar::index
