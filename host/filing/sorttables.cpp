// In which order blocks are drawn, in drawing files.
#include "dbsymtb.h"
#include "host/database/objectaccess.h"
#include "host/filing/objectcodec.h"
#include "host/filing/renamedrecords.h"
#include "host/filing/tagvalues.h"
#include "sorttab.h"

namespace tarn::host {

namespace {

constexpr const char* kMark = "AcDbSortentsTable";
constexpr int kBlock = 330;
constexpr int kEntity = 331;
constexpr int kPlace = 5;

/// A place follows its entity. Entities that nobody here understands have theirs too.
AcDbSortentsTable::Places placesOf(const TagView& own) {
  AcDbSortentsTable::Places places;
  std::uint64_t entity = 0;
  own.forEach([&](const Tag& tag) {
    const std::uint64_t handle = parseHandle(own.document().word(tag));
    if (tag.code == kEntity) entity = handle;
    if (tag.code != kPlace || entity == 0) return;
    places[entity] = handle;
    entity = 0;
  });
  return places;
}

}  // namespace

AcDbSortentsTable* readSortTable(const DrawingBinding& binding, const TagView& tags) {
  const TagView own = tags.behind(kMark);
  const AcDbObjectId block = binding.find(own.reference(kBlock));
  if (AcDbBlockTableRecord::cast(peek(block)) == nullptr) return nullptr;
  auto* table = new AcDbSortentsTable;
  table->setPlaces(block, placesOf(own));
  return table;
}

std::string writeSortTable(const DrawingBinding& binding, const AcDbSortentsTable& table,
                           const BoundObject* old) {
  TagEditor editor = old != nullptr
                         ? editorOf(binding, old->first)
                         : TagEditor(binding.document, binding.encoding, "SORTENTSTABLE");
  if (old == nullptr) {
    editor.setHandle(5, table.handle().value());
    editor.setHandle(330, table.ownerId().handle().value());
  }
  editor.enter(kMark);
  if (old == nullptr) editor.addWord(kBlock, formatHandle(table.blockId().handle().value()));
  if (old == nullptr || placesOf(binding.view(old->first).behind(kMark)) != table.places()) {
    editor.remove({kEntity, kPlace});
    for (const auto& [entity, place] : table.places()) {
      editor.addWord(kEntity, formatHandle(entity));
      editor.addWord(kPlace, formatHandle(place));
    }
  }
  writeExtendedData(binding, table, old, editor);
  return editor.bytes();
}

}  // namespace tarn::host
