#include "host/filing/framevariables.h"

#include "base/text.h"
#include "dbdict.h"
#include "host/database/objectaccess.h"
#include "host/filing/drawingbinding.h"
#include "host/filing/objectcodec.h"

namespace tarn::host {

namespace {

constexpr Adesk::Int16 kUsual = 1;

struct Kind {
  const wchar_t* entry;
  const char* type;
  const char* mark;
  const wchar_t* application;
  Adesk::Int16 (AcDbDatabase::*mode)() const;
  bool isOfImages;
};

constexpr Kind kKinds[] = {{L"ACAD_IMAGE_VARS", "RASTERVARIABLES", "AcDbRasterVariables", L"ISM",
                            &AcDbDatabase::imageFrame, true},
                           {L"ACAD_WIPEOUT_VARS", "WIPEOUTVARIABLES", "AcDbWipeoutVariables",
                            L"WipeOut", &AcDbDatabase::wipeoutFrame, false}};

/// Wherever such an object is named, and also an entry of the name that leads to nothing.
bool isThere(const DrawingBinding& binding, const Kind& kind) {
  const AcDbObjectId root = binding.database->namedObjectsDictionaryId();
  auto* dictionary = AcDbDictionary::cast(peek(root));
  if (dictionary == nullptr) return true;
  const ObjectAccess::Look look(*dictionary);
  AcDbObjectId id;
  if (dictionary->getAt(kind.entry, id) == Acad::eOk) return true;
  for (const BoundObject& bound : binding.bound) {
    if (binding.document.typeOf(bound.first) == kind.type && !bound.id.isErased()) return true;
    if (bound.id != root) continue;
    for (const DictionaryEntry& entry : entriesOf(binding.view(bound.first))) {
      if (equalsIgnoreCase(std::wstring_view(entry.name), std::wstring_view(kind.entry)))
        return true;
    }
  }
  return false;
}

std::string objectBytes(const DrawingBinding& binding, const Kind& kind, std::uint64_t handle) {
  TagEditor editor(binding.document, binding.encoding, kind.type);
  editor.setHandle(5, handle);
  editor.setHandle(330, binding.database->namedObjectsDictionaryId().handle().value());
  editor.enter(kind.mark);
  if (kind.isOfImages) editor.addInteger(90, 0);
  editor.addInteger(70, (binding.database.get()->*kind.mode)());
  if (kind.isOfImages) {
    constexpr int kGoodPictures = 1;
    constexpr int kNoUnits = 0;
    editor.addInteger(71, kGoodPictures);
    editor.addInteger(72, kNoUnits);
  }
  return editor.bytes();
}

std::string classBytes(const DrawingBinding& binding, const Kind& kind) {
  TagEditor editor(binding.document, binding.encoding, "CLASS");
  editor.addWord(1, kind.type);
  editor.addWord(2, kind.mark);
  editor.addText(3, kind.application);
  editor.addInteger(90, 0);
  if (binding.document.version() >= "AC1018") editor.addInteger(91, 1);
  editor.addInteger(280, 0);
  editor.addInteger(281, 0);
  return editor.bytes();
}

}  // namespace

std::vector<AddedObject> missingFrameObjects(DrawingBinding& binding) {
  std::vector<AddedObject> missing;
  if (binding.document.isOld()) return missing;
  std::uint32_t number = 0;
  for (const Kind& kind : kKinds) {
    const std::uint32_t place = number++;
    if ((binding.database.get()->*kind.mode)() == kUsual || isThere(binding, kind)) continue;
    const std::uint64_t handle =
        binding.partHandle(binding.database->namedObjectsDictionaryId(), place);
    missing.push_back({kind.entry, handle, kind.type, objectBytes(binding, kind, handle),
                       classBytes(binding, kind)});
  }
  return missing;
}

}  // namespace tarn::host
