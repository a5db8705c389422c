// No name and no file makes the product connect, read other files, wait or take all memory.
#include <arpa/inet.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <set>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "tests/hostile/hostilefiles.h"
#include "tests/support/program.h"
#include "tests/support/rasters.h"

namespace tarn::hostile {
namespace {

/// A port of this computer that counts who comes.
class Listener {
 public:
  Listener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(listen(socket_, 100), 0);
    EXPECT_EQ(getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size), 0);
    port_ = std::to_string(ntohs(address.sin_port));
  }
  ~Listener() { close(socket_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  const std::string& port() const { return port_; }
  bool wasVisited() const { return accept(socket_, nullptr, nullptr) >= 0; }

 private:
  int socket_;
  std::string port_;
};

struct Line {
  std::string verdict;
  double mean = 0;
  std::string message;
};

std::map<int, Line> linesOf(const std::string& output) {
  std::map<int, Line> lines;
  for (const std::string& text : split(output, '\n')) {
    const std::vector<std::string> parts = split(text, '\t');
    int index = 0;
    if (parts.size() < 4 || !parseInt(parts[0], index)) continue;
    Line& line = lines[index];
    if (line.verdict == "fault") continue;
    line = {parts[1], std::atof(parts[2].c_str()), parts[3]};
  }
  return lines;
}

/// What the calls of a trace did that no case may do: connect, or open a file that is not the
/// image's own. Only what follows a case's mark counts.
std::vector<std::string> forbidden(const std::string& trace) {
  std::vector<std::string> found;
  std::map<std::string, std::string> caseOf;
  for (const std::string& line : split(trace, '\n')) {
    const std::string process = line.substr(0, line.find(' '));
    const size_t mark = line.find("\"case:");
    if (mark != std::string::npos) caseOf[process] = line.substr(mark + 6, 4);
    if (caseOf.count(process) == 0) continue;
    for (const char* piece :
         {"AF_INET", "canary", "/etc/passwd", "/dev/zero", "/dev/stdin", "kmsg"}) {
      // Asking what a file is reads nothing of it.
      const bool asks = line.find("stat") != std::string::npos;
      if (line.find(piece) != std::string::npos && !asks) found.push_back(line);
    }
  }
  return found;
}

class HostileFiles : public testing::Test {
 protected:
  void SetUp() override {
    GDALAllRegister();
    targets_.canary = scratch_.at("canary.tif");
    targets_.port = listener_.port();
    writeDark(targets_.canary);
  }

  static void writeDark(const std::string& path) {
    test::writeRaster(
        test::makeRaster(300, 250, 0, 0, 1,
                         [](int, int, uint8_t* rgb) { rgb[0] = rgb[1] = rgb[2] = 3; }),
        path);
  }

  /// Makes the files; their paths in the order of the cases.
  std::vector<std::string> make(const std::vector<Case>& cases) {
    std::vector<std::string> paths;
    for (const Case& c : cases) {
      if (!c.make) {
        paths.push_back(c.name);
        continue;
      }
      const std::string folder = scratch_.at(std::to_string(paths.size()));
      EXPECT_TRUE(makeFolders(folder));
      paths.push_back(joinPath(folder, c.name));
      CPLPushErrorHandler(CPLQuietErrorHandler);
      c.make(paths.back());
      CPLPopErrorHandler();
      EXPECT_EQ(link(targets_.canary.c_str(), joinPath(folder, "canary.tif").c_str()), 0);
    }
    return paths;
  }

  void check(const std::vector<Case>& cases);

  test::Scratch scratch_{"tarn_hostile_"};
  Listener listener_;
  Targets targets_;
};

void HostileFiles::check(const std::vector<Case>& cases) {
  const std::vector<std::string> paths = make(cases);
  const std::string trace = scratch_.at("trace");
  std::vector<std::string> words = {"-f",
                                    "--seccomp-bpf",
                                    "-qq",
                                    "-s",
                                    "300",
                                    "-o",
                                    trace,
                                    "-e",
                                    "trace=%network,open,openat,execve",
                                    TARN_BIN_DIR "/hostile_probe"};
  std::string program = "/usr/bin/strace";
  const test::Outcome tried = test::runProgram(program, {"-o", trace, "/bin/true"});
  if (tried.exitCode != 0) {
    std::printf("Not traced, for strace does not work here: %s\n", tried.output.c_str());
    program = words.back();
    words.clear();
  }
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
  std::string list;
  for (size_t i = 0; i < paths.size(); ++i) list += (cases[i].build ? '+' : '-') + paths[i] + '\0';
  writeBytes(scratch_.at("list"), list);
  words.push_back(scratch_.at("list"));
  const test::Outcome outcome = test::runProgram(program, words, "input", 280);
  const std::map<int, Line> lines = linesOf(outcome.output);
  for (size_t i = 0; i < cases.size(); ++i) {
    const auto found = lines.find(static_cast<int>(i));
    const std::string about = std::to_string(i) + " " + paths[i];
    if (found == lines.end()) {
      ADD_FAILURE() << about << ": no verdict\n" << outcome.output.substr(0, 2000);
      continue;
    }
    const Line& line = found->second;
    EXPECT_NE(line.verdict, "fault") << about << ": " << line.message;
    if (cases[i].expect == Expect::kShown) {
      EXPECT_EQ(line.verdict, "shown") << about << ": " << line.message;
      EXPECT_NEAR(line.mean, kMean, 6) << about;
    } else if (cases[i].expect == Expect::kRefused) {
      EXPECT_EQ(line.verdict, "refused") << about;
    }
    if (line.verdict != "refused") continue;
    // One sentence that names the file.
    const std::string name = nameOf(paths[i]).substr(0, 200);
    EXPECT_NE(line.message.find(replaceAll(name, "\n", "?")), std::string::npos)
        << about << ": " << line.message;
    EXPECT_EQ(line.message.find("/vsitarn"), std::string::npos) << line.message;
  }
  EXPECT_FALSE(listener_.wasVisited());
  if (words.empty() || tried.exitCode != 0) return;
  const std::string calls = bytesOf(trace);
  EXPECT_NE(calls.find("\"case:" + std::to_string(cases.size() - 1) + "\""), std::string::npos);
  for (const std::string& line : forbidden(calls)) ADD_FAILURE() << line;
}

TEST_F(HostileFiles, Names) {
  check(hostileNames(targets_));
}
TEST_F(HostileFiles, KindsOfFiles) {
  check(hostileKinds(targets_));
}
TEST_F(HostileFiles, Tiffs) {
  check(hostileTiffs());
}
TEST_F(HostileFiles, Compressions) {
  check(hostileCompressions());
}
TEST_F(HostileFiles, Forms) {
  check(hostileForms(targets_));
}
TEST_F(HostileFiles, ImagesThatNameOthers) {
  check(imagesNamingOthers(targets_));
}
TEST_F(HostileFiles, SideFiles) {
  check(hostileSideFiles(targets_));
}

}  // namespace
}  // namespace tarn::hostile
