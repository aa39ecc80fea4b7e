#include "workspace/modStatusLine.h"

#include "outlook/OutlookValues.h"
#include "platform/locale/locale.h"
#include "platform/outlook/items.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <algorithm>

namespace hourbook {

namespace {

inline constexpr int mostLists = 3;
inline constexpr int columnOfFirstList = 2;

bool isMarked(const platform::owc::Spreadsheet& sheet, int row, int lists) {
  for (int list = 0; list < lists; ++list)
    if (sheet.text(row, columnOfFirstList + list).isEmpty()) return false;
  return lists > 0;
}

/// By the stamp of the appointment: the cell may also tell why a row was refused.
bool isPosted(int row) {
  bool posted = false;
  tolerate([&] { posted = !outlookValues().gRowItems.Item(row - 1)->BillingInformation().isEmpty(); });
  return posted;
}

bool isZoneUnknown(int row) {
  bool unknown = false;
  tolerate([&] { unknown = outlookValues().gRowItems.Item(row - 1)->ZoneUnknown(); });
  return unknown;
}

QString count(const QString& what, int number) {
  return what + QStringLiteral(": ") + QString::number(number);
}

}  // namespace

ListCounts fncCountList() {
  const platform::owc::Spreadsheet& sheet = reportForm().exsThisWeek;
  const int lists =
      std::min<int>(present(settingsValues().gPersonalSettings).MetaDataLists.Count(), mostLists);
  ListCounts counts;
  for (int row = 2; row <= workspaceValues().gLastRow; ++row) {
    ++counts.rows;
    counts.marked += isMarked(sheet, row, lists);
    counts.posted += isPosted(row);
    counts.zonesUnknown += isZoneUnknown(row);
  }
  return counts;
}

QString fncStatusText() {
  const ListCounts counts = fncCountList();
  QStringList parts{count(phrases().LNGAPPOINTMENTS, counts.rows)};
  if (counts.rows > 0) {
    parts.append(count(phrases().LNGFILTERS.section(u',', 0, 0).trimmed(), counts.marked));
    parts.append(count(phrases().LNGPOSTED, counts.posted));
  }
  if (counts.zonesUnknown > 0)  // no phrase of the table says it
    parts.append(count(QStringLiteral("Time zone unknown (bold)"), counts.zonesUnknown));
  if (const auto& took = workspaceValues().fetchMilliseconds) parts.append(fncSecondsText(*took));
  return parts.join(QStringLiteral(" \u00b7 "));
}

QString fncSecondsText(qint64 milliseconds) {
  constexpr qint64 tenSeconds = 10'000;
  const double seconds = static_cast<double>(milliseconds) / 1000;
  QString text = QString::number(seconds, 'f', milliseconds < tenSeconds ? 1 : 0);
  text.replace(u'.', platform::locale::current().decimalSign());
  return text + QStringLiteral("\u00a0s");
}

}  // namespace hourbook
