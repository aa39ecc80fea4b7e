#pragma once
#include "tests/faults/trials.h"

// What a power cut leaves of a save: of all that was not synced, anything may have reached the disk, in any
// order.
namespace faults {

/// The names and the bytes that are found after a cut.
using Found = QMap<QByteArray, QByteArray>;

class PowerLoss {
 public:
  PowerLoss(DiskImage before, QList<Operation> operations)
      : before_(std::move(before)), operations_(std::move(operations)) {}

  /// Everything that may be found when the power goes after the first `count` operations: every choice of the
  /// names that have reached the disk, and for files that a user sees every choice of their writes, each
  /// whole, not at all, by half or as zeros. More than ten of them at a time: all up to one, all but one, all
  /// but two. `within`: of the files in this folder.
  QList<Found> foundAfter(qsizetype count, const QByteArray& within) const;
  /// What stands there when nothing is lost.
  Found atTheEnd() const;
  /// The names of which something might be lost then.
  QByteArrayList unsynced(qsizetype count) const;

 private:
  QList<int> pendingNames(qsizetype count) const;
  QList<int> pendingBytes(qsizetype count, int file) const;
  QByteArrayList contentsOf(qsizetype count, int file, bool isSeen) const;

  DiskImage before_;
  QList<Operation> operations_;
};

/// What is wrong with what a power cut can leave of the saver's save; empty when each state is the old one or
/// the new one, and the new one only from the moment on at which the save has said that it succeeded.
struct Verdict {
  QStringList faults;
  int cuts = 0, states = 0;
};
/// `first` is done in the saver's process ahead of the save.
Verdict judged(Place& place, const std::function<void()>& first = {});

}  // namespace faults
