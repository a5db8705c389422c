#include "host/editor/listingtree.h"

#include <QCollator>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <deque>
#include <set>

namespace tarn::host {

namespace {

/// A search that reads more folders, or finds more images, is of no use to anybody.
constexpr size_t kMostFolders = 5000, kMostFound = 5000;

QString qt(const std::string& text) {
  return QString::fromStdString(text);
}

void sortEntries(std::vector<TarnListingEntry>& entries) {
  QCollator order{QLocale(QLocale::English)};
  order.setNumericMode(true);
  order.setCaseSensitivity(Qt::CaseInsensitive);
  std::stable_sort(entries.begin(), entries.end(),
                   [&](const TarnListingEntry& a, const TarnListingEntry& b) {
                     if (a.isFolder != b.isFolder) return a.isFolder;
                     return order.compare(qt(a.name), qt(b.name)) < 0;
                   });
}

bool holdsAll(const QString& text, const QStringList& words) {
  return std::all_of(words.begin(), words.end(),
                     [&](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}

}  // namespace

const ListedFolder& ListingTree::folder(const std::string& key) {
  const auto known = folders_.find(key);
  if (known != folders_.end() && known->second.reason.empty()) return known->second;
  ListedFolder folder;
  folder.reason = listing_.read(key, folder.entries);
  sortEntries(folder.entries);
  return folders_[key] = std::move(folder);
}

SearchResult ListingTree::find(const std::string& text, const std::string& folder,
                               const std::function<bool()>& goOn) {
  const QStringList words = qt(text).split(' ', Qt::SkipEmptyParts);
  SearchResult result;
  std::deque<FoundEntry> waiting;
  FoundEntry top;
  top.entry.key = folder;
  waiting.push_back(top);
  std::set<std::string> seen = {folder};
  for (; !waiting.empty(); waiting.pop_front()) {
    const FoundEntry where = waiting.front();
    if (seen.size() > kMostFolders || result.found.size() >= kMostFound || !goOn()) {
      result.isWhole = false;
      break;
    }
    const ListedFolder& read = this->folder(where.entry.key);
    if (result.reason.empty()) result.reason = read.reason;
    for (const TarnListingEntry& entry : read.entries) {
      const std::string path = where.path.empty() ? entry.name : where.path + "/" + entry.name;
      if (!entry.isFolder && holdsAll(qt(path), words)) result.found.push_back({entry, path});
      if (entry.isFolder && seen.insert(entry.key).second) waiting.push_back({entry, path});
    }
  }
  return result;
}

std::string sizeText(long long bytes) {
  if (bytes < 0) return {};
  return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat).toStdString();
}

}  // namespace tarn::host
