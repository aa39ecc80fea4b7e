#include "workspace/frm2003Report.h"

namespace hourbook {

std::shared_ptr<ReportForm> frm2003Report(const QString& placesFile) {
  return windowedReportForm(reportFormVariant(11), placesFile);
}

}  // namespace hourbook
