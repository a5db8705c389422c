// What is said of a fit of control points: why it is weak, which points to add, what was probably
// typed wrong. Pure.
#pragma once

#include <QString>

#include <cstddef>
#include <vector>

#include "inc/rectification.h"

namespace tarn::fitreport {

enum class Language { kChinese, kEnglish };

/// Sentences, or nothing when there is nothing to say. `places` are the table's rows (from 0) of
/// the fitted points, in their order; without them the points are numbered as they come.
QString fitText(const kel::RectifyQuality& quality, const std::vector<size_t>& places,
                Language language);

/// With six digits at most.
QString roundedText(double value);

}  // namespace tarn::fitreport
