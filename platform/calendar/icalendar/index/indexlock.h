#pragma once
#include <QString>

#include <memory>

namespace platform::calendar::icalendar::index {

/// A lock beside an index, by which several processes, and several calendars of one, agree on it: whoever
/// uses the index shares the lock, and who puts another in its place, or takes it away, has it alone.
/// SQLite's own locks guard the content of the file, not its name. Gone with the process that had it.
class IndexLock {
 public:
  enum class Kind { Shared, Alone };
  enum class Result { Had, Busy, Impossible };

  /// Whoever uses the index leaves word of when; who only looks at it leaves none.
  enum class Word { Left, None };

  explicit IndexLock(const QString& indexPath, Word word = Word::Left);
  ~IndexLock();
  IndexLock(const IndexLock&) = delete;
  IndexLock& operator=(const IndexLock&) = delete;

  /// Waits at most so long. Takes it anew, or in another kind, when it is had already; `Busy`: nothing is
  /// had. `Impossible`: no lock can be had here, or not of this file system.
  Result take(Kind kind, int patienceMs);
  /// Takes the file of the lock away. Only by who has it alone, who then has nothing.
  void removeFile();

  static QString pathFor(const QString& indexPath) { return indexPath + QStringLiteral(".lock"); }

 private:
  bool openFile();
  bool isInPlace() const;
  void close();

  QByteArray path_;
  Word word_;
  int number_ = -1;
};

}  // namespace platform::calendar::icalendar::index
