// Residuals as arrows: how much they are exaggerated, and the plot of the report.
#pragma once

#include <QRectF>

#include <vector>

#include "commoncode/fitreport/fitreport.h"

class QPainter;

namespace tarn::fitreport {

/// The largest of 1, 2, 5 times a power of ten that is not above the value; 0 for what is not above
/// 0.
double roundBelow(double value);

/// How often residuals are to be enlarged, so that the longest arrow is no longer than points lie
/// apart, and than a fifth of their extent: a round number, 1 when they are all 0.
double exaggerationFor(const std::vector<ReportRow>& rows);

/// The larger side of the box of the targets.
double extentOf(const std::vector<ReportRow>& rows);
double longestResidual(const std::vector<ReportRow>& rows);

/// Targets with their numbers and arrows to where their sources come, north up, with a scale for
/// the arrows and one for the ground. Check points are squares, fitted ones circles.
void paintPlot(QPainter& painter, const QRectF& box, const FitReport& report);

}  // namespace tarn::fitreport
