// Work on files that may crash, hang or eat memory, done in child processes.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarn::hostile {

struct Fault {
  int index = 0;
  std::string how;
};

/// Calls `work(i)` for every i in [0, count) in child processes, `batch` calls in each. A call that
/// ends its process (a signal, a sanitizer's report, no end in time) or takes more than 256 MiB at
/// once becomes a fault; the next process goes on behind it. The caller must have no threads.
std::vector<Fault> runApart(int count, int batch, const std::function<void(int)>& work);

/// What a file looked like through the door that the program uses.
struct Seen {
  bool shown = false;
  /// Why it was refused or could not be read.
  std::string message;
  /// Mean of all colours of the whole picture in a few cells, black left out.
  double mean = 0;
};

/// Opens the file, reads it whole in a few cells and both of its ends 1:1, and with `build` makes
/// its pyramid when it is not too large for a test.
Seen look(const std::string& path, bool build);

}  // namespace tarn::hostile
