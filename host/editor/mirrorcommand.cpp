// Entities mirrored along a line.
#include "acedads.h"
#include "dbblockref.h"
#include "dbdim.h"
#include "dbmleader.h"
#include "dbobjptr.h"
#include "dbtable.h"
#include "host/database/mirroring.h"
#include "host/editor/entities.h"
#include "host/editor/hostapp.h"
#include "host/editor/hostcommands.h"

namespace tarn::host {

namespace {

HostApp& app() {
  return *HostApp::instance();
}

/// The texts of an insertion stay legible like all others.
Acad::ErrorStatus mirrorInsertion(AcDbBlockReference& insertion, const AcGeMatrix3d& mirror) {
  std::vector<AcDbAttributeLine> lines = insertion.attributes();
  const Acad::ErrorStatus status = insertion.transformBy(mirror);
  for (AcDbAttributeLine& line : lines) {
    AcDbText alone;
    alone.setLine(line);
    line.transformBy(legible(alone, mirror));
  }
  return status == Acad::eOk ? insertion.setAttributes(std::move(lines)) : status;
}

bool mirrorEntity(AcDbEntity& entity, const AcGeMatrix3d& mirror) {
  // Their texts are part of what they are.
  if (entity.isKindOf(AcDbMLeader::desc()) || entity.isKindOf(AcDbTable::desc())) return false;
  if (auto* insertion = AcDbBlockReference::cast(&entity)) {
    return mirrorInsertion(*insertion, mirror) == Acad::eOk;
  }
  return entity.transformBy(legible(entity, mirror)) == Acad::eOk;
}

void mirrorCopies(const EntityIds& ids, const AcGeMatrix3d& mirror) {
  int copied = 0;
  int refused = 0;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* copy = nullptr;
    {
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
      if (entity.openStatus() == Acad::eOk) entity->getTransformedCopy(AcGeMatrix3d(), copy);
    }
    if (copy != nullptr && !mirrorEntity(*copy, mirror)) {
      delete copy;
      copy = nullptr;
    }
    if (copy != nullptr && appendEntity(app(), copy)) {
      ++copied;
    } else {
      ++refused;
    }
  }
  app().print("\n" + std::to_string(copied) + " mirrored.\n");
  if (refused > 0) app().print("\n" + std::to_string(refused) + " cannot be mirrored.\n");
}

}  // namespace

void mirrorCommand() {
  EntityIds ids;
  ads_point first = {0, 0, 0};
  ads_point second = {0, 0, 0};
  if (!selectForCommand(ids)) return;
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(nullptr, ACRX_T("\nFirst point of the mirror: "), first) != RTNORM) return;
  acedInitGet(RSG_NONULL, nullptr);
  if (acedGetPoint(first, ACRX_T("\nSecond point of the mirror: "), second) != RTNORM) return;
  if (first[0] == second[0] && first[1] == second[1]) {
    return failCommand(app(), "The points of the mirror are the same.");
  }
  acedInitGet(0, ACRX_T("Yes No"));
  ACHAR word[16] = {};
  const int answer = acedGetKword(ACRX_T("\nErase the originals? [Yes/No] <No>: "), word);
  if (answer != RTNORM && answer != RTNONE) return;
  const AcGeMatrix3d mirror = mirrorAlong({first[0], first[1], 0}, {second[0], second[1], 0});
  if (answer == RTNORM && word[0] == L'Y') {
    changeEntities(app(), ids, "mirrored",
                   [&](AcDbEntity& entity) { return mirrorEntity(entity, mirror); });
  } else {
    mirrorCopies(ids, mirror);
  }
}

}  // namespace tarn::host
