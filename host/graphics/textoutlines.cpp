#include "host/graphics/textoutlines.h"

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QTransform>

namespace tarn::host {

namespace {

constexpr int kDesignSize = 64;         ///< pixels; outlines have no hinting at it
constexpr double kUsualCapital = 0.72;  ///< of the size, for a font that does not say
constexpr int kMostKept = 20000;

class Outlines {
 public:
  QPainterPath of(const QStringList& families, const QString& text) {
    if (families != families_) use(families);
    const auto found = kept_.constFind(text);
    if (found != kept_.constEnd()) return *found;
    if (kept_.size() >= kMostKept) kept_.clear();
    QPainterPath path;
    path.addText(0, 0, font_, text);
    return *kept_.insert(text, QTransform::fromScale(scale_, scale_).map(path));
  }

 private:
  void use(const QStringList& families) {
    kept_.clear();
    families_ = families;
    font_.setFamilies(families);
    font_.setPixelSize(kDesignSize);
    const double capital = QFontMetricsF(font_).capHeight();
    scale_ = 1 / (capital > 0 ? capital : kDesignSize * kUsualCapital);
  }

  QStringList families_;
  QFont font_;
  double scale_ = 1;
  QHash<QString, QPainterPath> kept_;
};

}  // namespace

QPainterPath textOutline(const QStringList& families, const QString& text) {
  thread_local Outlines outlines;
  return outlines.of(families, text);
}

}  // namespace tarn::host
