// What every fuzzing entry has: the function that the fuzzer, or the replay, calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/// Ends the process when a property of the parser does not hold.
inline void require(bool holds) {
  if (!holds) std::abort();
}
