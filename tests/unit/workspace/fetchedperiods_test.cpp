#include "platform/basic/text.h"
#include "platform/locale/table.h"
#include "workspace/modGetData.h"
#include "workspaceworld.h"

namespace tests {
namespace {

using testing::ElementsAre;

class FetchingWithoutPickers : public testing::Test {
 protected:
  FetchingWithoutPickers() {
    w.loadForm();
    w.form->cmbFilterCalendar.setText(QStringLiteral("All appointments"));
  }
  WorkspaceWorld w;
};

TEST_F(FetchingWithoutPickers, TakesTheDaysBeforeTheDate) {
  w.add(QStringLiteral("Eight days ago"), at(7, 9));
  w.add(QStringLiteral("Seven days ago"), at(8, 9));
  w.add(QStringLiteral("Today"), at(15, 9));
  subGetData();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Seven days ago"), QStringLiteral("Today")));
}

TEST_F(FetchingWithoutPickers, FindsNothingWhileTheControlsHoldNoDate) {
  w.add(QStringLiteral("Today"), at(15, 9));
  w.form->cmbDay.Clear();
  subGetData();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("No appointments found!"));
}

TEST_F(FetchingWithoutPickers, LeavesTheListAsItStandsWhenThePeriodCannotBeComputed) {
  w.form->cmbYear.setText(QStringLiteral("last year"));
  subGetData();
  EXPECT_EQ(w.form->MousePointer(), 11);
  EXPECT_TRUE(w.workspace->gFetching);
  EXPECT_FALSE(w.form->exsThisWeek.EnableEvents);
  EXPECT_FALSE(w.form->exsThisWeek.ActiveSheet.Protection.Enabled);
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Fetching appointments ..."));
  w.form->cmbYear.setText(QStringLiteral("2024"));
  subGetData();
  EXPECT_FALSE(w.workspace->gFetching);
  EXPECT_EQ(w.form->MousePointer(), 0);
}

TEST_F(FetchingWithoutPickers, LeavesTheListAsItStandsForAPeriodBeyondTheLanguagesYears) {
  const auto leaves = [&] {
    subGetData();
    const bool left = w.workspace->gFetching && w.form->MousePointer() == 11 &&
                      w.cell(QStringLiteral("A2")) == QStringLiteral("Fetching appointments ...");
    w.form->cmbYear.setText(QStringLiteral("2024"));
    w.form->txtDays.setText(QStringLiteral("7"));
    subGetData();
    return left && !w.workspace->gFetching;
  };
  w.form->txtDays.setText(QStringLiteral("99999999"));
  EXPECT_TRUE(leaves());
  w.form->txtDays.setText(QStringLiteral("1E+300"));
  EXPECT_TRUE(leaves());
  w.form->cmbYear.setText(QStringLiteral("20000"));
  EXPECT_TRUE(leaves());
  w.form->cmbYear.setText(QStringLiteral("-1"));
  EXPECT_TRUE(leaves());
  w.workspace->gGridMode = true;
  w.form->cmbYear.setText(QStringLiteral("20000"));
  EXPECT_TRUE(leaves());
}

TEST_F(FetchingWithoutPickers, FetchesTheLastDaysOfTheLanguagesYearsAndFindsNothing) {
  w.form->cmbYear.setText(QStringLiteral("9999"));
  w.form->cmbMonth.setListIndex(11);
  w.form->cmbDay.setListIndex(30);
  subGetData();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("No appointments found!"));
  EXPECT_FALSE(w.workspace->gFetching);
}

/// Every row of the table of languages, and some that have none.
QList<QString> locales() {
  QList<QString> names{QStringLiteral("hu_HU"), QStringLiteral("et_EE"), QStringLiteral("ja_JP")};
  for (const char* name : platform::locale::rowNames()) names.append(QString::fromLatin1(name));
  return names;
}

TEST(FetchingInEveryLanguage, FindsTheFirstAndTheLastDayAndCountsAllWeekdays) {
  for (const QString& name : locales()) {
    WorkspaceWorld w;
    w.world.setLocale(name);
    w.withDatePickers();
    w.loadForm();
    for (int day = 13; day <= 19; ++day) w.add(QString::number(day), at(day, 9));
    w.setPeriod(QDate(2024, 5, 13), QDate(2024, 5, 19));
    w.form->cmbFilterCalendar.setListIndex(2);
    ASSERT_EQ(w.workspace->gLastRow, 8) << name.toStdString();
    EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("13")) << name.toStdString();
    EXPECT_EQ(w.cell(QStringLiteral("A8")), QStringLiteral("19")) << name.toStdString();
    for (int row = 2; row <= 8; ++row) {
      const platform::basic::Value date(Date::of(2024, 5, 11 + row));
      EXPECT_EQ(w.cell(QStringLiteral("E%1").arg(row)),
                QString(platform::basic::Format(date, QStringLiteral("ddd")) + u' ' +
                        platform::basic::Format(date, QStringLiteral("Short Date"))));
    }
    EXPECT_EQ(w.form->lblHours.Caption(), QStringLiteral("7")) << name.toStdString();
    const QList<double> hours = w.form->excThisWeek.Charts()[0].values(0);
    ASSERT_EQ(hours.size(), 7) << name.toStdString();
    EXPECT_THAT(hours, testing::Each(1.0)) << name.toStdString();
  }
}

TEST(FetchingInEveryLanguage, FindsTheAppointmentsOfTheYear2030) {
  for (const QString& name : locales()) {
    WorkspaceWorld w;
    w.world.setLocale(name);
    w.withDatePickers();
    w.loadForm();
    w.add(QStringLiteral("Work"), QDateTime(QDate(2030, 1, 7), QTime(9, 0), QTimeZone("Europe/Stockholm")));
    w.setPeriod(QDate(2029, 12, 31), QDate(2030, 1, 7));
    w.form->cmbFilterCalendar.setListIndex(2);
    EXPECT_EQ(w.workspace->gLastRow, 2) << name.toStdString();
  }
}

}  // namespace
}  // namespace tests
