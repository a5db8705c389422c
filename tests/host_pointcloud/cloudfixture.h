// A running host and a folder for point files.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "base/file.h"
#include "base/path.h"
#include "host/editor/documents.h"
#include "tests/host_editor/scriptedhost.h"
#include "tests/support/lasfiles.h"

namespace tarn::host {

class CloudTest : public testing::Test {
 protected:
  void SetUp() override {
    auto made = makeTemporaryFolder(testing::TempDir(), "cloud");
    ASSERT_TRUE(made);
    folder_ = made.take();
    host_.app().resizeView(400, 300);
  }
  void TearDown() override { EXPECT_TRUE(removeAll(folder_)); }

  std::string write(const std::string& name, const std::string& bytes) {
    const std::string path = joinPath(folder_, name);
    EXPECT_TRUE(writeFileAtomically(path, bytes));
    return path;
  }
  std::string write(const std::string& name, const test::LasSpec& spec) {
    return write(name, test::lasBytes(spec));
  }
  /// Attaches with the placement given as three inputs; returns what was printed.
  std::string attach(const std::string& path, const char* insertion = "0,0",
                     const char* scale = "1", const char* rotation = "0") {
    return host_.run({"-POINTCLOUDATTACH", path.c_str(), insertion, scale, rotation});
  }
  /// The display list of the entity attached last; null when nothing was attached.
  const DisplayList* drawn() {
    const Scene& scene = host_.app().documents().current().scene();
    return scene.size() == 0 ? nullptr : scene.find(scene.order().back());
  }
  template <typename Item>
  std::vector<Item> itemsOf() {
    std::vector<Item> items;
    const DisplayList* list = drawn();
    for (size_t i = 0; list != nullptr && i < list->size(); ++i) {
      if (const Item* item = std::get_if<Item>(&(*list)[i])) items.push_back(*item);
    }
    return items;
  }

  std::string folder_;
  ScriptedHost host_;
};

}  // namespace tarn::host
