#pragma once
#include "platform/forms/controls.h"
#include "shell/FormWindow.h"

namespace hourbook {

/// Gives a control the colour of the form's picture behind its middle. Failures are passed over.
void subApplyBackColorToControl(const DeviceContext& deviceContext, platform::forms::Control& control);

}  // namespace hourbook
