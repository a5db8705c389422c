// Which images a conversion is about, and where each goes.
#pragma once

#include <string>
#include <vector>

#include "components/convert/options.h"

namespace tarn::convert {

/// Files as they are named; of folders the images in them, by their endings (.tif, .tiff, .img,
/// .jpg, .jpeg; folders inside are not entered); names with * ? [ ] that are no files stand for
/// what they match. What matches nothing stays, and is reported as missing later.
std::vector<std::string> expandInputs(const std::vector<std::string>& names);

struct Item {
  std::string input;
  std::string output;
  /// Why it is not converted; empty else.
  std::string problem;
};

/// Each input with its output. An input named twice, and one whose output is another's already
/// (unless new names are allowed), gets a problem. Depends on the inputs and options alone, so that
/// all who share out a list see the same.
std::vector<Item> planItems(const std::vector<std::string>& inputs, const Options& options);

/// The part, 1 to `parts`, that an input belongs to; the same on every machine.
unsigned partOf(const std::string& input, unsigned parts);

/// The name with a number before its ending: "a.tif", 2 gives "a_2.tif".
std::string numberedName(const std::string& path, int number);

}  // namespace tarn::convert
