#pragma once
#include <QString>
#include <QStringList>

namespace accessimport {

struct Outcome {
  int tables = 0;
  int rows = 0;
  QStringList notes;  // what was left out or looks unlike what was expected
};

/// Makes a database of the program's own form at `target` from an Access database: the product's tables in
/// their present state with keys, relations and the captions that the Access file has, the user's own columns
/// and tables as far as they have a place there, and all rows. Values that an older database could not put
/// out of use are in use. The source is only read.
///
/// The target appears whole or not at all; one that is there is refused. Every table's rows are counted and
/// compared, and a source that is written to meanwhile is a failure. The phrases must be loaded: columns
/// without a caption of their own get the program's. Failures are platform::Failure.
Outcome convert(const QString& source, const QString& target);

}  // namespace accessimport
