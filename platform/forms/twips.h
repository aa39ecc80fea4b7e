#pragma once

namespace platform::forms {

// Places and sizes of controls are told in twips; widgets count pixels of 1/96 inch, which the tool kit
// scales to the screen. Halves go away from zero.
inline constexpr int twipsPerPixel = 15;

constexpr int twipsToPixels(int twips) {
  return (twips + (twips < 0 ? -twipsPerPixel : twipsPerPixel) / 2) / twipsPerPixel;
}
constexpr int pixelsToTwips(int pixels) {
  return pixels * twipsPerPixel;
}

}  // namespace platform::forms
