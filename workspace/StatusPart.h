#pragma once
#include "workspace/ReportForm.h"

#include <QWidget>

class QLabel;
class QProgressBar;

namespace hourbook {

/// The status line: what the list holds, or how far its fetch has come. A fetch keeps the thread to itself,
/// so what changes meanwhile is painted at once and by itself; no event is dispatched.
class StatusPart : public QWidget {
  Q_OBJECT
 public:
  StatusPart(ReportForm& form, QWidget* parent);

 private:
  void showFetching(double part);
  void showList();
  void showListSoon();
  ReportForm& form_;
  QLabel* text_;
  QProgressBar* progress_;
  bool changed_ = false;  // the list, since it was counted
};

}  // namespace hourbook
