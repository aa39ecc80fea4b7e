#pragma once
#include "companions/settings/common/billingdownload.h"
#include "companions/settings/page.h"

#include <functional>
#include <memory>

namespace hourbook {

/// The page of the settings that all users share. `place` tells where they stand, and is asked whenever the
/// page comes to the front, since another page may choose the place. A removed value leads to
/// frmResolveRemovedItem, which `SettingsValues::showResolveRemovedItem` must be able to show. `download` may
/// be null.
std::unique_ptr<SettingsPage> makeCommonSettingsPage(std::function<ReportPlace()> place,
                                                     std::shared_ptr<BillingDownload> download = nullptr);

}  // namespace hourbook
