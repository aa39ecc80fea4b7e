#pragma once
#include "workspace/ReportForm.h"

#include <QList>
#include <QWidget>

class QLabel;

namespace platform::owc {
class ChartView;
}

namespace hourbook {

/// The tabs of the statistics, the choice of a chart type where the form has one, the total of the hours, and
/// the chart.
class StatisticsPart : public QWidget {
  Q_OBJECT
 public:
  StatisticsPart(ReportForm& form, QWidget* parent);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QLayout* head();
  QWidget* chartTypes();
  void followFont();
  ReportForm& form_;
  platform::owc::ChartView* chart_;
  QList<QLabel*> numbers_;
};

}  // namespace hourbook
