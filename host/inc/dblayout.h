// Layouts: the model and the sheets of a drawing.
#pragma once

#include <string>

#include "dbplotsettings.h"

/// One tab of a drawing: its plot settings and the block that holds its entities.
class ACADHOST_EXPORT AcDbLayout : public AcDbPlotSettings {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLayout);

  AcDbObjectId getBlockTableRecordId() const;
  Acad::ErrorStatus setBlockTableRecordId(AcDbObjectId block);
  /// Valid until the name is changed.
  Acad::ErrorStatus getLayoutName(const ACHAR*& name) const;
  Acad::ErrorStatus setLayoutName(const ACHAR* name);
  int getTabOrder() const;
  void setTabOrder(int order);
  /// The viewports of the layout's block in their order, the sheet's own one first when it has one.
  AcDbObjectIdArray getViewportArray() const;

  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;

 private:
  AcDbObjectId block_;
  std::wstring name_;
  int order_ = 0;
};
