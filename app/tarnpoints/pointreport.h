// The survey report of a file of control points.
#pragma once

#include <string>

#include "base/result.h"
#include "commoncode/fitreport/fittext.h"
#include "components/rectify/pointfile.h"
#include "components/rectify/quality.h"

namespace tarn::points {

/// Writes the PDF. `from` is the file that the points are of; those that take no part in the fit
/// are its check points. Starts the toolkit that has the fonts, so it can be called once.
Status writePointReport(const rectify::PointFile& file, const std::string& from, int method,
                        const rectify::Assessment& assessment, fitreport::Language language,
                        const std::string& to);

}  // namespace tarn::points
