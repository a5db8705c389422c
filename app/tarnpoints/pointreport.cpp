#include "app/tarnpoints/pointreport.h"

#include <QGuiApplication>

#include <limits>

#include "base/path.h"
#include "commoncode/fitreport/fitreport.h"

namespace tarn::points {

using fitreport::FitReport;
using fitreport::ReportRow;

namespace {

FitReport reportOf(const rectify::PointFile& file, const std::string& from, int method,
                   const rectify::Assessment& assessment, fitreport::Language language) {
  FitReport report;
  report.title = QString::fromStdString(nameOf(from));
  report.place = QString::fromStdString(folderOf(from));
  report.method = method;
  report.quality = assessment.quality;
  report.language = language;
  report.date = QDateTime::currentDateTime();
  size_t fitted = 0;
  for (size_t i = 0; i < file.pairs.size(); ++i) {
    const rectify::PointPair& pair = file.pairs[i];
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    ReportRow row{static_cast<int>(i) + 1, pair.source.x, pair.source.y, pair.target.x,
                  pair.target.y,           kNone,         kNone,         !file.enabled[i]};
    if (!row.isCheck) {
      row.residualEast = assessment.residuals[fitted].dx;
      row.residualNorth = assessment.residuals[fitted].dy;
      ++fitted;
    } else if (assessment.solution.fit) {
      const rectify::PlanePoint p = assessment.solution.fit->at(pair.source);
      row.residualEast = p.x - pair.target.x;
      row.residualNorth = p.y - pair.target.y;
    }
    report.rows.push_back(row);
  }
  return report;
}

}  // namespace

Status writePointReport(const rectify::PointFile& file, const std::string& from, int method,
                        const rectify::Assessment& assessment, fitreport::Language language,
                        const std::string& to) {
  // Pages need fonts, not a display.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // What the toolkit says of its surroundings is nothing to the user of a file.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  char name[] = "tarnpoints";
  char* arguments[] = {name, nullptr};
  int count = 1;
  const QGuiApplication application(count, arguments);
  return writeReport(reportOf(file, from, method, assessment, language), to);
}

}  // namespace tarn::points
