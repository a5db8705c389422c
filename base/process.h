// This process and its clock.
#pragma once

#include <ctime>

namespace tarn {

/// Its number on this machine.
int processNumber();

/// A moment by the clock on the wall here. Safe from any thread.
std::tm localTime(std::time_t moment);

}  // namespace tarn
