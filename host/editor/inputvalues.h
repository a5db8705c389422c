// Typed texts as values: numbers, points, keywords. Pure.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adesk.h"

namespace tarn::host {

struct Point3 {
  double x = 0;
  double y = 0;
  double z = 0;
};

/// "x,y" or "x,y,z"; with '@' in front relative to `last`; "@length<degrees" as well.
ACADHOST_EXPORT std::optional<Point3> parsePoint(const std::string& text, const Point3& last);

/// A finite number.
ACADHOST_EXPORT std::optional<double> parseNumber(const std::string& text);

/// The keyword that `typed` means: itself, or an abbreviation that holds at least its capital
/// letters. A leading '_' is left out. Case does not matter.
ACADHOST_EXPORT std::optional<std::string> matchKeyword(const std::string& typed,
                                                        const std::vector<std::string>& keywords);

/// Keywords of a blank-separated list.
ACADHOST_EXPORT std::vector<std::string> keywordList(const std::string& list);

}  // namespace tarn::host
