#pragma once
#include "workspace/ReportForm.h"

#include <QWidget>

namespace platform::owc {
class SheetView;
}

namespace hourbook {

/// The list with the drop-downs that lie over the row being marked. It is as large as the list.
class ListPart : public QWidget {
  Q_OBJECT
 public:
  ListPart(ReportForm& form, QWidget* parent);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void followFont();
  ReportForm& form_;
  platform::owc::SheetView* list_;
};

}  // namespace hourbook
