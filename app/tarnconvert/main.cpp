// tarnconvert: conversion of many images from the command line, and of parts of a list on many
// machines.
#include <atomic>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "app/tarnconvert/arguments.h"
#include "base/encoding.h"
#include "base/file.h"
#include "base/program.h"
#include "components/convert/batch.h"
#include "components/convert/catalogue.h"

namespace {

using tarn::convert::BatchObserver;
using tarn::convert::Item;
using tarn::convert::ItemResult;
using tarn::convert::State;
using tarn::convertapp::Arguments;

constexpr int kDone = 0, kFailed = 1, kWrongUsage = 2;

volatile std::sig_atomic_t g_stop = 0;

extern "C" void onStop(int) {
  g_stop = 1;
}

std::string jsonLine(const Item& item, const ItemResult& result) {
  std::string notes;
  for (const std::string& note : result.notes)
    notes += (notes.empty() ? "" : ",") + tarn::quotedJson(note);
  char seconds[32];
  std::snprintf(seconds, sizeof seconds, "%.3f", result.seconds);
  std::string line = "{\"input\":" + tarn::quotedJson(item.input) +
                     ",\"output\":" + tarn::quotedJson(result.output) + ",\"state\":\"" +
                     wordOf(result.state) + "\"";
  if (result.state == State::kConverted)
    line += ",\"bytes\":" + std::to_string(result.bytes) + ",\"seconds\":" + seconds;
  if (!result.message.empty()) line += ",\"message\":" + tarn::quotedJson(result.message);
  if (!notes.empty()) line += ",\"notes\":[" + notes + "]";
  return line + "}";
}

class Reporter final : public BatchObserver {
 public:
  explicit Reporter(const std::vector<Item>& items) : items_(items) {}

  void started(size_t) override {}
  bool moved(size_t, double) override { return g_stop == 0 && std::cout.good(); }
  void finished(size_t item, const ItemResult& result) override {
    if (result.state == State::kFailed || result.state == State::kSkipped)
      std::cerr << "tarnconvert: " << result.message << "\n";
    std::cout << jsonLine(items_[item], result) << "\n" << std::flush;
  }

 private:
  const std::vector<Item>& items_;
};

void addListOnInput(std::vector<std::string>& names) {
  std::string line;
  while (std::getline(std::cin, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) names.push_back(line);
  }
}

/// The items of this process' part.
std::vector<Item> ownPart(const std::vector<Item>& items, const Arguments& arguments) {
  std::vector<Item> own;
  for (const Item& item : items) {
    if (tarn::convert::partOf(item.input, arguments.parts) == arguments.part) own.push_back(item);
  }
  return own;
}

/// One line of JSON a folder; what cannot be listed goes to standard error.
int writeCatalogues(const std::vector<std::string>& folders) {
  bool whole = true;
  for (const std::string& folder : folders) {
    tarn::convert::CatalogueReport report;
    const tarn::Status written = tarn::convert::writeCatalogues(folder, report);
    if (!written) std::cerr << "tarnconvert: " << written.message() << "\n";
    for (const std::string& problem : report.problems)
      std::cerr << "tarnconvert: " << problem << "\n";
    std::cout << "{\"folder\":" << tarn::quotedJson(folder)
              << ",\"catalogues\":" << report.catalogues << ",\"images\":" << report.images
              << "}\n";
    whole = whole && written.isOk() && report.problems.empty();
  }
  return whole && std::cout.good() ? kDone : kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  tarn::makeWriteFailuresErrors();
  tarn::prepareStandardStreams();
  tarn::Result<Arguments> parsed =
      tarn::convertapp::parseArguments(tarn::programArguments(argc, argv));
  if (!parsed) {
    std::cerr << "tarnconvert: " << parsed.message() << "\n" << tarn::convertapp::kUsage;
    return kWrongUsage;
  }
  Arguments arguments = parsed.take();
  if (arguments.help) {
    std::cout << tarn::convertapp::kUsage;
    return kDone;
  }
  if (arguments.catalogue) return writeCatalogues(arguments.names);
  std::signal(SIGINT, onStop);
  std::signal(SIGTERM, onStop);
  if (arguments.listOnInput) addListOnInput(arguments.names);
  const std::vector<Item> all =
      planItems(tarn::convert::expandInputs(arguments.names), arguments.options);
  if (all.empty()) {
    std::cerr << "tarnconvert: there are no images in what is named\n";
    return kFailed;
  }
  const std::vector<Item> items = ownPart(all, arguments);
  Reporter reporter(items);
  const tarn::convert::Summary summary = runBatch(items, arguments.options, reporter);
  std::cerr << "tarnconvert: " << summary.text();
  if (arguments.parts > 1) std::cerr << " of " << all.size() << " in the list";
  std::cerr << "\n";
  return summary.failed + summary.stopped > 0 || !std::cout.good() ? kFailed : kDone;
}
