// What fills a hatch, flat and in its own system.
#pragma once

#include <utility>
#include <vector>

#include "dbhatch.h"

namespace tarn::host {

using Rim = std::vector<AcGePoint3d>;

/// The rim of a loop as points; the last is not the first again.
Rim rimOf(const AcDbHatchLoop& loop);

/// The lines of one pattern inside the rims, where an odd number of them is around; a point of the
/// pattern has both ends at the same place. False, and nothing added, when there would be too many
/// of them.
bool addPatternLines(const std::vector<Rim>& rims, const AcDbHatchLines& pattern,
                     std::vector<std::pair<AcGePoint3d, AcGePoint3d>>& lines);

}  // namespace tarn::host
