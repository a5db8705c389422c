// What can be made of a fit: the survey report, arrows in the drawing, and the repair of a slip.
#include <cmath>
#include <limits>
#include <utility>

#include "_image/rectify/boxes.h"
#include "_image/rectify/dialogtext.h"
#include "_image/rectify/rectifydialog.h"
#include "_image/rectify/residualarrows.h"
#include "afxwin.h"
#include "base/path.h"
#include "base/text.h"
#include "commoncode/fitreport/residualplot.h"
#include "ui_rectifydialog.h"

using tarn::fitreport::FitReport;
using tarn::fitreport::ReportRow;
using tarn::image::dialogText;

namespace {

/// Of the drawing, as the form's distances are.
constexpr const char* kUnit = "m";

}  // namespace

/// Fits the table's points and gives the rows with what came of them; nothing after a message. What
/// the drawing shows stays.
std::optional<FitReport> rectifyDialog::fittedReport() {
  if (!m_session) return std::nullopt;
  if (!computeResiduals(true)) {
    tarn::image::warningBox(this, "错误", "没有足够的控制点。");
    return std::nullopt;
  }
  showQuality();
  IRectifyDialog& component = m_session->component();
  FitReport report;
  report.method = m_form->rectifyMethod->currentIndex();
  report.quality = component.quality();
  const kel::PointList residuals = component.getResiduals();
  size_t fitted = 0;
  for (const tarn::image::TableRow& row : tableRows()) {
    const tarn::image::ControlPoint& p = row.point;
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    ReportRow out;
    out.number = static_cast<int>(report.rows.size()) + 1;
    out.isCheck = row.isCheck;
    out.targetEast = p.targetEast;
    out.targetNorth = p.targetNorth;
    out.residualEast = out.residualNorth = out.sourceEast = out.sourceNorth = kNone;
    component.sourceOfFit(p.sourceEast, p.sourceNorth, out.sourceEast, out.sourceNorth);
    double x = 0, y = 0;
    if (!row.isCheck && fitted < residuals.size()) {
      out.residualEast = residuals[fitted][0];
      out.residualNorth = residuals[fitted][1];
      ++fitted;
    } else if (row.isCheck && component.transformPoint(p.sourceEast, p.sourceNorth, x, y)) {
      out.residualEast = x - p.targetEast;
      out.residualNorth = y - p.targetNorth;
    }
    report.rows.push_back(out);
  }
  if (!m_session->isPreviewed()) component.setRectifyMethod(-1);
  return report;
}

void rectifyDialog::writeReport() {
  CFileDialog dialog(FALSE, L"pdf", nullptr, OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                     L"PDF(*.pdf)|*.pdf||");
  const std::wstring title = dialogText("精度报告", "Report").toStdWString();
  dialog.m_ofn.lpstrTitle = title.c_str();
  if (!m_session || dialog.DoModal() != IDOK) return;
  std::optional<FitReport> report = fittedReport();
  if (!report) return;
  const std::string image = tarn::toUtf8(m_session->path());
  report->title = QString::fromStdString(tarn::nameOf(image));
  report->place = QString::fromStdString(tarn::folderOf(image));
  report->sourceUnit = report->targetUnit = kUnit;
  report->date = QDateTime::currentDateTime();
  report->language = tarn::image::textLanguage();
  const std::string path = tarn::toUtf8(std::wstring(dialog.GetPathName().GetString()));
  const tarn::Status written = tarn::fitreport::writeReport(*report, path);
  note(written ? dialogText("精度报告已写入 %1。", "The report is in %1.")
                     .arg(QString::fromStdString(path))
               : QString::fromStdString(written.message()));
}

/// What was typed, or what suits the residuals; nothing after a note.
std::optional<double> rectifyDialog::arrowFactor(const std::vector<ReportRow>& rows) {
  const QString typed = m_form->arrowFactor->text().trimmed();
  if (typed.isEmpty()) return tarn::fitreport::exaggerationFor(rows);
  const std::optional<double> factor = tarn::image::coordinateOf(typed);
  if (factor && *factor > 0) return factor;
  note(dialogText("放大倍数须为大于零的数字。", "The factor must be a number above zero."));
  return std::nullopt;
}

void rectifyDialog::drawResidualArrows() {
  const std::optional<FitReport> report = fittedReport();
  if (!report) return;
  if (report->quality.status == 1) {
    statusAllows();
    return;
  }
  const std::optional<double> factor = arrowFactor(report->rows);
  if (!factor) return;
  const bool isDrawn =
      tarn::image::drawArrows(m_session->document(), m_session->path(),
                              tarn::image::sketchArrows(report->rows, *factor, kUnit));
  note(isDrawn ? dialogText("误差箭头已绘入图层 TARN_RESIDUALS，放大 %1 倍。",
                            "Arrows are on layer TARN_RESIDUALS, residuals × %1.")
                     .arg(tarn::fitreport::roundedText(*factor))
               : dialogText("误差箭头无法绘入图形。", "The drawing does not take the arrows."));
  arrowsChanged();
}

void rectifyDialog::eraseResidualArrows() {
  if (!m_session) return;
  tarn::image::eraseArrows(m_session->document(), m_session->path());
  arrowsChanged();
}

void rectifyDialog::arrowsChanged() {
  m_form->eraseArrows->setEnabled(m_session &&
                                  tarn::image::hasArrows(m_session->document(), m_session->path()));
  m_markers.repaint();
}

/// One step of the table's undo; then the points are computed anew.
void rectifyDialog::repairPoints() {
  tarn::image::TableRows rows = tableRows();
  const kel::RectifyRepair repair = std::exchange(m_repair, {});
  const std::vector<size_t> places = tarn::image::fittedRows(rows);
  if (repair.changes.empty()) return;
  rowsWillChange();
  for (const kel::RectifyChange& change : repair.changes) {
    if (static_cast<size_t>(change.row) >= places.size()) continue;
    tarn::image::ControlPoint& p = rows[places[static_cast<size_t>(change.row)]].point;
    if (change.isTarget) {
      change.applyTo(p.targetEast, p.targetNorth);
    } else {
      change.applyTo(p.sourceEast, p.sourceNorth);
    }
  }
  showRows(rows);
  rowsChanged();
  on_calError_clicked();
}

/// The texts that are our own, in the language of the host.
void rectifyDialog::nameOwnWidgets() {
  const struct {
    QPushButton* button;
    const char* chinese;
    const char* english;
    const char* chineseHelp;
    const char* englishHelp;
  } buttons[] = {
      {m_form->checkPoint, "检核点", "Check point", "所选点只作检核，不参与计算",
       "The chosen point only checks the fit"},
      {m_form->undoTable, "撤销", "Undo", "撤销对表格的修改", "Undoes a change of the table"},
      {m_form->redoTable, "重做", "Redo", "重做对表格的修改", "Makes the change again"},
      {m_form->repairPoints, "一键修正", "Repair", "按建议修正坐标，可撤销",
       "Changes the coordinates as advised; can be undone"},
      {m_form->recoverPoints, "恢复上次的点", "Last points", "取回上次未用完的控制点",
       "Brings back the points that were left last time"},
      {m_form->drawArrows, "误差箭头", "Arrows", "把各点误差按倍数放大绘入图形",
       "Draws the residuals as arrows, enlarged, into the drawing"},
      {m_form->eraseArrows, "清除箭头", "Clear", "删除该影像的误差箭头",
       "Erases the arrows of this image"},
      {m_form->writeReport, "精度报告...", "Report...", "写出 PDF 精度报告",
       "Writes a survey report as PDF"},
  };
  for (const auto& own : buttons) {
    own.button->setText(dialogText(own.chinese, own.english));
    own.button->setToolTip(dialogText(own.chineseHelp, own.englishHelp));
  }
  m_form->groupBox_quality->setTitle(dialogText("精度与建议", "Accuracy and advice"));
  QLineEdit& factor = *m_form->arrowFactor;
  factor.setPlaceholderText(dialogText("× 自动", "× auto"));
  factor.setToolTip(
      dialogText("误差放大倍数；空着则自动选取", "Times enlarged; empty for a suitable one"));
  factor.setAccessibleName(dialogText("误差放大倍数", "Enlargement of residuals"));
}
