// Commands that change entities.
#include <cmath>

#include "acedads.h"
#include "base/text.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "host/editor/documents.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"
#include "host/editor/picking.h"
#include "host/editor/sysvars.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

SelectionMemory& memory() {
  return app().documents().current().selection();
}

AcGePoint3d pointOf(const ads_point point) {
  return {point[0], point[1], point[2]};
}

int transformEntities(const EntityIds& ids, const AcGeMatrix3d& matrix, const std::string& verb) {
  return changeEntities(app(), ids, verb, [&](AcDbEntity& entity) {
    return entity.transformBy(matrix) == Acad::eOk;
  });
}

void copyEntities(const EntityIds& ids, const AcGeMatrix3d& matrix) {
  int copied = 0;
  int refused = 0;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* copy = nullptr;
    {
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
      if (entity.openStatus() == Acad::eOk) entity->getTransformedCopy(matrix, copy);
    }
    if (copy != nullptr && appendEntity(app(), copy)) {
      ++copied;
    } else {
      ++refused;
    }
  }
  app().print("\n" + std::to_string(copied) + " copied.\n");
  if (refused > 0) app().print("\n" + std::to_string(refused) + " cannot be copied.\n");
}

/// Base point, or the keyword for a displacement.
enum class Base { kPoint, kDisplacement, kNone };

Base askBase(ads_point base) {
  acedInitGet(0, ACRX_T("Displacement"));
  const int answer =
      acedGetPoint(nullptr, ACRX_T("\nBase point or [Displacement] <Displacement>: "), base);
  if (answer == RTNORM) return Base::kPoint;
  if (answer == RTCAN) return Base::kNone;
  return acedGetPoint(nullptr, ACRX_T("\nDisplacement: "), base) == RTNORM ? Base::kDisplacement
                                                                           : Base::kNone;
}

AcGeMatrix3d shift(const ads_point from, const ads_point to) {
  return AcGeMatrix3d::translation(pointOf(to) - pointOf(from));
}

/// A number typed, or the relation of a new measure to a reference: for ROTATE and SCALE.
bool askReference(bool isAngle, const ads_point base, double& value) {
  ads_real reference = isAngle ? 0.0 : 1.0;
  ads_real wanted = 0;
  const auto ask = [&](const ACHAR* prompt, ads_real& answer, int bits) {
    acedInitGet(bits, nullptr);
    return isAngle ? acedGetAngle(base, prompt, &answer) : acedGetDist(nullptr, prompt, &answer);
  };
  const int bits = isAngle ? 0 : RSG_NOZERO | RSG_NONEG;
  const int first =
      ask(isAngle ? ACRX_T("\nReference angle <0>: ") : ACRX_T("\nReference length <1>: "),
          reference, bits);
  if (first != RTNORM && first != RTNONE) return false;
  if (ask(isAngle ? ACRX_T("\nNew angle: ") : ACRX_T("\nNew length: "), wanted,
          bits | RSG_NONULL) != RTNORM) {
    return false;
  }
  value = isAngle ? wanted - reference : wanted / reference;
  return true;
}

/// Indices of an entity's grips within reach of a place.
AcDbIntArray gripsAt(const AcDbEntity& entity, const AcGePoint3d& place, double reach) {
  AcGePoint3dArray grips;
  AcDbIntArray modes;
  AcDbIntArray ids;
  AcDbIntArray indices;
  entity.getGripPoints(grips, modes, ids);
  for (int i = 0; i < grips.length(); ++i) {
    if (grips[i].distanceTo(place) <= reach) indices.append(i);
  }
  return indices;
}

/// Those that have a grip within reach of the place.
EntityIds grippedAt(const EntityIds& ids, const AcGePoint3d& place, double reach) {
  EntityIds gripped;
  for (const AcDbObjectId& id : ids) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() == Acad::eOk && !gripsAt(*entity.object(), place, reach).isEmpty()) {
      gripped.push_back(id);
    }
  }
  return gripped;
}

}  // namespace

bool selectForCommand(EntityIds& ids) {
  ads_name set = {0, 0};
  if (acedSSGet(nullptr, nullptr, nullptr, nullptr, set) != RTNORM) return false;
  ids = memory().previous;
  acedSSFree(set);
  return true;
}

void eraseCommand() {
  EntityIds ids;
  if (!selectForCommand(ids)) return;
  EntityIds erased;
  changeEntities(app(), ids, "erased", [&](AcDbEntity& entity) {
    if (entity.erase() != Acad::eOk) return false;
    erased.push_back(entity.objectId());
    return true;
  });
  if (!erased.empty()) memory().erased = erased;
}

void oopsCommand() {
  int back = 0;
  for (const AcDbObjectId& id : memory().erased) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenObject(entity, id, AcDb::kForWrite, true) != Acad::eOk) continue;
    if (entity->isErased() && entity->erase(false) == Acad::eOk) ++back;
    entity->close();
  }
  memory().erased.clear();
  app().print("\n" + std::to_string(back) + " brought back.\n");
}

void moveCommand() {
  EntityIds ids;
  ads_point base = {0, 0, 0};
  ads_point to = {0, 0, 0};
  if (!selectForCommand(ids)) return;
  const Base kind = askBase(base);
  if (kind == Base::kNone) return;
  AcGeMatrix3d matrix = AcGeMatrix3d::translation(pointOf(base).asVector());
  if (kind == Base::kPoint) {
    const int answer =
        acedGetPoint(base, ACRX_T("\nSecond point or <use first point as displacement>: "), to);
    if (answer == RTCAN) return;
    if (answer == RTNORM) matrix = shift(base, to);
  }
  transformEntities(ids, matrix, "moved");
}

void copyCommand() {
  EntityIds ids;
  ads_point base = {0, 0, 0};
  ads_point to = {0, 0, 0};
  if (!selectForCommand(ids)) return;
  const Base kind = askBase(base);
  if (kind == Base::kNone) return;
  const AcGeMatrix3d asShift = AcGeMatrix3d::translation(pointOf(base).asVector());
  if (kind == Base::kDisplacement) return copyEntities(ids, asShift);
  int answer =
      acedGetPoint(base, ACRX_T("\nSecond point or <use first point as displacement>: "), to);
  if (answer == RTNONE) return copyEntities(ids, asShift);
  while (answer == RTNORM) {
    copyEntities(ids, shift(base, to));
    answer = acedGetPoint(base, ACRX_T("\nSecond point or <end>: "), to);
  }
}

void rotateCommand() {
  EntityIds ids;
  ads_point base = {0, 0, 0};
  if (!selectForCommand(ids)) return;
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nBase point: "), base) != RTNORM) return;
  acedInitGet(RSG_NONULL, ACRX_T("Reference"));
  ads_real angle = 0;
  const int answer = acedGetAngle(base, ACRX_T("\nRotation angle or [Reference]: "), &angle);
  if (answer == RTKWORD && !askReference(true, base, angle)) return;
  if (answer != RTNORM && answer != RTKWORD) return;
  transformEntities(ids, AcGeMatrix3d::rotation(angle, AcGeVector3d::kZAxis, pointOf(base)),
                    "rotated");
}

void scaleCommand() {
  EntityIds ids;
  ads_point base = {0, 0, 0};
  if (!selectForCommand(ids)) return;
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nBase point: "), base) != RTNORM) return;
  acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG, ACRX_T("Reference"));
  ads_real factor = 1;
  const int answer = acedGetDist(base, ACRX_T("\nScale factor or [Reference]: "), &factor);
  if (answer == RTKWORD && !askReference(false, base, factor)) return;
  if (answer != RTNORM && answer != RTKWORD) return;
  transformEntities(ids, AcGeMatrix3d::scaling(factor, pointOf(base)), "scaled");
}

void gripStretchCommand() {
  const EntityIds ids = usable(app(), memory().pickFirst, nullptr);
  if (ids.empty()) return failCommand(app(), "Select entities with grips before this command.");
  ads_point grip = {0, 0, 0};
  ads_point to = {0, 0, 0};
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nGrip point: "), grip) != RTNORM) return;
  const AcGePoint3d place = pointOf(grip);
  const double reach = app().mouseView().unitsPerPixel() * app().variables().shortOf("PICKBOX");
  const EntityIds gripped = grippedAt(ids, place, reach);
  if (gripped.empty()) return failCommand(app(), "There is no grip at that point.");
  acedInitGet(0, ACRX_T("Base eXit"));
  int answer = acedGetPoint(grip, ACRX_T("\nStretch to point or [Base/eXit]: "), to);
  ACHAR word[513] = {0};
  if (answer == RTKWORD) acedGetInput(word);
  if (word[0] == 'B') {
    acedInitGet(RSG_NONULL, nullptr);
    if (acedGetPoint(nullptr, ACRX_T("\nBase point: "), grip) != RTNORM) return;
    acedInitGet(0, ACRX_T("eXit"));
    answer = acedGetPoint(grip, ACRX_T("\nStretch to point or [eXit]: "), to);
  }
  if (answer != RTNORM) return;
  changeEntities(app(), gripped, "stretched", [&](AcDbEntity& entity) {
    return entity.moveGripPointsAt(gripsAt(entity, place, reach), pointOf(to) - pointOf(grip)) ==
           Acad::eOk;
  });
}

}  // namespace tarn::host
