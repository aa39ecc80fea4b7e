#include "workspace/StatisticsPart.h"

#include "platform/forms/widgets/bind.h"
#include "platform/owc/chartview/chartview.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QTabBar>

namespace hourbook {

namespace forms = platform::forms;

StatisticsPart::StatisticsPart(ReportForm& form, QWidget* parent)
    : QWidget(parent), form_(form), chart_(new platform::owc::ChartView(form.excThisWeek, this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins({});
  column->addLayout(head());
  column->addWidget(chart_, 1);
  forms::bindExtender(form_.excThisWeek.Extender, chart_);
  followFont();
}

QLayout* StatisticsPart::head() {
  auto* tabs = new QTabBar(this);
  tabs->setExpanding(false);
  tabs->setUsesScrollButtons(true);
  tabs->setDrawBase(false);
  forms::bind(form_.tbsViews, tabs);
  auto* caption = new QLabel(this);
  auto* total = new QLabel(this);
  forms::bind(form_.lblTotalHours, caption);
  forms::bind(form_.lblHours, total);
  QFont strong;  // all but the weight comes from the window
  strong.setBold(true);
  total->setFont(strong);
  auto* row = new QHBoxLayout;
  row->addWidget(tabs, 1);
  if (form_.cmbChartType) row->addWidget(chartTypes());
  row->addWidget(caption);
  row->addWidget(total);
  return row;
}

QWidget* StatisticsPart::chartTypes() {
  auto* types = new QComboBox(this);
  types->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  forms::bind(*form_.cmbChartType, types);
  return types;
}

void StatisticsPart::followFont() {
  chart_->setMinimumHeight(chart_->fontMetrics().height() * 4);
}

void StatisticsPart::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) followFont();
}

}  // namespace hourbook
