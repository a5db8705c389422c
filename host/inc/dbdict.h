// Dictionaries: objects of a drawing by name.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "acdb.h"
#include "dbmain.h"

class AcDbDictionaryIterator;

/// Names keep their case and are found without regard to it. Erased objects count as absent.
class ACADHOST_EXPORT AcDbDictionary : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDictionary);

  /// eKeyNotFound.
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id) const;
  template <class T>
  Acad::ErrorStatus getAt(const ACHAR* name, T*& object, AcDb::OpenMode mode) const {
    object = nullptr;
    AcDbObjectId id;
    const Acad::ErrorStatus status = getAt(name, id);
    return status == Acad::eOk ? acdbOpenObject(object, id, mode) : status;
  }
  bool has(const ACHAR* name) const;
  bool has(AcDbObjectId id) const;
  /// The name of an entry; freed by the caller with acutDelString.
  Acad::ErrorStatus nameAt(AcDbObjectId id, ACHAR*& name) const;
  Adesk::UInt32 numEntries() const;

  /// The dictionary's database owns the object, which stays open for write. An object that stood
  /// under the name is erased (eWasOpenForRead and so on when it cannot be).
  Acad::ErrorStatus setAt(const ACHAR* name, AcDbObject* object, AcDbObjectId& id);
  /// Takes the entry out; the object itself is not erased.
  Acad::ErrorStatus remove(const ACHAR* name);
  Acad::ErrorStatus remove(AcDbObjectId id);

  /// In the order of names; the caller's.
  AcDbDictionaryIterator* newIterator() const;

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  /// What it owns is erased and brought back with it.
  Acad::ErrorStatus subErase(Adesk::Boolean erasing) override;

 private:
  friend class AcDbDictionaryIterator;
  friend class tarn::host::ObjectAccess;
  struct Entry {
    std::wstring name;
    AcDbObjectId id;
  };
  std::map<std::wstring, Entry> entries_;
};

class ACADHOST_EXPORT AcDbDictionaryIterator {
 public:
  explicit AcDbDictionaryIterator(const AcDbDictionary& dictionary);
  bool done() const { return position_ >= static_cast<int>(entries_.size()); }
  bool next() {
    ++position_;
    return !done();
  }
  /// Only before done().
  const ACHAR* name() const { return entries_[static_cast<size_t>(position_)].name.c_str(); }
  AcDbObjectId objectId() const { return entries_[static_cast<size_t>(position_)].id; }

 private:
  std::vector<AcDbDictionary::Entry> entries_;
  int position_ = 0;
};
