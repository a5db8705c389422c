// What a drawing is written as: its version, and as text or binary.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "adesk.h"
#include "base/result.h"

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

/// A drawing in another version.
struct VersionedDrawing {
  std::string bytes;
  size_t leftOut = 0;  ///< values that the version does not know
};

/// The same drawing, an ASCII one of R13 or later, as one of savedVersions(): its objects in the
/// same number and order, without the values and variables that the version does not know, texts
/// in its encoding (what a code page lacks as "\U+XXXX"). An error for R12, and when the bodies of
/// solids would be lost, which versions before and after R2013 have in different forms.
ACADHOST_EXPORT Result<VersionedDrawing> asVersion(std::string bytes, std::string_view version);

}  // namespace tarn::host
