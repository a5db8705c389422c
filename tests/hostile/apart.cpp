#include "tests/hostile/apart.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <new>

#include "base/path.h"
#include "components/raster/rasterimage.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

// A block, and what stands around it.
constexpr size_t kMostAtOnce = size_t{257} << 20;
std::atomic<size_t> g_largest{0};

}  // namespace

extern "C" {
#if defined(__SANITIZE_ADDRESS__)
const char* __asan_default_options() {
  return "max_allocation_size_mb=257";
}
#else
// Every allocation of the process, its libraries' included, passes here.
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* old, size_t size);

static void note(size_t size) {
  if (size > g_largest) g_largest = size;
}
void* malloc(size_t size) {
  note(size);
  return __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
  note(count * size);
  return __libc_calloc(count, size);
}
void* realloc(void* old, size_t size) {
  note(size);
  return __libc_realloc(old, size);
}
#endif
}

namespace tarn::hostile {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr rlim_t kSeconds = 60;
constexpr bool kCountsMemory = false;  // the sanitizer's own tables are larger than any limit
#else
constexpr rlim_t kSeconds = 10;
constexpr bool kCountsMemory = true;
#endif
constexpr long kMostResidentKiB = 2L << 20;
// Of real time, for what waits for something instead of working; others may use the computer, too.
constexpr unsigned kMostWaiting = 60;

/// What a child leaves behind, whatever its end.
struct Progress {
  std::atomic<int> current{0};
  std::atomic<size_t> largest{0};
};

[[noreturn]] void runChild(int from, int to, const std::function<void(int)>& work,
                           Progress& progress) {
  if (kCountsMemory) {
    // Spares the machine when a fault takes all it can get.
    const rlimit limit{size_t{8} << 30, size_t{8} << 30};
    setrlimit(RLIMIT_AS, &limit);
  }
  for (int i = from; i < to; ++i) {
    progress.current = i;
    g_largest = 0;
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const rlim_t end = static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) + kSeconds;
    const rlimit time{end, RLIM_INFINITY};
    setrlimit(RLIMIT_CPU, &time);
    alarm(kMostWaiting);
    work(i);
    alarm(0);
    progress.largest = g_largest.load();
    if (progress.largest > kMostAtOnce) _exit(3);
  }
  progress.current = to;
  std::fflush(stdout);
#if defined(__SANITIZE_ADDRESS__)
  if (__lsan_do_recoverable_leak_check() != 0) _exit(4);
#endif
  _exit(0);
}

std::string describeEnd(int status, const rusage& used, const Progress& progress) {
  if (progress.largest > kMostAtOnce)
    return "took " + std::to_string(progress.largest >> 20) + " MiB at once";
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU)
    return "worked for more than " + std::to_string(kSeconds) + " s";
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) return "waits without an end";
  if (WIFSIGNALED(status)) return std::string("ended by signal: ") + strsignal(WTERMSIG(status));
  if (WEXITSTATUS(status) != 0) return "ended with status " + std::to_string(WEXITSTATUS(status));
  if (kCountsMemory && used.ru_maxrss > kMostResidentKiB)
    return "took " + std::to_string(used.ru_maxrss >> 10) + " MiB of memory";
  return {};
}

}  // namespace

std::vector<Fault> runApart(int count, int batch, const std::function<void(int)>& work) {
  std::vector<Fault> faults;
  void* memory =
      mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  auto& progress = *new (memory) Progress();
  for (int from = 0; from < count;) {
    const int to = std::min(count, from + batch);
    progress.largest = 0;
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) runChild(from, to, work, progress);
    int status = 0;
    rusage used{};
    if (child < 0 || wait4(child, &status, 0, &used) != child) {
      faults.push_back({from, "no process could be started for it"});
      break;
    }
    const std::string how = describeEnd(status, used, progress);
    if (!how.empty()) faults.push_back({std::min<int>(progress.current, to - 1), how});
    from = how.empty() ? to : std::min<int>(progress.current, to - 1) + 1;
  }
  munmap(memory, sizeof(Progress));
  return faults;
}

Seen look(const std::string& path, bool build) {
  using raster::RasterImage;
  const raster::PyramidPlaces places{folderOf(path), ""};
  Seen seen;
  const auto opened = RasterImage::open(path, {places, true});
  if (!opened) return {false, opened.message(), 0};
  const RasterImage& image = *opened.value();
  constexpr int kCells = 48, kSide = 300;
  const double left = std::max(0, image.width() - kSide), top = std::max(0, image.height() - kSide);
  const raster::Window windows[] = {
      {0, 0, image.width() / double{kCells}, image.height() / double{kCells}, kCells, kCells},
      {0, 0, 1, 1, std::min(kSide, image.width()), std::min(kSide, image.height())},
      {left, top, 1, 1, std::min(kSide, image.width()), std::min(kSide, image.height())}};
  seen.shown = true;
  for (const raster::Window& window : windows) {
    std::vector<uint8_t> out(static_cast<size_t>(window.columns) * window.rows * 3);
    raster::ReadCounts counts;
    const Status done = image.read(window, &window == &windows[0], out.data(), counts);
    if (!done) {
      seen.shown = false;
      seen.message = done.message();
    }
    if (&window != &windows[0]) continue;
    double sum = 0, content = 0;
    for (const uint8_t value : out) sum += value, content += value != 0 ? 1 : 0;
    seen.mean = content > 0 ? sum / content : 0;
  }
  // What is larger than a test may build must be too large for a pyramid anyway.
  const bool huge = image.width() > 1 << 20;
  if (build && (huge || int64_t{image.width()} * image.height() < 4 << 20)) {
    std::string note;
    const Status built = image.buildPyramid(places, nullptr, note);
    if (!built && seen.message.empty()) seen.message = built.message();
  }
  return seen;
}

}  // namespace tarn::hostile
