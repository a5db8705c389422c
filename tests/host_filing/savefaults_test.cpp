// Saving when the system refuses, or the process ends, at each call that changes the disk.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/file.h"
#include "base/path.h"
#include "host/filing/drawingsave.h"
#include "tests/host_filing/realdrawings.h"

namespace {

enum class Fault { kOnce, kFromThenOn, kShortWrite, kKilled };

/// Of the calls that change something on the disk; the one that makes it 0 fails.
int callsUntilFault = -1;
Fault fault = Fault::kOnce;
constexpr int kReason[] = {EIO, EROFS, ENOSPC, 0};

bool failsNow() {
  if (callsUntilFault < 0) return false;
  if (callsUntilFault > 0) --callsUntilFault;
  if (callsUntilFault > 0) return false;
  if (fault == Fault::kKilled) _exit(9);
  if (fault != Fault::kFromThenOn) callsUntilFault = -1;
  errno = kReason[static_cast<int>(fault)];
  return true;
}

/// Half of the bytes fit; what follows does not.
bool isShortNow() {
  return fault == Fault::kShortWrite && callsUntilFault == 1;
}

}  // namespace

// These stand before those of the system's library; each is the system's own call but for the
// fault.
#pragma GCC visibility push(default)
extern "C" {
ssize_t pwrite(int file, const void* data, size_t size, off_t offset) {
  if (isShortNow() && size > 1) return syscall(SYS_pwrite64, file, data, size / 2, offset);
  return failsNow() ? -1 : syscall(SYS_pwrite64, file, data, size, offset);
}
int fsync(int file) {
  return failsNow() ? -1 : static_cast<int>(syscall(SYS_fsync, file));
}
int fchmod(int file, mode_t mode) noexcept {
  return failsNow() ? -1 : static_cast<int>(syscall(SYS_fchmod, file, mode));
}
int rename(const char* from, const char* to) noexcept {
  return failsNow() ? -1 : static_cast<int>(syscall(SYS_renameat, AT_FDCWD, from, AT_FDCWD, to));
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
  return failsNow() ? -1
                    : static_cast<int>(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}
int link(const char* from, const char* to) noexcept {
  return failsNow() ? -1 : static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}
}
#pragma GCC visibility pop

namespace tarn::host {
namespace {

class SaveFaults : public testing::Test {
 protected:
  void SetUp() override { folder_ = makeTemporaryFolder(testing::TempDir(), "faults").take(); }
  void TearDown() override {
    callsUntilFault = -1;
    EXPECT_TRUE(removeAll(folder_));
  }
  std::string at(const std::string& name) const { return joinPath(folder_, name); }
  static mode_t modeOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0);
    return info.st_mode & 0777;
  }
  std::string folder_;
};

TEST_F(SaveFaults, whicheverCallFailsTheOldDrawingOrTheNewOneIsThere) {
  const std::string path = at("plan.dxf");
  const std::string old(300000, 'o');
  const std::string fresh(400000, 'n');
  for (const Fault kind : {Fault::kOnce, Fault::kFromThenOn, Fault::kShortWrite}) {
    int faults = 0;
    for (int n = 1;; ++n) {
      SCOPED_TRACE(testing::Message() << "fault " << static_cast<int>(kind) << " at call " << n);
      ASSERT_TRUE(removeAll(path) && removeAll(backupOf(path)));
      ASSERT_TRUE(saveBytes(path, "older") && saveBytes(path, old));
      fault = kind;
      callsUntilFault = n;
      const Status status = saveBytes(path, fresh);
      const bool wasReached = callsUntilFault <= 0;
      callsUntilFault = -1;
      const std::string now = bytesOf(path);
      const std::string backup = bytesOf(backupOf(path));
      if (status) {
        EXPECT_EQ(now == fresh, true);
        EXPECT_EQ(backup == old, true);
      } else {
        ++faults;
        EXPECT_NE(status.message().find("plan"), std::string::npos) << status.message();
        EXPECT_NE(status.message().find(std::strerror(kReason[static_cast<int>(kind)])),
                  std::string::npos)
            << status.message();
        const bool saysSaved = status.message().find("the drawing is saved") != std::string::npos;
        EXPECT_EQ(now == (saysSaved ? fresh : old), true) << status.message();
        EXPECT_EQ(backup == "older" || backup == old, true);
      }
      EXPECT_EQ(listFolder(folder_), (std::vector<std::string>{"plan.bak", "plan.dxf"}));
      if (!wasReached) break;
    }
    EXPECT_GE(faults, 5) << "the faults are not met";
  }
}

TEST_F(SaveFaults, aProcessThatIsKilledLeavesTheOldDrawingOrTheNewOne) {
  const std::string path = at("plan.dxf");
  const std::string old(300000, 'o');
  const std::string fresh(400000, 'n');
  int killed = 0;
  for (bool done = false; !done;) {
    SCOPED_TRACE(killed);
    ASSERT_TRUE(removeAll(path) && removeAll(backupOf(path)));
    ASSERT_TRUE(saveBytes(path, "older") && saveBytes(path, old));
    const pid_t child = fork();
    if (child == 0) {
      fault = Fault::kKilled;
      callsUntilFault = killed + 1;
      _exit(saveBytes(path, fresh) ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_NE(WEXITSTATUS(status), 1);
    done = WEXITSTATUS(status) == 0;
    if (!done) ++killed;
    const std::string now = bytesOf(path);
    const std::string backup = bytesOf(backupOf(path));
    EXPECT_TRUE(now == fresh || now == old);
    EXPECT_TRUE(backup == "older" || backup == old);
    // The next save removes what was left.
    ASSERT_TRUE(saveBytes(path, fresh));
    EXPECT_EQ(listFolder(folder_), (std::vector<std::string>{"plan.bak", "plan.dxf"}));
  }
  EXPECT_GE(killed, 5);
}

TEST_F(SaveFaults, modeAndLinkStay) {
  const std::string path = at("data/plan.dxf");
  ASSERT_TRUE(makeFolders(at("data")) && makeFolders(at("desk")));
  ASSERT_TRUE(saveBytes(path, "one"));
  const std::string link = at("desk/link.dxf");
  ASSERT_EQ(::symlink("../data/plan.dxf", link.c_str()), 0);
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  ASSERT_TRUE(saveBytes(link, "two"));
  EXPECT_EQ(bytesOf(path), "two");
  EXPECT_EQ(bytesOf(at("data/plan.bak")), "one");
  EXPECT_EQ(modeOf(path), 0640U);
  EXPECT_EQ(listFolder(at("desk")), std::vector<std::string>{"link.dxf"});
  struct stat info {};
  ASSERT_EQ(::lstat(link.c_str(), &info), 0);
  EXPECT_TRUE(S_ISLNK(info.st_mode));
  // A link to a file that is not there yet makes that file; one to itself is refused.
  ASSERT_EQ(::symlink("../data/later.dxf", at("desk/later.dxf").c_str()), 0);
  ASSERT_TRUE(saveBytes(at("desk/later.dxf"), "x"));
  EXPECT_EQ(bytesOf(at("data/later.dxf")), "x");
  ASSERT_EQ(::symlink("loop.dxf", at("desk/loop.dxf").c_str()), 0);
  EXPECT_FALSE(saveBytes(at("desk/loop.dxf"), "x"));
  EXPECT_EQ(::lstat(at("desk/loop.dxf").c_str(), &info), 0);
}

}  // namespace
}  // namespace tarn::host
