#include "commoncode/fitreport/parameters.h"

#include <array>
#include <cmath>

namespace tarn::fitreport {
namespace {

constexpr int kCubic = 0, kQuadratic = 1, kLinear = 2, kAffine = 3, kHelmert = 4;
constexpr double kDegree = 3.14159265358979323846 / 180;

QString number(double value) {
  return QString::number(value, 'g', 12);
}

QString lengthText(double value) {
  return QString::number(value, 'f', 4);
}

/// X = x0 + xx x + xy y, Y = y0 + yx x + yy y.
struct Plane {
  double x0, xx, xy, y0, yx, yy;
};

Plane expanded(const kel::RectifyQuality& q) {
  const auto& c = q.centre;
  const double k = c[5] / c[2];
  Plane p{0, q.coefficientsX[1] * k, q.coefficientsX[2] * k,
          0, q.coefficientsY[1] * k, q.coefficientsY[2] * k};
  p.x0 = c[3] + c[5] * q.coefficientsX[0] - p.xx * c[0] - p.xy * c[1];
  p.y0 = c[4] + c[5] * q.coefficientsY[0] - p.yx * c[0] - p.yy * c[1];
  return p;
}

class List {
 public:
  explicit List(const FitReport& report) : report_(report) {}

  QString words(const char* chinese, const char* english) const {
    return QString::fromUtf8(report_.language == Language::kChinese ? chinese : english);
  }
  void length(const QString& name, double value) {
    list_.push_back({name, lengthText(value), report_.targetUnit});
  }
  /// Units of the target for one of the source.
  void ratio(const QString& name, double value) {
    const QString unit = report_.sourceUnit.isEmpty() || report_.sourceUnit == report_.targetUnit
                             ? QString()
                             : report_.targetUnit + "/" + report_.sourceUnit;
    list_.push_back({name, number(value), unit});
  }
  void angle(const char* chinese, const char* english, double radians) {
    list_.push_back({words(chinese, english), QString::number(radians / kDegree, 'f', 7), "°"});
  }
  void plain(const QString& name, double value) { list_.push_back({name, number(value), {}}); }
  void source(const QString& name, double value) {
    list_.push_back({name, lengthText(value), report_.sourceUnit});
  }
  std::vector<Parameter> take() { return std::move(list_); }

 private:
  const FitReport& report_;
  std::vector<Parameter> list_;
};

void listHelmert(const Plane& p, List& list) {
  list.length("tx", p.x0);
  list.length("ty", p.y0);
  list.ratio("a", p.xx);
  list.ratio("b", p.yx);
  list.ratio(list.words("比例 m", "Scale m"), std::hypot(p.xx, p.yx));
  list.angle("旋转角（逆时针）", "Rotation (counter-clockwise)", std::atan2(p.yx, p.xx));
}

void listAffine(const Plane& p, List& list) {
  list.length("a0", p.x0);
  list.ratio("a1", p.xx);
  list.ratio("a2", p.xy);
  list.length("b0", p.y0);
  list.ratio("b1", p.yx);
  list.ratio("b2", p.yy);
  list.ratio(list.words("x 方向比例", "Scale along x"), std::hypot(p.xx, p.yx));
  list.ratio(list.words("y 方向比例", "Scale along y"), std::hypot(p.xy, p.yy));
  const double turn = std::atan2(p.yx, p.xx);
  list.angle("x 轴旋转角（逆时针）", "Rotation of x (counter-clockwise)", turn);
  const double between = std::atan2(p.xx * p.yy - p.yx * p.xy, p.xx * p.xy + p.yx * p.yy);
  list.angle("两轴夹角", "Angle between the axes", between);
}

void listPolynomial(const kel::RectifyQuality& q, List& list) {
  constexpr std::array<const char*, 10> kTerms = {"1",  "u",  "v",   "u²",  "uv",
                                                  "v²", "u³", "u²v", "uv²", "v³"};
  list.source("xc", q.centre[0]);
  list.source("yc", q.centre[1]);
  list.source("s", q.centre[2]);
  list.length("Xc", q.centre[3]);
  list.length("Yc", q.centre[4]);
  list.length("S", q.centre[5]);
  for (size_t i = 0; i < q.coefficientsX.size() && i < kTerms.size(); ++i)
    list.plain(QString("A(%1)").arg(kTerms[i]), q.coefficientsX[i]);
  for (size_t i = 0; i < q.coefficientsY.size() && i < kTerms.size(); ++i)
    list.plain(QString("B(%1)").arg(kTerms[i]), q.coefficientsY[i]);
}

}  // namespace

QString methodName(int method, Language language) {
  constexpr const char* kChinese[] = {"三次多项式变换", "二次多项式变换", "线性变换", "仿射变换",
                                      "赫尔默特（相似）变换"};
  constexpr const char* kEnglish[] = {"Cubic polynomial", "Quadratic polynomial", "Linear",
                                      "Affine", "Helmert (similarity)"};
  if (method < kCubic || method > kHelmert) return "?";
  return QString::fromUtf8(language == Language::kChinese ? kChinese[method] : kEnglish[method]);
}

QString formulaOf(const FitReport& report) {
  switch (report.method) {
    case kHelmert:
      return "X = tx + a·x − b·y,  Y = ty + b·x + a·y";
    case kAffine:
      return "X = a0 + a1·x + a2·y,  Y = b0 + b1·x + b2·y";
    case kLinear:
      return "X = ox + sx·x,  Y = oy + sy·y";
    default:
      return "u = (x − xc)/s,  v = (y − yc)/s,  X = Xc + S·Σ A(t)·t,  Y = Yc + S·Σ B(t)·t";
  }
}

std::vector<Parameter> parametersOf(const FitReport& report) {
  const kel::RectifyQuality& q = report.quality;
  constexpr size_t kLeastTerms = 3, kCentreNumbers = 6;
  if (q.coefficientsX.size() < kLeastTerms || q.coefficientsY.size() < kLeastTerms ||
      q.centre.size() < kCentreNumbers)
    return {};
  List list(report);
  if (report.method == kCubic || report.method == kQuadratic) {
    listPolynomial(q, list);
    return list.take();
  }
  const Plane p = expanded(q);
  if (report.method == kHelmert) listHelmert(p, list);
  if (report.method == kAffine) listAffine(p, list);
  if (report.method == kLinear) {
    list.length("ox", p.x0);
    list.length("oy", p.y0);
    list.ratio("sx", p.xx);
    list.ratio("sy", p.yy);
  }
  return list.take();
}

}  // namespace tarn::fitreport
