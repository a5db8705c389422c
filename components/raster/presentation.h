// How the samples of an image become gray or RGB of 8 bits, decided from the image's facts alone.
//
// A pixel of pure black or pure white means "nothing here" everywhere behind this point.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/result.h"
#include "components/raster/imagefacts.h"

namespace tarn::raster {

/// How samples are held while they are converted; other integers are held as kDouble.
enum class SampleType { kByte, kSignedByte, kUInt16, kInt16, kFloat, kDouble };
size_t bytesOf(SampleType type);

enum class Conversion {
  /// Gray or RGB bytes as they are.
  kBytes,
  /// Each byte through `table`.
  kSpread,
  /// One sample becomes `channels` bytes of `table`; a sample behind its end is nothing.
  kPalette,
  /// `scale` onto 1 to 254.
  kScaled,
  /// Cyan, magenta, yellow, black, from 0 to `top`.
  kCmyk
};

/// `low` and below become 1, `high` and above 254; equal ones become mid gray. `low` above `high`:
/// no content was found.
struct Scale {
  double low = 0;
  double high = 0;
};

struct Presentation {
  /// 1 gray, 3 R G B.
  int channels = 3;
  Conversion conversion = Conversion::kBytes;
  SampleType type = SampleType::kByte;
  /// Bands to read (from 1), as gray, as R, G, B, or as C, M, Y, K.
  std::vector<int> bands{1, 2, 3};
  /// Where this band is 0 there is nothing; 0 for none.
  int alphaBand = 0;
  /// Samples are multiplied by alpha.
  bool alphaMultiplied = false;
  /// Where the dataset's mask is 0 there is nothing.
  bool hasMask = false;
  /// One value for each of `bands`: where all are met there is nothing. Or empty.
  std::vector<double> nodata;
  /// Black (white) content is made nearly black (white), so that it is drawn.
  bool keepsBlack = false;
  bool keepsWhite = false;
  /// Largest value of an unsigned sample; 0 for other samples.
  double top = 255;
  /// Scaled samples count from white down.
  bool minIsWhite = false;
  std::shared_ptr<const std::vector<uint8_t>> table;
  Scale scale;
  /// Line art on paper that is nothing: lines stay when it is reduced, however thin.
  bool thinLines = false;
  /// What is delivered are the file's bands, all of them, so that a standard pyramid fits.
  bool plain = true;
  /// Its pyramid's tiles are JPEG too.
  bool lossy = false;
  /// A sentence for the user, or empty.
  std::string note;

  /// Some pixels are known not to be there other than by being black or white.
  bool statesNothing() const { return alphaBand > 0 || hasMask || !nodata.empty(); }
};

/// The presentation (a kScaled one still without its scale), or the reason why the image cannot be
/// shown (a sentence without the file).
Result<Presentation> decidePresentation(const ImageFacts& facts);

/// A short text that differs for presentations that deliver different pixels; the scale apart.
std::string formOf(const Presentation& presentation);

/// "scaled from 16 bits (37 to 1200)".
std::string scaleNote(const ImageFacts& facts, const Presentation& presentation);

}  // namespace tarn::raster
