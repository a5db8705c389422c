#include "tests/hostile/hostilefiles.h"

#include <fcntl.h>
#include <gdal_priv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <sstream>

#include "base/path.h"
#include "base/text.h"
#include "tests/support/rasters.h"

namespace tarn::hostile {
namespace {

constexpr const char* kFolder = "/";

void makePipe(const std::string& path) {
  mkfifo(path.c_str(), 0666);
}

void makeFolder(const std::string& path) {
  mkdir(path.c_str(), 0777);
}

auto linkTo(const std::string& target) {
  return [target](const std::string& path) {
    if (symlink(target.c_str(), path.c_str()) != 0) writeBytes(path, "no link");
  };
}

auto text(const std::string& bytes) {
  return [bytes](const std::string& path) { writeBytes(path, bytes); };
}

/// A file of `size` bytes that takes no room.
auto hollow(off_t size) {
  return [size](const std::string& path) {
    writeBytes(path, "");
    if (truncate(path.c_str(), size) != 0) writeBytes(path, "no room");
  };
}

/// A good image with something beside it; `ending` is added to the image's path, or replaces its
/// own ending when it begins with '*'.
Case beside(const std::string& name, const std::string& ending,
            const std::function<void(const std::string&)>& make) {
  return {name, Expect::kShown, [=](const std::string& path) {
            writeGood(path);
            const std::string stem = path.substr(0, path.size() - extensionOf(path).size());
            make(ending[0] == '*' ? stem + ending.substr(1) : path + ending);
          }};
}

std::string vrtOver(const std::string& target) {
  return "<VRTDataset rasterXSize=\"300\" rasterYSize=\"200\"><VRTRasterBand dataType=\"Byte\" "
         "band=\"1\"><SimpleSource><SourceFilename>" +
         target + "</SourceFilename></SimpleSource></VRTRasterBand></VRTDataset>";
}

std::string pamOf(const std::string& inner) {
  return "<PAMDataset>" + inner + "</PAMDataset>";
}

std::string overviewItem(const std::string& target) {
  return pamOf("<Metadata domain=\"OVERVIEWS\"><MDI key=\"OVERVIEW_FILE\">" + target +
               "</MDI></Metadata>");
}

/// Every way that is known to lead a raster library to another file.
std::vector<std::string> waysTo(const Targets& t) {
  const std::string http = "http://127.0.0.1:" + t.port + "/x.tif";
  return {t.canary,
          "canary.tif",
          "../canary.tif",
          ":::BASE:::/../canary.tif",
          "/vsisubfile/0_4000," + t.canary,
          "/vsizip/" + t.canary,
          "/vsigzip/" + t.canary,
          "/vsitar/" + t.canary,
          "/vsicached?file=" + t.canary,
          "/vsisparse/" + t.canary,
          "GTIFF_DIR:1:" + t.canary,
          "JPEG_SUBFILE:0,4000," + t.canary,
          "vrt://" + t.canary,
          "/vsistdin/",
          "/vsicurl/" + http,
          "/vsicurl?url=" + http,
          "/vsicurl_streaming/" + http,
          "/vsis3/bucket/x.tif",
          "/vsizip//vsicurl/" + http,
          http};
}

void replaceIn(const std::string& path, const std::string& from, std::string to) {
  to.resize(from.size());
  writeBytes(path, replaceAll(bytesOf(path), from, to));
}

/// The stem of IMG files whose side files' names leave room for a longer one.
const std::string kRoomy(90, 'r');

}  // namespace

void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string bytesOf(const std::string& path) {
  std::ostringstream out;
  out << std::ifstream(path, std::ios::binary).rdbuf();
  return out.str();
}

void writeGood(const std::string& path, const std::vector<std::string>& options) {
  static std::map<std::string, std::string> made;
  const std::string ending = toLower(extensionOf(path));
  std::string& bytes = made[ending + (options.empty() ? "" : options[0])];
  if (!bytes.empty()) return writeBytes(path, bytes);
  const test::Raster raster =
      test::makeRaster(600, 500, 1000, 2000, 0.5, [](int column, int row, uint8_t* rgb) {
        for (int c = 0; c < 3; ++c)
          rgb[c] = static_cast<uint8_t>(kMean - 20 + (column / 15 + row / 25 * (c + 1)) % 41);
      });
  test::writeRaster(raster, path,
                    ending == ".img"   ? "HFA"
                    : ending == ".jpg" ? "JPEG"
                                       : "GTiff",
                    options);
  // An IMG with its pixels elsewhere is not whole in one file.
  if (options.empty() || options[0] != "USE_SPILL=YES") bytes = bytesOf(path);
}

std::vector<Case> hostileNames(const Targets& t) {
  std::vector<Case> cases;
  for (const std::string& name : waysTo(t)) {
    if (name[0] != '/' || name.compare(0, 4, "/vsi") == 0) cases.push_back({name});
  }
  for (const char* name :
       {"HFA:canary.tif", "GTIFF_RAW:canary.tif", "TIFF:canary.tif", "JPEG:canary.tif",
        "file:///etc/passwd", "ftp://127.0.0.1/x.tif", "\\\\127.0.0.1\\share\\x.tif", "", ".", "..",
        "/dev/zero", "/dev/stdin", "/proc/self/mem", "/proc/kmsg", "<VRTDataset/>",
        "{\"type\":\"gdal_streamed_alg\"}", "\n", "%s%s%n", "\xFF\xFE.tif"})
    cases.push_back({name});
  cases.push_back({std::string(4000, 'x') + ".tif"});
  // Files that really have such names are images like others.
  for (const std::string name :
       {"GTIFF_DIR:1:x.tif", "new\nline.tif", "quote'\"`.tif", "\xFF\xC3.tif",
        "\xF0\x9F\x97\xBA.tif", "vrt:x.tif", "%s%n.tif", "-o.tif", "[1]*?.tif", " .tif", ".tif"})
    cases.push_back({name, Expect::kShown, [](const std::string& path) { writeGood(path); }});
  cases.push_back({std::string(251, 'n') + ".tif", Expect::kShown,
                   [](const std::string& path) { writeGood(path); }});
  return cases;
}

std::vector<Case> hostileKinds(const Targets& t) {
  return {{"pipe.tif", Expect::kRefused, makePipe},
          {"folder.tif", Expect::kRefused, makeFolder},
          {"zero.tif", Expect::kRefused, linkTo("/dev/zero")},
          {"stdin.tif", Expect::kRefused, linkTo("/dev/stdin")},
          {"log.tif", Expect::kRefused, linkTo("/proc/kmsg")},
          {"root.tif", Expect::kRefused, linkTo(kFolder)},
          {"dangling.tif", Expect::kRefused, linkTo(t.canary + ".gone")},
          {"loop.tif", Expect::kRefused, linkTo("loop.tif")},
          {"empty.tif", Expect::kRefused, text("")},
          {"byte.tif", Expect::kRefused, text("I")},
          {"magic.tif", Expect::kRefused, text(std::string("II*\0", 4))},
          {"hollow.tif", Expect::kRefused, hollow(off_t{2} << 30)},
          {"hollow.img", Expect::kRefused, hollow(off_t{2} << 30)},
          {"linked.tif", Expect::kShown, [](const std::string& path) {
             writeGood(path + ".real.tif");
             linkTo(path + ".real.tif")(path);
           }}};
}

std::vector<Case> hostileForms(const Targets& t) {
  const std::string http = "http://127.0.0.1:" + t.port + "/";
  std::vector<Case> cases;
  for (const char* name : {"vrt.tif", "vrt.img", "vrt.jpg", "vrt.vrt"})
    cases.push_back({name, Expect::kRefused, text(vrtOver(t.canary))});
  for (const std::string& xml :
       {"<GDAL_WMS><Service name=\"TMS\"><ServerUrl>" + http + "</ServerUrl></Service></GDAL_WMS>",
        "<GDAL_WMTS><GetCapabilitiesUrl>" + http + "</GetCapabilitiesUrl></GDAL_WMTS>",
        "<WCS_GDAL><ServiceURL>" + http + "</ServiceURL></WCS_GDAL>",
        "<OGRWFSDataSource><URL>" + http + "</URL></OGRWFSDataSource>",
        vrtOver("/vsicurl/" + http + "x.tif")})
    cases.push_back({"service.tif", Expect::kRefused, text(xml)});
  // What an IMG keeps in other files, named to lie elsewhere.
  for (const std::string& target :
       {t.canary, std::string("canary.ige"), std::string("../canary.ige")}) {
    // The library then looks for the file of the image's own name.
    cases.push_back({kRoomy + ".img", Expect::kEither, [target](const std::string& path) {
                       writeGood(path, {"USE_SPILL=YES"});
                       replaceIn(path, kRoomy + ".ige", target);
                     }});
    cases.push_back({kRoomy + ".img", Expect::kShown, [target](const std::string& path) {
                       writeGood(path);
                       CPLSetConfigOption("HFA_USE_RRD", "YES");
                       auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_UPDATE);
                       int factor = 2;
                       dataset->BuildOverviews("AVERAGE", 1, &factor, 0, nullptr, nullptr, nullptr);
                       GDALClose(dataset);
                       CPLSetConfigOption("HFA_USE_RRD", nullptr);
                       replaceIn(path, kRoomy + ".rrd", target);
                     }});
  }
  cases.push_back(
      {"noise.img", Expect::kRefused, text("EHFA_HEADER_TAG" + std::string(5000, '\x7f'))});
  cases.push_back({"noise.jpg", Expect::kRefused,
                   text("\xFF\xD8\xFF\xE0" + std::string(3000, '\x11') + "\xFF\xD9")});
  cases.push_back({"long.svg.jpg", Expect::kRefused, text("<svg>" + std::string(100000, '<'))});
  return cases;
}

std::vector<Case> imagesNamingOthers(const Targets& t) {
  std::vector<Case> cases;
  for (const std::string& target : waysTo(t)) {
    for (const char* name : {"aux.tif", "aux.jpg", "aux.img"})
      cases.push_back(beside(name, ".aux.xml", text(overviewItem(target))));
    cases.push_back({"inside.tif", Expect::kShown, [target](const std::string& path) {
                       writeGood(path, {"COMPRESS=DEFLATE"});
                       auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_UPDATE);
                       dataset->SetMetadataItem("OVERVIEW_FILE", target.c_str(), "OVERVIEWS");
                       GDALClose(dataset);
                     }});
    cases.push_back(beside("vrt.tif", ".ovr", text(vrtOver(target))));
  }
  const std::string dataset = "<MDI key=\"X_DATASET\">" + t.canary +
                              "</MDI><MDI key=\"Y_DATASET\">" + t.canary +
                              "</MDI><MDI key=\"X_BAND\">1</MDI><MDI key=\"Y_BAND\">1</MDI>";
  for (const std::string& xml :
       {pamOf("<Metadata domain=\"GEOLOCATION\">" + dataset + "</Metadata>"),
        pamOf("<Metadata domain=\"RPC\"><MDI key=\"LINE_OFF\">1e999</MDI></Metadata>"),
        pamOf("<Metadata domain=\"ProxyOverviewRequest\"><MDI key=\"GDAL_FILENAME\">" + t.canary +
              "</MDI></Metadata>"),
        pamOf("<PAMRasterBand band=\"1\"><Overviews>" + t.canary + "</Overviews></PAMRasterBand>"),
        vrtOver(t.canary)}) {
    cases.push_back(beside("a.tif", ".aux.xml", text(xml)));
    cases.push_back(beside("a.img", ".aux.xml", text(xml)));
  }
  cases.push_back(beside("a.tif", ".msk", text(vrtOver(t.canary))));
  cases.push_back(beside("a.jpg", ".msk", text(vrtOver(t.canary))));
  // A pyramid of two pictures, the second of which does not say that it is a reduction.
  cases.push_back(beside("a.tif", ".ovr", [t](const std::string& path) {
    for (const int factor : {1, 2}) {
      test::writeRaster(
          test::makeRaster(300 / factor, 250 / factor, 0, 0, 1,
                           [](int, int, uint8_t* rgb) { rgb[0] = rgb[1] = rgb[2] = kMean; }),
          path, "GTiff",
          {"COMPRESS=DEFLATE", "APPEND_SUBDATASET=" + std::string(factor == 1 ? "NO" : "YES")});
    }
    writeBytes(path + ".aux.xml", overviewItem(t.canary));
  }));
  return cases;
}

std::vector<Case> hostileSideFiles(const Targets& t) {
  const std::string deep = [] {
    std::string open;
    for (int i = 0; i < 1000000; ++i) open += "<a>";
    return open;
  }();
  const std::string laughs =
      "<!DOCTYPE x [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c "
      "\"&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY e SYSTEM \"file://" +
      t.canary + "\">]><PAMDataset><SRS>&c;&e;</SRS></PAMDataset>";
  std::vector<Case> cases;
  for (const char* name : {"a.tif", "a.img", "a.jpg"}) {
    for (const std::string& xml :
         {deep, pamOf(deep), laughs, std::string("<PAMDataset"), std::string("\0\xFF<", 3),
          pamOf("<GeoTransform>nan, inf, 0, 0, 0, -1</GeoTransform>"),
          pamOf("<GeoTransform>0, 1e308, 0, 0, 0, -1e308</GeoTransform>"),
          pamOf("<SRS>" + std::string(1 << 20, '[') + "</SRS>"),
          pamOf("<PAMRasterBand band=\"-7\"/><PAMRasterBand band=\"2000000000\"/>"),
          pamOf("<Histograms><HistItem><BucketCount>2147483647</BucketCount><HistCounts>1|2"
                "</HistCounts></HistItem></Histograms>")})
      cases.push_back(beside(name, ".aux.xml", text(xml)));
    cases.push_back(beside(name, ".aux.xml", hollow(off_t{3} << 30)));
    cases.push_back(beside(name, ".aux.xml", makePipe));
    cases.push_back(beside(name, ".aux.xml", linkTo("/dev/zero")));
    for (const char* side : {".ovr", ".msk", "*.aux", "*.rrd", "*.wld"}) {
      cases.push_back(beside(name, side, makePipe));
      cases.back().build = side == std::string(".ovr");
      cases.push_back(beside(name, side, makeFolder));
      cases.back().build = side == std::string(".ovr");
      cases.push_back(beside(name, side, linkTo("/proc/kmsg")));
      cases.push_back(beside(name, side, text("")));
      cases.push_back(beside(name, side, text(std::string(3000, '\xA5'))));
    }
    cases.push_back(beside(name, ".ovr", [](const std::string& path) {
      // As large as half of the image, but of an image that is long gone.
      test::writeRaster(
          test::makeRaster(300, 250, 0, 0, 1,
                           [](int, int, uint8_t* rgb) { rgb[0] = rgb[1] = rgb[2] = 3; }),
          path);
      const timespec times[2] = {{1000, 0}, {1000, 0}};
      utimensat(AT_FDCWD, path.c_str(), times, 0);
    }));
  }
  for (const std::string& world :
       {std::string("nan\n0\n0\n-1\n0\n0\n"), std::string("1,5\n0\n0\n-1,5\n3,5\n2,5\n"),
        std::string("1e400\n0\n0\n-1\n0\n0\n"), std::string("1\n2\n"), std::string(99, '\0'),
        std::string("0\n0\n0\n0\n0\n0\n"), std::string("1e308\n1e308\n1e308\n-1e308\n0\n0\n")}) {
    cases.push_back(beside("w.tif", "*.tfw", text(world)));
    cases.push_back(beside("w.jpg", "*.jgw", text(world)));
  }
  cases.push_back(beside("w.tif", "*.tfw", hollow(off_t{3} << 30)));
  cases.push_back(beside("w.tif", "*.tfw", text(std::string(20 << 20, '1'))));
  cases.push_back(beside("w.tif", "*.tfw", text(std::string(9 << 20, '\n'))));
  return cases;
}

}  // namespace tarn::hostile
