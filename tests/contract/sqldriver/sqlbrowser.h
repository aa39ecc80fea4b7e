#pragma once
#include <QHash>
#include <QStringList>

#include <mutex>
#include <thread>

namespace contract {

/// What tells programs the ports of a machine's named instances (UDP 1434), on an address of this machine's
/// own. Runs on a thread of its own from its making to its end.
class SqlBrowser {
 public:
  /// The ports by the instances' names.
  SqlBrowser(const QString& address, const QHash<QString, int>& instances);
  ~SqlBrowser();
  SqlBrowser(const SqlBrowser&) = delete;
  SqlBrowser& operator=(const SqlBrowser&) = delete;

  QStringList asked() const;

 private:
  void work();

  const QHash<QString, int> instances_;
  int socket_ = -1;
  int stop_[2] = {-1, -1};
  mutable std::mutex mutex_;
  QStringList asked_;
  std::thread thread_;
};

}  // namespace contract
