#pragma once
#include <QString>

namespace hourbook {

/// The "OLAP Cubes" folder in the user's documents; made when it is not there.
QString fncGetLocalCubePath();
/// The same path, without looking at the disk.
QString fncLocalCubePathOnly();

}  // namespace hourbook
