// What a drawing is written as: its version, and as text or binary.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "adesk.h"

namespace tarn::host {

struct SavedForm {
  std::string version;  ///< "AC1015"
  bool binary = false;
  bool operator==(const SavedForm& other) const {
    return version == other.version && binary == other.binary;
  }
};

/// The versions that any drawing can be written as, R2000 to R2018, oldest first.
ACADHOST_EXPORT const std::vector<std::string>& savedVersions();
/// "R2000" for "AC1015"; the code itself for one without a name.
ACADHOST_EXPORT std::string nameOfVersion(std::string_view code);

}  // namespace tarn::host
