#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "workspace/modGetData.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

using platform::basic::Date;
using platform::basic::Value;

namespace {

Date dateOfPickers(const ReportForm& form) {
  const bool grid = workspaceValues().gGridMode;
  const Date picked = grid ? form.dtpStartDate->Value().addDays(6) : form.dtpEndDate->Value();
  return picked.year() < 1900 ? platform::basic::Today() : picked.dateOnly();
}

/// A year of two digits, as the language's date function reads it.
int fullYear(int year) {
  constexpr int windowOfTwoDigits = 30;
  if (year < 0 || year > 99) return year;
  return year + (year < windowOfTwoDigits ? 2000 : 1900);
}

Date dateOfDropDowns(const ReportForm& form) {
  if (form.cmbYear.Text().isEmpty() || form.cmbMonth.ListIndex() == -1 || form.cmbDay.Text().isEmpty())
    return {};
  const int year = platform::basic::CInt(Value(form.cmbYear.Text()));
  const int day = platform::basic::CInt(Value(form.cmbDay.Text()));
  // 31 with a shorter month runs over into the next one, as the language's own date function does.
  return Date::of(fullYear(year), form.cmbMonth.ListIndex() + 1, 1).addDays(day - 1);
}

}  // namespace

Date fncGetEndDate() {
  const ReportForm& form = reportForm();
  return workspaceValues().gHasDatePickers ? dateOfPickers(form) : dateOfDropDowns(form);
}

Date fncGetStartDate(const Date& endDate) {
  if (endDate.year() < 1900) return {};
  const ReportForm& form = reportForm();
  if (workspaceValues().gHasDatePickers) return form.dtpStartDate->Value().dateOnly();
  if (workspaceValues().gGridMode) return dateOfDropDowns(form);
  if (!form.txtDays.Text().isEmpty())
    return endDate.addDays(-platform::basic::CDbl(Value(form.txtDays.Text())));
  return endDate.addDays(-7);
}

}  // namespace hourbook
