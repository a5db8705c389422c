// Index pages and catalogues of image servers.
#include "imageclient/folderlisting.h"

#include "fuzz/entry.h"
#include "imageclient/serveraddress.h"

namespace {

void checkItems(const std::vector<tarn::client::FolderItem>& items) {
  for (const tarn::client::FolderItem& item : items) {
    require(tarn::client::canBeSpecified(item.path));
    require(item.bytes >= -1);
    if (item.footprint) require(item.footprint->left < item.footprint->right);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  checkItems(tarn::client::parseIndexPage(text));
  const auto catalogue = tarn::client::parseCatalogue(text);
  if (catalogue) checkItems(catalogue.value());
  return 0;
}
