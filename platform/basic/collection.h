#pragma once
#include "platform/basic/failure.h"
#include "platform/basic/text.h"

#include <QHash>
#include <QList>

namespace platform::basic {

/// An ordered collection that counts from 1, with optional keys that compare without regard to case.
/// A missing position is Failure 9, a missing key 5, a key that is there already 457.
template <class T>
class Collection {
 public:
  void Add(T item, const QString& key = {}) {
    if (!key.isNull()) {
      if (keys_.contains(foldedKey(key)))
        throw Failure(failure::keyAlreadyAssociated,
                      QStringLiteral("This key is already associated with an element of this collection"));
      keys_.insert(foldedKey(key), items_.size());
    }
    items_.append(std::move(item));
  }
  int Count() const { return static_cast<int>(items_.size()); }
  T& Item(int position) { return items_[index(position)]; }
  const T& Item(int position) const { return items_[index(position)]; }
  T& Item(const QString& key) { return items_[index(key)]; }
  const T& Item(const QString& key) const { return items_[index(key)]; }
  bool contains(const QString& key) const { return keys_.contains(foldedKey(key)); }

  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.cbegin(); }
  auto end() const { return items_.cend(); }

 private:
  qsizetype index(int position) const {
    if (position < 1 || position > items_.size())
      throw Failure(failure::subscriptOutOfRange, QStringLiteral("Subscript out of range"));
    return position - 1;
  }
  qsizetype index(const QString& key) const {
    const auto found = keys_.constFind(foldedKey(key));
    if (found == keys_.cend())
      throw Failure(failure::invalidProcedureCall, QStringLiteral("Invalid procedure call or argument"));
    return *found;
  }
  QList<T> items_;
  QHash<QString, qsizetype> keys_;
};

}  // namespace platform::basic
