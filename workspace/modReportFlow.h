#pragma once

namespace hourbook {

/// Reports the marked rows of the period to the target of the settings, after asking.
void cmdOK_Click();

}  // namespace hourbook
