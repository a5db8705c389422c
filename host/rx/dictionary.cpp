#include <map>
#include <string>

#include "base/text.h"
#include "rxclass.h"
#include "rxdict.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxDictionary, AcRxObject)

struct AcRxDictionary::Entries {
  std::map<std::wstring, AcRxObject*> byKey;
};

namespace {

std::wstring keyOf(const ACHAR* name) {
  return tarn::toLower(std::wstring_view(name));
}

}  // namespace

AcRxDictionary::AcRxDictionary(bool deletesObjects)
    : entries_(std::make_unique<Entries>()), deletesObjects_(deletesObjects) {}

AcRxDictionary::~AcRxDictionary() {
  if (!deletesObjects_) return;
  for (const auto& entry : entries_->byKey) delete entry.second;
}

AcRxObject* AcRxDictionary::at(const ACHAR* key) const {
  if (key == nullptr) return nullptr;
  const auto found = entries_->byKey.find(keyOf(key));
  return found == entries_->byKey.end() ? nullptr : found->second;
}

AcRxObject* AcRxDictionary::atPut(const ACHAR* key, AcRxObject* object) {
  AcRxObject*& place = entries_->byKey[keyOf(key)];
  AcRxObject* const before = place;
  place = object;
  if (before == object || !deletesObjects_) return before == object ? nullptr : before;
  delete before;
  return nullptr;
}

AcRxObject* AcRxDictionary::remove(const ACHAR* key) {
  const auto found = entries_->byKey.find(keyOf(key));
  if (found == entries_->byKey.end()) return nullptr;
  AcRxObject* const object = found->second;
  entries_->byKey.erase(found);
  return object;
}

Adesk::UInt32 AcRxDictionary::numEntries() const {
  return static_cast<Adesk::UInt32>(entries_->byKey.size());
}

AcRxObject* AcRxDictionary::atIndex(Adesk::UInt32 index) const {
  if (index >= numEntries()) return nullptr;
  auto entry = entries_->byKey.begin();
  std::advance(entry, index);
  return entry->second;
}

// Both registries live until the process ends: modules may still ask while it is being left.
AcRxDictionary* acrxSysRegistry() {
  static AcRxDictionary* const registry = [] {
    auto* made = new AcRxDictionary;
    made->atPut(ACRX_CLASS_DICTIONARY, acrxClassDictionaryPtr());
    return made;
  }();
  return registry;
}

AcRxDictionary* acrxClassDictionaryPtr() {
  static auto* const classes = new AcRxDictionary(true);
  return classes;
}
