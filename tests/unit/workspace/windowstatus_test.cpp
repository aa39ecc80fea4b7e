#include "reportwindow.h"
#include "workspace/modGetData.h"
#include "workspace/modStatusLine.h"

#include <QAbstractItemView>
#include <QProgressBar>
#include <QScreen>

namespace tests {
namespace {

class StatusLine : public Window {
 protected:
  QString status() const { return control<QLabel>("status")->text(); }
  void fillThree() {
    w.add(QStringLiteral("Marked"), at(15, 9), 60, complete);
    w.add(QStringLiteral("Half marked"), at(15, 10), 60, QStringLiteral(";Acme"));
    platform::calendar::Item posted = w.appointment(QStringLiteral("Posted"), at(15, 11), 60, complete);
    posted.billingInformation = QStringLiteral("2024-05-14 10:00");
    w.calendar->add(w.folder, posted);
  }
};

TEST_F(StatusLine, CountsRowsMarkedAndPostedAndTellsHowLongTheFetchTook) {
  fillThree();
  open();
  EXPECT_EQ(status(), QStringLiteral("Appointments: 2 · Marked appointments: 2 · Posted: 1 · 0.0\u00a0s"));
  w.form->cmbFilterCalendar.setListIndex(2);
  EXPECT_EQ(status(), QStringLiteral("Appointments: 3 · Marked appointments: 2 · Posted: 1 · 0.0\u00a0s"));
}

TEST_F(StatusLine, TellsOfTimeZonesThatNobodyDefines) {
  platform::calendar::Item item = w.appointment(QStringLiteral("Elsewhere"), at(15, 9), 60, complete);
  item.zoneUnknown = true;
  w.calendar->add(w.folder, item);
  w.add(QStringLiteral("Here"), at(15, 10), 60, complete);
  open();
  EXPECT_EQ(status(),
            QStringLiteral("Appointments: 2 · Marked appointments: 2 · Posted: 0 · Time zone unknown "
                           "(bold): 1 · 0.0\u00a0s"));
}

TEST_F(StatusLine, OfAnEmptyListTellsThatItIsEmpty) {
  open();
  EXPECT_EQ(status(), QStringLiteral("Appointments: 0 · 0.0\u00a0s"));
}

TEST_F(StatusLine, CountsTheListsInUseAlone) {
  w.setLists({QStringLiteral("Customer:Acme;")});
  w.add(QStringLiteral("Marked"), at(15, 9), 60, QStringLiteral(";Acme"));
  open();
  EXPECT_EQ(fncCountList().marked, 1);
}

TEST_F(StatusLine, FollowsAnEditOfTheList) {
  fillThree();
  open();
  w.form->cmbFilterCalendar.setListIndex(2);
  w.form->exsThisWeek.Range(QStringLiteral("C3")).setValue(platform::basic::Value(QStringLiteral("Website")));
  w.form->exsThisWeek.Range(QStringLiteral("D3")).setValue(platform::basic::Value(QStringLiteral("Design")));
  QCoreApplication::processEvents();
  EXPECT_TRUE(status().contains(QStringLiteral("Marked appointments: 3"))) << status().toStdString();
}

TEST_F(StatusLine, CountsOnceForManyChanges) {
  fillThree();
  open();
  int texts = 0;
  struct Counter : QObject {
    int* texts;
    bool eventFilter(QObject*, QEvent* event) override {
      *texts += event->type() == QEvent::Paint;
      return false;
    }
  } counter;
  counter.texts = &texts;
  QCoreApplication::processEvents();
  control("status")->installEventFilter(&counter);
  for (int row = 2; row < 200; ++row)
    w.form->exsThisWeek.Cell(row, 3).setValue(platform::basic::Value(QStringLiteral("Website")));
  QCoreApplication::processEvents();
  EXPECT_LE(texts, 2);
}

TEST(SecondsText, HasTheDecimalSignOfTheSystem) {
  WorkspaceWorld w;
  EXPECT_EQ(fncSecondsText(1449), QStringLiteral("1.4\u00a0s"));
  EXPECT_EQ(fncSecondsText(12'600), QStringLiteral("13\u00a0s"));
  w.world.setLocale(QStringLiteral("de_DE"));
  EXPECT_EQ(fncSecondsText(1449), QStringLiteral("1,4\u00a0s"));
}

/// Notes what is painted, and what the line says then.
class Paints : public QObject {
 public:
  explicit Paints(QWidget* watched) { watched->installEventFilter(this); }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count;
    return false;
  }
  int count = 0;
};

/// A calendar of a fortnight that takes a second for each item it is asked for.
class SlowFetch : public StatusLine {
 protected:
  SlowFetch() {
    for (int day = 1; day <= 14; ++day) w.add(QStringLiteral("Day %1").arg(day), at(day, 9), 60, complete);
    open();
    w.setPeriod(QDate(2024, 5, 1), QDate(2024, 5, 14));
    QCoreApplication::processEvents();
    // Each log entry stands for some work, and the fetch writes one for each item.
    QObject::connect(w.form.get(), &ReportForm::listFetching, w.form.get(), [this](double part) {
      parts.append(part);
      w.world.clock->advanceMilliseconds(250);
    });
  }
  QList<double> parts;
};

TEST_F(SlowFetch, ShowsASignThatIsPaintedWhileTheThreadIsBusy) {
  Paints text(control("status"));
  Paints bar(control("progress"));
  QStringList said;
  QList<bool> busy;
  QObject::connect(w.form.get(), &ReportForm::listFetching, w.form.get(), [&] {
    said.append(status());
    busy.append(control("progress")->isVisible());
    const QString folder = qEnvironmentVariable("HOURBOOK_PICTURES");
    if (!folder.isEmpty() && said.size() == 9)  // what the screen shows, not what the window would paint
      QGuiApplication::primaryScreen()->grabWindow(0).save(folder + QStringLiteral("/busy.png"));
  });
  subGetData();
  EXPECT_EQ(said.size(), 15);
  EXPECT_TRUE(said.count(QStringLiteral("Fetching appointments ...")) == said.size());
  EXPECT_FALSE(busy.contains(false));
  EXPECT_GE(bar.count, 14);
  EXPECT_GE(text.count, 14);
  EXPECT_FALSE(control("progress")->isVisible());
  EXPECT_TRUE(status().endsWith(QStringLiteral("3.8\u00a0s"))) << status().toStdString();
}

TEST_F(SlowFetch, PaintsItsSignOfLifeInTheListBeforeItReadsTheFirstItem) {
  Paints list(control<QAbstractItemView>("exsThisWeek")->viewport());
  QList<int> painted;
  QObject::connect(w.form.get(), &ReportForm::listFetching, w.form.get(), [&](double part) {
    painted.append(list.count);
    if (part > 0) {
      EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Day 1"));
    }
  });
  subGetData();
  ASSERT_GE(painted.size(), 2);
  EXPECT_EQ(painted[0], 0);
  EXPECT_EQ(painted[1], 1);
}

TEST_F(SlowFetch, TellsHowFarItHasComeInThePeriod) {
  subGetData();
  ASSERT_EQ(parts.size(), 15);
  EXPECT_EQ(parts.first(), 0);
  EXPECT_TRUE(std::is_sorted(parts.begin(), parts.end()));
  EXPECT_NEAR(parts.last(), 13.0 / 14, 0.001);
}

TEST_F(SlowFetch, LetsNoClickIn) {
  int clicks = 0;
  QObject::connect(&w.form->cmdPrint, &platform::forms::CommandButton::Click, w.form.get(),
                   [&] { ++clicks; });
  w.form->cmdPrint.setEnabled(true);
  int during = -1;
  QObject::connect(w.form.get(), &ReportForm::listFetching, w.form.get(), [&] {
    QCoreApplication::postEvent(control("cmdPrint"),
                                new QKeyEvent(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier));
    QCoreApplication::postEvent(control("cmdPrint"),
                                new QKeyEvent(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier));
    during = clicks;
  });
  subGetData();
  EXPECT_EQ(during, 0);
  EXPECT_EQ(clicks, 0);
}

TEST_F(SlowFetch, KeepsTheButtonsWhereTheyAre) {
  const QPoint before = control("cmdOK")->pos();
  QList<QPoint> places;
  QObject::connect(w.form.get(), &ReportForm::listFetching, w.form.get(),
                   [&] { places.append(control("cmdOK")->pos()); });
  subGetData();
  EXPECT_EQ(places.count(before), places.size());
}

TEST_F(StatusLine, PaintsNothingExtraForAFetchThatIsQuick) {
  for (int day = 1; day <= 14; ++day) w.add(QStringLiteral("Work"), at(day, 9), 60, complete);
  open();
  w.setPeriod(QDate(2024, 5, 1), QDate(2024, 5, 14));
  int told = 0;
  QObject::connect(w.form.get(), &ReportForm::listFetching, w.form.get(), [&] { ++told; });
  subGetData();
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace tests
