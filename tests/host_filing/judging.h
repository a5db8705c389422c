// Another program as the judge of drawings.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/file.h"
#include "tests/support/program.h"

namespace tarn::host {

class Judging : public testing::Test {
 protected:
  void SetUp() override {
    if (judge({"audit"}).exitCode == 77) GTEST_SKIP() << "python3-ezdxf is not installed";
  }
  static test::Outcome judge(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), TARN_SOURCE_DIR "/tests/host_filing/drawing_judge.py");
    return test::runProgram("/usr/bin/python3", arguments);
  }
  std::string write(const std::string& name, const std::string& bytes) const {
    const std::string path = scratch_.at(name);
    EXPECT_TRUE(writeFileAtomically(path, bytes));
    return path;
  }
  test::Scratch scratch_{"tarn_judge_"};
};

}  // namespace tarn::host
