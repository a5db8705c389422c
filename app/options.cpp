#include "app/options.h"

#include <cmath>
#include <functional>
#include <map>
#include <utility>

#include "base/path.h"
#include "base/text.h"

namespace tarn::app {

namespace {

constexpr int kLargestSide = 16384;

Status parseSize(const std::string& text, Options& options) {
  const std::vector<std::string> parts = split(toLower(text), 'x');
  int width = 0;
  int height = 0;
  const bool numbers = parts.size() == 2 && parseInt(parts[0], width) && parseInt(parts[1], height);
  if (!numbers || width < 1 || height < 1 || width > kLargestSide || height > kLargestSide) {
    return Status::error("--size needs WIDTHxHEIGHT in pixels, each 1 to " +
                         std::to_string(kLargestSide) + ", not \"" + text + "\".");
  }
  options.width = width;
  options.height = height;
  return {};
}

Status parseView(const std::string& text, Options& options) {
  std::vector<double> values;
  bool valid = true;
  for (const std::string& part : split(text, ',')) {
    double value = 0;
    valid = valid && parseDouble(part, value) && std::isfinite(value);
    values.push_back(value);
  }
  if (!valid || values.size() < 3 || values.size() > 4 || !(values[2] > 0)) {
    return Status::error(
        "--view needs CX,CY,HEIGHT or CX,CY,HEIGHT,TWIST with a height above zero, not \"" + text +
        "\".");
  }
  options.view = StartView{values[0], values[1], values[2], values.size() == 4 ? values[3] : 0.0};
  return {};
}

using Setter = std::function<Status(const std::string&, Options&)>;

const std::map<std::string, Setter>& settersWithValue() {
  static const std::map<std::string, Setter> setters = {
      {"--command",
       [](const std::string& text, Options& o) {
         o.inputs.push_back({StartInput::Kind::kCommand, text});
         return Status();
       }},
      {"--script",
       [](const std::string& text, Options& o) {
         o.inputs.push_back({StartInput::Kind::kScript, text});
         return Status();
       }},
      {"--size", parseSize},
      {"--view", parseView},
      {"--picture",
       [](const std::string& text, Options& o) {
         o.picture = text;
         return Status();
       }},
      {"--log",
       [](const std::string& text, Options& o) {
         o.log = text;
         return Status();
       }},
      {"--profile",
       [](const std::string& text, Options& o) {
         o.profile = text;
         return Status();
       }},
      {"--save",
       [](const std::string& text, Options& o) {
         o.save = text;
         return Status();
       }},
  };
  return setters;
}

bool setSwitch(const std::string& name, Options& options) {
  static const std::map<std::string, bool Options::*> switches = {
      {"--help", &Options::help},        {"-h", &Options::help},
      {"--version", &Options::version},  {"--headless", &Options::headless},
      {"--stats", &Options::statistics}, {"--guide", &Options::guide},
  };
  const auto found = switches.find(name);
  if (found == switches.end()) return false;
  options.*(found->second) = true;
  return true;
}

Status addFile(const std::string& path, Options& options) {
  if (path.empty()) return Status::error("A file name is empty.");
  const std::string ending = toLower(extensionOf(path));
  // DWG is no image either; opening it says what to do.
  if (ending == ".dxf" || ending == ".dwg") {
    options.drawings.push_back(path);
    return {};
  }
  options.images.push_back(path);
  return {};
}

}  // namespace

Result<Options> parseOptions(const std::vector<std::string>& arguments) {
  Options options;
  bool namesOnly = false;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const bool isOption = !namesOnly && argument.size() > 1 && argument.front() == '-';
    Status status;
    if (!isOption) {
      status = addFile(argument, options);
    } else if (argument == "--") {
      namesOnly = true;
    } else if (!setSwitch(argument, options)) {
      const size_t equals = argument.find('=');
      const std::string name = argument.substr(0, equals);
      const auto setter = settersWithValue().find(name);
      if (setter == settersWithValue().end()) {
        return Status::error("Unknown option " + name + ". --help lists the options.");
      }
      const bool inPlace = equals != std::string::npos;
      if (!inPlace && i + 1 >= arguments.size()) {
        return Status::error(name + " needs a value.");
      }
      const std::string value = inPlace ? argument.substr(equals + 1) : arguments[++i];
      // An empty command line is Enter.
      const bool missing = value.empty() && name != "--command";
      status = missing ? Status::error(name + " needs a value.") : setter->second(value, options);
    }
    if (!status) return status;
  }
  return options;
}

std::string helpText() {
  return R"(Usage: cadhost [options] [DRAWING | IMAGE...]

Shows very large georeferenced images in a drawing. Without a display, or with --headless, it runs
without a window.

  DRAWING                   drawings to open (.dxf), each as a document of its own; the last is
                            current, and its own view is shown unless --view is given
  IMAGE                     images to add to the drawing (.tif, .img, .jpg); the view shows them
                            all unless --view is given
  --headless                no window: commands come from --command and --script, their text goes
                            to the standard output
  --command TEXT            runs a line of the command line; may be given several times
  --script FILE             runs the lines of a file, "-" for the standard input; an empty line is
                            Enter, a line that begins with ";" where a command is awaited a remark
  --size WxH                size of the view in pixels (1280x720)
  --view CX,CY,HEIGHT[,TWIST]
                            centre and height of the view in drawing units, twist in degrees
  --picture FILE.png        writes the view as a picture at the end
  --save FILE.dxf           saves the drawing at the end; an existing file is replaced and kept as
                            its backup
  --profile DIR             folder for settings and cache (~/.local/share/tarnimage)
  --log FILE                what the window's command line shows is appended to this file as well;
                            a line "> ..." is a prompt that waits
  --guide                   shows the first steps beside the drawing, until they were closed for good
  --stats                   prints one JSON line for each redraw, and for each operation with progress
  --help, --version

Commands and scripts run in the order given, after the images were added. Without commands, files,
--picture and --save, lines are read from the standard input when there is no window.
Exit: 0 done, 1 a command failed, an image could not be added or a drawing not be opened or saved,
2 wrong usage.
)";
}

}  // namespace tarn::app
