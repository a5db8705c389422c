// Entities under the cursor and in windows, and asking the user for entities.
#pragma once

#include <optional>

#include "host/editor/entities.h"
#include "host/editor/hittest.h"
#include "host/editor/selectionmemory.h"

struct resbuf;

namespace tarn::host {

/// What can be hit of an entity of the current picture; empty when it is not shown. An entity that
/// shows pictures is hit at their frame, the rim of the extents and the corners that snaps and
/// grips know, and not at lines that the pictures cover.
ACADHOST_EXPORT Outlines outlinesOf(HostDocument& document, AcDbObjectId id);
/// The same for showing what is chosen: of pictures only the rim of their extents, since corners
/// may stand where nothing is to be seen.
ACADHOST_EXPORT Outlines highlightOf(HostDocument& document, AcDbObjectId id);

/// The uppermost entity whose lines come within PICKBOX pixels of the point; null when there is
/// none.
ACADHOST_EXPORT AcDbObjectId entityAt(HostApp& app, GroundPoint point);
/// Entities that lie wholly in the window of two corners, or that at least touch it.
ACADHOST_EXPORT EntityIds entitiesInWindow(HostApp& app, GroundPoint a, GroundPoint b,
                                           bool crossing);
/// By the way in which the corners were given: a window from left to right on the screen, what
/// touches it from right to left.
ACADHOST_EXPORT bool isCrossing(const HostApp& app, GroundPoint a, GroundPoint b);

/// Asks until Enter. Nothing when cancelled.
std::optional<EntityIds> askEntities(HostApp& app, const std::string& prompt, const resbuf* filter);

/// Adds those that are not in the list yet; returns how many were.
ACADHOST_EXPORT int addMissing(EntityIds& ids, const EntityIds& added);
ACADHOST_EXPORT void removeAll(EntityIds& ids, const EntityIds& removed);
/// Those that are still in the current space and fit the filter.
EntityIds usable(HostApp& app, const EntityIds& ids, const resbuf* filter);

}  // namespace tarn::host
