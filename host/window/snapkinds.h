// The kinds of object snaps with their names, in the order of menus.
#pragma once

#include "host/editor/objectsnap.h"
#include "host/window/words.h"

namespace tarn::host {

struct SnapKind {
  int bit;
  const char* name;  ///< for words()
};

constexpr SnapKind kSnapKinds[] = {
    {kSnapEnd, toSay("Endpoint")},        {kSnapMid, toSay("Midpoint")},
    {kSnapCenter, toSay("Center")},       {kSnapNode, toSay("Node")},
    {kSnapQuadrant, toSay("Quadrant")},   {kSnapIntersection, toSay("Intersection")},
    {kSnapInsertion, toSay("Insertion")}, {kSnapNearest, toSay("Nearest")},
};

}  // namespace tarn::host
