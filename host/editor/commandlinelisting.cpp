#include "host/editor/commandlinelisting.h"

#include <algorithm>
#include <optional>

#include "base/text.h"
#include "host/editor/commandprocessor.h"
#include "host/editor/hostapp.h"
#include "host/editor/listingtree.h"

namespace tarn::host {

namespace {

constexpr size_t kMostLines = 100;
constexpr const char* kPrompt = "Number, name or text to look for (Enter ends): ";

class Choosing {
 public:
  Choosing(HostApp& app, const TarnListing& listing) : app_(app), tree_(listing) {}

  std::vector<std::string> run() {
    app_.print("\n" + tree_.listing().title + "\n");
    showFolder();
    for (;;) {
      const auto answer = app_.commands().ask(kPrompt, InputKind::kFileName);
      if (!answer) return {};
      const std::string text(trim(*answer));
      if (text.empty()) return chosen_;
      take(text);
      if (!tree_.listing().severalAllowed && !chosen_.empty()) return chosen_;
    }
  }

 private:
  struct Level {
    std::string key;
    std::string name;
  };

  void show(std::vector<FoundEntry> entries) {
    shown_ = std::move(entries);
    std::string text;
    for (size_t i = 0; i < std::min(shown_.size(), kMostLines); ++i) {
      const auto& [entry, path] = shown_[i];
      text += "\n  " + std::to_string(i + 1) + ": " + path + (entry.isFolder ? "/" : "");
      for (const std::string& more : {sizeText(entry.bytes), entry.time})
        if (!more.empty()) text += "  " + more;
    }
    if (shown_.size() > kMostLines)
      text += "\n  and " + std::to_string(shown_.size() - kMostLines) +
              " more; a part of the name finds them";
    app_.print(text + "\n");
  }

  void showFolder() {
    const ListedFolder& folder = tree_.folder(levels_.back().key);
    if (!folder.reason.empty()) app_.print("\n" + folder.reason + "\n");
    std::vector<FoundEntry> entries;
    for (const TarnListingEntry& entry : folder.entries) entries.push_back({entry, entry.name});
    show(std::move(entries));
  }

  void take(const std::string& text) {
    int number = 0;
    if (text == "..") {
      if (levels_.size() > 1) levels_.pop_back();
      return showFolder();
    }
    if (takeNamed(text)) return;
    if (parseInt(text, number) && number >= 1 && static_cast<size_t>(number) <= shown_.size()) {
      return open(shown_[static_cast<size_t>(number) - 1].entry);
    }
    search(text);
  }

  /// A name of the folder, or names that lead from it.
  bool takeNamed(const std::string& text) {
    std::vector<Level> passed;
    std::optional<TarnListingEntry> entry;
    for (const std::string& name : split(text, '/')) {
      const std::string key = entry ? entry->key : levels_.back().key;
      if (entry && !entry->isFolder) return false;
      if (entry) passed.push_back({key, entry->name});
      const std::vector<TarnListingEntry>& entries = tree_.folder(key).entries;
      const auto found =
          std::find_if(entries.begin(), entries.end(),
                       [&](const TarnListingEntry& one) { return one.name == name; });
      if (found == entries.end()) return false;
      entry = *found;
    }
    if (entry->isFolder) levels_.insert(levels_.end(), passed.begin(), passed.end());
    open(*entry);
    return true;
  }

  void open(const TarnListingEntry& entry) {
    if (entry.isFolder) {
      levels_.push_back({entry.key, entry.name});
      return showFolder();
    }
    if (std::find(chosen_.begin(), chosen_.end(), entry.key) != chosen_.end()) return;
    chosen_.push_back(entry.key);
    app_.print("\nChosen: " + entry.name + "\n");
  }

  void search(const std::string& text) {
    SearchResult result =
        tree_.find(text, levels_.back().key, [this] { return !app_.frontEnd().cancelWanted(); });
    if (!result.reason.empty()) app_.print("\n" + result.reason + "\n");
    if (!result.isWhole) app_.print("\nNot every folder was searched.\n");
    if (result.found.empty()) return app_.print("\n\"" + text + "\": nothing of that name.\n");
    if (result.found.size() == 1) return open(result.found.front().entry);
    show(std::move(result.found));
  }

  HostApp& app_;
  ListingTree tree_;
  std::vector<Level> levels_ = {{"", ""}};
  std::vector<FoundEntry> shown_;  ///< what the numbers mean
  std::vector<std::string> chosen_;
};

}  // namespace

std::vector<std::string> chooseFromListingOnCommandLine(HostApp& app, const TarnListing& listing) {
  return Choosing(app, listing).run();
}

}  // namespace tarn::host
