#include "app/startinputs.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace tarn::app {
namespace {

LineSource once(std::string text) {
  return [line = std::optional<std::string>(std::move(text))]() mutable {
    return std::exchange(line, std::nullopt);
  };
}

}  // namespace

Result<std::vector<LineSource>> startInputs(const Options& options) {
  std::vector<LineSource> sources;
  for (const StartInput& input : options.inputs) {
    if (input.kind == StartInput::Kind::kCommand) {
      sources.push_back(once(input.text));
    } else if (input.text == "-") {
      sources.push_back(host::linesOf(std::cin));
    } else {
      const auto script =
          std::make_shared<std::ifstream>(std::filesystem::u8path(input.text), std::ios::binary);
      // Reading a folder opens, but gives nothing.
      if (!*script || (script->peek(), script->bad())) {
        return Status::error(input.text + ": the script cannot be read.");
      }
      sources.emplace_back([script, lines = host::linesOf(*script)] { return lines(); });
    }
  }
  return sources;
}

}  // namespace tarn::app
