// Import of control points from a file, export of the rectified image.
#include <QFile>
#include <QTextStream>

#include "_image/binding/progressscope.h"
#include "_image/rectify/boxes.h"
#include "_image/rectify/dialogtext.h"
#include "_image/rectify/rectifydialog.h"
#include "_image/settarnprogress.h"
#include "afxwin.h"
#include "base/text.h"
#include "ui_rectifydialog.h"

using tarn::image::dialogText;
using tarn::image::ImportedPoints;

namespace {

constexpr DWORD kFileOptions = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;

QString importNote(const ImportedPoints& imported) {
  if (imported.points.empty())
    return dialogText("文件中没有有效的控制点，表格未改变。",
                      "The file has no control points; the table is as it was.");
  QString text = dialogText("已导入 %1 个控制点", "%1 points imported").arg(imported.points.size());
  if (imported.skippedLines > 0)
    text += dialogText("，跳过 %1 行", ", %1 lines skipped").arg(imported.skippedLines);
  if (imported.hasMore) text += dialogText("，其后的行未读取", ", the lines behind them not read");
  return text + dialogText("。", ".");
}

/// "tif" or "img" of a path by what stands behind its last dot; empty for everything else.
std::string formatOf(const std::wstring& path) {
  const size_t dot = path.find_last_of(L'.');
  if (dot == std::wstring::npos) return {};
  const std::string extension = tarn::toLower(tarn::toUtf8(path.substr(dot + 1)));
  if (extension == "tif" || extension == "tiff") return "tif";
  return extension == "img" ? extension : std::string();
}

}  // namespace

void rectifyDialog::on_input_ponits_clicked() {
  CFileDialog dialog(TRUE, L"*.txt", nullptr, kFileOptions, L"导入控制点文件(*.txt)|*.txt||");
  if (dialog.DoModal() != IDOK) return;
  QFile file(QString::fromWCharArray(dialog.GetPathName().GetString()));
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return;
  QTextStream stream(&file);
  const ImportedPoints imported = tarn::image::readControlPoints(stream);
  if (!imported.points.empty()) {
    rowsWillChange();
    tarn::image::TableRows rows;
    for (const tarn::image::ControlPoint& point : imported.points) rows.push_back({point, false});
    showRows(rows);
    rowsChanged();
  }
  note(importNote(imported));
}

void rectifyDialog::on_out_rectify_image_clicked() {
  CFileDialog dialog(FALSE, L"tif", nullptr, kFileOptions,
                     L"数据格式(*.tif)|*.tif|数据格式(*.img)|*.img|");
  dialog.m_ofn.lpstrTitle = L"导出影像";
  if (!m_session || dialog.DoModal() != IDOK) return;
  const std::wstring path = dialog.GetPathName().GetString();
  const std::string format = formatOf(path);
  if (format.empty()) {
    tarn::image::plainBox(QString::fromStdWString(path) +
                          dialogText("：只能导出为 tif、tiff 或 img 文件。",
                                     ": can be a tif, tiff or img file only."));
    return;
  }
  if (!computeResiduals(true)) {
    tarn::image::plainBox("错误，没有足够的控制点。");
    return;
  }
  exportTo(path, format);
  if (!m_session->isPreviewed()) m_session->component().setRectifyMethod(-1);
}

void rectifyDialog::exportTo(const std::wstring& path, const std::string& format) {
  IRectifyDialog& component = m_session->component();
  component.computeTransform();
  showQuality();
  int width = 0, height = 0;
  double left = 0, top = 0, scaleX = 0, scaleY = 0;
  component.getImageGeometry(width, height, left, top, scaleX, scaleY);
  // Without a transformation there is nothing to write.
  if (component.rectifyStatus() == 1) {
    statusAllows();
    return;
  }
  if (!tarn::image::questionBox(this, "导出提示", "是否继续？")) return;
  bool isDone = false;
  hide();
  {
    setTarnProgress progress;
    const tarn::image::ProgressScope scope(&progress);
    const kel::DString target = tarn::toUtf8(path);
    isDone = component.exportPrepare(target, format) && component.exportImage(target, format);
  }
  tarn::image::informationBox(nullptr, "提示",
                              isDone ? "成功导出纠正影像！" : "导出纠正影像失败！");
  show();
}
