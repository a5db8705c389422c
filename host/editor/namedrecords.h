// Texts kept in the named dictionaries of the current drawing.
#pragma once

#include <string>
#include <vector>

#include "adesk.h"

namespace tarn::host {

class HostApp;

/// The texts of an extended record of a named dictionary, in order; empty when there is none.
ACADHOST_EXPORT std::vector<std::string> namedStrings(HostApp& app, const std::string& dictionary,
                                                      const std::string& record);

}  // namespace tarn::host
