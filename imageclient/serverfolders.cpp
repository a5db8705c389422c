#include "imageclient/serverfolders.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "components/raster/jpegtile.h"
#include "components/raster/rasterimage.h"
#include "imageclient/clientservices.h"
#include "imageclient/httpsource.h"

namespace tarn::client {
namespace {

constexpr uint64_t kMostListBytes = 16 << 20;
constexpr int kPreviewSide = 256;
constexpr int kPreviewQuality = 85;
constexpr const char* kCatalogue = "catalog.json";

std::string below(const std::string& folder, const std::string& name) {
  return folder.empty() ? name : folder + '/' + name;
}

HttpAnswer get(const ServerPlace& place, const std::string& path, Operation& operation) {
  HttpRequest request;
  request.path = path;
  request.mostBytes = kMostListBytes;
  return runRequest(place, request, operation);
}

}  // namespace

Result<std::vector<FolderItem>> readServerFolder(const ServerPlace& place,
                                                 const std::string& folder, Operation& operation) {
  const std::string name = place.text() + '/' + folder;
  std::vector<FolderItem> items;
  HttpAnswer answer = get(place, below(folder, kCatalogue), operation);
  // A server may also refuse what is not there.
  const bool none = answer.status == 404 || answer.status == 410 || answer.status == 403;
  if (!none) {
    if (!answer.failure.empty()) return Status::error(name + ": " + answer.failure);
    auto read = parseCatalogue(answer.body);
    if (!read) return Status::error(name + ": its catalog.json " + read.message());
    items = read.take();
  } else {
    answer = get(place, folder.empty() ? folder : folder + '/', operation);
    if (!answer.failure.empty()) return Status::error(name + ": " + answer.failure);
    items = parseIndexPage(answer.body);
  }
  for (FolderItem& item : items) item.path = below(folder, item.path);
  return items;
}

std::string previewOf(const ServerPlace& place, const std::string& path,
                      const std::shared_ptr<Operation>& operation) {
  HttpAnswer refusal;
  auto source = HttpSource::open(place, path, operation, refusal);
  if (!source) return {};
  auto image = raster::RasterImage::open(source.value());
  if (!image) return {};
  const raster::RasterImage& opened = *image.value();
  const double cell =
      std::max(1.0, std::max(opened.width(), opened.height()) / double{kPreviewSide});
  const auto cells = [cell](int pixels) {
    return std::max(1, static_cast<int>(std::floor(pixels / cell)));
  };
  raster::Window window{0, 0, cell, cell, cells(opened.width()), cells(opened.height())};
  std::vector<uint8_t> pixels(static_cast<size_t>(window.columns) * window.rows * 3);
  raster::ReadCounts counts;
  if (!opened.read(window, false, pixels.data(), counts)) return {};
  std::vector<uint8_t> jpeg;
  if (!raster::encodeJpegTile(pixels.data(), window.columns, window.rows, 3, kPreviewQuality, jpeg))
    return {};
  return {jpeg.begin(), jpeg.end()};
}

std::string ServerFolders::read(const std::string& key, kel::List<kel::ListingEntry>& entries) {
  entries.clear();
  if (key.empty() && servers_.size() == 1)
    return readFolder({servers_[0].place, servers_[0].folder}, entries);
  if (!key.empty()) {
    const auto found = known_.find(key);
    return found == known_.end() ? key + ": is not known" : readFolder(found->second, entries);
  }
  for (size_t i = 0; i < servers_.size(); ++i) {
    kel::ListingEntry entry;
    entry.key = std::to_string(i);
    entry.name = servers_[i].name;
    entry.isFolder = true;
    known_[entry.key.str()] = {servers_[i].place, servers_[i].folder};
    entries.push_back(std::move(entry));
  }
  return {};
}

std::string ServerFolders::readFolder(const Located& folder,
                                      kel::List<kel::ListingEntry>& entries) {
  Operation operation(times_, &userWantsToStop);
  const Located where = folder;
  auto items = readServerFolder(where.place, where.path, operation);
  if (!items) return items.message();
  for (const FolderItem& item : items.value()) {
    kel::ListingEntry entry;
    entry.key = item.isFolder ? where.place.text() + '/' + item.path + '/'
                              : specificationOf(where.place, item.path);
    const size_t from = where.path.empty() ? 0 : where.path.size() + 1;
    entry.name = item.path.substr(from);
    entry.isFolder = item.isFolder;
    entry.bytes = item.bytes;
    entry.time = item.time;
    entry.hasFootprint = item.footprint.has_value();
    if (item.footprint)
      entry.footprint = {item.footprint->left, item.footprint->bottom, item.footprint->right,
                         item.footprint->top};
    known_[entry.key.str()] = {where.place, item.path};
    entries.push_back(std::move(entry));
  }
  return {};
}

std::string ServerFolders::preview(const std::string& key) {
  const auto found = known_.find(key);
  if (found == known_.end()) return {};
  return previewOf(found->second.place, found->second.path,
                   std::make_shared<Operation>(times_, &userWantsToStop));
}

}  // namespace tarn::client
