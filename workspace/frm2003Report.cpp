#include "workspace/frm2003Report.h"

#include "workspace/modReportForm.h"

namespace hourbook {

namespace {

struct FormWithWindow {
  explicit FormWithWindow(const ReportFormVariant& variant) : form(variant), window(form) {
    form.setScreen(&window);
    subConnectEvents(form);
  }
  ~FormWithWindow() { form.setScreen(nullptr); }
  ReportForm form;
  ReportWindow window;
};

}  // namespace

std::shared_ptr<ReportForm> frm2003Report() {
  auto both = std::make_shared<FormWithWindow>(reportFormVariant(11));
  return {both, &both->form};
}

}  // namespace hourbook
