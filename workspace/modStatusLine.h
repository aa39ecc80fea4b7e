#pragma once
#include <QString>

namespace hourbook {

/// What of the list the status line tells.
struct ListCounts {
  int rows = 0;
  int marked = 0;  // with a value of each meta list in use
  int posted = 0;
  int zonesUnknown = 0;  // whose start stands in bold
};

/// Counts the list as it stands.
ListCounts fncCountList();
/// The counts and, after a fetch, how long it took, as one line.
QString fncStatusText();
/// "0.4 s", with the system's decimal sign; from ten seconds on without a decimal.
QString fncSecondsText(qint64 milliseconds);

}  // namespace hourbook
