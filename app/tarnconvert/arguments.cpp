#include "app/tarnconvert/arguments.h"

#include "base/text.h"

namespace tarn::convertapp {
namespace {

/// "2/4": the second of four.
Status parseShard(const std::string& text, Arguments& out) {
  const std::vector<std::string> numbers = split(text, '/');
  int part = 0, parts = 0;
  if (numbers.size() != 2 || !parseInt(numbers[0], part) || !parseInt(numbers[1], parts) ||
      part < 1 || part > parts)
    return Status::error("--shard cannot be \"" + text + "\"; 2/4 is the second of four parts");
  out.part = static_cast<unsigned>(part);
  out.parts = static_cast<unsigned>(parts);
  return Status::ok();
}

/// "--name" or "--name=value", without the dashes.
struct Word {
  std::string name;
  std::string value;
  bool hasValue = false;
};

Word splitWord(const std::string& word) {
  const size_t at = word.find('=');
  if (at == std::string::npos) return {word.substr(2), {}, false};
  return {word.substr(2, at - 2), word.substr(at + 1), true};
}

Status setNamed(const std::string& name, const std::string& value, Arguments& out) {
  if (name == "shard") return parseShard(value, out);
  return convert::setOption(name == "out" ? "folder" : name, value, out.options);
}

}  // namespace

const char* const kUsage =
    "usage: tarnconvert [options] IMAGE|FOLDER|PATTERN...   (- reads a list of them, one a line)\n"
    "Converts TIFF, IMG and JPG images; position, coordinate system, nodata, colour tables and\n"
    "metadata stay. One line of JSON an image goes to standard output, the summary to standard\n"
    "error.\n"
    "  --format FORMAT        geotiff (tiled), cog (cloud-optimised), img, jpeg (with world file)\n"
    "  --compression WORD     deflate, none, lzw, jpeg, zstd: of geotiff and cog\n"
    "  --quality NUMBER       of JPEG, 1 to 100 (85)\n"
    "  --pixels stored|shown  the samples as they are, or 8 bits gray or RGB as on the screen\n"
    "  --bands 3,2,1          these bands, from 1\n"
    "  --pyramids yes|no      reduced levels in the file or beside it (yes; cog always)\n"
    "  --side-files yes|no    world file and .prj, where the format does not need them, too\n"
    "  --out FOLDER           where outputs go (beside each image)\n"
    "  --existing WORD        skip (leave what is there), overwrite, rename (write NAME_2)\n"
    "  --shard I/N            only the I-th of N parts of the list; an image's part depends on\n"
    "                         its path alone\n"
    "  --catalog              converts nothing: makes or refreshes catalog.json in the folders "
    "named\n"
    "                         and those below, for image servers\n"
    "Outputs that are whole and made from the image as it is now are left alone by all of these.\n"
    "Exit status: 0 done, 1 some image failed, 2 wrong usage.\n";

Result<Arguments> parseArguments(const std::vector<std::string>& words) {
  Arguments out;
  bool onlyNames = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (onlyNames || word.compare(0, 2, "--") != 0) {
      if (word == "-" && !onlyNames) {
        out.listOnInput = true;
      } else if (word.size() > 1 && word[0] == '-' && !onlyNames) {
        return Status::error("there is no option " + word);
      } else {
        out.names.push_back(word);
      }
      continue;
    }
    if (word == "--") {
      onlyNames = true;
      continue;
    }
    Word named = splitWord(word);
    if (named.name == "help") {
      out.help = true;
      continue;
    }
    if (named.name == "catalog") {
      out.catalogue = true;
      if (named.hasValue) out.names.push_back(named.value);
      continue;
    }
    if (!named.hasValue) {
      if (i + 1 == words.size()) return Status::error(word + " needs a value");
      named.value = words[++i];
    }
    if (Status set = setNamed(named.name, named.value, out); !set) return set;
  }
  if (Status fits = convert::checkOptions(out.options); !fits) return fits;
  if (out.catalogue && (out.names.empty() || out.listOnInput))
    return Status::error("--catalog wants the names of folders");
  if (!out.help && out.names.empty() && !out.listOnInput) return Status::error("no image is named");
  return out;
}

}  // namespace tarn::convertapp
