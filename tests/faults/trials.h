#pragma once
#include "tests/faults/disklog.h"
#include "tests/faults/faultcalls.h"
#include "tests/faults/savers.h"

#include <functional>
#include <optional>
#include <set>

namespace faults {

/// What came of one save in a process of its own.
struct Trial {
  bool killed = false;
  bool succeeded = false;  // the save said so
  QString message;         // of a save that failed
  QByteArray struck;       // the call
  QByteArrayList calls;
  QList<Operation> operations;  // where they were to be recorded
  Contents after;               // right after it
  QStringList names;
  bool retried = false;  // a second try, without fault, said that it succeeded
  Contents afterRetry;
};

enum class Then { Look, Retry };

/// `saver.prepare()` is done before, in this process. `whileStopped` is done here when the other one has been
/// stopped; then that goes on.
Trial tried(Saver& saver, const Plan& plan, Then then = Then::Look,
            const std::function<void()>& whileStopped = {});

/// Old and new state of a saver, and the calls of a save without fault.
struct Course {
  Contents before, after;
  QStringList names, namesAfter;
  QByteArrayList calls;

  bool heavy() const {
    qsizetype size = 0;
    for (const QByteArray& each : before) size += each.size();
    return size > 1'000'000;
  }
};
Course courseOf(Saver& saver);

/// A saver of those of savers.h in a folder of its own, in memory where there is such a place.
class Place {
 public:
  explicit Place(size_t which);
  using Making = std::function<std::unique_ptr<Saver>(const QString& folder)>;
  explicit Place(const Making& make);
  ~Place();
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  Saver& saver() { return *saver_; }
  /// Everything as it was when the saver was first prepared.
  void renew();

 private:
  QStringList files() const;

  QString folder_;
  QByteArray temporary_;
  std::unique_ptr<Saver> saver_;
  Contents prepared_;
};
size_t saverCount();

std::string text(const Contents& now, const Contents& before, const Contents& after);

/// CI takes each point once. With HOURBOOK_SOAK=n everything that is drawn at random is drawn n times as
/// often.
int soak();

}  // namespace faults
