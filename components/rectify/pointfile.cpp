#include "components/rectify/pointfile.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include "base/text.h"

namespace tarn::rectify {
namespace {

constexpr size_t kMostNotes = 5;

/// UTF-8 of a file's bytes; bytes of other encodings stay, for numbers and separators are ASCII in
/// all of them.
std::string textOf(std::string_view bytes) {
  const auto starts = [&](std::string_view mark) { return bytes.substr(0, mark.size()) == mark; };
  if (starts("\xEF\xBB\xBF")) return std::string(bytes.substr(3));
  const bool little = starts("\xFF\xFE"), big = starts("\xFE\xFF");
  if (!little && !big) return std::string(bytes);
  std::u16string wide;
  for (size_t i = 2; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    wide.push_back(static_cast<char16_t>(little ? first | second << 8 : second | first << 8));
  }
  return toUtf8(fromUtf16(wide));
}

/// The next line, without its end (\n, \r\n or \r).
std::string_view nextLine(std::string_view& rest) {
  const size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
  const std::string_view line = rest.substr(0, end);
  const bool pair = end + 1 < rest.size() && rest[end] == '\r' && rest[end + 1] == '\n';
  rest.remove_prefix(std::min(rest.size(), end + (pair ? 2 : 1)));
  return line;
}

std::vector<std::string> fieldsAt(std::string_view line, std::string_view separators) {
  std::vector<std::string> fields;
  while (true) {
    const size_t from = line.find_first_not_of(separators);
    if (from == std::string_view::npos) return fields;
    const size_t to = std::min(line.find_first_of(separators, from), line.size());
    fields.emplace_back(line.substr(from, to - from));
    line.remove_prefix(to);
  }
}

/// A number with a decimal point or a decimal comma.
std::optional<double> numberOf(std::string text) {
  if (text.find('.') == std::string::npos && std::count(text.begin(), text.end(), ',') == 1)
    text = replaceAll(text, ",", ".");
  double value = 0;
  if (!parseDouble(text, value) || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::vector<std::string> plainFields(std::string_view line) {
  if (line.find_first_of(";\t") != std::string_view::npos) return fieldsAt(line, "; \t");
  std::vector<std::string> fields = fieldsAt(line, " ");
  if (fields.size() != 4) return fieldsAt(line, ", ");
  // "1, 2, 3, 4": the commas separate as well.
  for (std::string& field : fields)
    if (field.size() > 1 && field.back() == ',') field.pop_back();
  return fields;
}

/// Which columns of a QGIS file hold what.
struct Columns {
  size_t mapX = 0, mapY = 0, sourceX = 0, sourceY = 0;
  std::optional<size_t> enable;
};

std::optional<Columns> columnsOf(std::string_view line) {
  std::map<std::string, size_t> places;
  const std::vector<std::string> names = split(line, ',');
  for (size_t i = 0; i < names.size(); ++i) places[toLower(trim(names[i]))] = i;
  const auto find = [&](const char* name, const char* older) {
    const auto found = places.find(name);
    return found != places.end() ? found : places.find(older);
  };
  const auto mapX = find("mapx", "mapx"), mapY = find("mapy", "mapy");
  const auto x = find("sourcex", "pixelx"), y = find("sourcey", "pixely");
  const auto none = places.end();
  if (mapX == none || mapY == none || x == none || y == none) return std::nullopt;
  Columns columns{mapX->second, mapY->second, x->second, y->second, std::nullopt};
  if (const auto enable = places.find("enable"); enable != none) columns.enable = enable->second;
  return columns;
}

/// Four numbers in the order source x, y, target x, y.
std::optional<PointPair> pairOf(const std::vector<std::string>& fields) {
  if (fields.size() != 4) return std::nullopt;
  double values[4];
  for (size_t i = 0; i < 4; ++i) {
    const auto value = numberOf(fields[i]);
    if (!value) return std::nullopt;
    values[i] = *value;
  }
  return PointPair{{values[0], values[1]}, {values[2], values[3]}};
}

class Parser {
 public:
  void line(std::string_view text) {
    ++number_;
    text = trim(text);
    if (text.substr(0, 5) == "#CRS:") file_.crs = trim(text.substr(5));
    if (text.empty() || text[0] == '#') return;
    if (!columns_ && file_.pairs.empty() && (columns_ = columnsOf(text))) return;
    bool enabled = true;
    std::vector<std::string> fields;
    if (columns_) {
      const std::vector<std::string> all = split(text, ',');
      for (const size_t i : {columns_->sourceX, columns_->sourceY, columns_->mapX, columns_->mapY})
        if (i < all.size()) fields.push_back(all[i]);
      if (columns_->enable && *columns_->enable < all.size())
        enabled = trim(all[*columns_->enable]) != "0";
    } else {
      fields = plainFields(text);
    }
    const auto pair = pairOf(fields);
    if (!pair) {
      leaveOut();
      return;
    }
    file_.pairs.push_back(*pair);
    file_.enabled.push_back(enabled);
  }

  Result<PointFile> finish() {
    if (leftOut_ > kMostNotes)
      file_.notes.push_back(std::to_string(leftOut_ - kMostNotes) + " more lines are left out");
    if (!file_.pairs.empty()) return std::move(file_);
    return Status::error("holds no control point" +
                         (file_.notes.empty() ? "" : ": " + file_.notes.front()));
  }

 private:
  void leaveOut() {
    if (++leftOut_ <= kMostNotes)
      file_.notes.push_back("line " + std::to_string(number_) +
                            " is left out: it has not four finite numbers");
  }

  PointFile file_;
  std::optional<Columns> columns_;
  size_t number_ = 0;
  size_t leftOut_ = 0;
};

}  // namespace

std::vector<PointPair> PointFile::enabledPairs() const {
  std::vector<PointPair> result;
  for (size_t i = 0; i < pairs.size(); ++i)
    if (enabled[i]) result.push_back(pairs[i]);
  return result;
}

Result<PointFile> parsePoints(std::string_view bytes) {
  const std::string text = textOf(bytes);
  if (text.find('\0') != std::string::npos) return Status::error("is no text file");
  Parser parser;
  std::string_view rest = text;
  while (!rest.empty()) parser.line(nextLine(rest));
  return parser.finish();
}

std::string pointsOfQgis(const PointFile& file, const std::vector<PlanePoint>& residuals) {
  std::string text = file.crs.empty() ? "" : "#CRS: " + file.crs + "\n";
  text += "mapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n";
  for (size_t i = 0; i < file.pairs.size(); ++i) {
    const PointPair& p = file.pairs[i];
    const PlanePoint r = residuals.size() == file.pairs.size() ? residuals[i] : PlanePoint{};
    for (const double value : {p.target.x, p.target.y, p.source.x, p.source.y})
      text += formatDouble(value) + ',';
    text += file.enabled[i] ? "1" : "0";
    for (const double value : {r.x, r.y, std::hypot(r.x, r.y)}) text += ',' + formatDouble(value);
    text += '\n';
  }
  return text;
}

std::string pointsOfText(const PointFile& file) {
  std::string text;
  for (const PointPair& p : file.enabledPairs()) {
    text += formatDouble(p.source.x) + ' ' + formatDouble(p.source.y) + ' ' +
            formatDouble(p.target.x) + ' ' + formatDouble(p.target.y) + '\n';
  }
  return text;
}

}  // namespace tarn::rectify
