// Finding resources of modules.
#pragma once

#include "tarnresources.h"

namespace tarn::host {

/// The copy in the host's language, else one in another; null when there is none.
const TarnDialogResource* findDialog(UINT id);
const TarnMenuResource* findMenu(UINT id);

}  // namespace tarn::host
