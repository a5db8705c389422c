// Objects of the drawing database, how they are opened, and the database itself.
#pragma once

#include <memory>

#include "acdb.h"
#include "acutads.h"
#include "dbapserv.h"
#include "dbextents.h"
#include "dbid.h"
#include "gepnt2d.h"
#include "rxclass.h"
#include "rxobject.h"

class AcDbBlockTable;
class AcDbDatabase;
class AcDbDictionary;
class AcDbDimStyleTable;
class AcDbDwgFiler;
class AcDbEntity;
class AcDbLayerTable;
class AcDbObject;
class AcDbUCSTable;
class AcDbViewTable;
class AcDbViewportTable;

namespace tarn::host {
struct DatabaseState;
class ObjectAccess;
/// What undo and redo do to an object: nothing, change it, take it away, bring it back.
enum class Restoring : unsigned char { kNot, kChanged, kUnappended, kReappended };
}  // namespace tarn::host

/// Told about one object. The object is closed during the call and may be opened for read, but for
/// openedForModify() and goodbye().
class ACADHOST_EXPORT AcDbObjectReactor {
 public:
  AcDbObjectReactor() = default;
  AcDbObjectReactor(const AcDbObjectReactor&) = delete;
  AcDbObjectReactor& operator=(const AcDbObjectReactor&) = delete;
  virtual ~AcDbObjectReactor();
  /// The first change since it was opened for write is about to be made.
  virtual void openedForModify(const AcDbObject*) {}
  virtual void modified(const AcDbObject*) {}
  virtual void modifiedXData(const AcDbObject*) {}
  /// Undo or redo has changed it.
  virtual void modifyUndone(const AcDbObject*) {}
  /// It was opened for write and is again as it was then; see AcDbObject::cancel().
  virtual void cancelled(const AcDbObject*) {}
  /// A copy of it has come into a drawing.
  virtual void copied(const AcDbObject*, const AcDbObject* /*copy*/) {}
  /// Undo has taken away what was appended, or redo has brought it back.
  virtual void unappended(const AcDbObject*) {}
  virtual void reappended(const AcDbObject*) {}
  /// After all of the above, when it was open for write.
  virtual void objectClosed(const AcDbObjectId) {}
  virtual void erased(const AcDbObject*, Adesk::Boolean) {}
  /// The object is about to be destroyed.
  virtual void goodbye(const AcDbObject*) {}
};

/// Told about all objects of a drawing; rules as for AcDbObjectReactor.
class ACADHOST_EXPORT AcDbDatabaseReactor {
 public:
  AcDbDatabaseReactor() = default;
  AcDbDatabaseReactor(const AcDbDatabaseReactor&) = delete;
  AcDbDatabaseReactor& operator=(const AcDbDatabaseReactor&) = delete;
  virtual ~AcDbDatabaseReactor();
  virtual void objectAppended(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectUnAppended(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectReAppended(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectOpenedForModify(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectModified(const AcDbDatabase*, const AcDbObject*) {}
  virtual void objectErased(const AcDbDatabase*, const AcDbObject*, Adesk::Boolean /*erased*/) {}
  /// A variable of the drawing ("CLAYER", "LTSCALE"), also when undo brings it back.
  virtual void headerSysVarWillChange(const AcDbDatabase*, const ACHAR*) {}
  virtual void headerSysVarChanged(const AcDbDatabase*, const ACHAR*, Adesk::Boolean /*success*/) {}
  /// Stand-ins have become objects of a class that is there now.
  virtual void proxyResurrectionCompleted(const AcDbDatabase*, const ACHAR* /*application*/) {}
  /// The drawing is about to be destroyed.
  virtual void goodbye(const AcDbDatabase*) {}
};

/// An object that a database can own. A new one belongs to its maker until it is appended; from
/// then on the database owns it and it is reached by opening its id: for read (up to 256 readers),
/// for write (nobody else), or for notification. Reads assert that it is open, changes that it is
/// open for write; a breach ends the program with the name of the rule.
class ACADHOST_EXPORT AcDbObject : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbObject);
  AcDbObject();
  ~AcDbObject() override;

  AcDbObjectId objectId() const { return id_; }
  AcDbHandle handle() const { return id_.handle(); }
  AcDbObjectId ownerId() const { return ownerId_; }
  virtual Acad::ErrorStatus setOwnerId(AcDbObjectId owner);
  /// Null while no database owns the object.
  AcDbDatabase* database() const { return id_.database(); }

  /// Ends one opening. eInvalidOpenState when it is not open.
  Acad::ErrorStatus close();
  /// The same, but what was changed since it was opened for write is as it was before, and nobody
  /// is told of changes. A new object that was not closed yet is erased. Blocks, tables and
  /// dictionaries, which hold objects of their own, are closed.
  Acad::ErrorStatus cancel();
  /// eHadMultipleReaders unless this is the only reader; eInvalidOpenState when not open.
  Acad::ErrorStatus upgradeOpen();
  Acad::ErrorStatus downgradeOpen();
  /// Ends notification and opens for write; `wasWritable` tells that it already was.
  Acad::ErrorStatus upgradeFromNotify(Adesk::Boolean& wasWritable);
  Acad::ErrorStatus downgradeToNotify(Adesk::Boolean wasWritable);

  /// Marks as erased, or takes the mark off (open it with openErased for that). subErase() is
  /// called first and may refuse. eWasErased, eWasNotErased when the mark stands so already;
  /// eNotOpenForWrite, eNoDatabase.
  Acad::ErrorStatus erase(Adesk::Boolean erasing = Adesk::kTrue);

  bool isReadEnabled() const { return !isResident() || readers_ > 0 || writing_ || notifying_; }
  bool isWriteEnabled() const { return !isResident() || writing_; }
  bool isNotifyEnabled() const { return !isResident() || notifying_; }
  bool isErased() const { return erased_; }
  bool isModified() const { return modified_; }
  bool isModifiedGraphics() const { return graphicsModified_; }
  bool isNewObject() const { return appended_; }
  bool isReallyClosing() const { return readers_ + (writing_ ? 1 : 0) <= 1; }

  void assertReadEnabled() const;
  void assertWriteEnabled(Adesk::Boolean autoUndo = Adesk::kTrue,
                          Adesk::Boolean recordModified = Adesk::kTrue);
  void assertNotifyEnabled() const;

  /// Extended data of one application, its name first (code 1001), or of all of them; null when
  /// there is none. The chain is the caller's, released with acutRelRb.
  resbuf* xData(const ACHAR* application = nullptr) const;
  /// Puts the data of each application named in the chain in the place of what it had; a name with
  /// nothing behind it takes that away. eInvalidResBuf for other codes than 1000 to 1071 and for a
  /// chain that does not begin with a name, eRegappIdNotFound for a name that the drawing does not
  /// know (see acdbRegApp()).
  Acad::ErrorStatus setXData(const resbuf* chain);

  /// Where programs keep what they add to the object: the object owns it, it is copied, erased and
  /// brought back with it. Null when there is none, or an erased one.
  AcDbObjectId extensionDictionary() const;
  /// eAlreadyInDb when there is one. eNoDatabase, eNotOpenForWrite.
  Acad::ErrorStatus createExtensionDictionary();
  /// Erases an empty one. eNullObjectId when there is none, eContainerNotEmpty.
  Acad::ErrorStatus releaseExtensionDictionary();

  /// Transient reactors; not owned.
  void addReactor(AcDbObjectReactor* reactor) const;
  void removeReactor(AcDbObjectReactor* reactor) const;

  /// Whole object to or from a binary filer.
  Acad::ErrorStatus dwgOut(AcDbDwgFiler* filer) const;
  Acad::ErrorStatus dwgIn(AcDbDwgFiler* filer);
  virtual Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const;
  virtual Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer);

 protected:
  /// Extension points; a status other than eOk refuses.
  virtual Acad::ErrorStatus subOpen(AcDb::OpenMode mode);
  virtual Acad::ErrorStatus subErase(Adesk::Boolean erasing);
  virtual Acad::ErrorStatus subClose();

  void setModifiedGraphics(bool modified) { graphicsModified_ = modified; }

 private:
  friend class tarn::host::ObjectAccess;
  bool isResident() const { return !id_.isNull(); }
  void endWrite();
  void tellReactors(bool eraseChanged, bool modified);

  AcDbObjectId id_;
  AcDbObjectId ownerId_;
  AcDbObjectId copiedFrom_;
  AcDbObjectId extension_;
  int readers_ = 0;
  bool writing_ = false;
  bool notifying_ = false;
  bool erased_ = false;
  bool eraseChanged_ = false;
  bool modified_ = false;
  bool graphicsModified_ = false;
  bool appended_ = false;
  bool extendedModified_ = false;
  tarn::host::Restoring restoring_{};
  struct Reactors;
  mutable std::unique_ptr<Reactors> reactors_;
  struct ExtendedData;
  std::unique_ptr<ExtendedData> extendedData_;
};

/// One drawing. A new one has the layer "0", the blocks *Model_Space and *Paper_Space and their
/// layouts "Model" and "Layout1" in its dictionary of named objects. Owns all its objects.
class ACADHOST_EXPORT AcDbDatabase : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDatabase);
  explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
  ~AcDbDatabase() override;

  /// Takes ownership of a new object and leaves it open for write. eAlreadyInDb.
  Acad::ErrorStatus addAcDbObject(AcDbObjectId& id, AcDbObject* object);
  Acad::ErrorStatus addAcDbObject(AcDbObject* object);

  AcDbObjectId blockTableId() const;
  AcDbObjectId layerTableId() const;
  AcDbObjectId linetypeTableId() const;
  AcDbObjectId textStyleTableId() const;
  AcDbObjectId regAppTableId() const;
  AcDbObjectId namedObjectsDictionaryId() const;
  Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode) {
    return getBlockTable(table, mode);
  }
  Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode) {
    return getLayerTable(table, mode);
  }
  AcDbObjectId viewTableId() const;
  Acad::ErrorStatus getSymbolTable(AcDbViewTable*& table, AcDb::OpenMode mode);
  AcDbObjectId dimStyleTableId() const;
  Acad::ErrorStatus getSymbolTable(AcDbDimStyleTable*& table, AcDb::OpenMode mode);
  AcDbObjectId UCSTableId() const;
  Acad::ErrorStatus getSymbolTable(AcDbUCSTable*& table, AcDb::OpenMode mode);
  AcDbObjectId viewportTableId() const;
  Acad::ErrorStatus getSymbolTable(AcDbViewportTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode);

  AcDbObjectId layerZero() const;
  /// The scale of all patterns of lines.
  double ltscale() const;
  /// eInvalidInput unless above 0.
  Acad::ErrorStatus setLtscale(double scale);
  /// Lines are drawn as wide as their weight says, on the screen too.
  bool lineWeightDisplay() const;
  Acad::ErrorStatus setLineWeightDisplay(bool display);
  /// Whether frames of images are seen: 0 not, 1 they are, 2 only on the screen.
  Adesk::Int16 imageFrame() const;
  /// eInvalidInput unless 0 to 2. It is kept by drawings that have such variables.
  Acad::ErrorStatus setImageFrame(Adesk::Int16 mode);
  /// The same for wipeouts.
  Adesk::Int16 wipeoutFrame() const;
  Acad::ErrorStatus setWipeoutFrame(Adesk::Int16 mode);
  /// How points look: 0 a dot, 1 nothing, 2 a plus, 3 a cross, 4 a tick upwards; 32 more puts a
  /// circle around, 64 a square.
  Adesk::Int16 pdmode() const;
  Acad::ErrorStatus setPdmode(Adesk::Int16 mode);
  /// How large, in drawing units; below 0 in parts of a hundred of the view's height, 0 is 5 of
  /// them.
  double pdsize() const;
  Acad::ErrorStatus setPdsize(double size);
  /// The limits of the model, a frame that only plots and grids know.
  AcGePoint2d limmin() const;
  Acad::ErrorStatus setLimmin(const AcGePoint2d& corner);
  AcGePoint2d limmax() const;
  Acad::ErrorStatus setLimmax(const AcGePoint2d& corner);
  AcDbObjectId clayer() const;
  Acad::ErrorStatus setClayer(AcDbObjectId layer);

  /// eUnknownHandle when there is no object of that handle.
  Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                    const AcDbHandle& handle);
  AcDbHandle handseed() const;
  Adesk::Int32 approxNumObjects() const;

  /// Not owned; eDuplicateKey, eKeyNotFound.
  Acad::ErrorStatus addReactor(AcDbDatabaseReactor* reactor) const;
  Acad::ErrorStatus removeReactor(AcDbDatabaseReactor* reactor) const;

  /// Full path of the drawing; empty until it was read or saved.
  Acad::ErrorStatus getFilename(const ACHAR*& path) const;
  void setFilename(const ACHAR* path);

 private:
  friend class tarn::host::ObjectAccess;
  std::unique_ptr<tarn::host::DatabaseState> state_;
};

/// Opens an object: for read when nobody has it open for write or notification, for write when
/// nobody has it open at all, for notification unless it is so already. eNullObjectId,
/// ePermanentlyErased (its drawing is gone), eWasErased (unless `openErased`), eWasOpenForWrite,
/// eWasOpenForRead (write while there are readers), eWasOpenForNotify, eAtMaxReaders. `object` is
/// null unless eOk.
ACADHOST_EXPORT Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id,
                                                     AcDb::OpenMode mode, bool openErased = false);
/// eNotAnEntity for other objects.
ACADHOST_EXPORT Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id,
                                                     AcDb::OpenMode mode, bool openErased = false);

/// Makes the name of an application known to the working drawing, for extended data. RTNORM, also
/// for a name that it knows already; RTERROR without a drawing or for an empty name.
ACADHOST_EXPORT int acdbRegApp(const ACHAR* application);

/// Opens an object of one class; eNotThatKindOfClass for others, which are not opened then.
template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false) {
  object = nullptr;
  if (id.isValid() && !id.objectClass()->isDerivedFrom(T::desc())) {
    return Acad::eNotThatKindOfClass;
  }
  AcDbObject* opened = nullptr;
  const Acad::ErrorStatus status = acdbOpenAcDbObject(opened, id, mode, openErased);
  if (status == Acad::eOk) object = static_cast<T*>(opened);
  return status;
}
template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id) {
  return acdbOpenObject(object, id, AcDb::kForRead);
}
