#include "_image/imageserver.h"

#include "_image/cadimage.h"
#include "_image/cadimage_spec.h"
#include "_image/docdata.h"
#include "_image/imageadding.h"
#include "base/text.h"
#include "imageclient/qfilefind.h"
#include "imageclient/tarnclientmanager.h"

namespace tarn::image {

std::vector<std::wstring> askForServerImages() {
  kel::DString first;
  std::vector<std::wstring> names;
  for (const kel::DString& chosen : QFileFind::Instance().getImgInfo(first)) {
    names.push_back(withoutDisplayName(toWide(chosen.str())));
  }
  return names;
}

std::vector<std::wstring> furtherServerImages() {
  const kel::StringList& chosen = QFileFind::Instance().lastChosen();
  std::vector<std::wstring> names;
  for (size_t i = 1; i < chosen.size(); ++i)
    names.push_back(withoutDisplayName(toWide(chosen[i].str())));
  return names;
}

bool addServerImage(AcApDocument* document, CDocData& record, const std::wstring& path,
                    std::unique_ptr<TarnClientManager> client) {
  record.ensureImage();
  {
    const OpenedImage image(record, AcDb::kForWrite);
    if (!image) return false;
    image->SetServerImageInfo(path, record.keepClient(std::move(client)));
  }
  return addBoundImage(document, record, path);
}

bool openAndAddServerImage(AcApDocument* document, CDocData& record, const std::wstring& path) {
  TarnClientManager* opened = nullptr;
  {
    const OpenedImage image(record, AcDb::kForRead);
    if (!image || !image->GetImageDataFile(path, opened, true)) return false;
  }
  return addServerImage(document, record, path, std::unique_ptr<TarnClientManager>(opened));
}

bool restoreServerImage(AcApDocument* document, CDocData& record, const std::wstring& path) {
  {
    const OpenedImage image(record, AcDb::kForRead);
    if (!image || image->holds(path)) return false;
  }
  std::unique_ptr<TarnClientManager> client = CCadImage::clientFor(path, true);
  return client && addServerImage(document, record, path, std::move(client));
}

void openServerImages(CDocData& record) {
  std::vector<TarnClientManager*> clients;
  {
    const OpenedImage image(record, AcDb::kForRead);
    if (!image) return;
    for (const CDocData::Image& listed : record.images()) {
      if (TarnClientManager* client = image->clientOf(listed.path)) clients.push_back(client);
    }
  }
  TarnClientManager::makeReady(clients);
}

}  // namespace tarn::image
