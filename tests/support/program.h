// Runs the programs under test as a user would, with a folder of their own.
#pragma once

#include <string>
#include <vector>

namespace tarn::test {

/// A folder that is gone when the object is.
class Scratch {
 public:
  explicit Scratch(const std::string& prefix);
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  std::string at(const std::string& name) const;
  const std::string& folder() const { return folder_; }

 private:
  std::string folder_;
};

/// What judges also answer that lack something.
constexpr int kNoSuchProgram = 77;

struct Outcome {
  int exitCode = -1;   // 128 + signal when it was killed, kNoSuchProgram when it is not installed
  std::string output;  // standard output and error as they came
};

/// Runs a program found in the build's bin folder, or by an absolute path, without a display, and
/// waits for its end; `input` is its standard input. Killed after `limitSeconds`.
Outcome runProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& input = {}, int limitSeconds = 120);

/// cadhost --headless with a profile folder inside `scratch`.
Outcome runCadhost(const Scratch& scratch, std::vector<std::string> arguments,
                   const std::string& input = {}, int limitSeconds = 120);

}  // namespace tarn::test
