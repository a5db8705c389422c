// The survey report of a rectification: image, method, parameters, accuracy, points, residuals, as
// a PDF of A4 pages.
#pragma once

#include <QDateTime>
#include <QString>

#include <string>
#include <vector>

#include "base/result.h"
#include "commoncode/fitreport/fittext.h"
#include "inc/rectification.h"

namespace tarn::fitreport {

/// One row of the table of points, in ground units.
struct ReportRow {
  int number = 0;  ///< from 1
  double sourceEast = 0;
  double sourceNorth = 0;
  double targetEast = 0;
  double targetNorth = 0;
  /// T(source) - target; no numbers (NaN) without a fit.
  double residualEast = 0;
  double residualNorth = 0;
  bool isCheck = false;  ///< takes no part in the fit

  double length() const;
};

struct FitReport {
  QString title;   ///< of what was fitted: the image, or the file of the points
  QString place;   ///< its folder
  int method = 0;  ///< as IRectifyDialog counts them
  std::vector<ReportRow> rows;
  kel::RectifyQuality quality;
  QString sourceUnit;  ///< may be empty when nobody knows
  QString targetUnit;
  QDateTime date;
  Language language = Language::kChinese;
};

/// Places of the rows that the fit took, for fitText().
std::vector<size_t> fittedPlaces(const std::vector<ReportRow>& rows);
/// Root mean square of the check points' residuals; 0 when there is none.
double checkRmse(const std::vector<ReportRow>& rows);

/// What the report says as HTML: all but the plot, which follows it.
QString reportHtml(const FitReport& report);

/// The file's bytes. Needs a QGuiApplication, for the fonts. The same report gives the same pages.
std::string reportPdf(const FitReport& report);

/// Writes the file whole or not at all; an older one of the name is then as it was. The sentence
/// names the file and the reason.
Status writeReport(const FitReport& report, const std::string& path);

}  // namespace tarn::fitreport
