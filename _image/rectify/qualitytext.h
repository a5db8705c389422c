// What the dialog says of a fit: why it is weak, which points to add, in the dialog's language.
// Pure.
#pragma once

#include <QString>

#include <cstddef>
#include <vector>

#include "inc/rectification.h"

namespace tarn::image {

/// Sentences, or nothing when there is nothing to say. `places` are the table's rows of the fitted
/// points, in their order.
QString qualityText(const kel::RectifyQuality& quality, const std::vector<size_t>& places);

/// With six digits at most.
QString roundedText(double value);

}  // namespace tarn::image
