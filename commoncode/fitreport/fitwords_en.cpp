// The sentences in English.
#include "commoncode/fitreport/fitwords.h"

namespace tarn::fitreport {
namespace {

using kel::RectifyFault;
using kel::RectifyHint;
using kel::RectifyQuality;

QString number(double value) {
  return QString::number(value, 'g', 3);
}

QString firstRow(const RectifyQuality& quality, const Rows& rows) {
  return quality.faultPoints.empty() ? QString("?") : rows.number(quality.faultPoints[0]);
}

QString onCurve(const RectifyQuality& quality, const Rows& rows) {
  if (quality.lines.size() > 1) {
    QStringList lines;
    for (const kel::List<int>& line : quality.lines) lines << rows.numbers(line);
    return QString("All points lie on %1 lines (%2): a point away from them is needed.")
        .arg(QString::number(quality.lines.size()), lines.join("; "));
  }
  const QString order = quality.fault == RectifyFault::kOnConic ? "second" : "third";
  const QString curve = quality.fault == RectifyFault::kOnLine
                            ? QString("one line")
                            : "one curve of the " + order + " order";
  return "All points lie on " + curve + (quality.lines.empty() ? ", or nearly" : "") +
         ": a point away from it is needed.";
}

QString hintText(const RectifyQuality& quality) {
  if (quality.hint == RectifyHint::kSpreadPoints)
    return "An error of picking grows " + number(quality.cornerFactor) +
           " times up to an image corner; points further apart would help.";
  if (quality.hint == RectifyHint::kNoCheck)
    return "No check: the points are just enough for the method.";
  return {};
}

QString faultText(const RectifyQuality& quality, const Rows& rows) {
  const QString needed = QString::number(quality.pointsNeeded);
  const QString there = QString::number(quality.pointsThere);
  const QString concerned = rows.numbers(quality.faultPoints);
  switch (quality.fault) {
    case RectifyFault::kNone:
      return hintText(quality);
    case RectifyFault::kTooFew:
      return "The method needs " + needed + " points, there are " + there + ".";
    case RectifyFault::kNotFinite:
      return "Point " + firstRow(quality, rows) + " has a coordinate that is not a number.";
    case RectifyFault::kNoExtent:
      return "All points have the same source: points further apart are needed.";
    case RectifyFault::kTargetsFlat:
      if (!quality.faultPoints.empty())
        return "The targets of points " + concerned +
               " lie far away from all others, which look like one place beside them.";
      return "The targets lie on one point or line, so the image would have no area.";
    case RectifyFault::kAlongAxis:
      return "All points lie on a line along an axis: a point away from it in the other direction "
             "is needed.";
    case RectifyFault::kOnLine:
    case RectifyFault::kOnConic:
    case RectifyFault::kOnCubic:
      return onCurve(quality, rows);
    case RectifyFault::kTooFewPlaces:
      return "Points share their places (" + concerned + "): the method needs " + needed +
             " different ones, there are " + there + ".";
    case RectifyFault::kCornerFar:
      return "An error of picking grows " + number(quality.cornerFactor) +
             " times up to an image corner: the points lie too close together or along a line.";
    case RectifyFault::kFolds:
      return "The image would fold over itself: the points contradict one another.";
    case RectifyFault::kSourceLost:
      return "Point " + firstRow(quality, rows) +
             " lies where the image as it is drawn now has no pixel.";
  }
  return {};
}

QString changeText(const ChangedRows& group, bool isOfAll, const Rows& rows) {
  const kel::RectifyChange& change = group.change;
  const QString side = change.isTarget ? "targets" : "sources";
  const QString whose =
      "the " + side + (isOfAll ? QString() : " of points " + rows.numbers(group.rows));
  const bool isAdded = change.addEast + change.addNorth > 0;
  const QString prefix =
      QString(isAdded ? "lack the zone prefix %1 in the %2"
                      : "have the zone prefix %1 too much in the %2")
          .arg(QString::number(zoneOf(change)), QString(change.addNorth == 0 ? "east" : "north"));
  if (!change.swaps) return whose + " seem to " + prefix;
  const QString swapped = "east and north of " + whose + " seem to be exchanged";
  return zoneOf(change) == 0 ? swapped : swapped + ", and then " + prefix;
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
  QString text = texts.join("; ");
  text[0] = text[0].toUpper();
  if (repair.rmseBefore == 0) return text + " beside where the image is now.";
  text += QString(": mended, the Helmert residuals fall from %1 to %2.")
              .arg(roundedText(repair.rmseBefore), roundedText(repair.rmseAfter));
  return repair.isMirroredToo ? text + " Source norths that run downwards would explain it too."
                              : text;
}

}  // namespace

QStringList englishSentences(const RectifyQuality& quality, const std::vector<size_t>& places) {
  const Rows rows(places, ", ", " ...");
  QStringList texts{faultText(quality, rows)};
  const QStringList suggested = suggestedPlaces(quality.suggested);
  if (!suggested.isEmpty())
    texts << "A point near the source " + suggested.join(", then ") + " would help.";
  if (quality.worstPoint >= 0)
    texts << QString("Without point %1 s0 falls to %2.")
                 .arg(rows.number(quality.worstPoint), roundedText(quality.s0WithoutWorst));
  texts << repairText(quality, rows);
  return texts;
}

}  // namespace tarn::fitreport
