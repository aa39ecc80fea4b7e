#pragma once
#include "platform/owc/range.h"

namespace platform::owc {

/// What comes with `EndEdit`, while the cell still holds its old contents.
struct EndEditEvent {
  owc::Range Range;     // the cell
  QString EditData;     // the text that the edit would give
  bool Cancel = false;  // set by the handler: the cell stays as it is and the selection too
};

/// What comes with `SelectionChanging`, while the selection is still the old one.
struct SelectionChangingEvent {
  owc::Range Range;  // where it goes
};

}  // namespace platform::owc
