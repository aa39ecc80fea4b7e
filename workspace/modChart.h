#pragma once
#include "platform/owc/chartspace.h"
#include "platform/scripting/dictionary.h"

#include <QString>

namespace hourbook {

/// Makes the chart anew: one series with the hours of each group, in the dictionary's order. Every chart that
/// was taken out of the chart space before is gone. In the form of generation 9 the type is the one chosen in
/// `cmbChartType`, and where none is chosen "ColumnClustered" is put there.
void LoadChartWithLiteral(platform::owc::ChartSpace& chartSpace,
                          platform::scripting::Dictionary<double>& dictionary);

/// The constant of a chart type by its name, compared exactly; 0, clustered columns, for any other name. Some
/// of these types the chart refuses.
qint16 fncChartType(const QString& name);

/// Gives the chart the type that is chosen; one that cannot be drawn is answered with a message, and the
/// chart stays as it is.
void cmbChartType_Click();

}  // namespace hourbook
