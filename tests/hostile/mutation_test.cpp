// Damaged files of every form: each is read or refused, without a signal, a sanitizer's report, a
// large allocation or an endless wait. The damage follows from the form's and the file's number.
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <ostream>
#include <random>

#include "base/file.h"
#include "base/path.h"
#include "tests/hostile/apart.h"
#include "tests/hostile/hostilefiles.h"
#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::hostile {
namespace {

using Change = std::function<void(GDALDataset&)>;

struct Form {
  const char* name;
  /// The file that is damaged: the image, or one beside it when there is an ending.
  const char* image;
  const char* ending;
  std::vector<std::string> options;
  /// Sets what only an open file can be given; the file then has one band of this type.
  GDALDataType type = GDT_Byte;
  Change change = nullptr;
};

void PrintTo(const Form& form, std::ostream* out) {
  *out << form.name;
}

void setPalette(GDALDataset& dataset) {
  GDALColorTable table;
  for (int i = 0; i < 256; ++i) {
    const GDALColorEntry entry{short(i), short(255 - i), 90, 255};
    table.SetColorEntry(i, &entry);
  }
  dataset.GetRasterBand(1)->SetColorTable(&table);
}

void setMask(GDALDataset& dataset) {
  dataset.CreateMaskBand(GMF_PER_DATASET);
  dataset.GetRasterBand(1)->GetMaskBand()->Fill(255);
}

void setPoints(GDALDataset& dataset) {
  GDAL_GCP points[4];
  GDALInitGCPs(4, points);
  for (int i = 0; i < 4; ++i) {
    points[i].dfGCPPixel = points[i].dfGCPX = i % 2 * 80.0;
    points[i].dfGCPLine = i / 2 * 60.0;
    points[i].dfGCPY = 100 - points[i].dfGCPLine + i;
  }
  dataset.SetGCPs(4, points, "");
  GDALDeinitGCPs(4, points);
}

void setRotation(GDALDataset& dataset) {
  double t[6] = {1000, 0.5, 0.2, 2000, 0.2, -0.5};
  dataset.SetGeoTransform(t);
}

const Form kForms[] = {
    {"strips", "a.tif", "", {}},
    {"tiles", "a.tif", "", {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}},
    {"jpegTiles", "a.tif", "", {"COMPRESS=JPEG", "TILED=YES", "PHOTOMETRIC=YCBCR"}},
    {"deflate", "a.tif", "", {"COMPRESS=DEFLATE", "PREDICTOR=2"}},
    {"lzw", "a.tif", "", {"COMPRESS=LZW", "TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}},
    {"bigTiff", "a.tif", "", {"BIGTIFF=YES", "INTERLEAVE=BAND"}},
    {"palette", "a.tif", "", {"COMPRESS=PACKBITS"}, GDT_Byte, setPalette},
    {"bits16", "a.tif", "", {"COMPRESS=DEFLATE"}, GDT_UInt16, setRotation},
    {"float", "a.tif", "", {"ENDIANNESS=BIG"}, GDT_Float32, setRotation},
    {"mask", "a.tif", "", {}, GDT_Byte, setMask},
    {"points", "a.tif", "", {}, GDT_Byte, setPoints},
    {"img", "a.img", "", {}},
    {"imgCompressed", "a.img", "", {"COMPRESSED=YES"}},
    {"imgSpill", "a.img", "", {"USE_SPILL=YES"}},
    {"imgIge", "a.img", "*.ige", {"USE_SPILL=YES"}},
    {"jpg", "a.jpg", "", {}},
    {"jpgProgressive", "a.jpg", "", {"PROGRESSIVE=YES"}},
    {"worldFile", "a.tif", "*.tfw", {"TFW=YES"}},
    {"auxFile", "a.jpg", ".aux.xml", {}},
    {"pyramid", "a.tif", ".ovr", {"COMPRESS=JPEG"}},
};

void writeForm(const Form& form, const std::string& path) {
  GDALAllRegister();
  if (!form.change) {
    // A pyramid needs an image that is larger than one of its tiles.
    const int side = form.ending == std::string(".ovr") ? 280 : 100;
    const auto paint = [](int column, int row, uint8_t* rgb) {
      rgb[0] = static_cast<uint8_t>(60 + column * 7 % 50);
      rgb[1] = static_cast<uint8_t>(90 + row * 5 % 60);
      rgb[2] = static_cast<uint8_t>(120 + column * row % 9);
    };
    const std::string ending = extensionOf(path);
    test::writeRaster(test::makeRaster(side, side - 20, 1000, 2000, 0.5, paint), path,
                      ending == ".img"   ? "HFA"
                      : ending == ".jpg" ? "JPEG"
                                         : "GTiff",
                      form.options);
    return;
  }
  CPLStringList options;
  for (const std::string& option : form.options) options.AddString(option.c_str());
  GDALDataset* dataset = GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
      path.c_str(), 80, 60, 1, form.type, options.List());
  form.change(*dataset);
  for (int row = 0; row < 60; ++row) {
    uint8_t line[80];
    for (int x = 0; x < 80; ++x) line[x] = static_cast<uint8_t>(60 + (x * row) % 100);
    EXPECT_EQ(dataset->GetRasterBand(1)->RasterIO(GF_Write, 0, row, 80, 1, line, 80, 1, GDT_Byte, 0,
                                                  0, nullptr),
              CE_None);
  }
  GDALClose(dataset);
}

/// Where damage does most: in a TIFF's directory, else near the start, now and then anywhere.
size_t choosePlace(const std::string& bytes, std::mt19937& random) {
  const uint32_t choice = random() % 10;
  const auto word = [&](size_t at) {
    return at + 4 <= bytes.size()
               ? uint8_t(bytes[at]) | uint8_t(bytes[at + 1]) << 8 | uint8_t(bytes[at + 2]) << 16
               : 0;
  };
  size_t start = 0, length = 600;
  if (choice < 5 && bytes[0] == 'I' && bytes[1] == 'I') {
    start = static_cast<size_t>(bytes[2] == 43 ? word(8) : word(4));
    length = bytes[2] == 43 ? 400 : 240;
  }
  if (choice >= 8 || start >= bytes.size()) start = 0, length = bytes.size();
  return std::min(bytes.size() - 1, start + random() % length);
}

std::string damaged(std::string bytes, uint32_t number) {
  static const uint32_t kNumbers[] = {
      0,     1,     2,          7,          0x7F,       0xFF,       0x100, 0x7FFF,  0x8000,
      65535, 65536, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF0, 34887, 0x10001, 259};
  std::mt19937 random(number);
  for (uint32_t times = 1 + random() % 4; times > 0 && !bytes.empty(); --times) {
    const size_t at = choosePlace(bytes, random);
    const size_t length = std::min<size_t>(bytes.size() - at, 1 + random() % 64);
    switch (random() % 8) {
      case 0:
        bytes.resize(at);
        break;
      case 1:
        bytes.erase(at, length);
        break;
      case 2:
        bytes.insert(at, bytes.substr(choosePlace(bytes, random), length));
        break;
      case 3:
        std::swap_ranges(&bytes[at], &bytes[at] + length / 2, &bytes[at] + length / 2);
        break;
      case 4:
      case 5: {
        const uint32_t value = kNumbers[random() % std::size(kNumbers)];
        for (size_t i = 0; i < std::min<size_t>(4, bytes.size() - at); ++i)
          bytes[at + i] = static_cast<char>(value >> (8 * i));
        break;
      }
      default:
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << random() % 8));
    }
  }
  return bytes;
}

class Mutations : public testing::TestWithParam<Form> {};

TEST_P(Mutations, AreReadOrRefused) {
  const Form& form = GetParam();
  const test::Scratch scratch("tarn_mutation_");
  const std::string image = scratch.at(form.image), ending = form.ending;
  writeForm(form, image);
  const std::string target = ending[0] == '*' ? scratch.at("a" + ending.substr(1)) : image + ending;
  if (ending == ".aux.xml")
    writeBytes(target,
               "<PAMDataset><SRS>PROJCS[\"x\"]</SRS><GeoTransform>1000, 0.5, 0, 2000, 0, -0.5"
               "</GeoTransform><Metadata domain=\"OVERVIEWS\"><MDI key=\"K\">v</MDI></Metadata>"
               "<GCPList><GCP Id=\"1\" Pixel=\"1\" Line=\"2\" X=\"3\" Y=\"4\"/></GCPList>"
               "</PAMDataset>");
  // The undamaged file is shown, so what follows does reach the pixels.
  const auto first = runApart(1, 1, [&](int) {
    const Seen seen = look(image, true);
    if (!seen.shown) std::printf("%s\n", seen.message.c_str());
    if (!seen.shown) _exit(9);
  });
  ASSERT_TRUE(first.empty()) << first[0].how;
  const std::string whole = bytesOf(target);
  ASSERT_FALSE(whole.empty()) << target;
  const uint32_t seed = static_cast<uint32_t>(&form - kForms) * 1000003;
  const char* asked = std::getenv("TARN_MUTATIONS");
  const int count = asked ? std::atoi(asked) : 500;
  const auto faults = runApart(count, 250, [&](int i) {
    writeBytes(target, damaged(whole, seed + static_cast<uint32_t>(i)));
    const bool build = i % 50 == 0 && ending != ".ovr";
    look(image, build);
    if (build) static_cast<void>(removeAll(image + ".ovr"));
  });
  for (const Fault& fault : faults) {
    const std::string kept =
        joinPath(testing::TempDir(),
                 std::string("tarn-mutation-") + form.name + "-" + std::to_string(fault.index));
    writeBytes(kept, damaged(whole, seed + static_cast<uint32_t>(fault.index)));
    ADD_FAILURE() << "mutation " << fault.index << " of " << form.name << " " << fault.how
                  << "; the damaged file is kept as " << kept;
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, Mutations, testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param.name); });

}  // namespace
}  // namespace tarn::hostile
