#include "platform/owc/chartview/chartdrawing.h"
#include "platform/owc/chartview/chartview.h"
#include "reportwindow.h"
#include "shell/modLanguage.h"
#include "workspace/modGetData.h"

#include <QComboBox>
#include <QDir>
#include <QTabBar>

namespace tests {
namespace {

using namespace Qt::StringLiterals;

QPalette paletteOf(const QString& kind) {
  if (kind == u"dark") {
    QPalette dark(QColor(50, 50, 50), QColor(45, 45, 45));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, QColor(230, 230, 230));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    dark.setColor(QPalette::ButtonText, QColor(230, 230, 230));
    return dark;
  }
  if (kind == u"contrast") {
    QPalette strong(Qt::black, Qt::black);
    strong.setColor(QPalette::Base, Qt::black);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
      strong.setColor(role, Qt::white);
    strong.setColor(QPalette::Highlight, Qt::yellow);
    return strong;
  }
  return QPalette(QColor(239, 239, 239));
}

/// The statistics as they stand in the window. HOURBOOK_CHARTS_OUT names a folder to put pictures into.
class StatisticsInTheWindow : public Window {
 protected:
  void openIn(const QString& locale, qint16 generationToUse = 9) {
    generation = generationToUse;
    w.world.setLocale(locale);
    LoadLanguages(fncGetlocalLanguage());
    open();
    w.setPeriod(QDate(2024, 5, 13), QDate(2024, 5, 19));
    w.form->cmbFilterCalendar.setListIndex(2);
  }
  void fillWeek() {
    for (int day = 13; day <= 17; ++day)
      w.add(u"Work"_s, at(day, 8), 300 + 60 * (day % 4), u";Acme;Website;Design"_s);
    subGetData();
  }
  void fillCustomers(int count) {
    for (int i = 0; i < count; ++i)
      w.add(u"Work"_s, at(13 + i % 7, 6 + i % 12), 30 + 30 * (i % 7),
            u";Customer %1 with a long name & Sons;Website;Design"_s.arg(i + 1));
    subGetData();
    w.form->tbsViews.setIndex(1);
  }
  void keepPicture(const QString& name) {
    QCoreApplication::processEvents();
    const QString out = qEnvironmentVariable("HOURBOOK_CHARTS_OUT");
    if (!out.isEmpty()) window->grab().save(QDir(out).filePath(name + u".png"_s));
  }
  platform::owc::ChartView* view() { return control<platform::owc::ChartView>("excThisWeek"); }
};

TEST_F(StatisticsInTheWindow, Look) {
  const QPalette before = QApplication::palette();
  for (const QString& locale : {u"en_US"_s, u"de_DE"_s, u"sv_SE"_s, u"fi_FI"_s, u"el_GR"_s}) {
    openIn(locale);
    fillWeek();
    keepPicture(u"week-"_s + locale);
    window->resize(420, 680);
    keepPicture(u"week-narrow-"_s + locale);
    letGo();
  }
  for (const QString& kind : {u"light"_s, u"dark"_s, u"contrast"_s}) {
    QApplication::setPalette(paletteOf(kind));
    openIn(u"en_US"_s);
    fillWeek();
    for (const int type : {2, 8, 11, 3}) {
      w.form->cmbChartType->setListIndex(type);
      keepPicture(u"%1-%2"_s.arg(kind).arg(type));
    }
    letGo();
  }
  QApplication::setPalette(before);
}

TEST_F(StatisticsInTheWindow, LookWithCustomers) {
  for (const int count : {3, 12, 60}) {
    openIn(u"de_DE"_s);
    fillCustomers(count);
    for (const int type : {2, 1, 8, 10}) {
      w.form->cmbChartType->setListIndex(type);
      window->resize(920, 680);
      keepPicture(u"customers-%1-%2"_s.arg(count).arg(type));
      window->resize(420, 680);
      keepPicture(u"customers-narrow-%1-%2"_s.arg(count).arg(type));
    }
    letGo();
  }
}

}  // namespace
}  // namespace tests
