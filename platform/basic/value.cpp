#include "platform/basic/value.h"

#include <array>

namespace platform::basic {

QString TypeName(const Value& v) {
  static const std::array<const char*, std::variant_size_v<Value>> names{
      "Empty",  "Null",   "Boolean",  "Integer", "Long",  "LongLong",
      "Single", "Double", "Currency", "Date",    "String"};
  return QString::fromLatin1(names[v.index()]);
}

}  // namespace platform::basic
