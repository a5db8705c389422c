// The named views of a drawing.
#pragma once

#include <string>
#include <vector>

#include "adesk.h"

class AcDbDatabase;

namespace tarn::host {

/// In the order of the table.
ACADHOST_EXPORT std::vector<std::wstring> viewNames(AcDbDatabase& database);

}  // namespace tarn::host
