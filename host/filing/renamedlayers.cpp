#include "host/filing/renamedlayers.h"

#include "base/text.h"
#include "dbsymtb.h"
#include "host/database/objectaccess.h"
#include "host/filing/entitycodec.h"

namespace tarn::host {

namespace {

constexpr int kLayer = 8;
constexpr int kLayerInData = 1003;

}  // namespace

/// Layers that the file does not define are known by what names them.
RenamedLayers::RenamedLayers(const DrawingBinding& binding) : binding_(binding) {
  const auto compare = [&](std::string_view name, AcDbObjectId id) {
    const auto* layer = AcDbLayerTableRecord::cast(peek(id));
    if (layer == nullptr || layer->isErased() || !ObjectAccess::isChanged(id)) return;
    const std::wstring before = binding.encoding.decode(name);
    const std::wstring now = recordName(id);
    if (before.empty() || equalsIgnoreCase(std::wstring_view(before), std::wstring_view(now))) {
      return;
    }
    names_.emplace(name, binding.encoding.encode(now));
  };
  for (const auto& [name, id] : binding.layers) compare(name, id);
  for (const BoundObject& bound : binding.bound) {
    if (!bound.id.isValid() || bound.id.objectClass() != AcDbLayerTableRecord::desc()) continue;
    if (const Tag* name = binding.view(bound.first).find(2)) {
      compare(binding.document.text(*name), bound.id);
    }
  }
}

/// In objects that are no entities code 8 has other meanings.
const std::string* RenamedLayers::newNameAt(const TagDocument& document, std::uint32_t tag,
                                            std::string_view type) const {
  const int code = document.tag(tag).code;
  if (code != kLayerInData && (code != kLayer || type == "XRECORD" || type == "SECTION")) {
    return nullptr;
  }
  const auto found = names_.find(document.text(document.tag(tag)));
  return found != names_.end() ? &found->second : nullptr;
}

bool RenamedLayers::isNamedIn(std::uint32_t object) const {
  const TagRange tags = binding_.document.tagsOf(object);
  const std::string_view type = binding_.document.typeOf(object);
  for (std::uint32_t i = tags.begin; i < tags.end; ++i) {
    if (newNameAt(binding_.document, i, type) != nullptr) return true;
  }
  return false;
}

std::string RenamedLayers::changed(const TagDocument& document, TagRange tags,
                                   bool isWrittenAnew) const {
  const std::string_view bytes = document.bytes();
  std::string out;
  size_t at = document.startOf(tags.begin);
  std::string_view type;
  for (std::uint32_t i = tags.begin; i < tags.end; ++i) {
    const Tag& tag = document.tag(i);
    if (tag.code == 0) type = document.word(tag);
    const std::string* name = newNameAt(document, i, type);
    AcDbObjectId other;
    if (name != nullptr && isWrittenAnew) {
      const auto* layers = AcDbLayerTable::cast(peek(binding_.database->layerTableId()));
      const std::wstring old = binding_.encoding.decode(document.text(tag));
      if (layers->getIdAt(old.c_str(), other) == Acad::eOk) name = nullptr;
    }
    if (name == nullptr) continue;
    out.append(bytes.substr(at, tag.offset - at)).append(*name);
    at = tag.offset + document.text(tag).size();
  }
  return out.append(bytes.substr(at, document.startOf(tags.end) - at));
}

std::string RenamedLayers::renamed(std::uint32_t object) const {
  return changed(binding_.document, binding_.document.tagsOf(object), false);
}

std::string RenamedLayers::renamed(std::string bytes) const {
  const auto part = TagDocument::partOf(std::move(bytes), binding_.document.version(), true);
  if (!part) return {};
  const auto count = static_cast<std::uint32_t>(part.value().tags().size());
  return changed(part.value(), {0, count}, true);
}

}  // namespace tarn::host
