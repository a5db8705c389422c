// Who wants to know that a module has registered its classes.
#pragma once

#include <functional>

#include "adesk.h"

namespace tarn::host {

/// Called at the end of each acrxBuildClassHierarchy(), in place of an earlier function; an empty
/// one takes it off.
ACADHOST_EXPORT void setClassWatch(std::function<void()> watch);

}  // namespace tarn::host
