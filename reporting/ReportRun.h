#pragma once
#include "platform/basic/value.h"

#include <QJsonObject>
#include <QList>
#include <QString>

#include <array>
#include <optional>

namespace hourbook {

inline constexpr int metaCount = 3;

/// What of a row tells its line at the target again.
struct ReportLine {
  QDate day;
  QString subject;  // as the target was given it
  std::optional<float> hours;
  std::array<QString, metaCount> names;               // of the three lists; empty where nothing was chosen
  std::array<std::optional<qint32>, metaCount> keys;  // where the target keeps keys
  bool operator==(const ReportLine&) const = default;
};

/// A row that is about to be stored, and its appointment as it was then.
struct ReportedRow {
  QString folder;   // id of the calendar
  QString entryId;  // of the appointment in it
  QString tag;      // changes whenever what the calendar holds of it changes
  QString subject;
  QString start;  // a date for an all-day event, else UTC
  int minutes = 0;
  ReportLine line;
  /// The target has said that the line stands there, and when it was reported. Empty: not asked yet.
  std::optional<platform::basic::Date> stored;
  /// Its appointment bears a stamp, and the row is only kept for a question that is still open, of itself or
  /// of an equal one.
  bool settled = false;
  /// The stamp was there already: somebody else may have reported the appointment as well.
  bool stampedElsewhere = false;
};

/// One report from before its first row until all its appointments are stamped.
struct ReportRun {
  qint32 target = 0;
  QString place;     // of the target, without any secret; equal for equal places
  QString person;    // the user's name as the rows carry it
  QString begun;     // YYYY-MM-DD HH:MM on the user's clock, to be shown
  QJsonObject mark;  // the target's own note of where it stood
  QString told;      // what the user was last told of it
  QList<ReportedRow> rows;
};

/// How a target is asked about runs of earlier. Failures are platform::Failure.
class AskableTarget {
 public:
  virtual ~AskableTarget() = default;
  /// Where it stores now: a text that is equal for equal places and holds no secret.
  virtual QString Place() = 0;
  /// The keys of a line's names, where it keeps such; false when it would refuse the line.
  virtual bool TakeKeys(ReportLine& line) = 0;
  /// What it will need to find the lines of a run that begins now.
  virtual QJsonObject Mark() = 0;
  /// The same as of before the first report of all; empty where it cannot be asked about that, or has nothing
  /// of this person.
  virtual QJsonObject MarkOfAll(const QString& person) {
    Q_UNUSED(person)
    return {};
  }
  /// For each row of the run whether its line stands there, and when it was reported. Of k equal rows of
  /// which m stand there, those are the first m. The run's place is the present one.
  virtual QList<std::optional<platform::basic::Date>> Stored(const ReportRun& run) = 0;
  /// For each row of the run whether an equal line stands there once more, of this person and since the run.
  virtual QList<bool> StoredAgain(const ReportRun& run) { return QList<bool>(run.rows.size()); }
};

}  // namespace hourbook
