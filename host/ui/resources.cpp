#include "host/ui/resources.h"

#include <vector>

#include "host/ui/uiservices.h"

namespace tarn::host {

namespace {

template <typename Resource>
std::vector<const Resource*>& all() {
  static std::vector<const Resource*> resources;
  return resources;
}

template <typename Resource>
void add(const Resource& resource) {
  for (const Resource*& known : all<Resource>()) {
    if (known->id == resource.id && known->language == resource.language) {
      known = &resource;
      return;
    }
  }
  all<Resource>().push_back(&resource);
}

template <typename Resource>
const Resource* find(UINT id) {
  const auto& language = uiServices().language;
  const TarnLanguage wanted = language ? language() : TarnLanguage::kChinese;
  const Resource* found = nullptr;
  for (const Resource* resource : all<Resource>()) {
    if (resource->id == id && (!found || resource->language == wanted)) found = resource;
  }
  return found;
}

}  // namespace

const TarnDialogResource* findDialog(UINT id) {
  return find<TarnDialogResource>(id);
}
const TarnMenuResource* findMenu(UINT id) {
  return find<TarnMenuResource>(id);
}

}  // namespace tarn::host

void tarnAddDialogResource(const TarnDialogResource& dialog) {
  tarn::host::add(dialog);
}
void tarnAddMenuResource(const TarnMenuResource& menu) {
  tarn::host::add(menu);
}
