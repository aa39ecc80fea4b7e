#include "shell/modXPlooks.h"

#include "platform/basic/convert.h"
#include "platform/forms/twips.h"
#include "shell/modErrorReport.h"
#include "shell/Tolerate.h"

namespace hourbook {

namespace {

int middlePixel(int start, int extent) {
  return static_cast<int>(
      platform::basic::roundHalfEven((start + extent / 2.0) / platform::forms::twipsPerPixel));
}

}  // namespace

void subApplyBackColorToControl(const DeviceContext& deviceContext, platform::forms::Control& control) {
  subLog(QStringLiteral("Setting the background color of the control"));
  tolerate([&] {
    const qint32 color = deviceContext.GetPixel(middlePixel(control.Left, control.Width),
                                                middlePixel(control.Top, control.Height));
    constexpr qint32 outside = -1;
    if (color != outside) control.setBackColor(color);
  });
}

}  // namespace hourbook
