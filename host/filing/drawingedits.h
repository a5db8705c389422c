// The pieces in which a drawing that is saved differs from the file that was read.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/filing/drawingpieces.h"
#include "host/filing/tagdocument.h"

namespace tarn::host {

class DrawingEdits {
 public:
  /// Makes the bytes that were put off, by their number.
  using Maker = std::function<std::string(std::uint32_t)>;

  /// `count` objects from `first` on become these bytes.
  void replace(std::uint32_t first, std::uint32_t count, std::string bytes);
  void insertBefore(std::uint32_t object, std::string bytes) {
    replace(object, 0, std::move(bytes));
  }
  /// The same with bytes that are made only when they go out: of many they need not stand in
  /// memory.
  void replaceLater(std::uint32_t first, std::uint32_t count, std::uint32_t number);

  /// All bytes of the document with all edits. What stands in no edit goes out byte for byte.
  Status give(const TagDocument& document, const PieceTaker& take, const Maker& make = {}) const;

 private:
  struct Edit {
    std::uint32_t first;
    std::uint32_t count;
    std::uint32_t number;  ///< of its bytes
    bool isLater;
  };
  std::vector<Edit> edits_;
  std::vector<std::string> bytes_;
};

}  // namespace tarn::host
