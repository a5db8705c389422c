// Whether frames of images and wipeouts are seen, in drawings without objects that say so.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::host {

struct DrawingBinding;

/// An object for the file, which the database does not have.
struct AddedObject {
  std::wstring entry;  ///< in the dictionary of named objects
  std::uint64_t handle = 0;
  std::string type;
  std::string bytes;
  std::string classBytes;  ///< the record of its class
};

/// What has to be added so that the frames are seen or not when the drawing is opened again.
/// Nothing where the file has such an object or its usual value is meant, and in one of R12.
std::vector<AddedObject> missingFrameObjects(DrawingBinding& binding);

}  // namespace tarn::host
