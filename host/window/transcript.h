// What the command line shows, written to a file as it comes.
#pragma once

#include <fstream>
#include <string>

#include "base/result.h"

namespace tarn::host {

class Transcript {
 public:
  /// Appends to the file from now on; the sentence says why it cannot.
  Status open(const std::string& path);

  /// A line of the history. Nothing happens before open().
  void line(const std::string& text);
  /// The program waits for an answer to this prompt: its last line is written as "> prompt".
  void waits(const std::string& prompt);

 private:
  std::ofstream file_;
};

}  // namespace tarn::host
