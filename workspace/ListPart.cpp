#include "workspace/ListPart.h"

#include "platform/forms/widgets/bind.h"
#include "platform/owc/view/sheetview.h"

#include <QComboBox>
#include <QEvent>
#include <QVBoxLayout>

namespace hourbook {

namespace forms = platform::forms;

ListPart::ListPart(ReportForm& form, QWidget* parent)
    : QWidget(parent), form_(form), list_(new platform::owc::SheetView(form.exsThisWeek, this)) {
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins({});
  whole->addWidget(list_);
  forms::bindExtender(form_.exsThisWeek.Extender, list_);
  // They lie over the row that is being marked, so no layout owns them.
  for (forms::ComboBox* dropDown : {&form_.cmbMeta1, &form_.cmbMeta2, &form_.cmbMeta3})
    forms::bind(*dropDown, new QComboBox(this));
  followFont();
}

void ListPart::followFont() {
  list_->setMinimumHeight(list_->fontMetrics().height() * 6);
}

void ListPart::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) followFont();
}

}  // namespace hourbook
