#include "platform/basic/convert.h"
#include "shell/Tolerate.h"
#include "workspace/modGetData.h"
#include "workspace/modReportForm.h"
#include "workspaceworld.h"

namespace tests {
namespace {

Date day(int year, int month, int dayOfMonth) {
  return Date::of(year, month, dayOfMonth);
}

class PeriodOfPickers : public testing::Test {
 protected:
  PeriodOfPickers() {
    w.withDatePickers();
    w.makeForm();
    subSetupDateControls();
  }
  WorkspaceWorld w;
};

TEST_F(PeriodOfPickers, IsTodayAtFirst) {
  EXPECT_EQ(fncGetEndDate(), day(2024, 5, 15));
  EXPECT_EQ(fncGetStartDate(fncGetEndDate()), day(2024, 5, 15));
}

TEST_F(PeriodOfPickers, RunsFromOnePickerToTheOther) {
  w.setPeriod(QDate(2024, 4, 29), QDate(2024, 5, 3));
  EXPECT_EQ(fncGetEndDate(), day(2024, 5, 3));
  EXPECT_EQ(fncGetStartDate(fncGetEndDate()), day(2024, 4, 29));
}

TEST_F(PeriodOfPickers, DropsTimesOfDay) {
  w.form->dtpStartDate->setValue(Date::of(QDate(2024, 5, 13), QTime(16, 30)));
  w.form->dtpEndDate->setValue(Date::of(QDate(2024, 5, 14), QTime(23, 59)));
  EXPECT_EQ(fncGetEndDate(), day(2024, 5, 14));
  EXPECT_EQ(fncGetStartDate(fncGetEndDate()), day(2024, 5, 13));
}

TEST_F(PeriodOfPickers, EndsTodayWhenTheEndIsNotSet) {
  w.form->dtpEndDate->setValue(Date());
  EXPECT_EQ(fncGetEndDate(), day(2024, 5, 15));
}

TEST_F(PeriodOfPickers, EndsSixDaysBehindTheStartInGridMode) {
  w.setPeriod(QDate(2024, 5, 6), QDate(2024, 5, 31));
  w.workspace->gGridMode = true;
  EXPECT_EQ(fncGetEndDate(), day(2024, 5, 12));
}

TEST_F(PeriodOfPickers, EndsTodayInGridModeWhenItsWeekLiesBefore1900) {
  w.form->dtpStartDate->setValue(Date::of(1899, 12, 1));
  w.workspace->gGridMode = true;
  EXPECT_EQ(fncGetEndDate(), day(2024, 5, 15));
}

class PeriodOfDropDowns : public testing::Test {
 protected:
  PeriodOfDropDowns() {
    w.makeForm();
    subSetupDateControls();
  }
  WorkspaceWorld w;
};

TEST_F(PeriodOfDropDowns, IsTheSevenDaysBeforeTodayAtFirst) {
  EXPECT_EQ(fncGetEndDate(), day(2024, 5, 15));
  EXPECT_EQ(fncGetStartDate(fncGetEndDate()), day(2024, 5, 8));
}

TEST_F(PeriodOfDropDowns, StartsTheTypedDaysBeforeTheEnd) {
  w.form->txtDays.setText(QStringLiteral("90"));
  EXPECT_EQ(fncGetStartDate(day(2024, 5, 15)), day(2024, 2, 15));
}

TEST_F(PeriodOfDropDowns, IsAWeekLongWithoutATypedNumber) {
  w.form->txtDays.setText(QString());
  EXPECT_EQ(fncGetStartDate(day(2024, 5, 15)), day(2024, 5, 8));
}

TEST_F(PeriodOfDropDowns, IsOneDateForStartAndEndInGridMode) {
  w.workspace->gGridMode = true;
  EXPECT_EQ(fncGetStartDate(fncGetEndDate()), day(2024, 5, 15));
}

TEST_F(PeriodOfDropDowns, IsNoDateWhileAControlIsEmpty) {
  for (platform::forms::ComboBox* empty : {&w.form->cmbYear, &w.form->cmbMonth, &w.form->cmbDay}) {
    subSetDate(day(2024, 5, 15), Date());
    empty->Clear();
    EXPECT_EQ(fncGetEndDate(), Date()) << empty->Name().toStdString();
    subSetupDateControls();
  }
}

TEST_F(PeriodOfDropDowns, HasNoStartWithoutAnEnd) {
  EXPECT_EQ(fncGetStartDate(Date()), Date());
}

TEST_F(PeriodOfDropDowns, TakesYearsOfTwoDigitsAsTheLanguageDoes) {
  const auto yearOf = [&](const char* text) {
    w.form->cmbYear.setText(QString::fromLatin1(text));
    return fncGetEndDate().year();
  };
  EXPECT_EQ(yearOf("0"), 2000);
  EXPECT_EQ(yearOf("24"), 2024);
  EXPECT_EQ(yearOf("29"), 2029);
  EXPECT_EQ(yearOf("30"), 1930);
  EXPECT_EQ(yearOf("99"), 1999);
  EXPECT_EQ(yearOf("100"), 100);
  EXPECT_EQ(yearOf("1999"), 1999);
}

TEST_F(PeriodOfDropDowns, FailsForADateBeyondTheLanguagesYears) {
  const auto failure = [](const auto& read) {
    const auto failed = tolerate(read);
    return failed ? failed->number() : 0;
  };
  w.form->txtDays.setText(QStringLiteral("99999999"));
  EXPECT_EQ(failure([] { fncGetStartDate(day(2024, 5, 15)); }), 6);
  w.form->cmbYear.setText(QStringLiteral("20000"));
  EXPECT_EQ(failure([] { fncGetEndDate(); }), 6);
  w.form->cmbYear.setText(QStringLiteral("99999"));
  EXPECT_EQ(failure([] { fncGetEndDate(); }), 6);
}

TEST_F(PeriodOfDropDowns, RunsOverIntoTheNextMonthForADayThatTheMonthLacks) {
  w.form->cmbMonth.setListIndex(1);
  w.form->cmbDay.setListIndex(29);
  EXPECT_EQ(fncGetEndDate(), day(2024, 3, 1));
}

}  // namespace
}  // namespace tests
