#include "host/database/layouts.h"

#include <algorithm>
#include <memory>

#include "base/text.h"
#include "dbdict.h"
#include "dbents.h"
#include "dblayout.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace tarn::host {

namespace {

constexpr const ACHAR* kDictionary = ACRX_T("ACAD_LAYOUT");
constexpr const char* kModel = "Model";

/// The dictionary of layouts, made when it is missing; null id when that cannot be done.
AcDbObjectId layoutDictionary(AcDbDatabase& database, bool make) {
  AcDbObjectId id;
  const AcDbObjectPointer<AcDbDictionary> named(database.namedObjectsDictionaryId(),
                                                AcDb::kForRead);
  if (named.openStatus() != Acad::eOk || named->getAt(kDictionary, id) == Acad::eOk || !make) {
    return id;
  }
  if (named->upgradeOpen() != Acad::eOk) return id;
  auto* made = new AcDbDictionary;
  if (named->setAt(kDictionary, made, id) == Acad::eOk) {
    made->close();
  } else {
    delete made;
  }
  return id;
}

bool isPaper(const std::string& block) {
  return toLower(std::string_view(block)).rfind("*paper_space", 0) == 0;
}

struct SpaceBlock {
  AcDbObjectId id;
  std::string name;
};

/// The model's block and those of sheets, in the order of the table.
std::vector<SpaceBlock> spaceBlocks(AcDbDatabase& database) {
  std::vector<SpaceBlock> blocks;
  const AcDbObjectPointer<AcDbBlockTable> table(database.blockTableId(), AcDb::kForRead);
  if (table.openStatus() != Acad::eOk) return blocks;
  for (const AcDbObjectId& id : table->recordIds()) {
    const AcDbObjectPointer<AcDbBlockTableRecord> record(id, AcDb::kForRead);
    const ACHAR* name = L"";
    if (record.openStatus() != Acad::eOk || !record->isLayout()) continue;
    record->getName(name);
    blocks.push_back({id, toUtf8(name)});
  }
  return blocks;
}

/// A name "Layout1", "Layout2" ... that no layout has.
std::string freeName(AcDbDatabase& database) {
  for (int number = 1;; ++number) {
    std::string name = "Layout" + std::to_string(number);
    if (layoutNamed(database, name).id.isNull()) return name;
  }
}

LayoutEntry enterLayout(AcDbDatabase& database, const std::string& name, AcDbObjectId block,
                        int order, bool model) {
  const AcDbObjectPointer<AcDbDictionary> all(layoutDictionary(database, true), AcDb::kForWrite);
  if (all.openStatus() != Acad::eOk) return {};
  auto* layout = new AcDbLayout;
  layout->setLayoutName(toWide(name).c_str());
  layout->setTabOrder(order);
  layout->setBlockTableRecordId(block);
  PlotData data;
  data.model = model;
  if (model) data.showDisplay();
  LayoutAccess::setData(*layout, data);
  LayoutEntry entry{{}, block, name, order, model};
  if (all->setAt(toWide(name).c_str(), layout, entry.id) != Acad::eOk) {
    delete layout;
    return {};
  }
  layout->close();
  return entry;
}

Status nameFault(AcDbDatabase& database, const std::string& name) {
  if (trim(std::string_view(name)).empty()) return Status::error("A layout needs a name.");
  if (name.find_first_of("<>/\\\":;?*|,=`") != std::string::npos) {
    return Status::error("\"" + name + "\" has a character that a layout's name cannot have.");
  }
  if (!layoutNamed(database, name).id.isNull()) {
    return Status::error("There is a layout \"" + name + "\" already.");
  }
  return {};
}

/// The sheet of that name, or the sentence that says why it cannot be changed.
Result<LayoutEntry> changeableSheet(AcDbDatabase& database, const std::string& name) {
  LayoutEntry entry = layoutNamed(database, name);
  if (entry.id.isNull()) return Status::error("There is no layout \"" + name + "\".");
  if (entry.isModel) return Status::error("The layout \"Model\" always stays.");
  return entry;
}

}  // namespace

std::vector<LayoutEntry> layoutsOf(AcDbDatabase& database) {
  std::vector<LayoutEntry> entries;
  const AcDbObjectPointer<AcDbDictionary> all(layoutDictionary(database, false), AcDb::kForRead);
  if (all.openStatus() != Acad::eOk) return entries;
  const std::unique_ptr<AcDbDictionaryIterator> each(all->newIterator());
  for (; !each->done(); each->next()) {
    const AcDbObjectPointer<AcDbLayout> layout(each->objectId(), AcDb::kForRead);
    if (layout.openStatus() != Acad::eOk) continue;
    const bool model = LayoutAccess::data(*layout.object()).model;
    entries.push_back({each->objectId(), layout->getBlockTableRecordId(), toUtf8(each->name()),
                       layout->getTabOrder(), model});
  }
  std::stable_sort(entries.begin(), entries.end(), [](const LayoutEntry& a, const LayoutEntry& b) {
    return a.isModel != b.isModel ? a.isModel : a.order < b.order;
  });
  return entries;
}

LayoutEntry layoutNamed(AcDbDatabase& database, const std::string& name) {
  for (const LayoutEntry& entry : layoutsOf(database)) {
    if (toLower(std::wstring_view(toWide(entry.name))) ==
        toLower(std::wstring_view(toWide(name)))) {
      return entry;
    }
  }
  return {};
}

void completeLayouts(AcDbDatabase& database) {
  const std::vector<LayoutEntry> present = layoutsOf(database);
  int order = 0;
  for (const LayoutEntry& entry : present) order = std::max(order, entry.order);
  for (const SpaceBlock& block : spaceBlocks(database)) {
    const bool known = std::any_of(present.begin(), present.end(), [&](const LayoutEntry& entry) {
      return entry.block == block.id;
    });
    if (known) continue;
    if (isPaper(block.name)) {
      enterLayout(database, freeName(database), block.id, ++order, false);
    } else {
      enterLayout(database, kModel, block.id, 0, true);
    }
  }
}

Result<LayoutEntry> addLayout(AcDbDatabase& database, const std::string& name) {
  if (Status fault = nameFault(database, name); !fault) return fault;
  const AcDbObjectPointer<AcDbBlockTable> blocks(database.blockTableId(), AcDb::kForWrite);
  if (blocks.openStatus() != Acad::eOk) return Status::error("The drawing cannot be changed.");
  std::wstring blockName = ACDB_PAPER_SPACE;
  for (int number = 0; blocks->has(blockName.c_str()); ++number) {
    blockName = ACDB_PAPER_SPACE + std::to_wstring(number);
  }
  auto* record = new AcDbBlockTableRecord;
  record->setName(blockName.c_str());
  AcDbObjectId block;
  if (blocks->add(block, record) != Acad::eOk) {
    delete record;
    return Status::error("The layout \"" + name + "\" cannot be added.");
  }
  record->close();
  int order = 0;
  for (const LayoutEntry& entry : layoutsOf(database)) order = std::max(order, entry.order);
  return enterLayout(database, name, block, order + 1, false);
}

Status renameLayout(AcDbDatabase& database, const std::string& from, const std::string& to) {
  Result<LayoutEntry> entry = changeableSheet(database, from);
  if (!entry) return entry.status();
  if (Status fault = nameFault(database, to); !fault) return fault;
  const AcDbObjectPointer<AcDbDictionary> all(layoutDictionary(database, false), AcDb::kForWrite);
  const AcDbObjectPointer<AcDbLayout> layout(entry.value().id, AcDb::kForWrite);
  if (all.openStatus() != Acad::eOk || layout.openStatus() != Acad::eOk) {
    return Status::error("The layout \"" + from + "\" is in use.");
  }
  all->remove(toWide(entry.value().name).c_str());
  AcDbObjectId id;
  all->setAt(toWide(to).c_str(), layout.object(), id);
  layout->setLayoutName(toWide(to).c_str());
  return {};
}

Status deleteLayout(AcDbDatabase& database, const std::string& name) {
  Result<LayoutEntry> entry = changeableSheet(database, name);
  if (!entry) return entry.status();
  if (layoutsOf(database).size() <= 2) {
    return Status::error("\"" + name + "\" is the only layout of the drawing.");
  }
  const AcDbObjectPointer<AcDbBlockTableRecord> block(entry.value().block, AcDb::kForWrite);
  const AcDbObjectPointer<AcDbLayout> layout(entry.value().id, AcDb::kForWrite);
  if (block.openStatus() != Acad::eOk || layout.openStatus() != Acad::eOk) {
    return Status::error("The layout \"" + name + "\" is in use.");
  }
  for (const AcDbObjectId& id : block->entityIds()) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    if (entity.openStatus() == Acad::eOk) entity->erase();
  }
  block->erase();
  layout->erase();
  return {};
}

LayoutViewports viewportsOf(AcDbObjectId block) {
  LayoutViewports found;
  const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
  if (record.openStatus() != Acad::eOk) return found;
  for (const AcDbObjectId& id : record->entityIds()) {
    const AcDbObjectPointer<AcDbViewport> viewport(id, AcDb::kForRead);
    if (viewport.openStatus() != Acad::eOk) continue;
    if (viewport->number() == 1 && found.sheet.isNull()) {
      found.sheet = id;
    } else {
      found.views.push_back(id);
    }
  }
  return found;
}

}  // namespace tarn::host
