// Dictionaries, extended records, layers and classes into a drawing file.
#include <memory>
#include <set>

#include "acutads.h"
#include "dbdict.h"
#include "dbsymtb.h"
#include "dbxrecrd.h"
#include "host/database/objectaccess.h"
#include "host/filing/entitycodec.h"
#include "host/filing/framevariables.h"
#include "host/filing/objectcodec.h"
#include "host/filing/renamedrecords.h"
#include "host/filing/tagvalues.h"
#include "rxclass.h"

namespace tarn::host {

namespace {

constexpr int kSoftOwner = 350;
constexpr int kHardOwner = 360;
constexpr int kFrozenFlag = 1;
constexpr int kLockedFlag = 4;

TagEditor editorFor(const DrawingBinding& binding, const BoundObject* old, const char* type) {
  if (old == nullptr) return TagEditor(binding.document, binding.encoding, type);
  return editorOf(binding, old->first);
}

void beginNew(TagEditor& editor, const AcDbObject& object) {
  editor.setHandle(5, object.handle().value());
  editor.setHandle(330, object.ownerId().handle().value());
}

/// An object that is not in the file and will not be.
bool isOnlyImplied(const DrawingBinding& binding, AcDbObjectId id) {
  return binding.implied.count(id) > 0 && !ObjectAccess::isChanged(id);
}

/// The entry stands in the file as it is in the database, or names what the database does not know.
bool isKept(const DrawingBinding& binding, const DictionaryEntry& entry,
            const AcDbDictionary& dictionary) {
  const AcDbObjectId inFile = binding.find(entry.handle);
  if (inFile.isNull()) return true;
  AcDbObjectId now;
  if (dictionary.getAt(entry.name.c_str(), now) != Acad::eOk) return false;
  return now == inFile || isOnlyImplied(binding, now);
}

}  // namespace

std::string writeDictionary(const DrawingBinding& binding, const AcDbDictionary& dictionary,
                            const BoundObject* old, const std::vector<AddedObject>& added) {
  TagEditor editor = editorFor(binding, old, "DICTIONARY");
  const AcDbObject* owner = peek(dictionary.ownerId());
  const bool isExtension = owner != nullptr && !owner->isKindOf(AcDbDictionary::desc());
  if (old == nullptr) {
    beginNew(editor, dictionary);
    editor.enter("AcDbDictionary");
    if (isExtension) editor.setInteger(280, 1);
    editor.setInteger(281, 1);
  }
  editor.enter("AcDbDictionary");
  int ownerCode = old == nullptr && isExtension ? kHardOwner : kSoftOwner;
  std::vector<DictionaryEntry> standing;
  if (old != nullptr) {
    const TagView tags = binding.view(old->first);
    if (tags.has(360) && !tags.has(kSoftOwner)) ownerCode = kHardOwner;
    standing = entriesOf(tags);
    const std::uint32_t begin = tags.range().begin;
    // From the end, so that the places of the others stay.
    for (auto entry = standing.rbegin(); entry != standing.rend(); ++entry) {
      if (!isKept(binding, *entry, dictionary)) editor.removeAt(entry->tag - begin, 2);
    }
  }
  std::set<AcDbStub*> stands;
  for (const DictionaryEntry& entry : standing) {
    if (isKept(binding, entry, dictionary)) stands.insert(binding.find(entry.handle));
  }
  editor.toEnd();
  const std::unique_ptr<AcDbDictionaryIterator> iterator(dictionary.newIterator());
  for (; !iterator->done(); iterator->next()) {
    const AcDbObjectId id = iterator->objectId();
    if (stands.count(id) > 0 || isOnlyImplied(binding, id)) continue;
    editor.addText(3, iterator->name());
    editor.addWord(ownerCode, formatHandle(iterator->objectId().handle().value()));
  }
  for (const AddedObject& object : added) {
    editor.addText(3, object.entry);
    editor.addWord(ownerCode, formatHandle(object.handle));
  }
  writeExtendedData(binding, dictionary, old, editor);
  return editor.bytes();
}

std::string writeRecord(const DrawingBinding& binding, const AcDbXrecord& record,
                        const BoundObject* old) {
  TagEditor editor = editorFor(binding, old, "XRECORD");
  if (old == nullptr) beginNew(editor, record);
  editor.enterValues("AcDbXrecord");
  // R13 and R14 have no such flag.
  if (old == nullptr || editor.isNext(280)) editor.putInteger(280, record.mergeStyle());
  resbuf* chain = nullptr;
  if (record.rbChain(&chain) != Acad::eOk) return editor.bytes();
  for (const resbuf* item = chain; item != nullptr; item = item->rbnext) putValue(*item, editor);
  acutRelRb(chain);
  editor.removeRest();
  writeExtendedData(binding, record, old, editor);
  return editor.bytes();
}

std::string writeLayerRecord(const DrawingBinding& binding, const AcDbLayerTableRecord& layer,
                             const BoundObject* old, std::uint64_t tableHandle) {
  TagEditor editor = editorFor(binding, old, "LAYER");
  if (old == nullptr) {
    if (binding.hasHandles) editor.setHandle(5, layer.handle().value());
    if (!editor.isOld()) {
      if (tableHandle != 0) editor.setHandle(330, tableHandle);
      editor.enter("AcDbSymbolTableRecord");
    }
  }
  editor.enterOwn(kLayerMark);
  editor.setText(2, recordName(layer.objectId()));
  const int flags = (layer.isFrozen() ? kFrozenFlag : 0) | (layer.isLocked() ? kLockedFlag : 0);
  const int before = old != nullptr ? binding.view(old->first).own(kLayerMark).integer(70) : 0;
  editor.setInteger(70, (before & ~(kFrozenFlag | kLockedFlag)) | flags);
  const int color = layer.isOff() ? -layer.colorIndex() : layer.colorIndex();
  editor.setIntegerUnless(62, color, 1000, [&](long long inFile) {
    return layerColor(static_cast<int>(inFile)) == layer.colorIndex() &&
           (inFile < 0) == layer.isOff();
  });
  if (!layer.color().isByColor()) editor.remove({420, 430});
  if (!editor.isOld() && binding.document.version() >= "AC1015") {
    AcDbLayerTableRecord asRead;
    editor.setIntegerUnless(370, layer.lineWeight(), AcDb::kLnWtByLwDefault, [&](long long value) {
      asRead.setLineWeight(static_cast<AcDb::LineWeight>(value));
      return asRead.lineWeight() == layer.lineWeight();
    });
  }
  if (!editor.isOld() && binding.document.version() >= "AC1015") {
    editor.setInteger(290, layer.isPlottable() ? 1 : 0, 1);
  }
  if (old == nullptr) {
    const AcCmColor ownColor = layer.color();
    if (ownColor.isByColor() && binding.document.version() >= "AC1018") {
      editor.setInteger(420, ownColor.red() << 16 | ownColor.green() << 8 | ownColor.blue());
    }
    const std::wstring linetype = recordName(layer.linetypeObjectId());
    editor.setName(6, linetype.empty() ? L"CONTINUOUS" : linetype);
  }
  writeExtendedData(binding, layer, old, editor);
  return editor.bytes();
}

std::string writeClass(const DrawingBinding& binding, const AcRxClass& description) {
  TagEditor editor(binding.document, binding.encoding, "CLASS");
  editor.addText(1, description.dxfName());
  editor.addText(2, description.name());
  editor.addText(3, description.appName() != nullptr ? description.appName() : L"");
  editor.addInteger(90, description.proxyFlags());
  if (binding.document.version() >= "AC1018") editor.addInteger(91, 1);
  editor.addInteger(280, 0);
  editor.addInteger(281, description.isDerivedFrom(AcDbEntity::desc()) ? 1 : 0);
  return editor.bytes();
}

}  // namespace tarn::host
