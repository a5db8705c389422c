#include "components/raster/georeference.h"

#include <cpl_minixml.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <memory>

#include "base/path.h"
#include "base/text.h"

namespace tarn::raster {
namespace {

constexpr double kFarthest = 1e12;

bool isUsable(const GeoTransform& t) {
  for (const double value : {t.x0, t.a, t.b, t.y0, t.d, t.e}) {
    if (!std::isfinite(value) || std::fabs(value) > kFarthest) return false;
  }
  return std::fabs(t.a * t.e - t.b * t.d) > 0;
}

/// Numbers separated by white space or commas; empty when there is anything else.
std::vector<double> numbersIn(std::string_view text) {
  std::vector<double> numbers;
  std::string word;
  const auto take = [&] {
    double value = 0;
    if (word.empty()) return true;
    if (!parseDouble(word, value)) return false;
    numbers.push_back(value);
    word.clear();
    return true;
  };
  for (const char c : text) {
    if (c != ',' && std::isspace(static_cast<unsigned char>(c)) == 0) {
      word += c;
    } else if (!take()) {
      return {};
    }
  }
  return take() ? numbers : std::vector<double>();
}

/// Largest distance of the image's corners between two transforms, in pixels of the first.
double distanceInPixels(const GeoTransform& p, const GeoTransform& q, int width, int height) {
  const double pixel = std::sqrt(std::fabs(p.a * p.e - p.b * p.d));
  double most = 0;
  for (const int column : {0, width}) {
    for (const int row : {0, height}) {
      const double dx = (q.x0 - p.x0) + (q.a - p.a) * column + (q.b - p.b) * row;
      const double dy = (q.y0 - p.y0) + (q.d - p.d) * column + (q.e - p.e) * row;
      most = std::max(most, std::hypot(dx, dy));
    }
  }
  return pixel > 0 ? most / pixel : most;
}

/// True when the rotation moves no pixel of the image visibly.
bool isUpright(const GeoTransform& t, int width, int height) {
  constexpr double kInvisible = 0.1;
  return std::fabs(t.b) * height < kInvisible * std::fabs(t.a) &&
         std::fabs(t.d) * width < kInvisible * std::fabs(t.e);
}

int epsgOfWkt(const char* wkt) {
  OGRSpatialReference system;
  if (system.importFromWkt(wkt) != OGRERR_NONE) return -1;
  const char* authority = system.GetAuthorityName(nullptr);
  const char* code = system.GetAuthorityCode(nullptr);
  int number = 0;
  return authority && code && equalsIgnoreCase(authority, "EPSG") && parseInt(code, number) ? number
                                                                                            : 0;
}

}  // namespace

std::optional<GeoTransform> parseWorldFile(std::string_view text) {
  const std::vector<double> n = numbersIn(text);
  if (n.size() < 6) return std::nullopt;
  // Six lines: a, d, b, e, x and y of the centre of the first pixel.
  GeoTransform t;
  t.a = n[0];
  t.d = n[1];
  t.b = n[2];
  t.e = n[3];
  t.x0 = n[4] - t.a / 2 - t.b / 2;
  t.y0 = n[5] - t.d / 2 - t.e / 2;
  return isUsable(t) ? std::optional<GeoTransform>(t) : std::nullopt;
}

AuxFacts parseAuxFile(const std::string& xml) {
  AuxFacts facts;
  struct Destroy {
    void operator()(CPLXMLNode* node) const { CPLDestroyXMLNode(node); }
  };
  const std::unique_ptr<CPLXMLNode, Destroy> tree(CPLParseXMLString(xml.c_str()));
  const CPLXMLNode* root = tree ? CPLGetXMLNode(tree.get(), "=PAMDataset") : nullptr;
  if (!root) return facts;
  const std::vector<double> n = numbersIn(CPLGetXMLValue(root, "GeoTransform", ""));
  if (n.size() == 6) {
    const GeoTransform t{n[0], n[1], n[2], n[3], n[4], n[5]};
    if (isUsable(t)) facts.transform = t;
  }
  facts.hasControlPoints = CPLGetXMLNode(root, "GCPList.GCP") != nullptr;
  const char* system = CPLGetXMLValue(root, "SRS", "");
  if (*system) facts.coordinateSystem = epsgOfWkt(system);
  facts.namesOverviewFile = xml.find("OVERVIEW_FILE") != std::string::npos;
  return facts;
}

Result<Georeference> chooseGeoreference(const std::vector<GeoCandidate>& candidates, int width,
                                        int height) {
  Georeference result;
  if (candidates.empty()) {
    result.transform.y0 = height;
    result.notes.emplace_back("has no georeferencing: shown at the origin, one unit a pixel");
    return result;
  }
  const GeoCandidate& chosen = candidates.front();
  if (!isUsable(chosen.transform)) return Status::error("its georeferencing is not usable");
  if (!isUpright(chosen.transform, width, height))
    return Status::error("is rotated by its georeferencing; only north-up images can be shown");
  if (chosen.transform.a <= 0 || chosen.transform.e >= 0)
    return Status::error(
        "is mirrored or south-up by its georeferencing; only north-up images can be shown");
  result.transform = chosen.transform;
  result.transform.b = result.transform.d = 0;
  for (size_t i = 1; i < candidates.size(); ++i) {
    if (distanceInPixels(chosen.transform, candidates[i].transform, width, height) > 0.5) {
      result.notes.push_back("its georeferencing in " + chosen.name + " and in " +
                             candidates[i].name + " differs; " + chosen.name + " counts");
      break;
    }
  }
  return result;
}

std::vector<std::string> worldFileNames(const std::string& imageName) {
  const std::string stem = stemOf(imageName);
  std::string ending = extensionOf(imageName);
  if (!ending.empty()) ending.erase(0, 1);
  std::vector<std::string> endings;
  if (ending.size() >= 2) {
    endings.push_back({ending.front(), ending.back(), 'w'});
    endings.push_back(ending + 'w');
  }
  endings.emplace_back("wld");
  std::vector<std::string> names;
  for (const std::string& each : endings) {
    std::string upper = each;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const std::string& form : {each, toLower(each), upper}) {
      std::string name = stem;
      name.append(".").append(form);
      if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    }
  }
  return names;
}

}  // namespace tarn::raster
