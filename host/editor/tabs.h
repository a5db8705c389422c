// The tabs of a drawing by name.
#pragma once

#include <string>
#include <vector>

#include "adesk.h"

namespace tarn::host {

class HostDocument;

struct TabNames {
  std::vector<std::string> all;  ///< the model first, then the sheets in their order
  size_t shown = 0;              ///< which of them is shown
};
ACADHOST_EXPORT TabNames tabNames(HostDocument& document);

}  // namespace tarn::host
