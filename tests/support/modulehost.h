// The real host for tests of modules: answers come from lists, everything shown is noted.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "afxwin.h"
#include "base/file.h"
#include "base/path.h"
#include "host/editor/frontend.h"
#include "host/editor/hostapp.h"
#include "host/ui/uibackend.h"

namespace tarn::test {

class ScriptedFrontEnd final : public host::FrontEnd {
 public:
  /// Inputs for commands that wait, in order; nothing left, or an empty optional, cancels.
  std::deque<std::optional<std::string>> answers;
  std::string transcript;

  void print(const std::string& text) override { transcript += text; }
  std::optional<std::string> readLine(const std::string& prompt, host::InputKind) override {
    transcript += prompt;
    if (answers.empty()) return std::nullopt;
    std::optional<std::string> answer = answers.front();
    answers.pop_front();
    return answer;
  }
  void progressBegin(const std::string&, int, int) override {}
  void progressMove(int) override {}
  void progressEnd() override {}
  bool cancelWanted() override {
    return cancelAfter == 0 || (cancelAfter > 0 && --cancelAfter == 0);
  }
  void cancelHandled() override {}
  void displayChanged() override {}
  void inputQueued() override {}
  void regenerationWanted() override {}
  void focusCommandLine() override { ++focused; }
  void quitWanted() override {}

  int focused = 0;
  /// How often it is asked whether to stop before it says so; -1: never.
  int cancelAfter = -1;
};

class ScriptedUi final : public host::UiBackend {
 public:
  std::vector<std::string> boxes;
  /// Answers of file dialogs, in order; nothing left cancels.
  std::deque<std::vector<std::string>> files;
  std::vector<host::FileRequest> requests;

  int messageBox(const std::string& text, const std::string&, unsigned) override {
    boxes.push_back(text);
    return IDOK;
  }
  size_t choose(const std::string& question, const std::vector<std::string>&,
                size_t standard) override {
    boxes.push_back(question);
    return standard;
  }
  std::optional<std::vector<std::string>> fileNames(const host::FileRequest& request) override {
    requests.push_back(request);
    if (files.empty()) return std::nullopt;
    std::vector<std::string> answer = files.front();
    files.pop_front();
    return answer;
  }
};

/// A host with an empty drawing and a profile folder of its own.
class ModuleHost {
 public:
  explicit ModuleHost(bool withDatabase = true) {
    if (auto made = makeTemporaryFolder(::testing::TempDir(), "profile")) folder = made.take();
    EXPECT_FALSE(folder.empty());
    EXPECT_TRUE(makeFolders(joinPath(folder, "system")));
    if (withDatabase) writeDatabase();
    app = std::make_unique<host::HostApp>(frontEnd, ui, folder);
    app->resizeView(1000, 600);
  }
  ~ModuleHost() {
    app.reset();
    removeFolder();
  }
  ModuleHost(const ModuleHost&) = delete;
  ModuleHost& operator=(const ModuleHost&) = delete;

  void writeDatabase() {
    EXPECT_TRUE(writeFileAtomically(joinPath(folder, "system/tarnconfig.db"), ""));
  }

  /// Runs a line and what it queued; returns what was printed meanwhile.
  std::string run(const std::string& line) {
    frontEnd.transcript.clear();
    app->runLine(line);
    app->runQueued();
    return frontEnd.transcript;
  }
  /// What was printed since this was last called.
  std::string printed() { return std::exchange(frontEnd.transcript, {}); }

  std::string folder;
  ScriptedFrontEnd frontEnd;
  ScriptedUi ui;
  std::unique_ptr<host::HostApp> app;

 private:
  /// The configuration and the log stay open until the next ones are, and on Windows their folder
  /// as long.
  void removeFolder() const {
    constexpr bool kOpenFilesStay = std::filesystem::path::preferred_separator == '\\';
    static std::vector<std::string> left;
    left.push_back(folder);
    left.erase(std::remove_if(left.begin(), left.end(),
                              [](const std::string& one) { return removeAll(one).isOk(); }),
               left.end());
    EXPECT_TRUE(left.empty() || kOpenFilesStay) << left.front();
  }
};

}  // namespace tarn::test
