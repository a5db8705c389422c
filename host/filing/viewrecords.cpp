// Named views between a drawing file and the database.
#include <cmath>

#include "dbsymtb.h"
#include "host/filing/objectcodec.h"
#include "host/filing/renamedrecords.h"
#include "host/filing/tagvalues.h"

namespace tarn::host {

/// In the file the centre stands in the system of the view: turned by the twist about the target.
AcDbSymbolTableRecord* readViewRecord(const TagView& tags) {
  auto* view = new AcDbViewTableRecord;
  const double twist = tags.angle(50);
  const double c = std::cos(twist);
  const double s = std::sin(twist);
  const AcGePoint3d target = tags.point(12);
  const AcGePoint3d center = tags.point(10);
  view->setCenterPoint(
      {target.x + center.x * c + center.y * s, target.y + center.y * c - center.x * s});
  view->setHeight(tags.real(40, 1));
  view->setWidth(tags.real(41, 1));
  view->setViewTwist(twist);
  return view;
}

/// The target takes the place of the centre, so that no digit is lost by turning.
std::string writeViewRecord(const DrawingBinding& binding, const AcDbViewTableRecord& view,
                            const BoundObject* old, std::uint64_t tableHandle) {
  TagEditor editor = old != nullptr ? editorOf(binding, old->first)
                                    : TagEditor(binding.document, binding.encoding, "VIEW");
  if (old == nullptr) {
    if (binding.hasHandles) editor.setHandle(5, view.handle().value());
    if (!editor.isOld()) {
      if (tableHandle != 0) editor.setHandle(330, tableHandle);
      editor.enter("AcDbSymbolTableRecord");
    }
  }
  editor.enterOwn(kViewMark);
  const ACHAR* name = L"";
  view.getName(name);
  editor.setText(2, name);
  if (old == nullptr) editor.setInteger(70, 0);
  editor.setReal(40, view.height());
  editor.setReal(10, 0);
  editor.setReal(20, 0);
  editor.setReal(41, view.width());
  if (old == nullptr) editor.setPoint(11, {0, 0, 1});
  editor.setPoint(12, {view.centerPoint().x, view.centerPoint().y, 0});
  if (old == nullptr) {
    editor.setReal(42, view.lensLength());
    editor.setReal(43, 0);
    editor.setReal(44, 0);
  }
  editor.setAngle(50, view.viewTwist());
  if (old == nullptr) editor.setInteger(71, 0);
  writeExtendedData(binding, view, old, editor);
  return editor.bytes();
}

}  // namespace tarn::host
