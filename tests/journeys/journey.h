#pragma once
#include "app/Configuration.h"
#include "outside.h"
#include "tests/support/testworld.h"

#include <QDate>
#include <QTemporaryDir>
#include <QWidget>

#include <memory>

class QDateEdit;

namespace tests {

/// Where and how the user lives.
struct Place {
  QString locale = QStringLiteral("en_US");
  QByteArray zone = "Europe/Stockholm";
};

/// An appointment that a test adds to the sample calendar, as another program would have written it.
struct Added {
  QString subject;
  QString start;  // "20240507T120000" in the zone of the place, or with "Z" in UTC
  int minutes = 60;
  QStringList values = {};  // of the lists
  QString body = {};
};

/// A sample profile (Wednesday 15 May 2024, seed 1) and the program on it, started and used as a user does:
/// what the tests know of the window are the names of its controls.
class Journey {
 public:
  explicit Journey(const Place& place = {});
  ~Journey();

  QString home() const { return home_->path(); }
  QString folder() const { return home_->path() + QStringLiteral("/profile"); }
  QString calendar() const { return folder() + QStringLiteral("/calendar"); }
  QString database() const { return folder() + QStringLiteral("/database/Hourbook3.mdb"); }
  QString configuration() const { return folder() + QStringLiteral("/config"); }
  /// Where the program remembers reports that are under way.
  QString journal() const { return home_->path() + QStringLiteral("/state/reports"); }
  QString scratch() const { return home_->path() + QStringLiteral("/scratch"); }
  /// "name.ics" in the calendar; its UID is "name".
  void add(const QString& name, const Added& appointment);

  /// Starts the program as its main() does; a run before counts as over.
  void start();
  void stop();
  bool hasWindow() const { return window() != nullptr; }
  QWidget* window() const;
  QWidget* control(const char* name) const;

  void pick(const char* picker, const QDate& date);
  void click(const char* button);
  /// Picks both dates and fetches.
  void fetch(const QDate& from, const QDate& to);
  void chooseFilter(int index);
  /// The time has come at which the list looks for what others have changed.
  void tick();
  /// Answers the question before the report with Yes, presses OK.
  void pressOK();
  /// The same; the report succeeds, and another period is wanted.
  void reportAndStay();

  /// The list as the window shows it, cells joined by "|": subject, the three values, date, hours, status.
  QStringList rows() const;
  QStringList subjects() const;
  QStringList statuses() const;

  QStringList sql(const QString& query) const { return outside::sql(database(), query); }
  int reportsStored() const;
  /// Subjects of the reports that came after the sample's own, in their order.
  QStringList newReports() const;
  QList<outside::Event> events() const { return outside::events(calendar()); }
  /// The one event of a UID (and occurrence); fails the test when there is not just one.
  outside::Event event(const QString& uid, const QString& recurrenceId = {}) const;

  TestWorld world;
  /// How long the program waits for a database that another one holds.
  int busyTimeout = 0;  // 0: as the program has it

 private:
  struct Run;
  QStringList column(int number) const;

  Place place_;
  std::unique_ptr<QTemporaryDir> home_;
  std::unique_ptr<Run> run_;
  int sampleReports_ = 0;
};

inline const QString sureQuestion =
    QStringLiteral("You will not be able to change your reported time once you submit them to the database!");
inline const QString anotherPeriod = QStringLiteral("Would you like to report for another period?");
inline const QString errorReport = QStringLiteral("There has been an error in this application.");

inline QDate may(int day) {
  return QDate(2024, 5, day);
}

}  // namespace tests
