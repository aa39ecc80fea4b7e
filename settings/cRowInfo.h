#pragma once
#include "platform/basic/value.h"
#include "settings/cMarking.h"

namespace hourbook {

/// One row of the list that is to be reported.
class cRowInfo {
 public:
  cRowInfo();

  std::shared_ptr<cMarking> Marking;  // never null
  platform::basic::Value Hours;       // as the cell holds it, text or number
  QString Subject;
  platform::basic::Date StartTime;
  qint16 RowNumber = 0;  // from 1 within the reporting range; position in `gRowItems`
  platform::basic::Currency curRate;
  platform::basic::Date Posted;  // of a row reported already
  QString NotesField;

  /// Stamps the appointment as posted now and saves it. Throws what that throws.
  void SavePostedInfo() const;
};

}  // namespace hourbook
