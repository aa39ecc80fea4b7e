#pragma once
#include "companions/sampledata/samplecalendar.h"

namespace sampledata {

/// Makes `Hourbook3.mdb` in a folder, with the lists, the cost rule and the rows that count as reported
/// already. An existing database of that name is replaced. Throws platform::Failure.
void makeDatabase(const QString& folder, const QList<PostedRow>& posted);

}  // namespace sampledata
