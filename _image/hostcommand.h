// Commands that the module sends to the host.
#pragma once

#include <string>

namespace tarn::image {

/// Sends a command to the host's frame, where it runs once the running command has ended, and gives
/// the command line the keyboard. The blank that ends the command is added here. Nothing is sent
/// when no document is open.
void sendCommandToHost(const std::wstring& command);

}  // namespace tarn::image
