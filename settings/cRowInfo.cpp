#include "settings/cRowInfo.h"

#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"

namespace hourbook {

cRowInfo::cRowInfo() : Marking(std::make_shared<cMarking>()) {}

void cRowInfo::SavePostedInfo() const {
  const auto appointment = outlookValues().gRowItems.Item(QString::number(RowNumber));
  appointment->setBillingInformation(platform::basic::CStr(platform::basic::Now()));
  appointment->Save();
}

}  // namespace hourbook
