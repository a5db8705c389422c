#include "components/rectify/repair.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace tarn::rectify {
namespace {

using kel::RectifyChange;
using kel::RectifyRepair;

/// Of squares: residuals a hundred times as long.
constexpr double kHundredfold = 1e4;
/// Of the extent; below this points fit, whatever would fit better.
constexpr double kFits = 1e-5;
constexpr size_t kLeastPoints = 3;
/// Beyond this many points single ones are not looked at.
constexpr size_t kMostPoints = 2000;
/// So many rows, spread over the table, are tried by twos as those that are right.
constexpr size_t kTriedRows = 24;
constexpr double kPrefixUnit = 1e6;
constexpr int kLastZone = 120;

/// What becomes of one place of one row.
struct SideChange {
  bool swaps = false;
  double addEast = 0;
  double addNorth = 0;

  bool isNone() const { return !swaps && addEast == 0 && addNorth == 0; }
  PlanePoint of(PlanePoint p) const {
    if (swaps) std::swap(p.x, p.y);
    return {p.x + addEast, p.y + addNorth};
  }
};

/// Of one row: what changes, and the pair then. The first of a row's is the row as it is.
struct Alternative {
  SideChange source;
  SideChange target;
  PointPair pair;
};
using Alternatives = std::vector<std::vector<Alternative>>;

double extentOf(const std::vector<PointPair>& pairs) {
  double most = 0;
  for (const PointPair& p : pairs)
    most = std::max({most, std::fabs(p.target.x - pairs[0].target.x),
                     std::fabs(p.target.y - pairs[0].target.y)});
  return most;
}

double squareAt(const Fit& fit, const PointPair& pair) {
  const PlanePoint p = fit.at(pair.source);
  const double dx = p.x - pair.target.x, dy = p.y - pair.target.y;
  return dx * dx + dy * dy;
}

/// Of the Helmert residuals; nothing without a fit.
std::optional<double> squaresOf(const std::vector<PointPair>& pairs, Solution* kept = nullptr) {
  Solution solution = solve(Method::kHelmert, pairs);
  if (!solution.fit) return std::nullopt;
  double sum = 0;
  for (const PointPair& pair : pairs) sum += squareAt(*solution.fit, pair);
  if (kept) *kept = std::move(solution);
  return sum;
}

/// Whole millions of a coordinate: 0 for one without a prefix, -1 for one that can have none.
int zoneOf(double value) {
  if (!(value >= 0) || value >= (kLastZone + 1) * kPrefixUnit) return -1;
  return static_cast<int>(value / kPrefixUnit);
}

/// Eastings of a zone are some hundred kilometres around 500, but for a prefix.
bool isEasting(double value) {
  const double plain = std::fmod(value, kPrefixUnit);
  return plain >= 1e5 && plain <= 9e5;
}

/// The prefix that most coordinates of one column have, and whether some have none.
struct Column {
  int zone = 0;
  bool hasPlain = false;

  template <typename Get>
  static Column of(const std::vector<PointPair>& pairs, Get get) {
    std::map<int, int> counts;
    for (const PointPair& pair : pairs) ++counts[zoneOf(get(pair))];
    Column column;
    column.hasPlain = counts[0] > 0;
    for (const auto& [zone, count] : counts)
      if (zone > 0 && (column.zone == 0 || count > counts[column.zone])) column.zone = zone;
    return column;
  }
  /// What makes the coordinate one like others; 0 when nothing does.
  double shiftOf(double value) const {
    const int own = zoneOf(value);
    if (own == 0 && zone > 0) return zone * kPrefixUnit;
    return own > 0 && own == zone && hasPlain ? -zone * kPrefixUnit : 0;
  }
};

struct Side {
  Column east;
  Column north;

  /// All that could have been meant by a place, the place itself first.
  std::vector<SideChange> changesOf(PlanePoint p) const {
    std::vector<SideChange> changes;
    for (const bool swaps : {false, true}) {
      const PlanePoint q = SideChange{swaps, 0, 0}.of(p);
      changes.push_back({swaps, 0, 0});
      if (const double by = east.shiftOf(q.x); by != 0) changes.push_back({swaps, by, 0});
      if (const double by = north.shiftOf(q.y); by != 0) changes.push_back({swaps, 0, by});
    }
    return changes;
  }
};

Alternatives alternativesOf(const std::vector<PointPair>& pairs) {
  const auto column = [&](auto get) { return Column::of(pairs, get); };
  const Side sources{column([](const PointPair& p) { return p.source.x; }),
                     column([](const PointPair& p) { return p.source.y; })};
  const Side targets{column([](const PointPair& p) { return p.target.x; }),
                     column([](const PointPair& p) { return p.target.y; })};
  Alternatives rows;
  for (const PointPair& pair : pairs) {
    std::vector<Alternative>& row = rows.emplace_back();
    for (const SideChange& change : targets.changesOf(pair.target))
      row.push_back({{}, change, {pair.source, change.of(pair.target)}});
    for (const SideChange& change : sources.changesOf(pair.source))
      if (!change.isNone()) row.push_back({change, {}, {change.of(pair.source), pair.target}});
  }
  return rows;
}

/// For each row which alternative a transformation speaks for.
using Choice = std::vector<size_t>;

Choice choiceBy(const Fit& fit, const Alternatives& rows) {
  // A row stays as it is unless it is off by ten times as much.
  constexpr double kTenfold = 100;
  Choice choice;
  for (const std::vector<Alternative>& row : rows) {
    size_t best = 0;
    double least = squareAt(fit, row[0].pair) / kTenfold;
    for (size_t i = 1; i < row.size(); ++i) {
      const double square = squareAt(fit, row[i].pair);
      if (square >= least) continue;
      least = square;
      best = i;
    }
    choice.push_back(best);
  }
  return choice;
}

std::vector<PointPair> chosen(const Alternatives& rows, const Choice& choice) {
  std::vector<PointPair> pairs;
  for (size_t i = 0; i < rows.size(); ++i) pairs.push_back(rows[i][choice[i]].pair);
  return pairs;
}

/// The similarity through two pairs; nothing when their sources are one.
std::optional<Fit> through(const PointPair& p, const PointPair& q) {
  const Solution solution = solve(Method::kHelmert, {p, q});
  return solution.fit;
}

/// A whole table that fits, and what was changed for it.
struct Explanation {
  std::vector<std::pair<SideChange, SideChange>> rows;  ///< of source and target
  double squares = 0;
  size_t changed = 0;
  size_t added = 0;  ///< prefixes that were missing

  /// What leaves another slip unexplained is worse, however few rows it changes.
  bool isBetterThan(const Explanation& o) const {
    if (o.squares > kHundredfold * squares) return true;
    if (squares > kHundredfold * o.squares) return false;
    if (changed != o.changed) return changed < o.changed;
    return added != o.added ? added > o.added : squares < o.squares;
  }
};

class Search {
 public:
  Search(const std::vector<PointPair>& pairs, double own) : pairs_(pairs), own_(own) {}

  /// Tries the table with one side of every row exchanged beforehand, or as it is.
  void tryTable(bool swapsSources, bool swapsTargets) {
    swapsSources_ = swapsSources;
    swapsTargets_ = swapsTargets;
    std::vector<PointPair> pairs = pairs_;
    for (PointPair& pair : pairs) {
      if (swapsSources) std::swap(pair.source.x, pair.source.y);
      if (swapsTargets) std::swap(pair.target.x, pair.target.y);
    }
    const Alternatives rows = alternativesOf(pairs);
    seen_.clear();
    consider(rows, Choice(rows.size(), 0));
    if (rows.size() > kMostPoints) return;
    const size_t step = 1 + (rows.size() - 1) / kTriedRows;
    for (size_t i = 0; i < rows.size(); i += step) {
      for (size_t j = i + step; j < rows.size(); j += step) {
        if (const auto fit = through(rows[i][0].pair, rows[j][0].pair))
          consider(rows, choiceBy(*fit, rows));
      }
    }
  }
  const std::optional<Explanation>& best() const { return best_; }

 private:
  void consider(const Alternatives& rows, Choice choice) {
    if (!seen_.insert(choice).second) return;
    Solution solution;
    if (!squaresOf(chosen(rows, choice), &solution)) return;
    // Two rows alone may have spoken for another choice than all of them do.
    choice = choiceBy(*solution.fit, rows);
    const auto squares = squaresOf(chosen(rows, choice), nullptr);
    if (!squares || !(own_ > kHundredfold * *squares)) return;
    Explanation found = explain(rows, choice);
    found.squares = *squares;
    if (found.changed > 0 && (!best_ || found.isBetterThan(*best_))) best_ = std::move(found);
  }

  Explanation explain(const Alternatives& rows, const Choice& choice) const {
    Explanation found;
    for (size_t i = 0; i < rows.size(); ++i) {
      SideChange source = rows[i][choice[i]].source, target = rows[i][choice[i]].target;
      source.swaps = source.swaps != swapsSources_;
      target.swaps = target.swaps != swapsTargets_;
      if (!source.isNone() || !target.isNone()) ++found.changed;
      for (const SideChange& side : {source, target})
        if (side.addEast > 0 || side.addNorth > 0) ++found.added;
      found.rows.emplace_back(source, target);
    }
    return found;
  }

  const std::vector<PointPair>& pairs_;
  double own_;
  bool swapsSources_ = false;
  bool swapsTargets_ = false;
  std::set<Choice> seen_;
  std::optional<Explanation> best_;
};

struct Box {
  PlanePoint low{HUGE_VAL, HUGE_VAL};
  PlanePoint high{-HUGE_VAL, -HUGE_VAL};

  void add(PlanePoint p) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  double extent() const { return std::max(high.x - low.x, high.y - low.y); }
  PlanePoint middle() const { return {(low.x + high.x) / 2, (low.y + high.y) / 2}; }
};

Box boxOf(const ImageOutline& outline) {
  Box box;
  for (const PlanePoint& p : outline.corners) box.add(p);
  return box;
}

/// How many sources lie on the image, or not far from it.
template <typename Change>
size_t countOnImage(const std::vector<PointPair>& pairs, const ImageOutline& outline,
                    Change change) {
  const Box box = boxOf(outline);
  const double around = box.extent() / 2;
  return static_cast<size_t>(std::count_if(pairs.begin(), pairs.end(), [&](const PointPair& pair) {
    const PlanePoint p = change(pair.source);
    return p.x >= box.low.x - around && p.x <= box.high.x + around && p.y >= box.low.y - around &&
           p.y <= box.high.y + around;
  }));
}

/// The similarity of a table whose targets are exchanged turns by about a right angle: what it
/// undoes may be a mirror of the sources.
bool looksMirrored(const std::vector<PointPair>& pairs) {
  std::vector<PointPair> swapped = pairs;
  for (PointPair& pair : swapped) std::swap(pair.target.x, pair.target.y);
  const Solution solution = solve(Method::kHelmert, swapped);
  return solution.fit && std::fabs(solution.fit->v[1]) > std::fabs(solution.fit->u[1]);
}

void list(const Explanation& found, RectifyRepair& repair) {
  for (size_t i = 0; i < found.rows.size(); ++i) {
    const auto add = [&](const SideChange& side, bool isTarget) {
      if (!side.isNone())
        repair.changes.push_back(
            {static_cast<int>(i), isTarget, side.swaps, side.addEast, side.addNorth});
    };
    add(found.rows[i].first, false);
    add(found.rows[i].second, true);
  }
}

/// The prefix by which all targets (or, where the sources lie off the image, all sources) differ
/// from the image, when they lie beside it otherwise.
RectifyRepair wholePrefix(const std::vector<PointPair>& pairs, const ImageOutline& outline) {
  // Of the larger extent: as far as an image is moved that stands about where it belongs.
  constexpr double kBeside = 10;
  Box sources, targets;
  for (const PointPair& pair : pairs) {
    sources.add(pair.source);
    targets.add(pair.target);
  }
  const int from = zoneOf(sources.low.x), to = zoneOf(targets.low.x);
  const bool isWhole = zoneOf(sources.high.x) == from && zoneOf(targets.high.x) == to &&
                       isEasting(sources.low.x) && isEasting(sources.high.x);
  if (!isWhole || from == to || from < 0 || to < 0 || (from > 0 && to > 0)) return {};
  const double by = (from - to) * kPrefixUnit;
  const double extent = std::max({sources.extent(), targets.extent(), boxOf(outline).extent()});
  const PlanePoint p = sources.middle(), q = targets.middle();
  if (std::hypot(q.x + by - p.x, q.y - p.y) > kBeside * extent) return {};
  const auto shifted = [by](PlanePoint s) { return PlanePoint{s.x - by, s.y}; };
  const bool isOfSources = countOnImage(pairs, outline, shifted) >
                           countOnImage(pairs, outline, [](PlanePoint s) { return s; });
  RectifyRepair repair;
  for (size_t i = 0; i < pairs.size(); ++i)
    repair.changes.push_back({static_cast<int>(i), !isOfSources, false, isOfSources ? -by : by, 0});
  return repair;
}

}  // namespace

RectifyRepair findRepair(const std::vector<PointPair>& pairs, const ImageOutline& outline,
                         double otherRmse) {
  RectifyRepair repair;
  if (pairs.size() < 2) return repair;
  const auto own = squaresOf(pairs);
  if (!own || !std::isfinite(*own)) return repair;
  const auto count = static_cast<double>(pairs.size());
  const double rmse = std::sqrt(*own / count);
  const bool fits = rmse <= kFits * extentOf(pairs) || rmse > 100 * otherRmse;
  if (!fits && pairs.size() >= kLeastPoints) {
    const auto asTheyAre = [](PlanePoint p) { return p; };
    const auto swapped = [](PlanePoint p) { return PlanePoint{p.y, p.x}; };
    // Exchanging all sources does to residuals what exchanging all targets does; the image tells.
    const bool ofSources =
        countOnImage(pairs, outline, swapped) > countOnImage(pairs, outline, asTheyAre);
    Search search(pairs, *own);
    search.tryTable(false, false);
    search.tryTable(ofSources, !ofSources);
    if (search.best()) {
      list(*search.best(), repair);
      repair.rmseBefore = rmse;
      repair.rmseAfter = std::sqrt(search.best()->squares / count);
      const bool isWholeSwap =
          repair.changes.size() == pairs.size() &&
          std::all_of(repair.changes.begin(), repair.changes.end(), [](const RectifyChange& c) {
            return c.swaps && c.addEast == 0 && c.addNorth == 0;
          });
      repair.isMirroredToo = isWholeSwap && looksMirrored(pairs);
      return repair;
    }
  }
  return wholePrefix(pairs, outline);
}

}  // namespace tarn::rectify
