#include "outlook/OutlookValues.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/locale/locale.h"
#include "platform/outlook/items.h"
#include "settings/cMarking.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "workspace/modGetData.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <cmath>

namespace hourbook {

using platform::basic::CDbl;
using platform::basic::Format;
using platform::basic::Value;
using platform::outlook::AppointmentItem;

namespace {

inline constexpr qint32 minutesOfDay = 1440;

/// Returns the number of the column behind the last position.
int writeMarking(platform::owc::Range range, const cMarking& marking) {
  int column = 2;
  for (const auto& position : marking.colMarkings) {
    const QString text = position->MetaName;
    if (!text.isEmpty()) {
      subLog(QStringLiteral("Setting value of cell %1 in range ").arg(column) + range.Address() +
             QStringLiteral(" to ") + text);
      range.Cells(1, column).setValue(Value(text));
    }
    ++column;
  }
  return column;
}

/// A start that stands in bold is a guess: its time zone is defined nowhere. The status line says so. Row 200
/// is never cleared, so it may still have the mark of another appointment.
void markUnknownZone(platform::owc::Range start, bool unknown) {
  if (unknown || start.format().bold) start.setFontBold(unknown);
}

}  // namespace

bool fncCheckInclude(const AppointmentItem& item) try {
  subLog(QStringLiteral("Attempting to determine if the current item is properly filled out"));
  const cPersonalSettings& settings = present(settingsValues().gPersonalSettings);
  if (settings.FilterEvents && (item.AllDayEvent() || item.Duration() == minutesOfDay)) return false;
  if (settings.FilterPrivate && item.Sensitivity() != platform::outlook::olNormal) return false;
  return !(settings.FilterRecurring && item.IsRecurring());
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("fncCheckInclude"));
}

void subAddRow(const std::shared_ptr<AppointmentItem>& item, const cMarking& marking) try {
  WorkspaceValues& values = workspaceValues();
  const int row = ++values.gLastRow;
  platform::owc::Range range = reportForm().exsThisWeek.Range(QStringLiteral("a%1:f%1").arg(row));
  range.Cells(1, 1).setValue(Value(item->Subject()));
  const int columnBehind = writeMarking(range, marking);
  const Value start(item->Start());
  range.Cells(1, 5).setValue(
      Value(QString(Format(start, QStringLiteral("ddd")) + u' ' +
                    Format(Value(item->Start().dateOnly()), QStringLiteral("Short Date")))));
  markUnknownZone(range.Cells(1, 5), item->ZoneUnknown());
  range.Cells(1, 6).setValue(Value(fncHoursText(fncHoursFromMinutes(item->Duration()))));
  outlookValues().gRowItems.Add(item, QString::number(row));
  range.Cells(1, 8).setValue(Value(qint16(columnBehind)));
  const QString posted = item->BillingInformation();
  range.Cells(1, 7).setValue(
      Value(posted.isEmpty() ? phrases().LNGNOTPOSTED : Format(Value(posted), QStringLiteral("YYYY-MM-DD"))));
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subAddRow"));
}

Value fncHoursFromMinutes(qint32 minutes) {
  const cPersonalSettings& settings = present(settingsValues().gPersonalSettings);
  Value hours(minutes / 60.0);
  if (settings.Convert24) {
    if (minutes == minutesOfDay) hours = settings.Convert24Hours;
    if (minutes > minutesOfDay) hours = fncWholeDaysToHours(minutes);
  }
  // The minutes decide, so a whole day of the settings' hours never loses its lunch.
  if (settings.RemoveLunch && minutes < minutesOfDay && CDbl(hours) > 7)
    hours = CDbl(hours) - CDbl(settings.RemoveLunchHours);
  return hours;
}

Value fncWholeDaysToHours(qint32 minutes) {
  const double days = platform::basic::roundHalfEven(std::abs(minutes / double(minutesOfDay)));
  if (days * minutesOfDay == minutes)
    return Value(days * CDbl(present(settingsValues().gPersonalSettings).Convert24Hours));
  return Value(minutes / 60.0);
}

QString fncHoursText(const Value& hours) {
  const QString shown = Format(Value(CDbl(hours)), QStringLiteral("0.##"));
  QString text = platform::basic::CStr(Value(CDbl(Value(shown))));
  // The signs of some languages are neither comma nor point.
  text.replace(platform::locale::current().decimalSign(), QStringLiteral("."));
  return text.replace(u',', u'.');
}

}  // namespace hourbook
