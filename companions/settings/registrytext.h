#pragma once
#include "companions/settings/buffer.h"

#include <QByteArray>

#include <memory>

namespace hourbook {

class cPersonalSettings;

/// The personal settings in the bytes of a registry file.
class RegistryText {
 public:
  /// `path` is for messages only. Throws platform::Failure when the bytes are no registry file.
  RegistryText(const QByteArray& bytes, const QString& path);
  ~RegistryText();

  bool has(const QString& name) const;
  QString text(const QString& name, const QString& otherwise) const;
  /// As the report program reads it, missing ones as true; one that is neither is told and counts as false.
  bool boolean(const QString& name, Field field, QList<FieldText>& notes) const;
  /// A number's text; one that is none is told, and `usual` stands for it.
  QString number(const QString& name, Field field, const QString& usual, QList<FieldText>& notes) const;

 private:
  struct Copy;
  std::unique_ptr<Copy> copy_;
};

/// The registry file with the settings in it, in the report program's own forms, made on a private copy.
/// Throws platform::Failure.
QByteArray registryWith(const QByteArray& bytes, const cPersonalSettings& settings);

}  // namespace hourbook
