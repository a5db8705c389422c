#include "commoncode/cadutil/dictrecord.h"

#include <memory>

#include "acutads.h"
#include "dbdict.h"
#include "dbmain.h"
#include "dbxrecrd.h"

namespace tarn::cad {
namespace {

constexpr const ACHAR* kEmptyText = L"NULL";

struct ReleaseChain {
  void operator()(resbuf* chain) const { acutRelRb(chain); }
};
using Chain = std::unique_ptr<resbuf, ReleaseChain>;

struct CloseObject {
  void operator()(AcDbObject* object) const { object->close(); }
};
template <typename T>
using Opened = std::unique_ptr<T, CloseObject>;

Opened<AcDbDictionary> openRoot(AcDbDatabase* database, AcDb::OpenMode mode) {
  AcDbDictionary* root = nullptr;
  if (!database || database->getNamedObjectsDictionary(root, mode) != Acad::eOk) root = nullptr;
  return Opened<AcDbDictionary>(root);
}

template <typename T>
Opened<T> openEntry(const Opened<AcDbDictionary>& dictionary, const ACHAR* key,
                    AcDb::OpenMode mode) {
  AcDbObjectId id;
  T* object = nullptr;
  if (!dictionary || dictionary->getAt(key, id) != Acad::eOk ||
      acdbOpenObject(object, id, mode) != Acad::eOk) {
    object = nullptr;
  }
  return Opened<T>(object);
}

/// Adds a new object to the dictionary and hands it back open for write.
template <typename T>
Opened<T> addEntry(const Opened<AcDbDictionary>& dictionary, const ACHAR* key) {
  auto made = std::make_unique<T>();
  AcDbObjectId id;
  if (dictionary->setAt(key, made.get(), id) != Acad::eOk) return nullptr;
  return Opened<T>(made.release());
}

Chain readChain(const RecordPlace& place) {
  const auto root = openRoot(place.database, AcDb::kForRead);
  const auto dictionary = openEntry<AcDbDictionary>(root, place.dictionary, AcDb::kForRead);
  const auto record = openEntry<AcDbXrecord>(dictionary, place.key, AcDb::kForRead);
  resbuf* chain = nullptr;
  if (!record || record->rbChain(&chain) != Acad::eOk) return nullptr;
  return Chain(chain);
}

bool writeChain(const RecordPlace& place, const Chain& chain) {
  if (!chain) return false;
  Opened<AcDbDictionary> dictionary;
  {
    auto root = openRoot(place.database, AcDb::kForRead);
    dictionary = openEntry<AcDbDictionary>(root, place.dictionary, AcDb::kForWrite);
    if (!dictionary) {
      root.reset();
      root = openRoot(place.database, AcDb::kForWrite);
      if (!root || root->has(place.dictionary)) return false;
      dictionary = addEntry<AcDbDictionary>(root, place.dictionary);
    }
  }
  if (!dictionary) return false;
  auto record = openEntry<AcDbXrecord>(dictionary, place.key, AcDb::kForWrite);
  if (!record) {
    if (dictionary->has(place.key)) return false;
    record = addEntry<AcDbXrecord>(dictionary, place.key);
  }
  return record && record->setFromRbChain(*chain) == Acad::eOk;
}

}  // namespace

bool readInt(const RecordPlace& place, int& value) {
  const Chain chain = readChain(place);
  if (!chain || chain->restype != AcDb::kDxfInt32) return false;
  value = chain->resval.rlong;
  return true;
}

bool writeInt(const RecordPlace& place, int value) {
  return writeChain(place, Chain(acutBuildList(AcDb::kDxfInt32, value, RTNONE)));
}

bool readReal(const RecordPlace& place, double& value) {
  const Chain chain = readChain(place);
  if (!chain || chain->restype != AcDb::kDxfXReal) return false;
  value = chain->resval.rreal;
  return true;
}

bool writeReal(const RecordPlace& place, double value) {
  return writeChain(place, Chain(acutBuildList(AcDb::kDxfXReal, value, RTNONE)));
}

bool readTexts(const RecordPlace& place, std::vector<std::wstring>& texts) {
  const Chain chain = readChain(place);
  if (!chain) return false;
  std::vector<std::wstring> found;
  for (const resbuf* item = chain.get(); item; item = item->rbnext) {
    if (item->restype != AcDb::kDxfText || !item->resval.rstring) continue;
    const std::wstring text = item->resval.rstring;
    found.push_back(text == kEmptyText ? std::wstring() : text);
  }
  texts = std::move(found);
  return true;
}

bool writeTexts(const RecordPlace& place, const std::vector<std::wstring>& texts) {
  if (texts.empty()) return eraseRecord(place);
  Chain chain;
  for (auto text = texts.rbegin(); text != texts.rend(); ++text) {
    resbuf* item =
        acutBuildList(AcDb::kDxfText, text->empty() ? kEmptyText : text->c_str(), RTNONE);
    if (!item) return false;
    item->rbnext = chain.release();
    chain.reset(item);
  }
  return writeChain(place, chain);
}

bool eraseRecord(const RecordPlace& place) {
  const auto root = openRoot(place.database, AcDb::kForRead);
  if (!root) return false;
  const auto dictionary = openEntry<AcDbDictionary>(root, place.dictionary, AcDb::kForRead);
  if (!dictionary || !dictionary->has(place.key)) return true;
  const auto record = openEntry<AcDbXrecord>(dictionary, place.key, AcDb::kForWrite);
  return record && record->erase(true) == Acad::eOk;
}

}  // namespace tarn::cad
