#pragma once
#include "platform/files/privatefolder.h"
#include "reporting/ReportRun.h"

#include <memory>

namespace hourbook {

/// The memory of reports that are under way: a folder with one file for each run, written before its first
/// row is stored and removed when all its appointments are stamped. What is found there at a start was
/// interrupted. Only the owner may read it; it holds no password. Runs are ordered by their numbers, not by
/// the clock.
class cReportJournal {
 public:
  explicit cReportJournal(const QString& folder) : folder_(folder) {}

  /// Nobody else reads or writes the journal while the lock lives. Null when another program has it. Makes
  /// the folder. Throws Failure when that cannot be done.
  std::unique_ptr<platform::files::FileLock> Lock() const;
  /// The files of the runs, oldest first; does nothing to the disk.
  QStringList Files() const;
  /// Throws Failure, with the file's name, for one that cannot be read or understood.
  static ReportRun Read(const QString& file);
  /// Durable when it returns; the new file's name. Throws Failure.
  QString Add(const ReportRun& run) const;
  static void Write(const QString& file, const ReportRun& run);
  static void Remove(const QString& file);
  /// Marks a file as told to the user, without touching it; false when it was before. Throws Failure.
  static bool MarkTold(const QString& file);
  /// Gives a file that nobody understands a name under which it is looked at no more, and returns that.
  static QString SetAside(const QString& file);

 private:
  QString folder_;
};

/// Failure of a journal that a later version of the program has written.
inline constexpr qint32 errLaterVersion = 1001;

/// The text of a run, and back. Throws Failure for a text of another form or of a later version.
QByteArray fncJournalText(const ReportRun& run);
ReportRun fncRunOfJournalText(const QByteArray& text);

}  // namespace hourbook
