// Layers whose names have changed since the file was read, and what names them there.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "host/filing/drawingbinding.h"

namespace tarn::host {

/// Entities and extended data name their layer in the file; also those that no class here
/// understands, vertices and attributes follow a layer that is renamed.
class RenamedLayers {
 public:
  explicit RenamedLayers(const DrawingBinding& binding);

  bool isEmpty() const { return names_.empty(); }
  bool isNamedIn(std::uint32_t object) const;
  /// The bytes of an object of the file with the new names.
  std::string renamed(std::uint32_t object) const;
  /// The same for objects that were written anew, in which a name that another layer has got stays.
  std::string renamed(std::string bytes) const;

 private:
  const std::string* newNameAt(const TagDocument& document, std::uint32_t tag,
                               std::string_view type) const;
  std::string changed(const TagDocument& document, TagRange tags, bool isWrittenAnew) const;

  const DrawingBinding& binding_;
  std::map<std::string, std::string, std::less<>> names_;  ///< as they stand in the file
};

}  // namespace tarn::host
