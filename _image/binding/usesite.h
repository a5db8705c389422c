// Where the module asks the framework for objects. The tags appear in assertion messages and are
// fixed: they name the place in the reports of all versions alike.
#pragma once

#include "inc/kobject.h"

namespace tarn::image {

struct UseSite {
  const char* source;
  int line;
};

constexpr UseSite kConversionSite{"_image/acrxentrypoint", 865};
constexpr UseSite kLoadAdapterSite{"_image/acrxentrypoint", 1009};
constexpr UseSite kWatchedSetSite{"_image/acrxentrypoint", 1077};
constexpr UseSite kDivisionSettingSite{"_image/cadimage", 683};
constexpr UseSite kCloneDivisionSite{"_image/cadimage", 859};
constexpr UseSite kCommandsSite{"_image/commands", 1};
constexpr UseSite kAddImageSite{"_image/imageadding", 1};
constexpr UseSite kRestoreSite{"_image/imagerestore", 1};
constexpr UseSite kPanelSettingSite{"_image/imagedialog", 1};
constexpr UseSite kInputMonitorSite{"_image/inputwatch", 1};
constexpr UseSite kRectifySite{"_image/rectifyopening", 1};
constexpr UseSite kProgressSite{"_image/settarnprogress", 22};

/// A framework object of the interface, or an empty handle after an assertion with the site.
template <typename Interface>
kel::Object<Interface> makeObject(const UseSite& site) {
  return kel::Object<Interface>("N", site.source, site.line);
}

}  // namespace tarn::image
