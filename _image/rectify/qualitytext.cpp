#include "_image/rectify/qualitytext.h"

#include <QStringList>

namespace tarn::image {
namespace {

using kel::RectifyFault;
using kel::RectifyHint;
using kel::RectifyQuality;

constexpr int kMostSuggested = 3;
constexpr int kMostNamed = 12;

/// Numbers of rows as the table counts them.
class Rows {
 public:
  explicit Rows(const std::vector<size_t>& places) : places_(places) {}

  QString number(int point) const {
    const bool isRow = point >= 0 && static_cast<size_t>(point) < places_.size();
    return isRow ? QString::number(places_[static_cast<size_t>(point)] + 1) : QString("?");
  }
  QString numbers(const kel::List<int>& points) const {
    QStringList texts;
    for (const int point : points) {
      if (texts.size() == kMostNamed) return texts.join("、") + "等";
      texts << number(point);
    }
    return texts.join("、");
  }

 private:
  const std::vector<size_t>& places_;
};

QString onCurve(const RectifyQuality& quality, const Rows& rows) {
  if (quality.lines.size() > 1) {
    QStringList lines;
    for (const kel::List<int>& line : quality.lines) lines << rows.numbers(line);
    return QString("所有点都在 %1 条直线上（%2），需要在这些直线之外加点。")
        .arg(QString::number(quality.lines.size()), lines.join("；"));
  }
  const QString nearly = quality.lines.empty() ? "或近似在" : "";
  if (quality.fault == RectifyFault::kOnLine)
    return QString("所有点都在%1一条直线上，需要在直线之外加点。").arg(nearly);
  return QString("所有点都在%1一条%2曲线上，需要在曲线之外加点。")
      .arg(nearly, quality.fault == RectifyFault::kOnConic ? "二次" : "三次");
}

QString faultText(const RectifyQuality& quality, const Rows& rows) {
  const QString concerned = rows.numbers(quality.faultPoints);
  const QString needed = QString::number(quality.pointsNeeded);
  const QString there = QString::number(quality.pointsThere);
  const QString grown = QString::number(quality.cornerFactor, 'g', 3);
  switch (quality.fault) {
    case RectifyFault::kTooFew:
      return QString("该方法需要 %1 个点，现有 %2 个。").arg(needed, there);
    case RectifyFault::kNotFinite:
      return QString("第 %1 点的坐标不是可用的数字。").arg(concerned);
    case RectifyFault::kNoExtent:
      return "所有点的源坐标相同，需要相互分开的点。";
    case RectifyFault::kTargetsFlat:
      if (!quality.faultPoints.empty())
        return QString("第 %1 点的目标坐标离其他点太远，与之相比其他点好像在同一处。")
            .arg(concerned);
      return "目标坐标在同一点或同一直线上，影像将没有面积。";
    case RectifyFault::kAlongAxis:
      return "所有点都在一条与坐标轴平行的直线上，需要在另一方向上加点。";
    case RectifyFault::kOnLine:
    case RectifyFault::kOnConic:
    case RectifyFault::kOnCubic:
      return onCurve(quality, rows);
    case RectifyFault::kTooFewPlaces:
      return QString("第 %1 点与其他点位置重复：该方法需要 %2 个不同的点，现有 %3 个。")
          .arg(concerned, needed, there);
    case RectifyFault::kCornerFar:
      return QString("点过于集中或近于一条直线：拾取误差到影像角上放大 %1 倍。").arg(grown);
    case RectifyFault::kFolds:
      return "影像会自身折叠：控制点相互矛盾。";
    case RectifyFault::kSourceLost:
      return QString("第 %1 点的源坐标处，影像现在没有像素。").arg(concerned);
    case RectifyFault::kNone:
      break;
  }
  if (quality.hint == RectifyHint::kSpreadPoints)
    return QString("拾取误差到影像角上放大 %1 倍，点再分开些会更好。").arg(grown);
  return quality.hint == RectifyHint::kNoCheck ? "点数刚好够用，没有检核。" : QString();
}

QString suggestionOf(const kel::PointList& suggested) {
  QStringList places;
  for (const auto& place : suggested) {
    if (place.size() < 2 || places.size() >= kMostSuggested) continue;
    places << QString("(%1, %2)")
                  .arg(QString::number(place[0], 'f', 2), QString::number(place[1], 'f', 2));
  }
  return places.isEmpty() ? QString() : "建议在源坐标 " + places.join("、") + " 附近加点。";
}

}  // namespace

QString roundedText(double value) {
  return QString::number(value, 'g', 6);
}

QString qualityText(const RectifyQuality& quality, const std::vector<size_t>& places) {
  const Rows rows(places);
  QStringList texts{faultText(quality, rows), suggestionOf(quality.suggested)};
  if (quality.worstPoint >= 0)
    texts << QString("去掉第 %1 点后 s0 降为 %2。")
                 .arg(rows.number(quality.worstPoint), roundedText(quality.s0WithoutWorst));
  if (quality.targetsSwapped) texts << "目标东、北坐标好像互换了。";
  texts.removeAll(QString());
  return texts.join(" ");
}

}  // namespace tarn::image
