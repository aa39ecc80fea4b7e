#pragma once

namespace platform::owc {

/// What the ProgIDs "OWC.Chart", "OWC10.Chartspace" and "OWC11.ChartSpace" make. So far it tells only which
/// generation is installed; drawing comes with the chart view.
struct ChartSpace {
  int generation = 11;
};

}  // namespace platform::owc
