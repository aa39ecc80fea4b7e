#include "platform/registry/codes.h"

namespace platform::registry {

std::optional<basic::Value> storable(const basic::Value& value) {
  if (const auto* text = std::get_if<QString>(&value)) return *text;
  if (const auto* flag = std::get_if<bool>(&value)) return qint32(*flag ? 1 : 0);
  if (const auto* number = std::get_if<qint16>(&value)) return qint32(*number);
  if (const auto* number = std::get_if<qint32>(&value)) return *number;
  if (const auto* number = std::get_if<qint64>(&value)) return *number;
  return std::nullopt;
}

}  // namespace platform::registry
