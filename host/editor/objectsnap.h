// Object snaps: exact points of entities near a picked one.
#pragma once

#include <optional>
#include <string>

#include "adesk.h"
#include "gepnt3d.h"
#include "host/graphics/viewstate.h"

namespace tarn::host {

class HostApp;

/// Bits of OSMODE.
enum SnapBit {
  kSnapEnd = 1,
  kSnapMid = 2,
  kSnapCenter = 4,
  kSnapNode = 8,
  kSnapQuadrant = 16,
  kSnapIntersection = 32,
  kSnapInsertion = 64,
  kSnapNearest = 512,
  kSnapsOff = 16384,
};

struct Snap {
  AcGePoint3d point;
  int bit = 0;
};

/// "END", "_mid", "END,INT": the bits of the words, each its first three letters or more; nothing
/// when one is no snap.
ACADHOST_EXPORT std::optional<int> snapBits(const std::string& words);

/// The nearest point of the wanted kinds on entities within APERTURE pixels of the cursor. With
/// `magnetic` the point itself must be that near.
ACADHOST_EXPORT std::optional<Snap> findSnap(HostApp& app, int bits, GroundPoint cursor,
                                             bool magnetic);

/// What OSMODE wants now; 0 when it is switched off.
ACADHOST_EXPORT int runningSnaps(HostApp& app);

}  // namespace tarn::host
