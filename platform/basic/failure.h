#pragma once
#include <QString>

#include <exception>

namespace platform {

/// The one failure type of every platform component: the number and description that the component stood
/// in for would give, and the component's name. Nothing else is thrown across the platform's line, except
/// `process::EndSignal`, which is deliberately not related to it.
class Failure : public std::exception {
 public:
  Failure(qint32 number, QString description, QString source = {});

  qint32 number() const { return number_; }
  const QString& description() const { return description_; }
  const QString& source() const { return source_; }
  const char* what() const noexcept override { return what_.constData(); }

 private:
  qint32 number_;
  QString description_;
  QString source_;
  QByteArray what_;
};

/// Numbers of the language's own run-time.
namespace failure {
inline constexpr qint32 invalidProcedureCall = 5;
inline constexpr qint32 overflow = 6;
inline constexpr qint32 subscriptOutOfRange = 9;
inline constexpr qint32 typeMismatch = 13;
inline constexpr qint32 fileNotFound = 53;
inline constexpr qint32 permissionDenied = 70;
inline constexpr qint32 pathNotFound = 76;
inline constexpr qint32 objectNotSet = 91;
inline constexpr qint32 invalidUseOfNull = 94;
inline constexpr qint32 cantCreateObject = 429;
inline constexpr qint32 keyAlreadyAssociated = 457;
}  // namespace failure

}  // namespace platform
