#pragma once
#include <QString>

namespace tests {

/// Announces a warning of Qt or of the code under test whose text contains `part`. A warning or critical
/// message that no living object announces fails the running test, and so does an announced one that never
/// comes. `atLeast` 0 announces a message that may come and need not.
class ExpectedWarning {
 public:
  explicit ExpectedWarning(QString part, int atLeast = 1);
  ~ExpectedWarning();
  ExpectedWarning(const ExpectedWarning&) = delete;
  ExpectedWarning& operator=(const ExpectedWarning&) = delete;

  int count() const;

 private:
  friend bool takeAnnounced(const QString& text);
  QString part_;
  int atLeast_;
  int count_ = 0;
};

/// Puts the handler in force for the rest of the process; main() does.
/// True when a living ExpectedWarning announces the text; counts it.
bool takeAnnounced(const QString& text);

void installMessageHandler();

}  // namespace tests
