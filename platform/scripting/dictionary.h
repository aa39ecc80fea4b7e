#pragma once
#include "platform/basic/collection.h"
#include "platform/basic/failure.h"
#include "platform/basic/text.h"

#include <QHash>
#include <QList>
#include <QString>

namespace platform::scripting {

enum class CompareMethod { Binary = 0, Text = 1 };

/// Insertion-ordered dictionary with text keys. `setCompareMode` only while empty (Failure 5). `Item` of a
/// missing key is Failure 5 here (it never adds one silently); `Add` of a present key 457.
template <class T>
class Dictionary {
 public:
  void setCompareMode(CompareMethod mode) {
    if (!entries_.isEmpty())
      throw Failure(failure::invalidProcedureCall, QStringLiteral("Invalid procedure call or argument"));
    mode_ = mode;
  }
  CompareMethod compareMode() const { return mode_; }
  int Count() const { return static_cast<int>(entries_.size()); }
  bool Exists(const QString& key) const { return index_.contains(filed(key)); }
  void Add(const QString& key, T item) {
    if (Exists(key))
      throw Failure(failure::keyAlreadyAssociated,
                    QStringLiteral("This key is already associated with an element of this collection"));
    index_.insert(filed(key), entries_.size());
    entries_.append({key, std::move(item)});
  }
  /// Overwrites or adds.
  void setItem(const QString& key, T item) {
    const auto found = index_.constFind(filed(key));
    if (found == index_.cend())
      Add(key, std::move(item));
    else
      entries_[*found].item = std::move(item);
  }
  T& Item(const QString& key) { return entries_[at(key)].item; }
  const T& Item(const QString& key) const { return entries_[at(key)].item; }
  void RemoveAll() {
    entries_.clear();
    index_.clear();
  }
  QStringList Keys() const {
    QStringList keys;
    for (const Entry& e : entries_) keys.append(e.key);
    return keys;
  }
  QList<T> Items() const {
    QList<T> items;
    for (const Entry& e : entries_) items.append(e.item);
    return items;
  }

 private:
  struct Entry {
    QString key;
    T item;
  };
  QString filed(const QString& key) const {
    return mode_ == CompareMethod::Text ? basic::foldedKey(key) : key;
  }
  qsizetype at(const QString& key) const {
    const auto found = index_.constFind(filed(key));
    if (found == index_.cend())
      throw Failure(failure::invalidProcedureCall, QStringLiteral("Invalid procedure call or argument"));
    return *found;
  }
  CompareMethod mode_ = CompareMethod::Binary;
  QList<Entry> entries_;
  QHash<QString, qsizetype> index_;
};

/// What the ProgID "Scripting.Dictionary" makes: the proof that the component is installed. The dictionaries
/// themselves are typed and made where they are used.
struct DictionaryComponent {};

}  // namespace platform::scripting
