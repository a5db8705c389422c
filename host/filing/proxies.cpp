#include "host/filing/proxies.h"

#include <memory>

#include "base/text.h"
#include "host/database/memoryfiler.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingbinding.h"
#include "rxclass.h"
#include "rxdict.h"

namespace tarn::host {

namespace {

std::wstring textOf(const ACHAR* text) {
  return text != nullptr ? text : L"";
}

/// Only what every entity has.
void copyCommon(AcDbEntity& from, AcDbEntity& to) {
  const ObjectAccess::Look look(from);
  MemoryFiler out;
  from.AcDbEntity::dwgOutFields(&out);
  MemoryFiler in(out.bytes());
  to.AcDbEntity::dwgInFields(&in);
}

}  // namespace

AcDbProxyEntity* makeFileProxy(DrawingBinding& binding, const TagView& tags) {
  if (!binding.classes) {
    binding.classes.emplace();
    const DrawingSection* section = binding.document.section("CLASSES");
    for (std::uint32_t i = section != nullptr ? section->firstObject + 1 : 0;
         section != nullptr && i < section->endObject; ++i) {
      const TagView record = binding.view(i);
      if (record.type() != "CLASS") continue;
      (*binding.classes)[record.text(1)] = {
          record.text(2), record.text(1), record.text(3), record.integer(90), {}};
    }
  }
  const auto found = binding.classes->find(std::wstring(tags.type().begin(), tags.type().end()));
  if (found == binding.classes->end()) return nullptr;
  auto* proxy = new AcDbProxyEntity;
  ProxyAccess::setFacts(*proxy, found->second);
  return proxy;
}

AcDbObject* readFiled(const AcRxClass& description, const std::vector<char>& bytes) {
  std::unique_ptr<AcRxObject> made(description.create());
  auto* object = AcDbObject::cast(made.get());
  MemoryFiler in(bytes);
  const Acad::ErrorStatus status = object != nullptr ? object->dwgIn(&in) : Acad::eMakeMeProxy;
  if (status == Acad::eOk) return static_cast<AcDbObject*>(made.release());
  if (status != Acad::eMakeMeProxy || !description.isDerivedFrom(AcDbEntity::desc())) {
    return nullptr;
  }
  auto proxy = std::make_unique<AcDbProxyEntity>();
  MemoryFiler common(bytes);
  if (proxy->AcDbEntity::dwgInFields(&common) != Acad::eOk) return nullptr;
  ProxyAccess::setFacts(*proxy, {textOf(description.name()), textOf(description.dxfName()),
                                 textOf(description.appName()), description.proxyFlags(), bytes});
  return proxy.release();
}

bool takePlace(AcDbObjectId proxy, AcDbEntity* entity) {
  auto* standing = AcDbEntity::cast(peek(proxy));
  if (standing == nullptr || ObjectAccess::isOpen(*standing)) return false;
  copyCommon(*standing, *entity);
  ObjectAccess::exchange(proxy, entity);
  return true;
}

size_t resurrectFiled(AcDbDatabase& database) {
  size_t made = 0;
  for (const auto& [handle, slot] : ObjectAccess::state(database).stubs) {
    const auto* proxy = AcDbProxyEntity::cast(slot->object.get());
    if (proxy == nullptr || ProxyAccess::facts(*proxy).filed.empty()) continue;
    const auto* description = static_cast<AcRxClass*>(
        acrxClassDictionary->at(ProxyAccess::facts(*proxy).className.c_str()));
    if (description == nullptr) continue;
    std::unique_ptr<AcDbObject> object(readFiled(*description, ProxyAccess::facts(*proxy).filed));
    auto* entity = AcDbEntity::cast(object.get());
    if (entity == nullptr || entity->isKindOf(AcDbProxyEntity::desc())) continue;
    const std::wstring application = ProxyAccess::facts(*proxy).application;
    if (!takePlace(AcDbObjectId(slot), entity)) continue;
    object.release();  // NOLINT(bugprone-unused-return-value): the database owns it now.
    ++made;
    ObjectAccess::tell(database, [&](AcDbDatabaseReactor& reactor) {
      reactor.proxyResurrectionCompleted(&database, application.c_str());
    });
  }
  return made;
}

}  // namespace tarn::host
