#include "dbplotsettings.h"

#include "dbfiler.h"
#include "dblayout.h"
#include "dbobjptr.h"
#include "host/database/layouts.h"
#include "host/database/plotdata.h"
#include "host/database/recordfiling.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbPlotSettings, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        PLOTSETTINGS, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbLayout, AcDbPlotSettings, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        LAYOUT, ObjectDBX Classes)

using tarn::host::PlotData;

namespace tarn::host {

const PlotData& LayoutAccess::data(const AcDbPlotSettings& settings) {
  settings.assertReadEnabled();
  return *settings.data_;
}

void LayoutAccess::setData(AcDbPlotSettings& settings, const PlotData& data) {
  settings.assertWriteEnabled();
  *settings.data_ = data;
}

namespace {

/// The numbers and switches of the settings in the order of filing.
template <class Data, class Number, class Switch>
void visit(Data& d, Number number, Switch flag) {
  for (auto* value :
       {&d.width, &d.height, &d.left, &d.bottom, &d.right, &d.top, &d.windowMinX, &d.windowMinY,
        &d.windowMaxX, &d.windowMaxY, &d.originX, &d.originY, &d.numerator, &d.denominator}) {
    number(*value);
  }
  for (auto* value : {&d.centered, &d.fit, &d.model, &d.lineWeights}) flag(*value);
}

}  // namespace

}  // namespace tarn::host

AcDbPlotSettings::AcDbPlotSettings() : data_(std::make_unique<PlotData>()) {}
AcDbPlotSettings::~AcDbPlotSettings() = default;

Acad::ErrorStatus AcDbPlotSettings::getPlotSettingsName(const ACHAR*& name) const {
  assertReadEnabled();
  name = data_->settingsName.c_str();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::setPlotSettingsName(const ACHAR* name) {
  assertWriteEnabled();
  data_->settingsName = name != nullptr ? name : L"";
  return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::getPlotCfgName(const ACHAR*& device) const {
  assertReadEnabled();
  device = data_->device.c_str();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbPlotSettings::getCanonicalMediaName(const ACHAR*& paper) const {
  assertReadEnabled();
  paper = data_->paper.c_str();
  return Acad::eOk;
}
void AcDbPlotSettings::getPlotPaperSize(double& width, double& height) const {
  assertReadEnabled();
  width = data_->width;
  height = data_->height;
}
void AcDbPlotSettings::getPlotPaperMargins(double& left, double& bottom, double& right,
                                           double& top) const {
  assertReadEnabled();
  left = data_->left;
  bottom = data_->bottom;
  right = data_->right;
  top = data_->top;
}
void AcDbPlotSettings::getPlotOrigin(double& x, double& y) const {
  assertReadEnabled();
  x = data_->originX;
  y = data_->originY;
}
void AcDbPlotSettings::getPlotWindowArea(double& minX, double& minY, double& maxX,
                                         double& maxY) const {
  assertReadEnabled();
  minX = data_->windowMinX;
  minY = data_->windowMinY;
  maxX = data_->windowMaxX;
  maxY = data_->windowMaxY;
}
void AcDbPlotSettings::getPlotViewName(const ACHAR*& view) const {
  assertReadEnabled();
  view = data_->view.c_str();
}
AcDbPlotSettings::PlotPaperUnits AcDbPlotSettings::plotPaperUnits() const {
  assertReadEnabled();
  return data_->units;
}
AcDbPlotSettings::PlotRotation AcDbPlotSettings::plotRotation() const {
  assertReadEnabled();
  return data_->rotation;
}
AcDbPlotSettings::PlotType AcDbPlotSettings::plotType() const {
  assertReadEnabled();
  return data_->type;
}
bool AcDbPlotSettings::plotCentered() const {
  assertReadEnabled();
  return data_->centered;
}
bool AcDbPlotSettings::useStandardScale() const {
  assertReadEnabled();
  return data_->fit;
}
void AcDbPlotSettings::getCustomPrintScale(double& numerator, double& denominator) const {
  assertReadEnabled();
  numerator = data_->numerator;
  denominator = data_->denominator;
}
bool AcDbPlotSettings::printLineweights() const {
  assertReadEnabled();
  return data_->lineWeights;
}
bool AcDbPlotSettings::modelType() const {
  assertReadEnabled();
  return data_->model;
}

Acad::ErrorStatus AcDbPlotSettings::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  for (const std::wstring* text :
       {&data_->settingsName, &data_->device, &data_->paper, &data_->view}) {
    filer->writeString(text->c_str());
  }
  for (const int choice : {int{data_->type}, int{data_->units}, int{data_->rotation}}) {
    filer->writeInt32(choice);
  }
  tarn::host::visit(
      *data_, [&](double value) { filer->writeDouble(value); },
      [&](bool value) { filer->writeBool(value); });
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbPlotSettings::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  PlotData read;
  for (std::wstring* text : {&read.settingsName, &read.device, &read.paper, &read.view}) {
    tarn::host::readText(*filer, *text);
  }
  Adesk::Int32 choices[3] = {0, 0, 0};
  for (Adesk::Int32& choice : choices) filer->readInt32(&choice);
  tarn::host::visit(
      read, [&](double& value) { filer->readDouble(&value); },
      [&](bool& value) { filer->readBool(&value); });
  if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
  read.type = static_cast<PlotType>(choices[0]);
  read.units = static_cast<PlotPaperUnits>(choices[1]);
  read.rotation = static_cast<PlotRotation>(choices[2]);
  *data_ = read;
  return Acad::eOk;
}

AcDbObjectId AcDbLayout::getBlockTableRecordId() const {
  assertReadEnabled();
  return block_;
}
Acad::ErrorStatus AcDbLayout::setBlockTableRecordId(AcDbObjectId block) {
  assertWriteEnabled();
  block_ = block;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLayout::getLayoutName(const ACHAR*& name) const {
  assertReadEnabled();
  name = name_.c_str();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLayout::setLayoutName(const ACHAR* name) {
  if (name == nullptr || *name == 0) return Acad::eInvalidInput;
  assertWriteEnabled();
  name_ = name;
  return Acad::eOk;
}
int AcDbLayout::getTabOrder() const {
  assertReadEnabled();
  return order_;
}
void AcDbLayout::setTabOrder(int order) {
  assertWriteEnabled();
  order_ = order;
}

AcDbObjectIdArray AcDbLayout::getViewportArray() const {
  assertReadEnabled();
  const tarn::host::LayoutViewports found = tarn::host::viewportsOf(block_);
  AcDbObjectIdArray ids;
  if (!found.sheet.isNull()) ids.append(found.sheet);
  for (const AcDbObjectId& id : found.views) ids.append(id);
  return ids;
}

Acad::ErrorStatus AcDbLayout::dwgOutFields(AcDbDwgFiler* filer) const {
  const Acad::ErrorStatus status = AcDbPlotSettings::dwgOutFields(filer);
  if (status != Acad::eOk) return status;
  filer->writeString(name_.c_str());
  filer->writeInt32(order_);
  filer->writeSoftPointerId(block_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayout::dwgInFields(AcDbDwgFiler* filer) {
  const Acad::ErrorStatus status = AcDbPlotSettings::dwgInFields(filer);
  if (status != Acad::eOk) return status;
  std::wstring name;
  Adesk::Int32 order = 0;
  AcDbObjectId block;
  tarn::host::readText(*filer, name);
  filer->readInt32(&order);
  filer->readSoftPointerId(&block);
  if (filer->filerStatus() != Acad::eOk) return filer->filerStatus();
  name_ = name;
  order_ = order;
  block_ = block;
  return Acad::eOk;
}
