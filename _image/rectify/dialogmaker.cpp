#include "_image/rectify/dialogmaker.h"

#include <QApplication>

#include <memory>

#include "_image/rectify/rectifydialog.h"
#include "acdocman.h"
#include "base/text.h"
#include "commoncode/cadutil/message.h"
#include "inc/irectifydialogmaker.h"
#include "inc/kplugin.h"

namespace tarn::image {
namespace {

class DialogMaker final : public kel::Implements<DialogMaker, IRectifyDialogMaker> {
 public:
  static constexpr const char* kName = "image.DialogMaker";

  void showDialog(IRectifyDialog* component, bool isModal) override {
    AcApDocument* document = acDocManager ? acDocManager->curDocument() : nullptr;
    if (!component || !document) return;
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
      cad::printMessage(L"\n没有窗口环境，无法打开纠正对话框。");
      return;
    }
    component->retain();
    const std::wstring path = toWide(component->imagePath().str());
    auto session = std::make_unique<RectifySession>(kel::Object<IRectifyDialog>::adopt(component),
                                                    document, path);
    rectifyDialog* dialog = rectifyDialog::request();
    dialog->setImage(std::move(session));
    dialog->showModal(isModal);
  }
};

}  // namespace

void registerDialogMaker() {
  DialogMaker::registerSelf();
}

void removeDialogMaker() {
  delete rectifyDialog::instance();
  kel::unregisterImplementation("N", IRectifyDialogMaker::interfaceId());
}

}  // namespace tarn::image
