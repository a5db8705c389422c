// Stand-ins for entities whose class is not there.
#include <algorithm>

#include "dbfiler.h"
#include "dbproxy.h"
#include "host/database/recordfiling.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbProxyEntity, AcDbEntity, 0)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbProxyObject, AcDbObject)

namespace {

constexpr Adesk::Int32 kMostFiled = 1 << 28;

}  // namespace

Acad::ErrorStatus AcDbProxyEntity::subErase(Adesk::Boolean erasing) {
  if ((facts_.flags & kEraseAllowed) == 0) return Acad::eNotApplicable;
  return AcDbEntity::subErase(erasing);
}

Acad::ErrorStatus AcDbProxyEntity::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  for (const std::wstring* text : {&facts_.className, &facts_.dxfName, &facts_.application}) {
    filer->writeString(text->c_str());
  }
  filer->writeInt32(facts_.flags);
  filer->writeInt32(static_cast<Adesk::Int32>(facts_.filed.size()));
  for (const char byte : facts_.filed) filer->writeUInt8(static_cast<Adesk::UInt8>(byte));
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyEntity::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  tarn::host::ProxyFacts facts;
  Adesk::Int32 size = 0;
  for (std::wstring* text : {&facts.className, &facts.dxfName, &facts.application}) {
    if (tarn::host::readText(*filer, *text) != Acad::eOk) return filer->filerStatus();
  }
  filer->readInt32(&facts.flags);
  if (filer->readInt32(&size) != Acad::eOk) return filer->filerStatus();
  for (Adesk::Int32 i = 0; i < std::min(size, kMostFiled); ++i) {
    Adesk::UInt8 byte = 0;
    if (filer->readUInt8(&byte) != Acad::eOk) return filer->filerStatus();
    facts.filed.push_back(static_cast<char>(byte));
  }
  facts_ = std::move(facts);
  return filer->filerStatus();
}
