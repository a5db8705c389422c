// Extended records: chains of values kept in a drawing.
#pragma once

#include <memory>

#include "acdb.h"
#include "adsdef.h"
#include "dbmain.h"

class ACADHOST_EXPORT AcDbXrecord : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbXrecord);
  AcDbXrecord();
  ~AcDbXrecord() override;

  /// Copies the chain in place of what was there. eInvalidResBuf, with nothing changed, when it
  /// holds a group code that no record can keep.
  Acad::ErrorStatus setFromRbChain(const resbuf& chain, AcDbDatabase* database = nullptr);
  /// A copy of the values, freed by the caller with acutRelRb; null for an empty record.
  Acad::ErrorStatus rbChain(resbuf** chain, AcDbDatabase* database = nullptr) const;

  /// What wins when drawings are merged.
  AcDb::DuplicateRecordCloning mergeStyle() const { return mergeStyle_; }
  void setMergeStyle(AcDb::DuplicateRecordCloning style);

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  struct Items;
  std::unique_ptr<Items> items_;
  AcDb::DuplicateRecordCloning mergeStyle_ = AcDb::kDrcIgnore;
};
