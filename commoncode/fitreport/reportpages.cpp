// The report on pages: the text, then the plot where there is room for it, a foot on each page.
#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFont>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextDocument>

#include <cmath>

#include "commoncode/fitreport/fitreport.h"
#include "commoncode/fitreport/residualplot.h"

namespace tarn::fitreport {
namespace {

constexpr int kResolution = 300;
constexpr double kPoint = kResolution / 72.0;
constexpr double kMargin = 15;  ///< millimetres
constexpr double kFoot = 22 * kPoint;
constexpr double kGap = 10 * kPoint;
/// Part of a page below which the plot would be too small.
constexpr double kLeastPlot = 0.38;
/// Part of a page's width that the plot is high at most.
constexpr double kTallest = 0.9;

QFont fontOf(double points) {
  QFont font;
  font.setFamilies({"DejaVu Sans", "WenQuanYi Micro Hei", "WenQuanYi Zen Hei", "Noto Sans CJK SC",
                    "Droid Sans Fallback"});
  font.setPointSizeF(points);
  // No ligatures: a text that is searched for or copied has the letters that were written.
  font.setStyleStrategy(QFont::PreferNoShaping);
  return font;
}

class Pages {
 public:
  Pages(const FitReport& report, QPdfWriter& writer)
      : report_(report),
        writer_(writer),
        painter_(&writer),
        size_(writer.width(), writer.height() - kFoot) {
    document_.documentLayout()->setPaintDevice(&writer);
    document_.setDocumentMargin(0);
    document_.setDefaultFont(fontOf(9));
    document_.setDefaultStyleSheet("table { border-collapse: collapse; border-color: #999999; }");
    document_.setHtml(reportHtml(report));
    document_.setPageSize(size_);
  }

  void paint() {
    const int pages = document_.pageCount();
    const QTextBlock last = document_.lastBlock();
    const double end = document_.documentLayout()->blockBoundingRect(last).bottom();
    const double left = pages * size_.height() - end - kGap;
    const bool fits = left >= kLeastPlot * size_.height();
    total_ = fits ? pages : pages + 1;
    for (int page = 0; page < pages; ++page) {
      if (page > 0) writer_.newPage();
      painter_.save();
      painter_.translate(0, -page * size_.height());
      const QRectF clip(0, page * size_.height(), size_.width(), size_.height());
      painter_.setClipRect(clip);
      QAbstractTextDocumentLayout::PaintContext context;
      context.clip = clip;
      context.palette.setColor(QPalette::Text, Qt::black);
      document_.documentLayout()->draw(&painter_, context);
      painter_.restore();
      paintFoot(page + 1);
    }
    if (!fits) {
      writer_.newPage();
      paintFoot(total_);
    }
    const double top = fits ? size_.height() - left : 0;
    const double height = std::min(fits ? left : size_.height(), kTallest * size_.width());
    painter_.setFont(fontOf(8));
    paintPlot(painter_, QRectF(0, top, size_.width(), height), report_);
  }

 private:
  void paintFoot(int page) {
    painter_.setFont(fontOf(8));
    painter_.setPen(QColor(90, 90, 90));
    const QRectF foot(0, size_.height(), size_.width(), kFoot);
    const QString number =
        QString::fromUtf8(report_.language == Language::kChinese ? "第 %1 页，共 %2 页"
                                                                 : "Page %1 of %2")
            .arg(QString::number(page), QString::number(total_));
    painter_.drawText(foot, Qt::AlignLeft | Qt::AlignBottom, report_.title);
    painter_.drawText(foot, Qt::AlignRight | Qt::AlignBottom, number);
  }

  const FitReport& report_;
  QPdfWriter& writer_;
  QPainter painter_;
  QTextDocument document_;
  QSizeF size_;
  int total_ = 0;
};

}  // namespace

std::string reportPdf(const FitReport& report) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&buffer);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(kMargin, kMargin, kMargin, kMargin), QPageLayout::Millimeter);
    writer.setResolution(kResolution);
    writer.setTitle(report.title);
    writer.setCreator("Tarn Image");
    Pages(report, writer).paint();
  }
  return bytes.toStdString();
}

}  // namespace tarn::fitreport
