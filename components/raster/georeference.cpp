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
/// Of a transform.
constexpr size_t kNumbers = 6;

std::vector<std::string> wordsIn(std::string_view text, bool commasPart) {
  std::vector<std::string> words(1);
  for (const char c : text) {
    if (std::isspace(static_cast<unsigned char>(c)) == 0 && !(commasPart && c == ',')) {
      words.back() += c;
    } else if (!words.back().empty()) {
      words.emplace_back();
    }
  }
  if (words.back().empty()) words.pop_back();
  return words;
}

/// Numbers separated by white space or commas; empty when there is anything else. Where white space
/// alone parts them, a comma inside of one is its decimal point.
std::vector<double> numbersIn(std::string_view text) {
  std::vector<std::string> words = wordsIn(text, false);
  if (words.size() < kNumbers) words = wordsIn(text, true);
  std::vector<double> numbers;
  for (std::string& word : words) {
    if (word.back() == ',') word.pop_back();
    std::replace(word.begin(), word.end(), ',', '.');
    double value = 0;
    if (!parseDouble(word, value)) return {};
    numbers.push_back(value);
  }
  return numbers;
}

std::vector<ControlPoint> controlPointsOf(const CPLXMLNode* root) {
  std::vector<ControlPoint> points;
  const CPLXMLNode* list = CPLGetXMLNode(root, "GCPList");
  for (const CPLXMLNode* node = list ? list->psChild : nullptr; node; node = node->psNext) {
    if (node->eType != CXT_Element || !equalsIgnoreCase(node->pszValue, "GCP")) continue;
    double n[4] = {};
    const char* names[4] = {"Pixel", "Line", "X", "Y"};
    bool whole = true;
    for (int i = 0; i < 4; ++i)
      whole = whole && parseDouble(CPLGetXMLValue(node, names[i], ""), n[i]);
    if (whole) points.push_back({n[0], n[1], n[2], n[3]});
  }
  return points;
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

bool isUsable(const GeoTransform& t) {
  for (const double value : {t.x0, t.a, t.b, t.y0, t.d, t.e}) {
    if (!std::isfinite(value) || std::fabs(value) > kFarthest) return false;
  }
  return std::fabs(t.a * t.e - t.b * t.d) > 0;
}

std::optional<GeoTransform> parseWorldFile(std::string_view text) {
  const std::vector<double> n = numbersIn(text);
  if (n.size() < kNumbers) return std::nullopt;
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
  facts.hasForeignPoints = tree && CPLGetXMLNode(tree.get(), "=GeodataXform");
  const CPLXMLNode* root = tree ? CPLGetXMLNode(tree.get(), "=PAMDataset") : nullptr;
  if (!root) return facts;
  const std::vector<double> n = numbersIn(CPLGetXMLValue(root, "GeoTransform", ""));
  if (n.size() == kNumbers) {
    const GeoTransform t{n[0], n[1], n[2], n[3], n[4], n[5]};
    if (isUsable(t)) facts.transform = t;
  }
  facts.points = controlPointsOf(root);
  const char* system = CPLGetXMLValue(root, "SRS", "");
  if (!*system) system = CPLGetXMLValue(root, "GCPList.Projection", "");
  if (*system) facts.coordinateSystem = epsgOfWkt(system);
  facts.namesOverviewFile = xml.find("OVERVIEW_FILE") != std::string::npos;
  return facts;
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
