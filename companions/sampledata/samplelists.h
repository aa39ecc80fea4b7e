#pragma once
#include "platform/basic/value.h"

#include <QList>
#include <QString>

namespace sampledata {

/// One value of a list, as the database holds it.
struct ListValue {
  QString name, category, superCategory;
  platform::basic::Currency rate;
  bool enabled = true;
};

struct MetaList {
  QString caption, categoryCaption, superCategoryCaption;
  QList<ListValue> values;
};

/// Customers, projects and tasks. No name holds ":" or a list separator, since the stored forms of settings
/// and markings are built with these.
const QList<MetaList>& metaLists();

/// The lists as the personal settings keep them: a line a list, "Name:value;value;" and CR LF.
QString metaLines();

/// The person whose calendar and reports the profile holds.
QString personName();

}  // namespace sampledata
