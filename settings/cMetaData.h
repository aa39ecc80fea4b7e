#pragma once
#include "platform/basic/value.h"

namespace hourbook {

/// One value of a meta list.
struct cMetaData {
  qint32 ID = 0;  // key of the row in its table, or a running number
  QString Category;
  QString SuperCategory;
  platform::basic::Currency HourlyRate;
  bool Enabled = false;
  QString MetaName;  // the value's text
};

}  // namespace hourbook
