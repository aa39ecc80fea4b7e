#pragma once
#include "platform/basic/value.h"

#include <QDateTime>

// Between moments and the wall clock of the user, whose zone is the clock's.
namespace platform::outlook {

basic::Date onUsersClock(const QDateTime& moment);
QDateTime momentOf(const basic::Date& wallClock);

}  // namespace platform::outlook
