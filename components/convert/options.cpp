#include "components/convert/options.h"

#include <algorithm>

#include "base/text.h"
#include "components/raster/tilecodec.h"

namespace tarn::convert {
namespace {

template <typename Value>
Status setWord(std::string_view name, const std::string& value, Value& target) {
  const std::vector<std::string> words = wordsOf(name);
  std::string all;
  for (size_t i = 0; i < words.size(); ++i) {
    if (equalsIgnoreCase(value, words[i])) {
      target = static_cast<Value>(i);
      return Status::ok();
    }
    all += (i == 0 ? "" : ", ") + words[i];
  }
  return Status::error(std::string(name) + " cannot be \"" + value + "\"; it is one of " + all);
}

Status setYesNo(std::string_view name, const std::string& value, bool& target) {
  target = equalsIgnoreCase(value, "yes") || value == "true";
  if (target || equalsIgnoreCase(value, "no") || value == "false") return Status::ok();
  return Status::error(std::string(name) + " cannot be \"" + value + "\"; it is yes or no");
}

Status setQuality(const std::string& value, int& target) {
  int number = 0;
  if (!parseInt(value, number) || number < 1 || number > 100)
    return Status::error("quality cannot be \"" + value + "\"; it is a number from 1 to 100");
  target = number;
  return Status::ok();
}

Status setBands(const std::string& value, std::vector<int>& target) {
  std::vector<int> bands;
  for (const std::string& part : split(value, ',')) {
    int number = 0;
    if (trim(std::string_view(value)).empty()) break;
    if (!parseInt(part, number) || number < 1)
      return Status::error("bands cannot be \"" + value + "\"; they are numbers like 3,2,1");
    bands.push_back(number);
  }
  target = std::move(bands);
  return Status::ok();
}

raster::TileCompression tileCompression(Compression compression) {
  return compression == Compression::kZstd ? raster::TileCompression::kZstd
                                           : raster::TileCompression::kNone;
}

}  // namespace

std::vector<std::string> wordsOf(std::string_view option) {
  if (option == "format") return {"geotiff", "cog", "img", "jpeg"};
  if (option == "compression") return {"none", "deflate", "lzw", "jpeg", "zstd"};
  if (option == "pixels") return {"stored", "shown"};
  if (option == "existing") return {"skip", "overwrite", "rename"};
  return {};
}

Status setOption(std::string_view name, const std::string& value, Options& options) {
  if (name == "format") return setWord(name, value, options.format);
  if (name == "compression") return setWord(name, value, options.compression);
  if (name == "pixels") return setWord(name, value, options.pixels);
  if (name == "existing") return setWord(name, value, options.existing);
  if (name == "quality") return setQuality(value, options.quality);
  if (name == "bands") return setBands(value, options.bands);
  if (name == "pyramids") return setYesNo(name, value, options.pyramids);
  if (name == "side-files") return setYesNo(name, value, options.sideFiles);
  if (name == "folder") {
    options.folder = value;
    return Status::ok();
  }
  return Status::error("there is no option " + std::string(name));
}

Status checkOptions(const Options& options) {
  if (!raster::canCode(tileCompression(options.compression)))
    return Status::error("Zstandard is not built into this computer's GDAL");
  const bool shown = options.pixels == Pixels::kShown || options.format == Format::kJpeg;
  if (shown && !options.bands.empty() && options.bands.size() != 1 && options.bands.size() != 3)
    return Status::error("8 bits as on the screen take one band or three, not " +
                         std::to_string(options.bands.size()));
  return Status::ok();
}

std::string keyOf(const Options& options) {
  const bool tiff = options.format == Format::kGeoTiff || options.format == Format::kCloudTiff;
  const bool lossy =
      options.format == Format::kJpeg || (tiff && options.compression == Compression::kJpeg);
  std::string key = wordsOf("format")[static_cast<size_t>(options.format)];
  if (tiff) key += " " + wordsOf("compression")[static_cast<size_t>(options.compression)];
  if (lossy) key += ' ' + std::to_string(options.quality);
  key += options.pyramids ? " pyramids" : "";
  key += options.pixels == Pixels::kShown ? " shown" : "";
  key += options.sideFiles ? " sides" : "";
  for (const int band : options.bands) key += " b" + std::to_string(band);
  return key;
}

std::string extensionFor(Format format) {
  if (format == Format::kImg) return ".img";
  return format == Format::kJpeg ? ".jpg" : ".tif";
}

}  // namespace tarn::convert
