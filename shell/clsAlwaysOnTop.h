#pragma once
#include "shell/FormWindow.h"

namespace hourbook {

/// Keeps a window above all others, or lets it go again.
class clsAlwaysOnTop {
 public:
  void MakeNormal(FormWindow& window) const { window.SetWindowPos(hwndNoTopMost, noMoveNoSize); }
  void MakeTopMost(FormWindow& window) const { window.SetWindowPos(hwndTopMost, noMoveNoSize); }

 private:
  static constexpr int hwndTopMost = -1;
  static constexpr int hwndNoTopMost = -2;
  static constexpr quint32 noMoveNoSize = 3;
};

}  // namespace hourbook
