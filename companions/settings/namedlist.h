#pragma once
#include <QString>
#include <QStringList>

namespace hourbook {

/// A meta list by its name, with its values in the order of display.
struct NamedList {
  QString name;
  QStringList values;
  bool operator==(const NamedList&) const = default;
};

}  // namespace hourbook
