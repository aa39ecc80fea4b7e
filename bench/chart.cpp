#include "bench/pairs.h"
#include "bench/roads.h"
#include "platform/automation/components.h"
#include "platform/locale/locale.h"
#include "platform/owc/chartview/chartdrawing.h"
#include "platform/owc/chartview/chartview.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"
#include "workspace/modChart.h"
#include "workspace/modReportForm.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <QImage>
#include <QMap>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLegend>
#include <QtCharts/QValueAxis>

#include <algorithm>

namespace bench {

using namespace Qt::StringLiterals;
using Groups = QMap<QString, double>;

namespace {

constexpr QSize shown(900, 180);
constexpr int firstRow = 2, lastRow = 199;
constexpr int groupCounts[] = {7, 12};  // by weekday, by customer

QString weekdayOf(int row) {
  const QDate day = QDate(2024, 5, 13).addDays(row % groupCounts[0]);
  return QLocale::c().dayName(day.dayOfWeek(), QLocale::ShortFormat) + u' ' +
         QLocale(u"en_US"_s).toString(day, QLocale::ShortFormat);
}

QString customerOf(int row) {
  return u"Customer %1"_s.arg(row % groupCounts[1] + 1);
}

/// The report form with a full list, and its chart.
struct Program {
  Program() : componentsInForce(components), locale(u"en_US"_s) {
    components.add<platform::scripting::FileSystemObject>(u"Scripting.FileSystemObject"_s, [] {
      return std::make_shared<platform::scripting::FileSystemObject>();
    });
    components.add<platform::scripting::DictionaryComponent>(u"Scripting.Dictionary"_s, [] {
      return std::make_shared<platform::scripting::DictionaryComponent>();
    });
    hourbook::LoadLanguages(4);
    workspace->gOWCVersion = 11;
    workspace->gReportForm = form;
    hourbook::subConnectEvents(*form);
    for (const QString& tab : {u"By weekday"_s, u"By Customer"_s}) form->tbsViews.Add(tab);
    for (int row = firstRow; row <= lastRow; ++row) {
      write(row, 2, customerOf(row));
      write(row, 5, weekdayOf(row));
      write(row, 6, u"1.25"_s);
    }
    view.resize(shown);
  }
  void write(int row, int column, const QString& text) {
    form->exsThisWeek.Cell(row, column).setValue(platform::basic::Value(text));
  }

  platform::automation::Components components;
  platform::automation::ScopedComponents componentsInForce;
  platform::locale::ScopedLocale locale;
  hourbook::Shared<hourbook::ShellValues>::Scope shell;
  hourbook::Shared<hourbook::WorkspaceValues>::Scope workspace;
  std::shared_ptr<hourbook::ReportForm> form =
      std::make_shared<hourbook::ReportForm>(hourbook::reportFormVariant(11));
  platform::owc::ChartView view{form->excThisWeek};
};

/// Nothing but the library: a column for each group, axes and a legend.
class BareChart {
 public:
  BareChart() {
    view_.resize(shown);
    view_.setRenderHint(QPainter::Antialiasing);
    view_.chart()->setMargins({});
    view_.chart()->setAnimationOptions(QChart::NoAnimation);
    view_.chart()->legend()->setAlignment(Qt::AlignRight);
  }
  QChartView& view() { return view_; }

  void load(const Groups& groups) {
    QChart& chart = *view_.chart();
    chart.removeAllSeries();
    for (QAbstractAxis* axis : chart.axes()) {
      chart.removeAxis(axis);
      delete axis;
    }
    auto* hours = new QBarSet(u"Hours"_s);
    hours->append(groups.values());
    auto* series = new QBarSeries;
    series->append(hours);
    chart.addSeries(series);
    auto* names = new QBarCategoryAxis;
    names->append(groups.keys());
    auto* values = new QValueAxis;
    values->setRange(0, *std::max_element(groups.begin(), groups.end()));
    chart.addAxis(names, Qt::AlignBottom);
    chart.addAxis(values, Qt::AlignLeft);
    series->attachAxis(names);
    series->attachAxis(values);
  }

 private:
  QChartView view_;
};

void paint(QWidget& view) {
  static QImage picture(shown, QImage::Format_RGB32);
  view.render(&picture);
}

Groups groupsOf(int tab) {
  Groups groups;
  for (int row = lastRow; row >= firstRow; --row) groups[tab == 0 ? weekdayOf(row) : customerOf(row)] += 1.25;
  return groups;
}

}  // namespace

void measureChart() {
  constexpr int rounds = 101;
  Program program;
  BareChart bare;
  const Groups weekdays = groupsOf(0);
  platform::scripting::Dictionary<double> dictionary;
  for (auto group = weekdays.begin(); group != weekdays.end(); ++group) dictionary.Add(group.key(), *group);
  compare(
      u"redraw the chart of a week"_s, rounds,
      [&] {
        hourbook::LoadChartWithLiteral(program.form->excThisWeek, dictionary);
        paint(program.view);
      },
      [&] {
        bare.load(weekdays);
        paint(bare.view());
      });
  int tab = 0;
  const QList<QList<QString>> keys = [] {
    QList<QList<QString>> all(2);
    for (int row = firstRow; row <= lastRow; ++row) {
      all[0].append(weekdayOf(row));
      all[1].append(customerOf(row));
    }
    return all;
  }();
  int bareTab = 0;
  compare(
      u"change the tab over 198 rows"_s, rounds,
      [&] {
        program.form->tbsViews.setIndex(tab = 1 - tab);
        if (program.view.drawing().figures().count() != groupCounts[tab]) qFatal("the chart does not follow");
        paint(program.view);
      },
      [&] {
        bareTab = 1 - bareTab;
        Groups groups;
        for (const QString& key : keys[bareTab]) groups[key] += 1.25;
        bare.load(groups);
        paint(bare.view());
      });
}

}  // namespace bench
