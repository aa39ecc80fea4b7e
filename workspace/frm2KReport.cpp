#include "workspace/frm2KReport.h"

namespace hourbook {

std::shared_ptr<ReportForm> frm2KReport(const QString& placesFile) {
  return windowedReportForm(reportFormVariant(9), placesFile);
}

}  // namespace hourbook
