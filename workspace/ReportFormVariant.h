#pragma once
#include "platform/owc/spreadsheet.h"

namespace hourbook {

/// What differs between the three report forms; all else is the same for each.
struct ReportFormVariant {
  platform::owc::Generation generation;
  QString formName;
  QString loadLogText;          // empty: nothing is logged when the form loads
  bool coloursBeforeDates;      // order of the first two steps at load
  bool coloursFrame;            // fraPeriod takes the background colour too
  bool hasChartType;            // cmbChartType exists
  bool textFormatAtLoad;        // "B2:D200" is set to "Text"
  bool hasEnableAutoCalculate;  // otherwise the calculation is stopped through `Calculation`
};

/// The variant for 9, 10 or 11; Failure 5 for any other number.
const ReportFormVariant& reportFormVariant(qint16 owcVersion);

}  // namespace hourbook
