// An image source whose every call is noted, for the order and the arguments of calls.
#pragma once

#include <cstring>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "inc/iimagedivision.h"
#include "inc/kplugin.h"

namespace tarn::test {

/// What all RecordingDivisions share; `fresh()` at the start of a test.
struct DivisionScript {
  int width = 1000;
  int height = 500;
  double georef[6] = {0.5, 0, 0, -0.5, 100, 200};
  int coordinateSystem = -1;
  bool hasPyramid = true;
  /// init succeeds this many times, then fails.
  int goodInits = 1000;
  /// The pixel that fills every read; nothing is written when reads fail.
  unsigned char pixel[3] = {10, 20, 30};
  bool readsFail = false;

  std::vector<std::string> calls;
  std::vector<double> window;
  /// Block reads, with their places behind `blockBuffer`.
  std::vector<std::string> blocks;
  unsigned char* blockBuffer = nullptr;
  int alive = 0;
};

inline DivisionScript& script() {
  static DivisionScript instance;
  return instance;
}

class RecordingDivision final : public kel::Implements<RecordingDivision, IImageDivision> {
 public:
  static constexpr const char* kName = "test.RecordingDivision";

  RecordingDivision() { ++script().alive; }
  ~RecordingDivision() { --script().alive; }

  bool init(const char* image, const char* folder, bool flag) override {
    note("init", image, folder, flag);
    path_ = image;
    return script().goodInits-- > 0;
  }
  bool buildPyramid(const char* folder, int first, int mode, double tileWidth, double tileHeight,
                    int from, int to) override {
    note("buildPyramid", folder, first, mode, tileWidth, tileHeight, from, to);
    return true;
  }
  bool readRegion(int x, int y, int width, int height, double reductionX, double reductionY,
                  unsigned char* out) override {
    note("readRegion", x, y, width, height, reductionX, reductionY);
    return fill(width, height, out);
  }
  bool readRegionOverview(double x, double y, int width, int height, double reduction,
                          unsigned char* out) override {
    note("readRegionOverview", x, y, width, height, reduction);
    return fill(width, height, out);
  }
  bool hasPyramid(const char* folder) override {
    note("hasPyramid", folder);
    return script().hasPyramid;
  }
  void close() override { note("close"); }
  int width() override { return script().width; }
  int height() override { return script().height; }
  void setOutputMode(int mode) override { note("setOutputMode", mode); }
  double* geoTransform() override {
    std::memcpy(georef_, script().georef, sizeof georef_);
    return georef_;
  }
  void getGeoInfo(int& width, int& height, double& x0, double& y0, double& a, double& e) override {
    width = 10;
    height = 20;
    x0 = 1;
    y0 = 2;
    a = 3;
    e = -4;
  }
  void setNoPyramid(bool noPyramid) override { note("setNoPyramid", noPyramid); }
  void coordinateSystem(int& code) override { code = script().coordinateSystem; }
  bool readBlock(int column, int row, int width, int height, double resolutionX, double resolutionY,
                 unsigned char** destination) override {
    static std::mutex mutex;  // comes from several threads at once
    std::ostringstream text;
    text << column << ' ' << row << ' ' << width << ' ' << height << ' ' << resolutionX << ' '
         << resolutionY << " at " << *destination - script().blockBuffer;
    const std::lock_guard<std::mutex> lock(mutex);
    script().blocks.push_back(text.str());
    return false;
  }
  void setAntiAliasing(bool on) override { note("setAntiAliasing", path_, on); }
  void setStretchMode(int mode) override { note("setStretchMode", path_, mode); }
  void announceWindow(double x, double y, double cellX, double cellY) override {
    note("announceWindow");
    script().window = {x, y, cellX, cellY};
  }

 private:
  template <typename... Values>
  static void note(const char* name, const Values&... values) {
    std::ostringstream text;
    text << name;
    ((text << ' ' << values), ...);
    script().calls.push_back(text.str());
  }
  static bool fill(int width, int height, unsigned char* out) {
    if (script().readsFail) return false;
    for (long long i = 0; i < 3LL * width * height; ++i) out[i] = script().pixel[i % 3];
    return true;
  }

  double georef_[6] = {};
  std::string path_;
};

}  // namespace tarn::test
