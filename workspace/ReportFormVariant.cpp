#include "workspace/ReportFormVariant.h"

#include "platform/basic/failure.h"

#include <array>

namespace hourbook {

namespace {
using platform::owc::Generation;

const std::array<ReportFormVariant, 3>& variants() {
  static const std::array<ReportFormVariant, 3> all{{
      {.generation = Generation::Office2000,
       .formName = QStringLiteral("frm2KReport"),
       .loadLogText = {},
       .coloursBeforeDates = false,
       .coloursFrame = false,
       .hasChartType = true,
       .textFormatAtLoad = true,
       .hasEnableAutoCalculate = true},
      {.generation = Generation::OfficeXP,
       .formName = QStringLiteral("frmXPReport"),
       .loadLogText = QStringLiteral("Loading the frmXPReport"),
       .coloursBeforeDates = false,
       .coloursFrame = true,
       .hasChartType = false,
       .textFormatAtLoad = false,
       .hasEnableAutoCalculate = false},
      {.generation = Generation::Office2003,
       .formName = QStringLiteral("frm2003Report"),
       .loadLogText = QStringLiteral("Loading the frm2003Report"),
       .coloursBeforeDates = true,
       .coloursFrame = true,
       .hasChartType = false,
       .textFormatAtLoad = false,
       .hasEnableAutoCalculate = false},
  }};
  return all;
}
}  // namespace

const ReportFormVariant& reportFormVariant(qint16 owcVersion) {
  for (const ReportFormVariant& variant : variants())
    if (static_cast<int>(variant.generation) == owcVersion) return variant;
  throw platform::Failure(
      platform::failure::invalidProcedureCall,
      QStringLiteral("There is no report form for generation %1 of the spreadsheet component")
          .arg(owcVersion));
}

}  // namespace hourbook
