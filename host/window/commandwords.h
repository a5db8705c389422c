// What commands do, in a few words, for the list of those that are offered while one types.
#pragma once

#include <QString>
#include <string>

namespace tarn::host {

/// In the window's language; empty for a command that is not known here.
QString meaningOf(const std::string& command);

}  // namespace tarn::host
