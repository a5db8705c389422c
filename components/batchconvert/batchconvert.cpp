// IBatchImageConversion over components/convert, with the user's form and progress.
#include <string>

#include "base/file.h"
#include "base/path.h"
#include "base/text.h"
#include "components/batchconvert/conversionform.h"
#include "components/convert/batch.h"
#include "components/convert/converter.h"
#include "components/interaction/interaction.h"
#include "components/raster/rasterimage.h"
#include "inc/ibatchimageconversion.h"
#include "inc/iconfigmanager.h"
#include "inc/iuserinterface.h"
#include "inc/kplugin.h"

namespace tarn::batchconvert {
namespace {

using convert::Item;
using convert::ItemResult;
using convert::State;
using interaction::ProgressScope;
using interaction::Text;

constexpr const char* kLastOptions = "ImageConversionOptions";
constexpr Text kLabel = {"影像转换", "Image conversion"};
constexpr Text kNothing = {"所选位置没有影像。", "There are no images in what was chosen."};
constexpr int kPositions = 1000;

/// What became of images, in the order of convert::State.
constexpr Text kStates[] = {{"等待", "waiting"},     {"正在转换", "running"},
                            {"已转换", "converted"}, {"已是最新", "current"},
                            {"已跳过", "skipped"},   {"失败", "failed"},
                            {"已停止", "stopped"}};

const char* wordOf(State state, bool isEnglish) {
  return kStates[static_cast<size_t>(state)].in(isEnglish);
}

/// "Image conversion: 2 converted, 1 failed".
std::string reportOf(const convert::Summary& summary, bool isEnglish) {
  const std::pair<State, size_t> counts[] = {{State::kConverted, summary.converted},
                                             {State::kCurrent, summary.current},
                                             {State::kSkipped, summary.skipped},
                                             {State::kFailed, summary.failed},
                                             {State::kStopped, summary.stopped}};
  std::string text;
  for (const auto& [state, count] : counts) {
    if (count == 0) continue;
    text += text.empty() ? kLabel.in(isEnglish) + std::string(isEnglish ? ": " : "：")
                         : std::string(isEnglish ? ", " : "，");
    const std::string word = wordOf(state, isEnglish), number = std::to_string(count);
    text.append(isEnglish ? number : word).append(" ").append(isEnglish ? word : number);
  }
  return text;
}

/// A framework object, asked for without an assertion: a service that is missing is no fault here.
template <typename Interface>
kel::Object<Interface> find() {
  void* made = nullptr;
  kel::createObject("N", Interface::interfaceId(), &made);
  return kel::Object<Interface>::adopt(static_cast<Interface*>(made));
}

std::string joined(const std::vector<std::string>& notes) {
  std::string text;
  for (const std::string& note : notes) text += (text.empty() ? "" : "; ") + note;
  return text;
}

/// Shows a batch to the user.
class Shown final : public convert::BatchObserver {
 public:
  Shown(IUserInterface& user, const std::vector<Item>& items, bool isEnglish)
      : user_(user), isEnglish_(isEnglish), display_(kLabel.in(isEnglish), 0, kPositions) {
    double bytes = 0;
    for (const Item& item : items) {
      bytes += 1 + static_cast<double>(fileTimes(item.input).size);
      ends_.push_back(bytes);
    }
  }

  void started(size_t item) override {
    user_.setTask(static_cast<int>(item), kel::TaskState::kRunning, "");
  }

  bool moved(size_t item, double part) override {
    showPlace(item, part);
    return !user_.cancelWanted();
  }

  void finished(size_t item, const ItemResult& result) override {
    const bool done = result.state == State::kConverted;
    // Its last steps are over sooner than they are told.
    showPlace(item, 1);
    const bool failed = result.state == State::kFailed;
    const std::string remark = !result.message.empty() ? result.message
                               : done                  ? joined(result.notes)
                                                       : wordOf(result.state, isEnglish_);
    user_.setTask(static_cast<int>(item),
                  done     ? kel::TaskState::kDone
                  : failed ? kel::TaskState::kFailed
                           : kel::TaskState::kSkipped,
                  remark);
  }

 private:
  /// A large image takes its share of the whole, so that the time left can be told.
  void showPlace(size_t item, double part) {
    const double start = item > 0 ? ends_[item - 1] : 0;
    display_.move((start + part * (ends_[item] - start)) / ends_.back());
  }

  IUserInterface& user_;
  bool isEnglish_;
  std::vector<double> ends_;  ///< bytes of the inputs up to and with each
  ProgressScope display_;
};

class BatchConversion final : public kel::Implements<BatchConversion, IBatchImageConversion> {
 public:
  static constexpr const char* kName = "batchconvert";

  bool convertImage(const kel::DString& source, const kel::DString& target) override {
    converted_ = 0;
    convert::Options options = lastOptions();
    const std::string ending = toLower(extensionOf(target.str()));
    options.existing = convert::Existing::kOverwrite;
    if (ending == ".img") options.format = convert::Format::kImg;
    if (ending == ".jpg") options.format = convert::Format::kJpeg;
    ProgressScope display(nameOf(source.str()), 0, kPositions);
    const auto done = convert::convertImage(source.str(), target.str(), options,
                                            [&](double part) { return goOn(display, part); });
    if (!done) say(done.message());
    converted_ = done ? 1 : 0;
    return done.isOk();
  }

  bool buildPyramid(const kel::DString& image) override {
    const std::string cache =
        user_.isNull() ? "" : user_->folder(IUserInterface::Folder::kCache).str();
    const raster::PyramidPlaces places{folderOf(image.str()), cache};
    auto opened = raster::RasterImage::open(image.str(), {places, true, {}});
    if (!opened) {
      say(opened.message());
      return false;
    }
    if (opened.value()->hasPyramid(places)) return true;
    ProgressScope display(nameOf(image.str()), 0, kPositions);
    std::string note;
    const Status built = opened.value()->buildPyramid(
        places, [&](double part) { return goOn(display, part); }, note);
    if (!built) say(built.message());
    return built.isOk();
  }

  int convertedCount() override { return converted_; }

  void run() override {
    converted_ = 0;
    if (user_.isNull()) return;
    const bool english = interaction::isEnglish();
    kel::Form form = makeForm(lastOptions(), english);
    if (!user_->askForm(form)) return;
    const Result<Wish> wish = readForm(form.fields, english);
    if (!wish) return say(wish.message());
    keepOptions(wish.value().options);
    const std::vector<Item> items =
        planItems(convert::expandInputs(wish.value().names), wish.value().options);
    if (items.empty()) return say(kNothing.in(english));
    convertItems(items, wish.value().options, english);
  }

 private:
  void convertItems(const std::vector<Item>& items, const convert::Options& options, bool english) {
    kel::StringList names;
    for (const Item& item : items) names.emplace_back(item.input);
    user_->beginTasks(kLabel.in(english), names);
    convert::Summary summary;
    {
      Shown shown(*user_.get(), items, english);
      summary = runBatch(items, options, shown);
    }
    converted_ = static_cast<int>(summary.converted);
    std::string report = reportOf(summary, english);
    if (summary.converted + summary.current > 0)
      report += " → " + (options.folder.empty() ? folderOf(items[0].output) : options.folder);
    user_->endTasks(report);
  }

  bool goOn(ProgressScope& display, double part) const {
    display.move(part);
    return user_.isNull() || !user_->cancelWanted();
  }

  void say(const std::string& text) const {
    if (!user_.isNull()) user_->message(text);
  }

  static convert::Options lastOptions() {
    const kel::Object<IConfigManager> configuration = find<IConfigManager>();
    if (configuration.isNull()) return {};
    return optionsOf(configuration->getValue(kLastOptions).toString().str());
  }

  static void keepOptions(const convert::Options& options) {
    const kel::Object<IConfigManager> configuration = find<IConfigManager>();
    if (!configuration.isNull())
      configuration->setValue(kLastOptions, kel::DString(storedText(options)));
  }

  kel::Object<IUserInterface> user_ = find<IUserInterface>();
  int converted_ = 0;
};

}  // namespace
}  // namespace tarn::batchconvert

extern "C" KEL_PLUGIN_API void kelRegisterPlugin() {
  tarn::batchconvert::BatchConversion::registerSelf();
}
