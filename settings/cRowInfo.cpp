#include "settings/cRowInfo.h"

#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"

namespace hourbook {

cRowInfo::cRowInfo() : Marking(std::make_shared<cMarking>()) {}

void cRowInfo::SavePostedInfo() const {
  // by position: the fetch files the appointments under the row of the sheet, where the first one is row 2
  const auto appointment = outlookValues().gRowItems.Item(int(RowNumber));
  appointment->setBillingInformation(platform::basic::CStr(platform::basic::Now()));
  appointment->Save();
}

}  // namespace hourbook
