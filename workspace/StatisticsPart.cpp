#include "workspace/StatisticsPart.h"

#include "platform/forms/widgets/bind.h"
#include "platform/owc/chartview/chartview.h"
#include "workspace/FlowLayout.h"

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
  numbers_ = {caption, total};
  auto* numbers = new QHBoxLayout;
  if (form_.cmbChartType) numbers->addWidget(chartTypes());
  numbers->addWidget(caption);
  numbers->addWidget(total);
  auto* row = new FlowLayout;
  row->addWidget(tabs);
  row->addStretch();
  row->addLayout(numbers);
  return row;
}

QWidget* StatisticsPart::chartTypes() {
  auto* types = new QComboBox(this);
  types->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  forms::bind(*form_.cmbChartType, types);
  return types;
}

void StatisticsPart::followFont() {
  // about as high as the tabs, so that the numbers stand on their line
  for (QLabel* label : numbers_) label->setMinimumHeight(label->fontMetrics().height() * 3 / 2);
  chart_->setMinimumHeight(chart_->fontMetrics().height() * 6);
}

/// Where the tabs stand over the numbers the splitter has to leave more height.
void StatisticsPart::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  setMinimumHeight(layout()->minimumHeightForWidth(width()));
}

void StatisticsPart::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) followFont();
}

}  // namespace hourbook
