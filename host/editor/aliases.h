// Short names of commands.
#pragma once

#include <string>
#include <vector>

#include "adesk.h"

namespace tarn::host {

struct Alias {
  const char* alias;
  const char* command;
};

/// In alphabetical order.
ACADHOST_EXPORT const std::vector<Alias>& aliases();
/// Empty when there is none. Case does not matter.
std::string commandOfAlias(const std::string& alias);

}  // namespace tarn::host
