#pragma once
#include <QString>

#include <memory>

namespace hourbook {

/// Fetches the lists of customers and items from the billing system into the database. Whoever can do that
/// hands one to the page.
class BillingDownload {
 public:
  virtual ~BillingDownload() = default;
  /// Why the road with this `ServerName` has no download, for the user; empty: it has one.
  virtual QString unable(const QString& serverName) const = 0;
  /// Downloads with the settings as they are stored, and returns what is to be told to the user. Throws
  /// platform::Failure.
  virtual QString run() = 0;
};

}  // namespace hourbook
