#pragma once
#include <QElapsedTimer>

class QSqlDatabase;

namespace platform::sql::sqlite {

/// How a connection waits for others to let go of the file. The engine's own way waits longer each time, so
/// that of several programs that write row by row the one that has waited longest gets its turn last; here
/// all try alike often, at random, until the bound.
class Patience {
 public:
  explicit Patience(int milliseconds) : bound_(milliseconds) {}
  /// To be told of an open connection, which must not outlive this object.
  void governs(const QSqlDatabase& database);

 private:
  static int wait(void* self, int times);

  int bound_;
  QElapsedTimer since_;
};

}  // namespace platform::sql::sqlite
