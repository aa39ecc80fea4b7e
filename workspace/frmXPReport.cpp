#include "workspace/frmXPReport.h"

namespace hourbook {

std::shared_ptr<ReportForm> frmXPReport(const QString& placesFile) {
  return windowedReportForm(reportFormVariant(10), placesFile);
}

}  // namespace hourbook
