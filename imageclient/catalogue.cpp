#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cmath>

#include "base/path.h"
#include "base/text.h"
#include "imageclient/folderlisting.h"
#include "imageclient/serveraddress.h"

namespace tarn::client {
namespace {

constexpr int kMostItems = 100000;

std::string textOf(const QJsonValue& value) {
  return value.toString().toStdString();
}

/// A place below the catalogue's folder from the address that a catalogue gives; empty for others.
std::string pathBelow(std::string address) {
  while (address.compare(0, 2, "./") == 0) address.erase(0, 2);
  const size_t end = address.find_first_of("?#");
  if (end != std::string::npos) address.erase(end);
  if (address.empty() || address[0] == '/' || address.find("://") != std::string::npos) return {};
  std::string path = decodedText(address);
  return canBeSpecified(path) ? path : std::string();
}

bool isTiff(const std::string& path) {
  const std::string extension = extensionOf(path);
  return equalsIgnoreCase(extension, ".tif") || equalsIgnoreCase(extension, ".tiff");
}

/// -1 for what is no size of a file.
int64_t sizeOf(const QJsonValue& value) {
  constexpr double kMost = 1e15;
  const double bytes = value.toDouble(-1);
  return bytes >= 0 && bytes < kMost ? static_cast<int64_t>(bytes) : -1;
}

/// The box around a GeoJSON polygon as four numbers; empty for anything else.
QJsonArray boxAround(const QJsonValue& polygon) {
  const QJsonArray ring = polygon.toObject()["coordinates"].toArray().at(0).toArray();
  if (ring.isEmpty()) return {};
  double low[2] = {HUGE_VAL, HUGE_VAL}, high[2] = {-HUGE_VAL, -HUGE_VAL};
  for (const QJsonValue& point : ring) {
    for (int i = 0; i < 2; ++i) {
      const double value = point.toArray().at(i).toDouble();
      low[i] = std::min(low[i], value);
      high[i] = std::max(high[i], value);
    }
  }
  return {low[0], low[1], high[0], high[1]};
}

std::optional<Footprint> footprintOf(const QJsonArray& numbers) {
  // Six numbers when there are heights.
  const int count = numbers.size();
  if (count != 4 && count != 6) return std::nullopt;
  const int half = count / 2;
  const Footprint out{numbers[0].toDouble(), numbers[1].toDouble(), numbers[half].toDouble(),
                      numbers[half + 1].toDouble()};
  const bool finite = std::isfinite(out.left) && std::isfinite(out.bottom) &&
                      std::isfinite(out.right) && std::isfinite(out.top);
  if (!finite || !(out.left < out.right) || !(out.bottom < out.top)) return std::nullopt;
  return out;
}

std::optional<FolderItem> imageOf(const QJsonObject& feature) {
  const QJsonObject properties = feature["properties"].toObject();
  const QJsonObject assets = feature["assets"].toObject();
  for (const QString& name : assets.keys()) {
    const QJsonObject asset = assets[name].toObject();
    FolderItem item;
    item.path = pathBelow(textOf(asset["href"]));
    if (item.path.empty() || !isTiff(item.path)) continue;
    item.bytes = sizeOf(asset["file:size"]);
    // The drawing is in the image's own coordinates, so longitudes and latitudes say nothing.
    for (const QJsonObject& place : {asset, properties}) {
      if (!item.footprint) item.footprint = footprintOf(place["proj:bbox"].toArray());
      if (!item.footprint) item.footprint = footprintOf(boxAround(place["proj:geometry"]));
    }
    item.time = textOf(properties["updated"]);
    if (item.time.empty()) item.time = textOf(properties["datetime"]);
    return item;
  }
  return std::nullopt;
}

std::optional<FolderItem> folderOfLink(const QJsonObject& link) {
  if (textOf(link["rel"]) != "child") return std::nullopt;
  const std::string path = pathBelow(textOf(link["href"]));
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return std::nullopt;
  FolderItem item;
  item.path = path.substr(0, slash);
  item.isFolder = true;
  return item;
}

}  // namespace

Result<std::vector<FolderItem>> parseCatalogue(const std::string& json) {
  QJsonParseError error;
  const QJsonDocument document =
      QJsonDocument::fromJson(QByteArray(json.data(), static_cast<int>(json.size())), &error);
  const QJsonObject top = document.object();
  if (error.error != QJsonParseError::NoError || !top["features"].isArray())
    return Status::error("is no STAC item collection");
  std::vector<FolderItem> items;
  for (const QJsonValue& link : top["links"].toArray()) {
    if (auto folder = folderOfLink(link.toObject())) items.push_back(std::move(*folder));
  }
  for (const QJsonValue& feature : top["features"].toArray()) {
    if (items.size() >= kMostItems) break;
    if (auto image = imageOf(feature.toObject())) items.push_back(std::move(*image));
  }
  std::stable_sort(items.begin(), items.end(), [](const FolderItem& a, const FolderItem& b) {
    return a.isFolder != b.isFolder ? a.isFolder : a.path < b.path;
  });
  return items;
}

}  // namespace tarn::client
