#include "components/convert/plan.h"

#include <algorithm>

#include "base/text.h"

namespace tarn::convert {
namespace {

using raster::BandColour;
using raster::BandFacts;
using raster::ImageFacts;
using raster::Presentation;

constexpr int kWidestJpeg = 65500;
// An IMG beyond this keeps its pixels in a second file, which its driver writes.
constexpr int64_t kLargestImg = 2'000'000'000;

bool isTiff(const Options& options) {
  return options.format == Format::kGeoTiff || options.format == Format::kCloudTiff;
}

bool isByteOnly(const Options& options) {
  return options.format == Format::kJpeg ||
         (isTiff(options) && options.compression == Compression::kJpeg);
}

/// Gray or RGB bytes, perhaps with an alpha band: what JPEG can hold of stored samples.
bool areColourBytes(const ImageFacts& facts, const std::vector<int>& bands, int alpha) {
  const size_t colours = bands.size() - (alpha > 0 ? 1 : 0);
  return (colours == 1 || colours == 3) && !facts.minIsWhite &&
         std::all_of(bands.begin(), bands.end(), [&](int number) {
           const BandFacts& band = facts.bands[number - 1];
           return band.type == "Byte" && band.bits == 8 && band.palette.empty();
         });
}

std::string whyShown(const ImageFacts& facts) {
  const BandFacts& first = facts.bands[0];
  const std::string what = !first.palette.empty() ? "its palette"
                           : first.bits != 8      ? "its " + std::to_string(first.bits) + " bits"
                                                  : "its bands";
  return "JPEG holds gray or RGB of 8 bits; " + what + " became that, as on the screen";
}

const char* tiffName(Compression compression) {
  switch (compression) {
    case Compression::kDeflate:
      return "DEFLATE";
    case Compression::kLzw:
      return "LZW";
    case Compression::kJpeg:
      return "JPEG";
    case Compression::kZstd:
      return "ZSTD";
    case Compression::kNone:
      break;
  }
  return "NONE";
}

bool hasPalette(const ImageFacts& facts, const Plan& plan) {
  return !plan.shown && !facts.bands[plan.bands[0] - 1].palette.empty();
}

/// Which differences between neighbours compress best: 1 none, 2 of whole numbers, 3 of floating
/// ones.
int predictorFor(const ImageFacts& facts, const Options& options, const Plan& plan) {
  if (options.compression == Compression::kNone || options.compression == Compression::kJpeg ||
      hasPalette(facts, plan))
    return 1;
  const BandFacts& first = facts.bands[plan.bands[0] - 1];
  if (!plan.shown && first.type.compare(0, 5, "Float") == 0) return 3;
  return plan.shown || first.bits == 8 || first.bits == 16 || first.bits == 32 ? 2 : 1;
}

void planDriver(const ImageFacts& facts, const Options& options, Plan& plan) {
  if (options.format == Format::kImg) {
    plan.driver = "HFA";
    return;
  }
  if (options.format == Format::kJpeg) {
    plan.driver = "JPEG";
    plan.creation = {"QUALITY=" + std::to_string(options.quality)};
    return;
  }
  const bool cloud = options.format == Format::kCloudTiff;
  const bool jpeg = options.compression == Compression::kJpeg;
  plan.driver = cloud ? "COG" : "GTiff";
  plan.creation = {std::string("COMPRESS=") + tiffName(options.compression), "NUM_THREADS=ALL_CPUS",
                   "BIGTIFF=IF_SAFER"};
  const std::string quality = std::to_string(options.quality);
  const int predictor = predictorFor(facts, options, plan);
  if (cloud) {
    plan.creation.insert(
        plan.creation.end(),
        {"BLOCKSIZE=256",
         hasPalette(facts, plan) ? "OVERVIEW_RESAMPLING=NEAREST" : "OVERVIEW_RESAMPLING=AVERAGE"});
    if (jpeg) plan.creation.push_back("QUALITY=" + quality);
    if (predictor > 1) plan.creation.emplace_back("PREDICTOR=YES");
    return;
  }
  plan.creation.insert(plan.creation.end(), {"TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"});
  const size_t bands = plan.shown ? 0 : plan.bands.size();
  if (jpeg && bands == 3) plan.creation.emplace_back("PHOTOMETRIC=YCBCR");
  if (jpeg) plan.creation.push_back("JPEG_QUALITY=" + quality);
  if (!plan.shown && facts.alphaMultiplied) plan.creation.emplace_back("ALPHA=PREMULTIPLIED");
  if (predictor > 1) plan.creation.push_back("PREDICTOR=" + std::to_string(predictor));
}

raster::TileCoding codingOf(const Options& options) {
  raster::TileCoding coding;
  coding.quality = options.quality;
  if (options.compression == Compression::kJpeg)
    coding.compression = raster::TileCompression::kJpeg;
  if (options.compression == Compression::kZstd)
    coding.compression = raster::TileCompression::kZstd;
  if (options.compression == Compression::kDeflate)
    coding.compression = raster::TileCompression::kDeflate;
  return coding;
}

/// Which of the image's bands are kept as they are; alpha apart when JPEG has to hold it.
void chooseStored(const ImageFacts& facts, const Options& options, Plan& plan) {
  plan.bands = options.bands;
  for (int i = 1; options.bands.empty() && i <= static_cast<int>(facts.bands.size()); ++i)
    plan.bands.push_back(i);
  const auto alpha = std::find_if(plan.bands.begin(), plan.bands.end(), [&](int number) {
    return facts.bands[number - 1].colour == BandColour::kAlpha;
  });
  const int alphaBand = alpha == plan.bands.end() || plan.bands.size() == 1 ? 0 : *alpha;
  if (facts.colourSpace == "CMYK") {
    plan.shown = true;
    plan.notes.emplace_back("its CMYK colours became RGB");
  } else if (isByteOnly(options) && !areColourBytes(facts, plan.bands, alphaBand)) {
    plan.shown = true;
    plan.notes.push_back(whyShown(facts));
  } else if (alphaBand > 0 && (isByteOnly(options) || options.format == Format::kImg)) {
    plan.alphaToMask = alphaBand;
    plan.bands.erase(alpha);
    plan.notes.push_back(std::string(isByteOnly(options) ? "JPEG" : "IMG") +
                         " holds no alpha band; a mask says what is transparent");
  }
}

bool holds(const ImageFacts& facts, const std::vector<int>& bands) {
  return std::all_of(bands.begin(), bands.end(),
                     [&](int number) { return number <= static_cast<int>(facts.bands.size()); });
}

}  // namespace

Result<Plan> planConversion(const ImageFacts& facts, const Presentation& presentation,
                            const Options& options) {
  if (!holds(facts, options.bands))
    return Status::error("has only " + std::to_string(facts.bands.size()) + " bands");
  if (options.format == Format::kJpeg && std::max(facts.width, facts.height) > kWidestJpeg)
    return Status::error("is " + std::to_string(facts.width) + " x " +
                         std::to_string(facts.height) + " pixels; a JPEG holds at most " +
                         std::to_string(kWidestJpeg) + " a side");
  Plan plan;
  plan.shown = options.pixels == Pixels::kShown;
  if (!plan.shown) chooseStored(facts, options, plan);
  if (plan.shown) plan.bands = presentation.bands;
  plan.lossless = !isByteOnly(options);
  plan.coding = codingOf(options);
  plan.cloudOptimised = options.format == Format::kCloudTiff;
  plan.sideFiles = options.sideFiles || options.format == Format::kJpeg;
  // What the tile readers deliver is what is to be written.
  plan.inTiles = plan.shown || (presentation.plain && plan.bands.size() == facts.bands.size() &&
                                plan.bands == presentation.bands);
  const bool ownTiff = isTiff(options) && options.compression != Compression::kLzw;
  const int64_t bytes = int64_t{facts.width} * facts.height * presentation.channels;
  if (plan.inTiles && ownTiff) plan.writer = Writer::kTiles;
  if (plan.inTiles && options.format == Format::kImg && bytes < kLargestImg)
    plan.writer = Writer::kBlocks;
  if (options.format == Format::kJpeg && plan.alphaToMask == 0) plan.writer = Writer::kRows;
  planDriver(facts, options, plan);
  plan.pyramidInside = plan.cloudOptimised || (options.pyramids && plan.writer == Writer::kTiles);
  plan.pyramidBeside = options.pyramids && !plan.pyramidInside;
  return plan;
}

}  // namespace tarn::convert
