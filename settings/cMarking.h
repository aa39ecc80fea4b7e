#pragma once
#include "platform/basic/collection.h"
#include "settings/cMetaData.h"

#include <memory>

namespace hourbook {

/// The values chosen for one appointment: one position for each meta list of the personal settings, as they
/// were when the marking was made. A position whose `MetaName` is empty is not chosen.
class cMarking {
 public:
  cMarking();

  platform::basic::Collection<std::shared_ptr<cMetaData>> colMarkings;

  /// Fills positions from an appointment's `Categories`. Never clears one.
  void BillingToMarkings(const QString& strBillingInformation);
  /// The text for an appointment's `Categories`; begins with the list separator.
  QString MarkingCategories() const;
  bool IsComplete() const;
};

}  // namespace hourbook
