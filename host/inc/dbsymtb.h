// Symbol tables: blocks, layers, and views as values.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dbents.h"
#include "dbmain.h"
#include "gepnt2d.h"

#define ACDB_MODEL_SPACE ACRX_T("*Model_Space")
#define ACDB_PAPER_SPACE ACRX_T("*Paper_Space")

class ACADHOST_EXPORT AcDbSymbolTableRecord : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord);
  /// The name; valid until it is changed.
  Acad::ErrorStatus getName(const ACHAR*& name) const;
  /// A copy, freed by the caller with acutDelString.
  Acad::ErrorStatus getName(ACHAR*& name) const;
  Acad::ErrorStatus setName(const ACHAR* name);
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  ~AcDbSymbolTableRecord() override;

 protected:
  AcDbSymbolTableRecord();

 private:
  friend class tarn::host::ObjectAccess;
  struct Definition;
  std::wstring name_;
  std::unique_ptr<Definition> definition_;
};

class AcDbSymbolTable;

/// Walks a table's records in the order in which they were added, erased ones left out.
class ACADHOST_EXPORT AcDbSymbolTableIterator {
 public:
  explicit AcDbSymbolTableIterator(const AcDbSymbolTable& table);
  void start() { position_ = 0; }
  bool done() const { return position_ >= ids_.length(); }
  void step() { ++position_; }
  Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
  Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode) const;

 private:
  AcDbObjectIdArray ids_;
  int position_ = 0;
};

/// Records by name, without regard to case. Erased records are not found unless asked for.
class ACADHOST_EXPORT AcDbSymbolTable : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTable);
  /// eKeyNotFound; eWasErased when only an erased record has the name.
  Acad::ErrorStatus getIdAt(const ACHAR* name, AcDbObjectId& id, bool getErased = false) const;
  bool has(const ACHAR* name) const;
  bool has(AcDbObjectId id) const;
  /// The table's database owns the record, which stays open for write. eDuplicateRecordName,
  /// eNotThatKindOfClass (a record of another table), eInvalidInput (no name).
  Acad::ErrorStatus addRecord(AcDbObjectId& id, AcDbSymbolTableRecord* record);
  /// The iterator is the caller's.
  Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& iterator) const;
  const AcDbObjectIdArray& recordIds() const { return records_; }
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 protected:
  virtual AcRxClass* recordClass() const;

 private:
  friend class tarn::host::ObjectAccess;
  AcDbObjectIdArray records_;
};

/// What every table offers for its own record class.
template <class Record>
class AcDbTypedSymbolTable : public AcDbSymbolTable {
 public:
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id, bool getErased = false) const {
    return getIdAt(name, id, getErased);
  }
  Acad::ErrorStatus getAt(const ACHAR* name, Record*& record, AcDb::OpenMode mode,
                          bool openErased = false) const {
    record = nullptr;
    AcDbObjectId id;
    const Acad::ErrorStatus status = getIdAt(name, id, openErased);
    return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;
  }
  Acad::ErrorStatus add(AcDbObjectId& id, Record* record) { return addRecord(id, record); }
  Acad::ErrorStatus add(Record* record) {
    AcDbObjectId id;
    return addRecord(id, record);
  }

 protected:
  AcRxClass* recordClass() const override { return Record::desc(); }
};

class ACADHOST_EXPORT AcDbLayerTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord);
  AcDbLayerTableRecord();
  Adesk::UInt16 colorIndex() const;
  /// eInvalidInput outside 1 to 255.
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 color);
  AcCmColor color() const;
  /// eInvalidInput by layer and by block.
  Acad::ErrorStatus setColor(const AcCmColor& color);
  /// Null for lines without gaps.
  AcDbObjectId linetypeObjectId() const;
  void setLinetypeObjectId(AcDbObjectId linetype);
  /// Hundredths of a millimetre, or kLnWtByLwDefault.
  AcDb::LineWeight lineWeight() const;
  /// eInvalidInput for what is none of these.
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight);
  AcCmTransparency transparency() const;
  bool isOff() const;
  void setIsOff(bool off);
  bool isFrozen() const;
  Acad::ErrorStatus setIsFrozen(bool frozen);
  bool isLocked() const;
  void setIsLocked(bool locked);
  /// What is on it comes onto paper too.
  bool isPlottable() const;
  Acad::ErrorStatus setIsPlottable(bool plottable);
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  AcCmColor color_;
  AcDbObjectId linetype_;
  bool off_ = false;
  bool frozen_ = false;
  bool locked_ = false;
  bool plottable_ = true;
  AcDb::LineWeight weight_ = AcDb::kLnWtByLwDefault;
};

class ACADHOST_EXPORT AcDbLayerTable : public AcDbTypedSymbolTable<AcDbLayerTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLayerTable);
};

/// A pattern of lines: lengths of dashes above 0, of gaps below 0, points at 0, in drawing units.
class ACADHOST_EXPORT AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord);
  /// Empty for a line without gaps; valid until it is changed.
  const std::vector<double>& dashes() const { return dashes_; }
  void setDashes(std::vector<double> dashes);
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  std::vector<double> dashes_;
};
class ACADHOST_EXPORT AcDbLinetypeTable : public AcDbTypedSymbolTable<AcDbLinetypeTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLinetypeTable);
};
/// A style of texts. Width and slant are those that new texts begin with.
class ACADHOST_EXPORT AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord);
  struct Values {
    std::wstring font;          ///< file or family, see AcGiTextStyle
    double textSize = 0;        ///< 0: each text has its own
    double xScale = 1;          ///< of widths
    double obliquingAngle = 0;  ///< radians
  };
  /// Valid until they are changed.
  const Values& values() const { return values_; }
  void setValues(Values values);
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  Values values_;
};
class ACADHOST_EXPORT AcDbTextStyleTable : public AcDbTypedSymbolTable<AcDbTextStyleTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbTextStyleTable);
};

class ACADHOST_EXPORT AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord);
};
class ACADHOST_EXPORT AcDbRegAppTable : public AcDbTypedSymbolTable<AcDbRegAppTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRegAppTable);
};

/// Styles of dimensions, coordinate systems and the model's viewports are known by their names;
/// what else they say stays in the file.
class ACADHOST_EXPORT AcDbDimStyleTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord);
};
class ACADHOST_EXPORT AcDbDimStyleTable : public AcDbTypedSymbolTable<AcDbDimStyleTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDimStyleTable);
};
class ACADHOST_EXPORT AcDbUCSTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord);
};
class ACADHOST_EXPORT AcDbUCSTable : public AcDbTypedSymbolTable<AcDbUCSTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbUCSTable);
};
class ACADHOST_EXPORT AcDbViewportTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord);
};
class ACADHOST_EXPORT AcDbViewportTable : public AcDbTypedSymbolTable<AcDbViewportTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewportTable);
};

class AcDbBlockTableRecordIterator;

/// A block: model space, a paper space, or a definition. Owns its entities in drawing order.
class ACADHOST_EXPORT AcDbBlockTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord);
  /// The block's database owns the entity from then on; it stays open for write until the caller
  /// closes it. An entity without a layer gets the current one. eNotOpenForWrite, eAlreadyInDb,
  /// eMustFirstAddBlockToDb.
  Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
  Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
  /// The iterator is the caller's. It walks the entities that there are now.
  Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& iterator, bool atBeginning = true,
                                bool skipDeleted = true) const;
  bool isLayout() const;
  const AcDbObjectIdArray& entityIds() const { return entities_; }
  /// The point that comes to an insertion's position.
  AcGePoint3d origin() const { return origin_; }
  Acad::ErrorStatus setOrigin(const AcGePoint3d& origin);
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  friend class tarn::host::ObjectAccess;
  AcDbObjectIdArray entities_;
  AcGePoint3d origin_;
};

class ACADHOST_EXPORT AcDbBlockTableRecordIterator {
 public:
  AcDbBlockTableRecordIterator(AcDbObjectIdArray ids, bool atBeginning, bool skipDeleted);
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const { return position_ < 0 || position_ >= ids_.length(); }
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getEntityId(AcDbObjectId& id) const;
  Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                              bool openErased = false) const;

 private:
  void skip(int direction, bool skipDeleted);

  AcDbObjectIdArray ids_;
  int position_ = 0;
};

class ACADHOST_EXPORT AcDbBlockTable : public AcDbTypedSymbolTable<AcDbBlockTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockTable);
};

/// A view, by itself a value for acedSetCurrentView. The centre is a point of the ground; sizes in
/// drawing units, the twist in radians.
class ACADHOST_EXPORT AcDbViewTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewTableRecord);
  AcGePoint2d centerPoint() const { return center_; }
  void setCenterPoint(const AcGePoint2d& center) { center_ = center; }
  double height() const { return height_; }
  void setHeight(double height) { height_ = height; }
  double width() const { return width_; }
  void setWidth(double width) { width_ = width; }
  double viewTwist() const { return twist_; }
  void setViewTwist(double radians) { twist_ = radians; }
  AcGePoint3d target() const { return target_; }
  void setTarget(const AcGePoint3d& target) { target_ = target; }
  AcGeVector3d viewDirection() const { return direction_; }
  void setViewDirection(const AcGeVector3d& direction) { direction_ = direction; }
  double lensLength() const { return lens_; }
  void setLensLength(double millimetres) { lens_ = millimetres; }
  double frontClipDistance() const { return front_; }
  void setFrontClipDistance(double distance) { front_ = distance; }
  double backClipDistance() const { return back_; }
  void setBackClipDistance(double distance) { back_ = distance; }
  bool perspectiveEnabled() const { return perspective_; }
  void setPerspectiveEnabled(bool on) { perspective_ = on; }
  bool frontClipEnabled() const { return frontOn_; }
  void setFrontClipEnabled(bool on) { frontOn_ = on; }
  bool backClipEnabled() const { return backOn_; }
  void setBackClipEnabled(bool on) { backOn_ = on; }
  bool frontClipAtEye() const { return frontAtEye_; }
  void setFrontClipAtEye(bool on) { frontAtEye_ = on; }
  /// A view of a sheet, not of the model.
  bool isPaperspaceView() const { return paper_; }
  void setIsPaperspaceView(bool paper) { paper_ = paper; }

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  AcGePoint2d center_;
  double height_ = 0.0;
  double width_ = 0.0;
  double twist_ = 0.0;
  AcGePoint3d target_;
  AcGeVector3d direction_{0.0, 0.0, 1.0};
  double lens_ = 50.0;
  double front_ = 0.0;
  double back_ = 0.0;
  bool perspective_ = false;
  bool frontOn_ = false;
  bool backOn_ = false;
  bool frontAtEye_ = true;
  bool paper_ = false;
};

class ACADHOST_EXPORT AcDbViewTable : public AcDbTypedSymbolTable<AcDbViewTableRecord> {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewTable);
};
