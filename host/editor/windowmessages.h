// Watchers of window messages.
#pragma once

struct tagMSG;
using MSG = tagMSG;

namespace tarn::host {

/// Hands the message to every watcher in the order of registration.
void tellWatchers(const MSG& message);

}  // namespace tarn::host
