// The sentences in Chinese.
#include "commoncode/fitreport/fitwords.h"

namespace tarn::fitreport {
namespace {

using kel::RectifyFault;
using kel::RectifyHint;
using kel::RectifyQuality;

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

QString changeText(const ChangedRows& group, bool isOfAll, const Rows& rows) {
  const kel::RectifyChange& change = group.change;
  const QString whose =
      (isOfAll ? QString() : QString("第 %1 点的").arg(rows.numbers(group.rows))) +
      (change.isTarget ? "目标" : "源");
  const QString axis = change.addNorth == 0 ? "东坐标" : "北坐标";
  const bool isAdded = change.addEast + change.addNorth > 0;
  const QString prefix =
      QString(isAdded ? "缺少带号 %1" : "多了带号 %1").arg(QString::number(zoneOf(change)));
  if (!change.swaps) return whose + axis + "好像" + prefix;
  const QString swapped = whose + "东、北坐标好像互换了";
  return zoneOf(change) == 0 ? swapped : swapped + "，换回后" + axis + prefix;
}

QString repairText(const RectifyQuality& quality, const Rows& rows) {
  const kel::RectifyRepair& repair = quality.repair;
  if (repair.changes.empty()) return {};
  QStringList texts;
  const std::vector<ChangedRows> groups = groupsOf(repair);
  for (const ChangedRows& group : groups) {
    const bool isOfAll =
        groups.size() == 1 && group.rows.size() == static_cast<size_t>(quality.pointCount);
    texts << changeText(group, isOfAll, rows);
  }
  QString text = texts.join("；");
  if (repair.rmseBefore == 0) return text + "（与影像现在的位置相比），若非有意请修正。";
  text += QString("：修正后赫尔默特残差由 %1 降为 %2。")
              .arg(roundedText(repair.rmseBefore), roundedText(repair.rmseAfter));
  return repair.isMirroredToo ? text + " 也可能是源北坐标向下增长。" : text;
}

}  // namespace

QStringList chineseSentences(const RectifyQuality& quality, const std::vector<size_t>& places) {
  const Rows rows(places, "、", "等");
  QStringList texts{faultText(quality, rows)};
  const QStringList suggested = suggestedPlaces(quality.suggested);
  if (!suggested.isEmpty()) texts << "建议在源坐标 " + suggested.join("、") + " 附近加点。";
  if (quality.worstPoint >= 0)
    texts << QString("去掉第 %1 点后 s0 降为 %2。")
                 .arg(rows.number(quality.worstPoint), roundedText(quality.s0WithoutWorst));
  texts << repairText(quality, rows);
  return texts;
}

}  // namespace tarn::fitreport
