#include "host/editor/inputvalues.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>

#include "base/text.h"

namespace tarn::host {

std::optional<double> parseNumber(const std::string& text) {
  double value = 0;
  if (!parseDouble(text, value) || !std::isfinite(value)) return std::nullopt;
  return value;
}

namespace {

std::optional<Point3> parsePolar(const std::string& text, size_t sign) {
  const auto length = parseNumber(text.substr(0, sign));
  const auto degrees = parseNumber(text.substr(sign + 1));
  if (!length || !degrees) return std::nullopt;
  const double angle = *degrees * 3.141592653589793 / 180.0;
  return Point3{*length * std::cos(angle), *length * std::sin(angle), 0};
}

std::optional<Point3> parseCartesian(const std::string& text) {
  const std::vector<std::string> parts = split(text, ',');
  if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
  double values[3] = {0, 0, 0};
  for (size_t i = 0; i < parts.size(); ++i) {
    const auto value = parseNumber(parts[i]);
    if (!value) return std::nullopt;
    values[i] = *value;
  }
  return Point3{values[0], values[1], values[2]};
}

}  // namespace

std::optional<Point3> parsePoint(const std::string& text, const Point3& last) {
  const bool relative = !text.empty() && text.front() == '@';
  const std::string body = relative ? text.substr(1) : text;
  if (relative && body.empty()) return last;
  const size_t polar = body.find('<');
  auto point = polar != std::string::npos ? parsePolar(body, polar) : parseCartesian(body);
  if (point && relative) *point = {last.x + point->x, last.y + point->y, last.z + point->z};
  return point;
}

std::vector<std::string> keywordList(const std::string& list) {
  std::vector<std::string> out;
  for (std::string& word : split(list, ' ')) {
    if (!word.empty()) out.push_back(std::move(word));
  }
  return out;
}

std::optional<std::string> matchKeyword(const std::string& typed,
                                        const std::vector<std::string>& keywords) {
  const std::string word =
      toLower(!typed.empty() && typed.front() == '_' ? typed.substr(1) : typed);
  if (word.empty()) return std::nullopt;
  for (const std::string& keyword : keywords) {
    if (toLower(keyword) == word) return keyword;
  }
  for (const std::string& keyword : keywords) {
    std::string capitals;
    std::copy_if(keyword.begin(), keyword.end(), std::back_inserter(capitals),
                 [](unsigned char c) { return std::isupper(c) != 0 || std::isdigit(c) != 0; });
    if (capitals.empty()) continue;
    if (toLower(capitals) == word) return keyword;
    const bool abbreviable = keyword.compare(0, capitals.size(), capitals) == 0;
    if (abbreviable && word.size() >= capitals.size() &&
        toLower(keyword).compare(0, word.size(), word) == 0)
      return keyword;
  }
  return std::nullopt;
}

}  // namespace tarn::host
