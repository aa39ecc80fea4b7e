#include "platform/basic/failure.h"

namespace platform {

Failure::Failure(qint32 number, QString description, QString source)
    : number_(number),
      description_(std::move(description)),
      source_(std::move(source)),
      what_(QByteArray::number(number_) + ": " + description_.toUtf8()) {}

}  // namespace platform
