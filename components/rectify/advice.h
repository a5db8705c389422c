// What is wrong with the points or could be better, in English words.
#pragma once

#include <string>

#include "inc/rectification.h"

namespace tarn::rectify {

/// One or two sentences; empty when there is nothing to say.
std::string adviceOf(const kel::RectifyQuality& quality);

}  // namespace tarn::rectify
