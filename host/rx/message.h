// Where the host's texts go before and after there is a command line.
#pragma once

#include <functional>
#include <string_view>

#include "adesk.h"

namespace tarn::host {

using MessageSink = std::function<void(std::wstring_view)>;

/// Sends texts of the lower host to `sink`; an empty one brings back the standard error stream.
ACADHOST_EXPORT void setMessageSink(MessageSink sink);

/// Prints as it stands; a line begins with "\n" where one is wanted.
ACADHOST_EXPORT void printMessage(std::wstring_view text);

}  // namespace tarn::host
