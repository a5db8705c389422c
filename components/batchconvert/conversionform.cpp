#include "components/batchconvert/conversionform.h"

#include "base/path.h"
#include "base/text.h"
#include "components/convert/inputs.h"
#include "components/interaction/interaction.h"

namespace tarn::batchconvert {
namespace {

using convert::Options;
using interaction::Text;
using Kind = kel::FormField::Kind;

constexpr const char* kFilter =
    "TIFF, IMG, JPG|*.tif;*.tiff;*.img;*.jpg;*.jpeg|TIFF|*.tif;*.tiff|IMG|*.img|JPG|*.jpg;*.jpeg||";

constexpr Text kTitle = {"影像转换", "Image conversion"};
constexpr Text kAccept = {"开始转换", "Start"};
constexpr Text kImages = {"影像与文件夹", "Images and folders"};
constexpr Text kNoImages = {"请先添加影像或文件夹。", "Add images or folders first."};

constexpr Text kItself = {"会被自身的转换结果取代：请指定目标文件夹，或选择另起新名。",
                          " would be replaced by its own conversion: name a target folder, or "
                          "choose to write under new names."};

constexpr Text kFormats[] = {{"分块 GeoTIFF", "GeoTIFF, tiled"},
                             {"云优化 GeoTIFF (COG)", "Cloud-optimised GeoTIFF"},
                             {"IMG", "IMG"},
                             {"JPEG 与坐标文件", "JPEG with world file"}};
constexpr Text kCompressions[] = {
    {"不压缩", "None"},
    {"Deflate（无损）", "Deflate (lossless)"},
    {"LZW（无损）", "LZW (lossless)"},
    {"JPEG（最小）", "JPEG (smallest)"},
    {"Zstandard（无损，需新软件）", "Zstandard (lossless, new programs)"}};
constexpr Text kPixels[] = {{"保持原样", "As they are"},
                            {"8 位，如屏幕所示", "8 bits, as on the screen"}};
constexpr Text kExisting[] = {
    {"保留", "Leave them"}, {"覆盖", "Overwrite them"}, {"另起新名", "Write under new names"}};

/// One question: the option that it sets, what it is called, and the names of its choices.
struct Question {
  const char* option;
  Kind kind;
  Text label;
  const Text* choices;
};

constexpr Question kQuestions[] = {
    {"format", Kind::kChoice, {"目标格式", "Format"}, kFormats},
    {"compression", Kind::kChoice, {"压缩（TIFF）", "Compression (TIFF)"}, kCompressions},
    {"quality", Kind::kNumber, {"JPEG 质量", "JPEG quality"}, nullptr},
    {"pixels", Kind::kChoice, {"像素", "Pixels"}, kPixels},
    {"bands",
     Kind::kText,
     {"波段（如 3,2,1；空为全部）", "Bands (like 3,2,1; empty: all)"},
     nullptr},
    {"pyramids", Kind::kCheck, {"生成金字塔", "With pyramids"}, nullptr},
    {"side-files",
     Kind::kCheck,
     {"总是写出坐标文件与 .prj", "World file and .prj always"},
     nullptr},
    {"existing", Kind::kChoice, {"已有文件", "Existing files"}, kExisting},
    {"folder",
     Kind::kFolder,
     {"目标文件夹（空为影像所在处）", "Target folder (empty: beside each image)"},
     nullptr},
};

/// What an option holds, in the form of setOption(); choices as their index.
std::string valueOf(const Options& options, std::string_view option) {
  const auto index = [](auto value) { return std::to_string(static_cast<int>(value)); };
  if (option == "format") return index(options.format);
  if (option == "compression") return index(options.compression);
  if (option == "pixels") return index(options.pixels);
  if (option == "existing") return index(options.existing);
  if (option == "quality") return std::to_string(options.quality);
  if (option == "pyramids") return options.pyramids ? "1" : "0";
  if (option == "side-files") return options.sideFiles ? "1" : "0";
  if (option == "folder") return options.folder;
  std::string bands;
  for (const int band : options.bands) bands += (bands.empty() ? "" : ",") + std::to_string(band);
  return bands;
}

/// The value of a field in the words of setOption().
std::string wordOf(const Question& question, const std::string& value) {
  if (question.kind == Kind::kCheck) return value == "1" ? "yes" : "no";
  int index = 0;
  const std::vector<std::string> words = convert::wordsOf(question.option);
  const bool isIndex = question.kind == Kind::kChoice && parseInt(value, index) && index >= 0 &&
                       index < static_cast<int>(words.size());
  return isIndex ? words[static_cast<size_t>(index)] : value;
}

/// Why a wish cannot be granted to one of its images; empty when it can. Found before anything
/// begins.
std::string clashOf(const Wish& wish, bool isEnglish) {
  if (wish.options.existing == convert::Existing::kRename) return {};
  for (const convert::Item& item : planItems(convert::expandInputs(wish.names), wish.options)) {
    if (item.input == item.output) return nameOf(item.input) + kItself.in(isEnglish);
  }
  return {};
}

}  // namespace

kel::Form makeForm(const Options& options, bool isEnglish) {
  kel::Form form;
  form.title = kTitle.in(isEnglish);
  form.accept = kAccept.in(isEnglish);
  kel::FormField images;
  images.kind = Kind::kFiles;
  images.label = kImages.in(isEnglish);
  images.filter = kFilter;
  form.fields.push_back(images);
  for (const Question& question : kQuestions) {
    kel::FormField field;
    field.kind = question.kind;
    field.label = question.label.in(isEnglish);
    field.value = valueOf(options, question.option);
    field.least = 1;
    field.most = 100;
    for (size_t i = 0; question.choices && i < convert::wordsOf(question.option).size(); ++i)
      field.choices.emplace_back(question.choices[i].in(isEnglish));
    form.fields.push_back(std::move(field));
  }
  form.check = [isEnglish](const kel::List<kel::FormField>& fields) {
    const Result<Wish> wish = readForm(fields, isEnglish);
    return kel::DString(wish ? clashOf(wish.value(), isEnglish) : wish.message());
  };
  return form;
}

Result<Wish> readForm(const kel::List<kel::FormField>& fields, bool isEnglish) {
  Wish wish;
  for (const kel::DString& name : fields[0].values) wish.names.push_back(name.str());
  if (wish.names.empty()) return Status::error(kNoImages.in(isEnglish));
  size_t i = 1;
  for (const Question& question : kQuestions) {
    const std::string value = wordOf(question, fields[i++].value.str());
    if (Status set = convert::setOption(question.option, value, wish.options); !set) return set;
  }
  if (Status fits = convert::checkOptions(wish.options); !fits) return fits;
  return wish;
}

std::string storedText(const Options& options) {
  std::string text;
  for (const Question& question : kQuestions) {
    text += (text.empty() ? "" : ";") + std::string(question.option) + "=" +
            wordOf(question, valueOf(options, question.option));
  }
  return text;
}

Options optionsOf(const std::string& text) {
  Options options;
  for (const std::string& part : split(text, ';')) {
    const size_t at = part.find('=');
    if (at == std::string::npos) continue;
    // A value from another version does not count.
    static_cast<void>(convert::setOption(part.substr(0, at), part.substr(at + 1), options));
  }
  return options;
}

}  // namespace tarn::batchconvert
