#pragma once
#include <QMap>
#include <QString>

#include <memory>
#include <vector>

// What this program writes to a disk, each as one save of which the state before and the state after are
// known.
namespace faults {

using Contents = QMap<QString, QByteArray>;

class Saver {
 public:
  explicit Saver(QString folder) : folder_(std::move(folder)) {}
  virtual ~Saver() = default;
  virtual const char* name() const = 0;
  /// Puts everything as it is before the save.
  virtual void prepare() = 0;
  /// The save. Throws when it failed; when it comes back it has succeeded.
  virtual void save() = 0;
  /// What stands there now, read without the code that wrote it where that can be.
  virtual Contents contents() = 0;
  /// Whether this is a state between the two that may be found after a crash or a failure.
  virtual bool isBetween(const Contents&, const Contents& before, const Contents& after) {
    static_cast<void>(before);
    static_cast<void>(after);
    return false;
  }
  /// What the next start of the program and its next save do, to another item.
  virtual void startAgain() = 0;
  /// What another instance saves into the very file that `save` changes.
  virtual void saveElse() { startAgain(); }
  /// Whether it makes more calls at one time than at another, since a thread works beside it.
  virtual bool isVarying() const { return false; }
  /// One of these stands in the message of a failed save.
  virtual QStringList places() const = 0;

  /// The user's files that it writes, within its folder ("": all of it). What is beside them answers for
  /// itself.
  virtual QString place() const { return {}; }

  QString userFolder() const { return place().isEmpty() ? folder_ : path(place()); }

  const QString& folder() const { return folder_; }
  QString path(const QString& name) const { return folder_ + u'/' + name; }
  /// The names of all files in it, hidden ones included.
  QStringList names() const;
  /// What a save has left behind of itself.
  QStringList litter() const;
  /// Lets time go by for all that a crash has left behind.
  void age() const;

 private:
  QString folder_;
};

/// A new one of every kind, on a folder of its own within `folder`.
std::vector<std::unique_ptr<Saver>> savers(const QString& folder);

}  // namespace faults
