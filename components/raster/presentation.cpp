#include "components/raster/presentation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "base/text.h"
#include "components/raster/pyramidstamp.h"

namespace tarn::raster {
namespace {

/// Which bands are shown, by what the image says about them.
struct Choice {
  std::vector<int> bands;
  int alphaBand = 0;
  bool cmyk = false;
  bool palette = false;
  std::string note;
};

/// The bands of the colours, in their order; empty unless each is there.
std::vector<int> bandsOf(const std::vector<BandFacts>& bands,
                         const std::vector<BandColour>& colours) {
  std::vector<int> found;
  for (const BandColour colour : colours) {
    const auto at = std::find_if(bands.begin(), bands.end(),
                                 [&](const BandFacts& band) { return band.colour == colour; });
    if (at == bands.end()) return {};
    found.push_back(static_cast<int>(at - bands.begin()) + 1);
  }
  return found;
}

Choice chooseBands(const ImageFacts& facts) {
  Choice choice;
  std::vector<int> shown;
  for (size_t i = 0; i < facts.bands.size(); ++i) {
    const int number = static_cast<int>(i) + 1;
    if (facts.bands[i].colour != BandColour::kAlpha) {
      shown.push_back(number);
    } else if (choice.alphaBand == 0) {
      choice.alphaBand = number;
    }
  }
  if (shown.empty()) {
    shown = {1};
    choice.alphaBand = 0;
  }
  // The alpha of converted CMYK is made up by the conversion.
  if (facts.colourSpace == "CMYK") choice.alphaBand = 0;
  if (!facts.wantedBands.empty()) {
    choice.bands = facts.wantedBands;
    choice.palette = choice.bands.size() == 1 && !facts.bands[choice.bands[0] - 1].palette.empty();
    return choice;
  }
  choice.bands = bandsOf(facts.bands, {BandColour::kRed, BandColour::kGreen, BandColour::kBlue});
  if (!choice.bands.empty()) return choice;
  choice.bands = bandsOf(facts.bands, {BandColour::kCyan, BandColour::kMagenta, BandColour::kYellow,
                                       BandColour::kBlack});
  choice.cmyk = !choice.bands.empty();
  if (choice.cmyk) return choice;
  const std::string count = std::to_string(shown.size());
  if (shown.size() < 3) {
    choice.bands = {shown[0]};
    choice.palette = !facts.bands[shown[0] - 1].palette.empty();
    if (shown.size() == 2) choice.note = "has 2 bands; the first is shown";
    return choice;
  }
  // IMG files and many TIFFs name no colours; the first three are red, green and blue then.
  choice.bands = {shown[0], shown[1], shown[2]};
  if (shown.size() > 3)
    choice.note = "has " + count +
                  " bands without names of colours; the first three are shown as red, green and "
                  "blue";
  return choice;
}

SampleType typeNamed(const std::string& name) {
  if (name == "Byte") return SampleType::kByte;
  if (name == "signed Byte" || name == "Int8") return SampleType::kSignedByte;
  if (name == "UInt16") return SampleType::kUInt16;
  if (name == "Int16") return SampleType::kInt16;
  return name == "Float32" ? SampleType::kFloat : SampleType::kDouble;
}

bool isFloating(const std::string& type) {
  return type.compare(0, 5, "Float") == 0;
}

double topOf(const BandFacts& band) {
  const bool isUnsigned = band.type == "Byte" || band.type.compare(0, 4, "UInt") == 0;
  return isUnsigned ? std::exp2(std::clamp(band.bits, 1, 64)) - 1 : 0;
}

bool canBe(double nodata, const BandFacts& band) {
  if (isFloating(band.type)) return std::isfinite(nodata);
  if (nodata != std::floor(nodata)) return false;
  const double top = topOf(band);
  if (top > 0) return nodata >= 0 && nodata <= top;
  const double half = std::exp2(band.bits - 1);
  return nodata >= -half && nodata < half;
}

/// The nodata values of the shown bands; empty unless each has one that its pixels can have.
std::vector<double> nodataOf(const ImageFacts& facts, const std::vector<int>& bands) {
  std::vector<double> values;
  for (const int number : bands) {
    const BandFacts& band = facts.bands[number - 1];
    if (!band.nodata || !canBe(*band.nodata, band)) return {};
    values.push_back(*band.nodata);
  }
  return values;
}

uint8_t kept(int value, const Presentation& p) {
  if (value == 0 && p.keepsBlack) return 1;
  return value == 255 && p.keepsWhite ? 254 : static_cast<uint8_t>(value);
}

/// Bytes of few bits, or that count from white down, spread over 0 to 255.
void makeSpread(bool minIsWhite, Presentation& p) {
  std::vector<uint8_t> table(256);
  for (int value = 0; value < 256; ++value) {
    const int spread = static_cast<int>(std::lround(std::min<double>(value, p.top) * 255 / p.top));
    table[value] = static_cast<uint8_t>(minIsWhite ? 255 - spread : spread);
  }
  p.table = std::make_shared<const std::vector<uint8_t>>(std::move(table));
}

void makePalette(const std::vector<PaletteColour>& palette, Presentation& p) {
  const bool gray = std::all_of(palette.begin(), palette.end(), [](const PaletteColour& c) {
    return c[0] == c[1] && c[1] == c[2];
  });
  p.channels = gray ? 1 : 3;
  std::vector<uint8_t> table;
  for (const PaletteColour& colour : palette) {
    if (colour[3] == 0) {
      table.insert(table.end(), p.channels, 0);
      continue;
    }
    const bool oneValue = colour[0] == colour[1] && colour[1] == colour[2];
    for (int c = 0; c < p.channels; ++c) table.push_back(oneValue ? kept(colour[c], p) : colour[c]);
  }
  p.table = std::make_shared<const std::vector<uint8_t>>(std::move(table));
}

Conversion conversionFor(const ImageFacts& facts, const Choice& choice, SampleType type) {
  const BandFacts& first = facts.bands[choice.bands[0] - 1];
  const bool whole = type == SampleType::kByte || type == SampleType::kUInt16;
  if (choice.cmyk && whole) return Conversion::kCmyk;
  if (choice.palette && whole) return Conversion::kPalette;
  if (type != SampleType::kByte) return Conversion::kScaled;
  return first.bits < 8 || facts.minIsWhite ? Conversion::kSpread : Conversion::kBytes;
}

/// What says that there is nothing, and what becomes of black and white content then.
void decideNothing(const ImageFacts& facts, const Choice& choice, Presentation& p) {
  const BandFacts& first = facts.bands[p.bands[0] - 1];
  const bool palette = p.conversion == Conversion::kPalette;
  const bool lineArt = palette || (p.type == SampleType::kByte && first.bits == 1);
  p.alphaBand = choice.alphaBand;
  p.alphaMultiplied = facts.alphaMultiplied && p.alphaBand > 0 && p.top > 0 && !palette;
  p.hasMask = first.hasMask;
  p.nodata = nodataOf(facts, p.bands);
  const bool zero = std::all_of(p.nodata.begin(), p.nodata.end(), [](double v) { return v == 0; });
  const bool zeroIsBlack = p.top > 0 && !lineArt && !facts.minIsWhite;
  // Black already means nothing.
  if (zero && zeroIsBlack) p.nodata.clear();
  const auto clear = [](const PaletteColour& colour) { return colour[3] == 0; };
  const bool stated = p.statesNothing() ||
                      (palette && std::any_of(first.palette.begin(), first.palette.end(), clear));
  p.keepsBlack = stated || lineArt;
  p.keepsWhite = stated;
  p.thinLines = lineArt && !stated;
}

}  // namespace

size_t bytesOf(SampleType type) {
  switch (type) {
    case SampleType::kByte:
    case SampleType::kSignedByte:
      return 1;
    case SampleType::kUInt16:
    case SampleType::kInt16:
      return 2;
    case SampleType::kFloat:
      return 4;
    case SampleType::kDouble:
      break;
  }
  return 8;
}

Result<Presentation> decidePresentation(const ImageFacts& facts) {
  if (facts.bands.empty()) return Status::error("has no bands");
  const Choice choice = chooseBands(facts);
  const BandFacts& first = facts.bands[choice.bands[0] - 1];
  Presentation p;
  p.bands = choice.bands;
  p.type = typeNamed(first.type);
  p.top = topOf(first);
  for (const int number : p.bands) {
    const BandFacts& band = facts.bands[number - 1];
    if (band.type[0] == 'C')
      return Status::error("has complex samples (" + band.type + "), which cannot be shown");
    if (band.type == first.type && band.bits == first.bits) continue;
    p.type = SampleType::kDouble;
    p.top = 0;
  }
  p.conversion = conversionFor(facts, choice, p.type);
  p.channels = p.bands.size() == 1 ? 1 : 3;
  decideNothing(facts, choice, p);
  if (p.conversion == Conversion::kSpread) makeSpread(facts.minIsWhite, p);
  if (p.conversion == Conversion::kPalette) makePalette(first.palette, p);
  p.minIsWhite = p.conversion == Conversion::kScaled && facts.minIsWhite;
  p.note = choice.note;
  const bool inOrder = p.bands == std::vector<int>{1, 2, 3} || p.bands == std::vector<int>{1};
  const bool bytes = p.conversion == Conversion::kBytes && !p.statesNothing();
  p.plain = bytes && inOrder && facts.bands.size() == p.bands.size();
  // A JPEG would smear the rim of what is masked.
  p.lossy =
      bytes && (facts.driver == "JPEG" || facts.compression.find("JPEG") != std::string::npos);
  return p;
}

std::string formOf(const Presentation& p) {
  std::string text = std::to_string(p.channels) + ' ' +
                     std::to_string(static_cast<int>(p.conversion)) + ' ' +
                     std::to_string(static_cast<int>(p.type)) + ' ' + std::to_string(p.alphaBand) +
                     (p.alphaMultiplied ? " times" : " -") + (p.hasMask ? " mask" : " -") +
                     (p.keepsBlack ? " black" : " -") + (p.keepsWhite ? " white" : " -") +
                     (p.minIsWhite ? " inverse" : " -") + ' ' + formatDouble(p.top);
  for (const int band : p.bands) text += " b" + std::to_string(band);
  for (const double value : p.nodata) text += " n" + formatDouble(value);
  if (p.table) text += ' ' + std::to_string(hashBytes(p.table->data(), p.table->size()));
  return text;
}

std::string scaleNote(const ImageFacts& facts, const Presentation& p) {
  const BandFacts& band = facts.bands[p.bands[0] - 1];
  const std::string kind = isFloating(band.type) ? "floating-point samples"
                                                 : (topOf(band) > 0 ? "" : "signed ") +
                                                       std::to_string(band.bits) + " bits";
  if (p.scale.low > p.scale.high) return "seems to hold nothing but nodata";
  if (p.scale.low == p.scale.high)
    return "holds one value only (" + formatDouble(p.scale.low) + "): shown in mid gray";
  char range[64];
  std::snprintf(range, sizeof range, " (%.6g to %.6g)", p.scale.low, p.scale.high);
  return "scaled from " + kind + range;
}

}  // namespace tarn::raster
