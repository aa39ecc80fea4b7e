#pragma once
#include "companions/settings/common/commonstore.h"

#include <QHash>

#include <functional>

namespace hourbook {

class frmResolveRemovedItem;

/// Asks by frmResolveRemovedItem what becomes of the reports of a value that is no longer in its list. The
/// name that it was given is offered first. Throws platform::Failure when nothing can ask.
RemovedAnswer askAboutRemoved(const RemovedValue& removed, const QStringList& candidates);

/// While it lives, frmResolveRemovedItem is answered by what the user chose before the save began: a question
/// in the middle of it would keep everybody else from the database until it is answered.
class ScopedAnswers {
 public:
  /// `answers` belong to `removed`, in its order. What has none is left as it is.
  ScopedAnswers(const QList<RemovedValue>& removed, const QList<RemovedAnswer>& answers);
  ~ScopedAnswers();
  ScopedAnswers(const ScopedAnswers&) = delete;
  ScopedAnswers& operator=(const ScopedAnswers&) = delete;

 private:
  void answer(frmResolveRemovedItem& form);

  QHash<QString, QList<RemovedAnswer>> byName_;  // those of a name in several lists in the order of the lists
  std::function<void(frmResolveRemovedItem&)> previous_;
};

}  // namespace hourbook
