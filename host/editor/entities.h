// The entities of the space that is current, and how commands reach and add them.
#pragma once

#include <functional>
#include <string>

#include "adesk.h"
#include "host/editor/selectionmemory.h"

class AcDbBlockTableRecord;
class AcDbEntity;

namespace tarn::host {

class HostApp;
class HostDocument;

/// As they were made, erased ones left out.
ACADHOST_EXPORT EntityIds currentSpaceEntities(HostDocument& document);
/// The same in the order in which they are drawn.
EntityIds currentSpaceInDrawnOrder(HostDocument& document);
/// All that the drawing's spaces hold: model first.
EntityIds allEntities(HostDocument& document);

/// Neither invisible nor on a layer that is off or frozen.
bool isShown(const AcDbEntity& entity);

/// Appends a new entity to the current space and closes it. False, after a message, when that
/// fails; the entity is deleted then.
bool appendEntity(HostApp& app, AcDbEntity* entity);

/// Calls `change` with each entity open for write; it returns whether it could be changed. Entities
/// on locked layers are left out. What could not be changed is counted in one message that says
/// "N <verb>", the rest in another. Returns how many were changed.
int changeEntities(HostApp& app, const EntityIds& ids, const std::string& verb,
                   const std::function<bool(AcDbEntity&)>& change);

}  // namespace tarn::host
