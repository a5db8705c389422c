#include "components/convert/converter.h"

#include <optional>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "components/convert/inputs.h"
#include "components/convert/source.h"
#include "components/convert/verify.h"
#include "components/convert/view.h"
#include "components/convert/waiting.h"
#include "components/convert/writers.h"
#include "components/raster/buildfolder.h"
#include "components/raster/sidefiles.h"

namespace tarn::convert {
namespace {

// Of the time of a conversion, roughly, with a pyramid beside the file.
constexpr double kBeforePyramid = 0.7;

std::string markOf(const raster::ImageStamp& stamp, const Options& options) {
  return raster::formatStamp(stamp) + ' ' + keyOf(options);
}

/// The mark in a file that a conversion has made; empty for others and for damaged ones.
std::string markIn(const std::string& path) {
  raster::OpenOptions options;
  options.usePyramid = false;
  auto image = raster::RasterImage::open(path, options);
  if (!image) return {};
  const auto dataset = image.value()->guarded()->open();
  const raster::GdalErrors quiet;
  const char* mark = dataset ? dataset.value()->GetMetadataItem(kMarkItem) : nullptr;
  return mark ? mark : "";
}

/// What to do with the place of an output.
struct Place {
  std::string path;
  Outcome outcome = Outcome::kConverted;
  std::string note;
};

Result<Place> choosePlace(const std::string& input, const std::string& output,
                          const std::string& mark, Existing existing) {
  Place place{output, Outcome::kConverted, {}};
  for (int number = 2;; ++number) {
    const FileKind kind = fileKind(place.path);
    if (kind == FileKind::kMissing) return place;
    const bool itself = isSameFile(input, place.path);
    if (!itself && kind == FileKind::kRegular && markIn(place.path) == mark) {
      place.outcome = Outcome::kCurrent;
      return place;
    }
    if (existing == Existing::kRename) {
      place.path = numberedName(output, number);
      continue;
    }
    if (itself)
      return Status::error(input +
                           ": would be replaced by its own conversion; choose another folder");
    if (kind != FileKind::kRegular)
      return Status::error(place.path + ": is there and is no regular file");
    if (existing == Existing::kOverwrite) return place;
    place.outcome = Outcome::kSkipped;
    place.note = place.path + " is there already";
    return place;
  }
}

/// A sentence about the work's own folder says nothing to a user.
Status named(const Status& status, const std::string& work, const Place& place,
             const std::string& input) {
  std::string text = replaceAll(status.message(), joinPath(work, nameOf(place.path)), place.path);
  text = replaceAll(text, work, folderOf(place.path));
  const bool names = text.find(input) != std::string::npos;
  return Status::error(names ? text : input + ": was not converted: " + text);
}

Status buildBeside(const std::string& path, const raster::Progress& progress) {
  const raster::PyramidPlaces places{folderOf(path), ""};
  auto image = raster::RasterImage::open(path, {places, true, {}});
  if (!image) return image.status();
  if (image.value()->hasPyramid(places)) return Status::ok();
  std::string note;
  return image.value()->buildPyramid(places, progress, note);
}

/// Everything into the work folder, checked.
Status make(const Source& source, const Plan& plan, const std::string& mark,
            const std::string& path, const raster::Progress& progress,
            std::vector<std::string>& notes) {
  const std::unique_ptr<GDALDataset> view =
      plan.shown ? makeShownView(source, mark) : makeStoredView(source, plan, mark);
  const double share = plan.pyramidBeside ? kBeforePyramid : 1;
  if (Status written =
          writeConverted(plan, *view, source.image(), path, stepOf(progress, 0, share));
      !written)
    return written;
  if (Status verified = verifyConverted(plan, *view, path, notes); !verified) return verified;
  if (plan.sideFiles) {
    if (Status sides = raster::writeSideFiles(*view, path); !sides) return sides;
  }
  if (plan.pyramidBeside) {
    if (Status built = buildBeside(path, stepOf(progress, share, 1)); !built) return built;
  }
  const Result<raster::ImageStamp> now = raster::stampOf(source.path());
  if (!now) return now.status();
  if (!(now.value() == source.stamp()))
    return Status::error(source.path() + ": was changed while it was converted");
  return Status::ok();
}

}  // namespace

Result<Converted> convertImage(const std::string& input, const std::string& output,
                               const Options& options, const raster::Progress& progress) {
  Result<raster::ImageStamp> stamp = raster::stampOf(input);
  if (!stamp) return stamp.status();
  const std::string mark = markOf(stamp.value(), options);
  Result<Place> chosen = choosePlace(input, output, mark, options.existing);
  if (!chosen) return chosen.status();
  const Place place = chosen.take();
  Converted converted{place.outcome, place.path, 0, {}};
  if (!place.note.empty()) converted.notes.push_back(place.note);
  if (place.outcome != Outcome::kConverted) return converted;

  const bool canBeShown = options.bands.size() == 1 || options.bands.size() == 3;
  auto opened = Source::open(input, canBeShown ? options.bands : std::vector<int>{});
  if (!opened) return opened.status();
  const std::unique_ptr<Source> source = opened.take();
  if (!(source->stamp() == stamp.value()))
    return Status::error(input + ": was changed while it was converted");
  Result<Plan> planned =
      planConversion(source->image().facts(), source->image().presentation(), options);
  if (!planned) return Status::error(input + ": " + planned.message());
  converted.notes = planned.value().notes;

  if (Status made = makeFolders(folderOf(place.path)); !made) return made;
  raster::BuildFolder work;
  if (Status made = work.make(place.path); !made)
    return Status::error(input + ": was not converted: " + folderOf(place.path) +
                         ": cannot be written");
  const std::string path = work.file(nameOf(place.path));
  if (Status made = make(*source, planned.value(), mark, path, progress, converted.notes); !made)
    return named(made, work.path(), place, input);
  converted.bytes = fileTimes(path).size;
  if (Status moved = raster::moveIntoPlace(work.path(), place.path); !moved)
    return named(moved, work.path(), place, input);
  return converted;
}

}  // namespace tarn::convert
