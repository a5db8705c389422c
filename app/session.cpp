#include "app/session.h"

#include <QLocale>
#include <QStandardPaths>
#include <algorithm>
#include <iterator>

#include "base/file.h"
#include "base/path.h"
#include "host/editor/documents.h"
#include "host/editor/drawingfiles.h"
#include "host/editor/hostapp.h"
#include "host/editor/modules.h"
#include "host/editor/namedrecords.h"
#include "host/editor/profile.h"
#include "host/editor/regenerator.h"

namespace tarn::app {

std::string profileFolder(const Options& options) {
  if (!options.profile.empty()) return absolutePath(options.profile);
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  return joinPath(data.toStdString(), "tarnimage");
}

Status prepareProfile(const std::string& folder) {
  const std::string configuration = joinPath(folder, "system");
  if (Status status = makeFolders(configuration); !status) return status;
  if (Status status = makeFolders(joinPath(folder, "cache")); !status) return status;
  const std::string database = joinPath(configuration, "tarnconfig.db");
  // An empty file is a valid, empty database.
  if (fileKind(database) != FileKind::kMissing) return {};
  return writeFileAtomically(database, "");
}

void speakSystemLanguage(host::HostApp& app) {
  const bool isChinese = QLocale::system().language() == QLocale::Chinese;
  app.profile().setUsualLocale(isChinese ? "CHS" : "ENU");
}

namespace {

/// In the order of loading; the image module needs what the adapter registers.
constexpr const char* kModules[] = {"adapter_autocad.arx", "image.arx"};

}  // namespace

void loadModules(host::HostApp& app, const std::string& programFolder) {
  for (const char* name : kModules) {
    const std::string path = joinPath(programFolder, name);
    if (fileKind(path) == FileKind::kMissing) {
      app.print("\n" + path + ": there is no such module; going on without it.\n");
    } else if (Status status = host::loadModule(path); !status) {
      app.print("\n" + status.message() + "\n");
    }
  }
  app.runQueued();
}

void unloadModules() {
  for (size_t i = std::size(kModules); i-- > 0;) host::unloadModule(kModules[i]);
}

namespace {

/// Adds the images through the module's own command; false when one is not in its list afterwards.
bool addImages(host::HostApp& app, const std::vector<std::string>& images) {
  std::vector<std::string> present;
  for (const std::string& image : images) {
    if (fileKind(image) != FileKind::kMissing) {
      present.push_back(absolutePath(image));
    } else {
      app.print("\n" + image + ": there is no such file.\n");
    }
  }
  bool all = present.size() == images.size();
  if (present.empty()) return false;
  all = app.runWithFiles("addImage", present) && all;
  const std::vector<std::string> listed = host::namedStrings(app, "ImagePath", "ImagePath");
  for (const std::string& image : present) {
    const bool found = std::find(listed.begin(), listed.end(), image) != listed.end();
    if (!found) app.print("\n" + image + ": not added.\n");
    all = all && found;
  }
  return all;
}

host::GroundBox extentsOf(host::HostApp& app) {
  return app.regenerator().extents(app.documents().current());
}

/// True when all of `whole` in a view leaves nothing to be seen of `part`.
bool isFarLarger(const host::GroundBox& whole, const host::GroundBox& part) {
  constexpr double kTooFar = 100;
  if (part.isEmpty()) return false;
  const auto sizeOf = [](const host::GroundBox& box) {
    return std::max(box.maxX - box.minX, box.maxY - box.minY);
  };
  return sizeOf(whole) > kTooFar * std::max(sizeOf(part), 1.0);
}

}  // namespace

bool startDrawing(host::HostApp& app, const Options& options) {
  constexpr double kDegree = 3.141592653589793 / 180;
  app.setStatistics(options.statistics);
  bool good = true;
  for (const std::string& drawing : options.drawings) {
    const Status opened = host::openDrawing(app, absolutePath(drawing));
    if (!opened) app.print("\n" + opened.message() + "\n");
    good = good && opened.isOk();
    app.runQueued();
  }
  if (options.view) {
    host::ViewState view = app.view();
    view.centerX = options.view->centerX;
    view.centerY = options.view->centerY;
    view.height = options.view->height;
    view.twist = options.view->twistDegrees * kDegree;
    app.setView(view);
  }
  if (options.view && !options.drawings.empty()) app.regenerate();
  if (options.images.empty()) return good;
  const host::GroundBox before = extentsOf(app);
  const bool added = addImages(app, options.images);
  if (!options.view) app.zoomExtents();
  if (isFarLarger(extentsOf(app), before)) {
    app.print(
        "\nThe images lie far from the rest of the drawing, so that little of either is seen: "
        "a double click in the image list shows one.\n");
  }
  return added && good;
}

bool endDrawing(host::HostApp& app, const Options& options) {
  bool good = true;
  if (!options.save.empty()) {
    const Status saved =
        host::saveDrawingAs(app, app.documents().current(), absolutePath(options.save));
    if (!saved) app.print("\n" + saved.message() + "\n");
    good = saved.isOk();
  }
  if (!options.picture.empty()) {
    const std::string fault = app.savePicture(options.picture);
    if (!fault.empty()) app.print("\n" + fault + "\n");
    good = fault.empty() && good;
  }
  return good;
}

}  // namespace tarn::app
