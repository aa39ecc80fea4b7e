#pragma once
#include <QStringList>

namespace tests {

/// For a test run by root, whom no permission holds back: gives a folder with all in it to an ordinary user
/// and works as him for the life of the object. For any other user it does nothing, since permissions bind
/// him anyway.
class Unprivileged {
 public:
  explicit Unprivileged(const QString& folder);
  ~Unprivileged();
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

 private:
  bool wasRoot_;
  QStringList folders_;
};

/// May be written by nobody, and again by its owner.
void protect(const QString& path);
void unprotect(const QString& path);

}  // namespace tests
