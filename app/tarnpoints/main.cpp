// tarnpoints: control points without a window. Fits them, and converts files of them.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "app/tarnpoints/pointreport.h"
#include "base/file.h"
#include "base/path.h"
#include "base/program.h"
#include "base/text.h"
#include "components/rectify/pointfile.h"
#include "components/rectify/quality.h"

namespace {

using namespace tarn;
using namespace tarn::rectify;

constexpr int kDone = 0, kFailed = 1, kUsage = 2;
constexpr uint64_t kLargestFile = 256ULL << 20;
constexpr const char* kMethods[] = {"cubic", "quadratic", "linear", "affine", "helmert"};

constexpr const char* kHelp =
    "usage: tarnpoints --fit cubic|quadratic|linear|affine|helmert FILE [--at X,Y]...\n"
    "                  [--report FILE.pdf [--language en|zh]]\n"
    "       tarnpoints FROM TO\n"
    "\n"
    "Control points are read from a QGIS .points file, or from lines of source x, source y,\n"
    "target x, target y.\n"
    "\n"
    "  --fit METHOD FILE  fits the points and prints one JSON object: status (0 good, 1 not\n"
    "                     solvable, 2 weak), coefficients, residuals, rmse, s0; exit 1 when the\n"
    "                     status is not 0\n"
    "  --at X,Y           a source point to be transformed\n"
    "  --report FILE.pdf  writes a survey report: method, parameters, accuracy, points, "
    "residuals;\n"
    "                     points that take no part in the fit are check points\n"
    "  --language en|zh   of the report (en)\n"
    "  FROM TO            converts; TO ends in .points (QGIS) or .txt (four numbers a line)\n";

int complain(const std::string& message) {
  std::fprintf(stderr, "tarnpoints: %s\n", message.c_str());
  return kFailed;
}

Result<PointFile> load(const std::string& path) {
  auto bytes = readFile(path, kLargestFile);
  if (!bytes) return bytes.status();
  auto parsed = parsePoints(bytes.value());
  if (!parsed) return Status::error(path + ": " + parsed.message());
  for (const std::string& note : parsed.value().notes)
    static_cast<void>(complain(std::string(path).append(": ").append(note)));
  return parsed;
}

std::string json(double value) {
  return std::isfinite(value) ? formatDouble(value) : "null";
}

std::string json(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < ' ') {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
      out += escaped;
    } else {
      out += c;
    }
  }
  return out + '"';
}

std::string json(const std::vector<double>& values) {
  std::string out = "[";
  for (size_t i = 0; i < values.size(); ++i) out += (i > 0 ? ", " : "") + json(values[i]);
  return out + "]";
}

std::string coefficientsOf(const kel::RectifyQuality& q) {
  if (q.centre.empty()) return "null";
  return "{\"x\": " + json(q.coefficientsX) + ", \"y\": " + json(q.coefficientsY) +
         ", \"source_centre\": " + json(std::vector<double>{q.centre[0], q.centre[1]}) +
         ", \"source_scale\": " + json(q.centre[2]) +
         ", \"target_centre\": " + json(std::vector<double>{q.centre[3], q.centre[4]}) +
         ", \"target_scale\": " + json(q.centre[5]) + "}";
}

std::string residualsOf(const Assessment& assessment) {
  std::string out = "[";
  for (size_t i = 0; i < assessment.residuals.size(); ++i) {
    const Residual& r = assessment.residuals[i];
    out += (i > 0 ? ", " : "") + json(std::vector<double>{r.dx, r.dy, r.length()});
  }
  return out + "]";
}

std::string pointsAt(const Assessment& assessment, const std::vector<PlanePoint>& at) {
  std::string out = "[";
  for (size_t i = 0; i < at.size(); ++i) {
    std::string to = "null";
    if (assessment.solution.fit) {
      const PlanePoint p = assessment.solution.fit->at(at[i]);
      to = json(std::vector<double>{p.x, p.y});
    }
    out += (i > 0 ? ", " : "") + ("{\"from\": " + json(std::vector<double>{at[i].x, at[i].y})) +
           ", \"to\": " + to + "}";
  }
  return out + "]";
}

std::string repairOf(const kel::RectifyRepair& repair) {
  if (repair.changes.empty()) return "null";
  std::string out = "[";
  for (const kel::RectifyChange& change : repair.changes)
    out += std::string(out.size() > 1 ? ", " : "") +
           "{\"point\": " + std::to_string(change.row + 1) + ", \"of\": \"" +
           (change.isTarget ? "target" : "source") +
           "\", \"swap\": " + (change.swaps ? "true" : "false") +
           ", \"add\": " + json(std::vector<double>{change.addEast, change.addNorth}) + "}";
  return out + "]";
}

/// What is asked of a fit.
struct FitOrder {
  int method = -1;
  std::vector<PlanePoint> at;
  std::string report;
  fitreport::Language language = fitreport::Language::kEnglish;
};

int fit(const FitOrder& order, const std::string& path) {
  const int method = order.method;
  auto file = load(path);
  if (!file) return complain(file.message());
  const std::vector<PointPair> pairs = file.value().enabledPairs();
  const Assessment a = assess(methodOf(method), pairs, ImageOutline::around(pairs));
  const kel::RectifyQuality& q = a.quality;
  const bool solved = a.solution.fit.has_value();
  const std::string out =
      "{\"method\": " + json(std::string(kMethods[method])) +
      ", \"status\": " + std::to_string(q.status) +
      ", \"points\": " + std::to_string(pairs.size()) + ", \"coefficients\": " + coefficientsOf(q) +
      ", \"residuals\": " + residualsOf(a) + ", \"rmse\": " + (solved ? json(q.rmse) : "null") +
      ", \"s0\": " + (solved && q.redundancy > 0 ? json(q.s0) : "null") +
      ", \"redundancy\": " + std::to_string(q.redundancy) +
      ", \"condition\": " + json(q.condition) + ", \"corner_factor\": " + json(q.cornerFactor) +
      ", \"worst_point\": " + (q.worstPoint < 0 ? "null" : std::to_string(q.worstPoint + 1)) +
      ", \"repair\": " + repairOf(q.repair) + ", \"advice\": " +
      json(fitreport::fitText(q, {}, fitreport::Language::kEnglish).toStdString()) +
      ", \"at\": " + pointsAt(a, order.at) + "}\n";
  std::fputs(out.c_str(), stdout);
  if (!order.report.empty()) {
    const Status written =
        points::writePointReport(file.value(), path, method, a, order.language, order.report);
    if (!written) return complain(written.message());
  }
  return q.status == 0 ? kDone : kFailed;
}

int convert(const std::string& from, const std::string& to) {
  const std::string ending = toLower(extensionOf(to));
  if (ending != ".points" && ending != ".txt")
    return complain(to + ": is written as .points or .txt only");
  auto file = load(from);
  if (!file) return complain(file.message());
  const std::string text =
      ending == ".points" ? pointsOfQgis(file.value(), {}) : pointsOfText(file.value());
  const Status written = writeFileAtomically(to, text);
  return written ? kDone : complain(written.message());
}

bool parseAt(const std::string& text, PlanePoint& p) {
  const std::vector<std::string> parts = split(text, ',');
  return parts.size() == 2 && parseDouble(parts[0], p.x) && parseDouble(parts[1], p.y) &&
         std::isfinite(p.x) && std::isfinite(p.y);
}

int usage(const std::string& why) {
  std::fprintf(stderr, "tarnpoints: %s\n%s", why.c_str(), kHelp);
  return kUsage;
}

}  // namespace

int main(int count, char** words) {
  makeWriteFailuresErrors();
  prepareStandardStreams();
  const std::vector<std::string> arguments = programArguments(count, words);
  FitOrder order;
  std::vector<std::string> files;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const std::string value = i + 1 < arguments.size() ? arguments[i + 1] : "";
    if (argument == "--help") {
      std::fputs(kHelp, stdout);
      return kDone;
    }
    if (argument == "--version") {
      std::puts("tarnpoints " TARN_VERSION);
      return kDone;
    }
    if (argument == "--fit") {
      for (int m = 0; m < 5; ++m)
        if (value == kMethods[m]) order.method = m;
      if (order.method < 0) return usage("--fit needs a method, not \"" + value + "\"");
      ++i;
    } else if (argument == "--at") {
      PlanePoint p;
      if (!parseAt(value, p)) return usage("--at needs X,Y, not \"" + value + "\"");
      order.at.push_back(p);
      ++i;
    } else if (argument == "--report") {
      if (toLower(extensionOf(value)) != ".pdf")
        return usage("--report needs a file that ends in .pdf, not \"" + value + "\"");
      order.report = value;
      ++i;
    } else if (argument == "--language") {
      if (value != "en" && value != "zh")
        return usage("--language needs en or zh, not \"" + value + "\"");
      order.language =
          value == "zh" ? fitreport::Language::kChinese : fitreport::Language::kEnglish;
      ++i;
    } else if (argument.size() > 1 && argument[0] == '-') {
      return usage("unknown option " + argument);
    } else {
      files.push_back(argument);
    }
  }
  if (order.method >= 0)
    return files.size() == 1 ? fit(order, files[0]) : usage("--fit needs one file");
  if (!order.report.empty()) return usage("--report needs --fit");
  if (files.size() != 2 || !order.at.empty()) return usage("two files are needed to convert");
  return convert(files[0], files[1]);
}
