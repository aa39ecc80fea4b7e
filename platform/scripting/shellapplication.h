#pragma once
#include <QString>

#include <memory>

namespace platform::scripting {

/// A file as the desktop knows it.
class FolderItem {
 public:
  explicit FolderItem(QString path) : path_(std::move(path)) {}
  QString Path() const { return path_; }
  QString Name() const;
  /// No verb or "open": the desktop opens the file with the program that belongs to it. "print": the system's
  /// `lp` prints it. Case does not matter. Failure 5 for any other verb, 482 when it cannot be printed,
  /// -2147024894 when it cannot be opened, both with the reason.
  void InvokeVerb(const QString& verb = {}) const;

 private:
  QString path_;
};

class FolderItems {
 public:
  explicit FolderItems(QString folder) : folder_(std::move(folder)) {}
  /// nullptr when there is no file of that name.
  std::shared_ptr<FolderItem> Item(const QString& name) const;

 private:
  QString folder_;
};

class ShellFolder {
 public:
  explicit ShellFolder(QString path) : path_(std::move(path)) {}
  FolderItems Items() const { return FolderItems(path_); }

 private:
  QString path_;
};

/// `Shell.Application`.
class ShellApplication {
 public:
  /// nullptr when there is no such folder. Both "\" and "/" separate folders.
  std::shared_ptr<ShellFolder> NameSpace(const QString& folder) const;
};

}  // namespace platform::scripting
