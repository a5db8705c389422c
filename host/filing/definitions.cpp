// Line types, styles of texts and names of applications: read as they are, so that another drawing
// can be given them.
#include <algorithm>
#include <array>

#include "base/text.h"
#include "host/database/objectaccess.h"
#include "host/filing/entitycodec.h"
#include "host/filing/tagvalues.h"

namespace tarn::host {

namespace {

struct DefinedKind {
  AcRxClass* (*description)();
  const char* type;
  const char* mark;
};
constexpr DefinedKind kKinds[] = {
    {&AcDbLinetypeTableRecord::desc, "LTYPE", "AcDbLinetypeTableRecord"},
    {&AcDbTextStyleTableRecord::desc, "STYLE", "AcDbTextStyleTableRecord"},
    {&AcDbRegAppTableRecord::desc, "APPID", "AcDbRegAppTableRecord"}};

const DefinedKind* kindOf(const AcDbObject& record) {
  for (const DefinedKind& kind : kKinds) {
    if (record.isKindOf(kind.description())) return &kind;
  }
  return nullptr;
}

constexpr short kDash = 49;
constexpr short kShapeFlags = 74;
constexpr short kShapeStyle = 340;

/// Dashes with a shape whose style the drawing does not have are plain ones.
ResbufItems withoutLostShapes(const ResbufItems& items) {
  ResbufItems kept;
  for (size_t i = 0; i < items.size(); ++i) {
    if (items[i].code != kShapeFlags) {
      kept.push_back(items[i]);
      continue;
    }
    const auto next = std::find_if(items.begin() + static_cast<std::ptrdiff_t>(i), items.end(),
                                   [](const ResbufItem& item) { return item.code == kDash; });
    const auto style =
        std::find_if(items.begin() + static_cast<std::ptrdiff_t>(i), next,
                     [](const ResbufItem& item) { return item.code == kShapeStyle; });
    const auto end = static_cast<size_t>(next - items.begin());
    const bool isLost = style != next && std::get<AcDbObjectId>(style->value).isNull();
    if (isLost) {
      kept.push_back({kShapeFlags, Adesk::Int16{0}});
    } else {
      kept.insert(kept.end(), items.begin() + static_cast<std::ptrdiff_t>(i), next);
    }
    i = end - 1;
  }
  return kept;
}

/// Every drawing has them.
bool isTakenForGranted(const std::wstring& name) {
  return equalsIgnoreCase(std::wstring_view(name), L"BYLAYER") ||
         equalsIgnoreCase(std::wstring_view(name), L"BYBLOCK");
}

/// A line type that nobody describes is a line without gaps.
ResbufItems plainLine() {
  return {{70, Adesk::Int16{0}},
          {3, std::wstring()},
          {72, Adesk::Int16{65}},
          {73, Adesk::Int16{0}},
          {40, 0.0}};
}

}  // namespace

const char* definedTableOf(const AcDbObject& record) {
  const DefinedKind* kind = kindOf(record);
  return kind != nullptr ? kind->type : nullptr;
}

void readDefinitions(DrawingBinding& binding) {
  for (const BoundObject& bound : binding.bound) {
    auto* record = AcDbSymbolTableRecord::cast(peek(bound.id));
    const DefinedKind* kind = record != nullptr ? kindOf(*record) : nullptr;
    if (kind == nullptr) continue;
    const TagView whole = binding.view(bound.first);
    const TagView own = binding.document.isOld() ? whole : whole.behind(kind->mark);
    const ResbufChain chain = chainOf(binding, own, [](const Tag& tag) {
      return tag.code != 0 && tag.code != 2 && tag.code != 5 && tag.code < 999;
    });
    ResbufItems items;
    if (chain != nullptr && itemsFrom(*chain, items)) {
      ObjectAccess::setDefinition(*record, std::move(items));
    }
  }
}

std::string writeDefinedRecord(const DrawingBinding& binding, const AcDbSymbolTableRecord& record,
                               std::uint64_t tableHandle) {
  const DefinedKind* kind = kindOf(record);
  const std::wstring name = recordName(record.objectId());
  if (kind == nullptr || (binding.document.isOld() && isTakenForGranted(name))) return {};
  TagEditor editor(binding.document, binding.encoding, kind->type);
  if (binding.hasHandles) editor.setHandle(5, record.handle().value());
  if (!editor.isOld()) {
    if (tableHandle != 0) editor.setHandle(330, tableHandle);
    editor.enter("AcDbSymbolTableRecord");
  }
  editor.enter(kind->mark);
  editor.setText(2, name);
  ResbufItems items = withoutLostShapes(ObjectAccess::definition(record));
  if (items.empty() && record.isKindOf(AcDbLinetypeTableRecord::desc())) items = plainLine();
  if (items.empty()) items = {{70, Adesk::Int16{0}}};
  const ResbufChain chain(chainFrom(items));
  for (const resbuf* item = chain.get(); item != nullptr; item = item->rbnext) {
    // In R12 a dash is no more than its length.
    if (editor.isOld() && (item->restype == kShapeFlags || item->restype == kShapeStyle)) continue;
    putValue(*item, editor);
  }
  writeExtendedData(binding, record, nullptr, editor);
  return editor.bytes();
}

}  // namespace tarn::host
