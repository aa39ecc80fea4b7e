#include "platform/process/environment.h"

namespace platform::process {

QString expandNames(const QString& text,
                    const std::function<std::optional<QString>(const QString& name)>& valueOf) {
  QString expanded;
  qsizetype at = 0;
  while (at < text.size()) {
    const qsizetype first = text.indexOf(u'%', at);
    const qsizetype second = first < 0 ? -1 : text.indexOf(u'%', first + 1);
    if (second < 0) break;
    const QString name = text.mid(first + 1, second - first - 1);
    const std::optional<QString> value = name.isEmpty() ? std::nullopt : valueOf(name);
    if (value) {
      expanded += text.mid(at, first - at) + *value;
      at = second + 1;
    } else {
      expanded += text.mid(at, second - at);
      at = second;
    }
  }
  return expanded + text.mid(at);
}

}  // namespace platform::process
