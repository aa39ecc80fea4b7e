#pragma once
#include "platform/basic/failure.h"

#include <QHash>
#include <QString>

#include <any>
#include <functional>
#include <memory>

namespace platform::automation {

/// The components of this machine by ProgID (case does not matter). Filled by explicit calls in `main()`; a
/// component that is not installed is simply not there. A factory may throw Failure itself.
class Components {
 public:
  template <class T>
  void add(const QString& progId, std::function<std::shared_ptr<T>()> factory) {
    factories_.insert(progId.toLower(), [factory] { return std::any(factory()); });
  }
  /// A running instance that `GetObject` finds; returns nullptr when the component is not running.
  template <class T>
  void addRunning(const QString& progId, std::function<std::shared_ptr<T>()> finder) {
    running_.insert(progId.toLower(), [finder] { return std::any(finder()); });
  }
  void remove(const QString& progId) {
    factories_.remove(progId.toLower());
    running_.remove(progId.toLower());
  }
  bool has(const QString& progId) const { return factories_.contains(progId.toLower()); }

  std::any create(const QString& progId) const;      // Failure 429 when not installed
  std::any getRunning(const QString& progId) const;  // Failure 429 when not running

  static Components& current();  // Failure 91 before any are put in force

 private:
  using Maker = std::function<std::any()>;
  QHash<QString, Maker> factories_;
  QHash<QString, Maker> running_;
};

/// Puts a set of components in force for the life of the object (the program's own in `main()`, a test's).
class ScopedComponents {
 public:
  explicit ScopedComponents(Components& components);
  ~ScopedComponents();
  ScopedComponents(const ScopedComponents&) = delete;
  ScopedComponents& operator=(const ScopedComponents&) = delete;

 private:
  Components* previous_;
};

/// Failure 429 when the component is not installed or is of another kind; never returns nullptr.
template <class T>
std::shared_ptr<T> CreateObject(const QString& progId) {
  const std::any made = Components::current().create(progId);
  const auto* object = std::any_cast<std::shared_ptr<T>>(&made);
  if (!object || !*object)
    throw Failure(failure::cantCreateObject, QStringLiteral("ActiveX component can't create object"), progId);
  return *object;
}

/// Attaches to a running component; Failure 429 when it does not run.
template <class T>
std::shared_ptr<T> GetObject(const QString& progId) {
  const std::any found = Components::current().getRunning(progId);
  const auto* object = std::any_cast<std::shared_ptr<T>>(&found);
  if (!object || !*object)
    throw Failure(failure::cantCreateObject, QStringLiteral("ActiveX component can't create object"), progId);
  return *object;
}

}  // namespace platform::automation
