// One entity of a drawing file into the database.
#include <cstdlib>

#include "host/database/objectaccess.h"
#include "host/filing/entitycodec.h"
#include "host/filing/proxies.h"
#include "rxclass.h"
#include "rxdict.h"

namespace tarn::host {

namespace {

constexpr int kByLayer = 256;
constexpr int kHighestColor = 255;
constexpr int kDefaultColor = 7;

/// How many objects an entity takes up with its vertices or attributes.
std::uint32_t extentOf(const DrawingBinding& binding, std::uint32_t object, std::uint32_t end) {
  const TagDocument& document = binding.document;
  const std::string_view type = document.typeOf(object);
  const char* part = nullptr;
  if (type == "POLYLINE") part = "VERTEX";
  if (type == "INSERT" && binding.view(object).integer(66) == 1) part = "ATTRIB";
  if (part == nullptr) return 1;
  std::uint32_t next = object + 1;
  while (next < end && document.typeOf(next) == part) ++next;
  if (next < end && document.typeOf(next) == "SEQEND") ++next;
  return next - object;
}

AcRxClass* registeredClass(const TagView& tags) {
  // A name in a file is plain ASCII when it is one of a class.
  const std::wstring name(tags.type().begin(), tags.type().end());
  for (Adesk::UInt32 i = 0; i < acrxClassDictionary->numEntries(); ++i) {
    auto* candidate = static_cast<AcRxClass*>(acrxClassDictionary->atIndex(i));
    if (candidate->dxfName() != nullptr && name == candidate->dxfName() &&
        candidate->isDerivedFrom(AcDbEntity::desc()) && codecOf(tags.type()) == nullptr) {
      return candidate;
    }
  }
  return nullptr;
}

/// An entity of a module's class, which keeps only what every entity has in the file.
AcDbEntity* makeRegistered(const TagView& tags) {
  AcRxClass* description = registeredClass(tags);
  AcRxObject* made = description != nullptr ? description->create() : nullptr;
  return static_cast<AcDbEntity*>(made);
}

AcDbObjectId addEntity(DrawingBinding& binding, AcDbEntity* entity, std::uint32_t object,
                       std::uint32_t count, AcDbObjectId block) {
  readCommon(binding, binding.view(object), *entity);
  const AcDbObjectId id = binding.add(entity, object, count);
  ObjectAccess::addEntityRead(*static_cast<AcDbBlockTableRecord*>(peek(block)), id);
  return id;
}

}  // namespace

Adesk::UInt16 entityColor(int inFile) {
  if (inFile == 0 || inFile == kByLayer) return static_cast<Adesk::UInt16>(inFile);
  const int index = std::abs(inFile);
  return static_cast<Adesk::UInt16>(index <= kHighestColor ? index : kDefaultColor);
}

Adesk::UInt16 layerColor(int inFile) {
  const int index = std::abs(inFile);
  return static_cast<Adesk::UInt16>(index >= 1 && index <= kHighestColor ? index : kDefaultColor);
}

void readCommon(DrawingBinding& binding, const TagView& tags, AcDbEntity& entity) {
  const Tag* layer = tags.find(8);
  entity.setLayer(binding.layerOf(layer != nullptr ? tags.document().text(*layer) : "0"));
  entity.setColorIndex(entityColor(tags.integer(62, kByLayer)));
  entity.setVisibility(tags.integer(60) == 1 ? AcDb::kInvisible : AcDb::kVisible);
  readProperties(binding, tags, entity);
}

std::uint32_t readEntity(DrawingBinding& binding, std::uint32_t object, std::uint32_t end,
                         AcDbObjectId block) {
  const std::uint32_t count = extentOf(binding, object, end);
  const TagView tags = binding.view(object);
  const EntityCodec* codec = codecOf(tags.type());
  AcDbEntity* entity = nullptr;
  if (!block.isNull()) {
    entity = codec != nullptr ? codec->read({binding, tags.own(codec->subclass), object, count})
                              : makeRegistered(tags);
  }
  if (entity != nullptr) {
    addEntity(binding, entity, object, count, block);
    return count;
  }
  ++binding.kept[std::string(tags.type())];
  if (codec != nullptr || block.isNull()) return count;
  AcDbObjectId id;
  if (AcDbEntity* proxy = makeFileProxy(binding, tags)) {
    id = addEntity(binding, proxy, object, count, block);
  }
  binding.waiting.push_back({object, block, id});
  return count;
}

size_t bindWaiting(DrawingBinding& binding) {
  std::vector<DrawingBinding::Waiting> left;
  size_t made = 0;
  for (const DrawingBinding::Waiting& waiting : binding.waiting) {
    const TagView tags = binding.view(waiting.object);
    AcDbEntity* entity = makeRegistered(tags);
    if (entity == nullptr) {
      left.push_back(waiting);
      continue;
    }
    if (waiting.proxy.isNull()) {
      addEntity(binding, entity, waiting.object, 1, waiting.block);
    } else if (!takePlace(waiting.proxy, entity)) {
      delete entity;
      left.push_back(waiting);
      continue;
    }
    const auto kept = binding.kept.find(std::string(tags.type()));
    if (kept != binding.kept.end() && --kept->second == 0) binding.kept.erase(kept);
    ++made;
  }
  binding.waiting = std::move(left);
  return made;
}

}  // namespace tarn::host
