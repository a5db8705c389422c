#include "_image/rectify/pairmarkers.h"

#include <cmath>
#include <utility>

#include "_image/rectify/pairsketch.h"
#include "acedads.h"

namespace tarn::image {
namespace {

SketchView currentView() {
  SketchView view;
  resbuf size{};
  resbuf screen{};
  resbuf twist{};
  if (acedGetVar(L"VIEWSIZE", &size) == RTNORM && acedGetVar(L"SCREENSIZE", &screen) == RTNORM &&
      screen.resval.rpoint[1] > 0) {
    view.unitsPerPixel = size.resval.rreal / screen.resval.rpoint[1];
  }
  if (acedGetVar(L"VIEWTWIST", &twist) == RTNORM) view.twist = twist.resval.rreal;
  return view;
}

void draw(const AcGePoint2dArray& nodes, size_t index, const SketchView& view) {
  const std::vector<SketchLine> lines = sketchPair(
      {nodes[0].x, nodes[0].y}, {nodes[1].x, nodes[1].y}, static_cast<int>(index) + 1, view);
  for (const SketchLine& line : lines) {
    const ads_point from = {line.from.x, line.from.y, 0};
    const ads_point to = {line.to.x, line.to.y, 0};
    acedGrDraw(from, to, line.color, 0);
  }
}

}  // namespace

void PairMarkers::add(AcGePoint2dArray nodes) {
  if (nodes.length() != 2) return;
  pairs_.push_back(std::move(nodes));
  draw(pairs_.back(), pairs_.size() - 1, currentView());
}

bool PairMarkers::remove(size_t index) {
  if (index >= pairs_.size()) return false;
  pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(index));
  repaint();
  return true;
}

void PairMarkers::clear() {
  pairs_.clear();
  acedRedraw(nullptr, 0);
}

void PairMarkers::repaint() const {
  acedRedraw(nullptr, 0);
  const SketchView view = currentView();
  for (size_t i = 0; i < pairs_.size(); ++i) draw(pairs_[i], i, view);
}

}  // namespace tarn::image
