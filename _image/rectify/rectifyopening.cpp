#include "_image/rectify/rectifyopening.h"

#include "_image/binding/usesite.h"
#include "_image/cadimage.h"
#include "_image/docdata.h"
#include "_image/moduleglobals.h"
#include "_image/rectify/rectifyoperator.h"
#include "base/text.h"
#include "inc/irectifydialog.h"

namespace tarn::image {

bool openRectification(CDocData& record, const std::wstring& path) {
  record.ensureImage();
  const auto dialog = makeObject<IRectifyDialog>(kRectifySite);
  {
    const OpenedImage image(record, AcDb::kForWrite);
    if (!image) return false;
    image->SetCurrentImage(path);
    if (dialog.isNull()) return false;
    // Components of earlier runs may still know it, so it stays the same object.
    if (!g_rectifyOperator) g_rectifyOperator = new CCADCallBackRectifyOperator(image.get());
    g_rectifyOperator->setImage(image.get());
    dialog->prepare(0);
    if (!dialog->openImage(toUtf8(path), g_rectifyOperator)) return false;
  }
  dialog->setModal(1);
  dialog->show();
  return true;
}

}  // namespace tarn::image
