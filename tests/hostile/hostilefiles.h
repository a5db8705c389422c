// Names and files that try to make a program read, connect, wait or allocate what it must not.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarn::hostile {

enum class Expect {
  kRefused,
  /// Its own picture is shown, of a mean near kMean.
  kShown,
  /// Shown or refused; it only must do no harm.
  kEither,
};

/// Mean of the pictures that the cases hide behind their tricks.
constexpr double kMean = 120;

struct Case {
  /// Name of the file in a folder of its own; asked for as it stands when nothing makes it.
  std::string name;
  Expect expect = Expect::kRefused;
  std::function<void(const std::string& path)> make = nullptr;
  /// Its pyramid is to be made, too.
  bool build = false;
};

struct Targets {
  /// A dark raster that nothing may open.
  std::string canary;
  /// A port of this computer that nothing may connect to.
  std::string port;
};

std::vector<Case> hostileNames(const Targets& targets);
/// Folders, pipes, devices, links.
std::vector<Case> hostileKinds(const Targets& targets);
std::vector<Case> hostileTiffs();
std::vector<Case> hostileCompressions();
/// Other raster forms, in disguise or damaged.
std::vector<Case> hostileForms(const Targets& targets);
/// Good images whose side files or fields name other files.
std::vector<Case> imagesNamingOthers(const Targets& targets);
/// Good images with damaged or outsized side files.
std::vector<Case> hostileSideFiles(const Targets& targets);

void writeBytes(const std::string& path, const std::string& bytes);
std::string bytesOf(const std::string& path);
/// Writes a good picture of `kMean` by the driver that the ending asks for.
void writeGood(const std::string& path, const std::vector<std::string>& options = {});

}  // namespace tarn::hostile
