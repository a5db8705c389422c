#include "tests/host_filing/drawingfixture.h"

#include <set>

#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"
#include "host/filing/tagdocument.h"
#include "host/filing/tagview.h"

namespace tarn::host {

namespace {

/// What the file only takes for granted would be written once it changes.
struct Named {
  std::set<std::wstring> layers;
  std::set<std::uint64_t> handles;
};

Named namedIn(const std::string& bytes) {
  const auto parsed = TagDocument::parse(bytes, "file");
  Named named;
  if (!parsed) return named;
  const TagDocument& document = parsed.value();
  const TextEncoding encoding(document);
  for (std::uint32_t i = 0; i < document.objectCount(); ++i) {
    if (document.handleOf(i) != 0) named.handles.insert(document.handleOf(i));
    if (document.typeOf(i) != "LAYER") continue;
    named.layers.insert(TagView(document, encoding, i).text(2));
  }
  return named;
}

}  // namespace

void touchEverything(AcDbDatabase& database, const std::string& bytes) {
  const Named named = namedIn(bytes);
  for (Adesk::UInt64 handle = 1; handle < database.handseed().value(); ++handle) {
    AcDbObjectId id;
    AcDbObject* object = nullptr;
    if (database.getAcDbObjectId(id, false, AcDbHandle(handle)) != Acad::eOk) continue;
    if (acdbOpenAcDbObject(object, id, AcDb::kForWrite) != Acad::eOk) continue;
    const ACHAR* name = L"";
    const auto* layer = AcDbLayerTableRecord::cast(object);
    if (layer != nullptr) layer->getName(name);
    const bool inFile = object->isKindOf(AcDbEntity::desc()) || named.layers.count(name) > 0 ||
                        named.handles.count(handle) > 0;
    if (inFile) object->assertWriteEnabled();
    object->close();
  }
}

AcDbObjectIdArray modelEntities(AcDbDatabase& database) {
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  AcDbObjectIdArray ids;
  if (database.getBlockTable(blocks, AcDb::kForRead) != Acad::eOk) return ids;
  if (blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead) == Acad::eOk) {
    ids = space->entityIds();
    space->close();
  }
  blocks->close();
  return ids;
}

void appendToModel(AcDbDatabase& database, AcDbEntity* entity) {
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  ASSERT_EQ(database.getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(space->appendAcDbEntity(entity), Acad::eOk);
  entity->close();
  space->close();
  blocks->close();
}

testing::AssertionResult sameTags(const std::string& before, const std::string& after) {
  const auto a = TagDocument::parse(before, "before");
  const auto b = TagDocument::parse(after, "after");
  if (!a || !b) return testing::AssertionFailure() << a.message() << b.message();
  const TagDocument& one = a.value();
  const TagDocument& other = b.value();
  const size_t count = std::min(one.tags().size(), other.tags().size());
  for (size_t i = 0; i < count; ++i) {
    const Tag& x = one.tags()[i];
    const Tag& y = other.tags()[i];
    if (x.code == y.code && one.text(x) == other.text(y)) continue;
    return testing::AssertionFailure()
           << "line " << one.lineOf(static_cast<std::uint32_t>(i)) << ": " << x.code << " \""
           << one.text(x) << "\" became " << y.code << " \"" << other.text(y) << "\"";
  }
  if (one.tags().size() != other.tags().size()) {
    return testing::AssertionFailure()
           << one.tags().size() << " tags became " << other.tags().size();
  }
  return testing::AssertionSuccess();
}

}  // namespace tarn::host
