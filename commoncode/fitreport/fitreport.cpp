#include "commoncode/fitreport/fitreport.h"

#include <cmath>

#include "base/file.h"
#include "commoncode/fitreport/parameters.h"

namespace tarn::fitreport {
namespace {

QString fixed(double value, int decimals) {
  return std::isfinite(value) ? QString::number(value, 'f', decimals) : QString("–");
}

class Html {
 public:
  explicit Html(const FitReport& report) : report_(report) {}

  QString words(const char* chinese, const char* english) const {
    return QString::fromUtf8(report_.language == Language::kChinese ? chinese : english);
  }
  void head(const char* chinese, const char* english) {
    text_ += "<h3>" + words(chinese, english) + "</h3>";
  }
  void paragraph(const QString& text) { text_ += "<p>" + text.toHtmlEscaped() + "</p>"; }
  void beginTable() {
    text_ += "<table border=\"0.5\" cellspacing=\"0\" cellpadding=\"3\" width=\"100%\">";
  }
  void endTable() { text_ += "</table>"; }
  void raw(const QString& html) { text_ += html; }
  /// Texts of a row; numbers stand to the right.
  void row(const QStringList& cells, const char* tag, int firstNumber) {
    text_ += "<tr>";
    for (int i = 0; i < cells.size(); ++i) {
      const QString align = i >= firstNumber ? " align=\"right\"" : " align=\"left\"";
      text_ += QString("<") + tag + align + ">" + cells[i].toHtmlEscaped() + "</" + tag + ">";
    }
    text_ += "</tr>";
  }
  QString take() const { return text_; }

 private:
  const FitReport& report_;
  QString text_;
};

QString withUnit(const QString& name, const QString& unit) {
  return unit.isEmpty() ? name : name + " [" + unit + "]";
}

void addFacts(const FitReport& report, Html& html) {
  const kel::RectifyQuality& q = report.quality;
  const bool isSolved = q.status != 1;
  int checks = 0;
  for (const ReportRow& row : report.rows) checks += row.isCheck ? 1 : 0;
  const QString status = q.status == 0   ? html.words("良好", "good")
                         : q.status == 2 ? html.words("薄弱", "weak")
                                         : html.words("无法解算", "not solvable");
  const auto fact = [&](const char* chinese, const char* english, const QString& value) {
    html.row({html.words(chinese, english), value}, "td", 2);
  };
  html.beginTable();
  fact("影像", "Image", report.title);
  if (!report.place.isEmpty()) fact("位置", "Folder", report.place);
  fact("日期", "Date", report.date.toString("yyyy-MM-dd HH:mm"));
  fact("纠正方法", "Method", methodName(report.method, report.language));
  fact("控制点 / 检核点", "Control / check points",
       QString("%1 / %2").arg(static_cast<int>(report.rows.size()) - checks).arg(checks));
  fact("多余观测数", "Redundancy", QString::number(q.redundancy));
  const auto accuracy = [&](double value) {
    return isSolved ? (roundedText(value) + " " + report.targetUnit).trimmed() : QString("–");
  };
  fact("中误差 RMSE", "RMSE", accuracy(q.rmse));
  fact("单位权中误差 s0", "Standard error of unit weight s0",
       isSolved && q.redundancy == 0 ? html.words("无多余观测，未检核", "nothing is checked")
                                     : accuracy(q.s0));
  if (checks > 0) fact("检核点中误差", "RMSE of check points", accuracy(checkRmse(report.rows)));
  fact("评价", "Judgement", status);
  html.endTable();
  const QString said = fitText(q, fittedPlaces(report.rows), report.language);
  if (!said.isEmpty()) html.paragraph(said);
}

void addParameters(const FitReport& report, Html& html) {
  const std::vector<Parameter> parameters = parametersOf(report);
  if (parameters.empty()) return;
  html.head("变换参数", "Parameters");
  html.paragraph(formulaOf(report));
  html.beginTable();
  // Two beside each other.
  const size_t rows = (parameters.size() + 1) / 2;
  for (size_t i = 0; i < rows; ++i) {
    QStringList cells;
    for (const size_t at : {i, i + rows}) {
      if (at < parameters.size()) {
        const Parameter& p = parameters[at];
        cells << p.name << p.value + (p.unit.isEmpty() ? QString() : " " + p.unit);
      } else {
        cells << QString() << QString();
      }
    }
    html.row(cells, "td", 4);
  }
  html.endTable();
}

void addPoints(const FitReport& report, Html& html) {
  html.head("控制点与误差", "Points and residuals");
  html.beginTable();
  html.raw("<thead>");
  html.row({html.words("序号", "No."), withUnit(html.words("源东", "Source E"), report.sourceUnit),
            withUnit(html.words("源北", "Source N"), report.sourceUnit),
            withUnit(html.words("目标东", "Target E"), report.targetUnit),
            withUnit(html.words("目标北", "Target N"), report.targetUnit), "dE", "dN",
            html.words("误差", "Residual")},
           "th", 1);
  html.raw("</thead><tbody>");
  for (const ReportRow& row : report.rows) {
    const QString mark = row.isCheck ? html.words(" 检", " check") : QString();
    html.row({QString::number(row.number) + mark, fixed(row.sourceEast, 3),
              fixed(row.sourceNorth, 3), fixed(row.targetEast, 3), fixed(row.targetNorth, 3),
              fixed(row.residualEast, 4), fixed(row.residualNorth, 4), fixed(row.length(), 4)},
             "td", 1);
  }
  html.raw("</tbody>");
  html.endTable();
}

}  // namespace

double ReportRow::length() const {
  return std::hypot(residualEast, residualNorth);
}

std::vector<size_t> fittedPlaces(const std::vector<ReportRow>& rows) {
  std::vector<size_t> places;
  for (size_t i = 0; i < rows.size(); ++i)
    if (!rows[i].isCheck) places.push_back(i);
  return places;
}

double checkRmse(const std::vector<ReportRow>& rows) {
  double sum = 0, count = 0;
  for (const ReportRow& row : rows) {
    if (!row.isCheck || !std::isfinite(row.length())) continue;
    sum += row.length() * row.length();
    ++count;
  }
  return count > 0 ? std::sqrt(sum / count) : 0;
}

QString reportHtml(const FitReport& report) {
  Html html(report);
  html.raw("<h2>" + html.words("影像纠正精度报告", "Rectification report") + "</h2>");
  addFacts(report, html);
  addParameters(report, html);
  addPoints(report, html);
  return html.take();
}

Status writeReport(const FitReport& report, const std::string& path) {
  return writeFileAtomically(path, reportPdf(report));
}

}  // namespace tarn::fitreport
