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
    QString customers = u"Customer:"_s;
    for (int i = 0; i < count; ++i) customers += u"Customer %1 with a long name & Sons;"_s.arg(i + 1);
    w.setLists({customers, u"Project:Website;"_s, u"Task:Design;"_s});
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

TEST_F(StatisticsInTheWindow, OfferTheChartTypesInTheOldestFormOnly) {
  openIn(u"en_US"_s, 9);
  EXPECT_TRUE(seen("cmbChartType"));
  EXPECT_EQ(control<QComboBox>("cmbChartType")->count(), 17);
  EXPECT_EQ(control<QComboBox>("cmbChartType")->currentText(), u"ColumnClustered"_s);
  EXPECT_EQ(control("cmbChartType")->accessibleName(), u"Statistics"_s);
  for (const qint16 newer : {10, 11}) {
    letGo();
    openIn(u"en_US"_s, newer);
    EXPECT_EQ(control("cmbChartType"), nullptr) << newer;
  }
}

TEST_F(StatisticsInTheWindow, AreDrawnAsTheTypeThatTheUserChooses) {
  openIn(u"en_US"_s);
  fillWeek();
  EXPECT_EQ(view()->drawing().figures().kind.family, platform::owc::ChartFamily::Column);
  press("cmbChartType", Qt::Key_Down);
  EXPECT_EQ(view()->drawing().figures().kind.family, platform::owc::ChartFamily::Doughnut);
  EXPECT_EQ(view()->drawing().figures().count(), 5);
}

TEST_F(StatisticsInTheWindow, AreGroupedByTheTabThatTheUserChooses) {
  openIn(u"en_US"_s);
  fillWeek();
  EXPECT_EQ(view()->drawing().figures().count(), 5);
  press("tbsViews", Qt::Key_Right);
  EXPECT_EQ(view()->drawing().figures().categories, QStringList{u"Acme"_s});
}

TEST_F(StatisticsInTheWindow, AreReachedByTheKeyboardFromTheTabsToTheTypesToTheChart) {
  openIn(u"en_US"_s);
  QStringList order;
  QWidget* const first = control("tbsViews");
  for (QWidget* widget = first; order.size() < 3;) {
    if (QStringList{u"tbsViews"_s, u"cmbChartType"_s, u"excThisWeek"_s, u"cmdOK"_s}.contains(
            widget->objectName()))
      order.append(widget->objectName());
    widget = widget->nextInFocusChain();
    if (widget == first) break;
  }
  EXPECT_EQ(order, (QStringList{u"tbsViews"_s, u"cmbChartType"_s, u"excThisWeek"_s}));
  EXPECT_NE(control("excThisWeek")->focusPolicy() & Qt::TabFocus, 0);
}

TEST_F(StatisticsInTheWindow, BeginWithMondayWhereTheDatesDo) {
  const QList<std::pair<QString, QString>> mondays{{u"en_US"_s, u"Mon 5/13/2024"_s},
                                                   {u"de_DE"_s, u"Mo 13.05.2024"_s},
                                                   {u"sv_SE"_s, u"m\u00e5n 2024-05-13"_s}};
  for (const auto& [locale, monday] : mondays) {
    openIn(locale);
    fillWeek();
    EXPECT_EQ(view()->drawing().figures().categories.value(0), monday);
    EXPECT_EQ(view()->textAt(view()->drawing().areaOf(0).center().toPoint()).section(u':', 0, 0), monday);
    letGo();
  }
}

TEST_F(StatisticsInTheWindow, KeepTheirControlsApartAndInsideWhereTheWindowIsNarrow) {
  for (const QString& locale : {u"en_US"_s, u"fi_FI"_s, u"el_GR"_s}) {
    openIn(locale);
    for (const int width : {920, 420}) {
      window->resize(width, 680);
      QCoreApplication::processEvents();
      QList<QRect> places;
      for (const char* name : {"tbsViews", "cmbChartType", "lblTotalHours", "lblHours", "excThisWeek"}) {
        const QWidget* widget = control(name);
        places.append(QRect(widget->mapTo(window, QPoint()), widget->size()));
        EXPECT_TRUE(window->rect().contains(places.last())) << name << ' ' << width;
        EXPECT_GE(places.last().width(), widget->minimumSizeHint().width()) << name << ' ' << width;
      }
      for (qsizetype a = 0; a < places.size(); ++a)
        for (qsizetype b = a + 1; b < places.size(); ++b) EXPECT_FALSE(places[a].intersects(places[b]));
    }
    letGo();
  }
}

TEST_F(StatisticsInTheWindow, GiveTheChartRoomForABarAndItsName) {
  openIn(u"en_US"_s);
  fillWeek();
  QCoreApplication::processEvents();
  EXPECT_GE(view()->height(), view()->fontMetrics().height() * 8);
  EXPECT_GE(view()->drawing().frame().plot.height(), view()->height() / 2);
}

TEST_F(StatisticsInTheWindow, OfAnEmptyListAreAnEmptyFrameAnd0) {
  openIn(u"en_US"_s);
  EXPECT_EQ(control<QLabel>("lblHours")->text(), u"0"_s);
  EXPECT_EQ(view()->drawing().figures().count(), 0);
  EXPECT_FALSE(view()->grab().isNull());
}

// Pictures to look at: one of each sort sees that nothing fails, all of them are made where a folder is
// named.

template <class T>
QList<T> toBeSeen(const QList<T>& all) {
  return qEnvironmentVariableIsSet("HOURBOOK_CHARTS_OUT") ? all : all.first(1);
}

TEST_F(StatisticsInTheWindow, CanBeLookedAtInEachLanguage) {
  for (const QString& locale :
       toBeSeen<QString>({u"de_DE"_s, u"en_US"_s, u"sv_SE"_s, u"fi_FI"_s, u"el_GR"_s})) {
    openIn(locale);
    fillWeek();
    keepPicture(u"week-"_s + locale);
    window->resize(420, 680);
    keepPicture(u"week-narrow-"_s + locale);
    letGo();
  }
}

TEST_F(StatisticsInTheWindow, CanBeLookedAtInEachPalette) {
  const QPalette before = QApplication::palette();
  for (const QString& kind : {u"light"_s, u"dark"_s, u"contrast"_s}) {
    QApplication::setPalette(paletteOf(kind));
    openIn(u"en_US"_s);
    fillWeek();
    for (const int type : toBeSeen<int>({2, 8, 11, 3})) {
      w.form->cmbChartType->setListIndex(type);
      keepPicture(u"%1-%2"_s.arg(kind).arg(type));
    }
    letGo();
  }
  QApplication::setPalette(before);
}

TEST_F(StatisticsInTheWindow, CanBeLookedAtWithManyCustomers) {
  for (const int count : toBeSeen<int>({12, 3, 60})) {
    openIn(u"de_DE"_s);
    fillCustomers(count);
    for (const int type : toBeSeen<int>({8, 2, 1, 10})) {
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
