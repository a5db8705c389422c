// File names and filters of the host in the form that the toolkit's file dialog takes. Pure.
#pragma once

#include <QStringList>
#include <string>
#include <vector>

namespace tarn::host {

/// "text|*.tif;*.img|text|*.jpg||" as dialog filters: "text (*.tif *.TIF *.img *.IMG)" ... Each
/// pattern stands there in lower and in upper case, since some dialogs tell them apart; "*.*" is
/// every file. A text without a pattern is left out.
QStringList dialogFilters(const std::string& filter);

/// "tif" of ".tif", "tif" or "*.tif"; empty when there is none.
QString plainExtension(const std::string& extension);

/// Dropped files, told apart by their names' endings. The lists keep the order.
struct DroppedFiles {
  std::vector<std::string> images;
  std::vector<std::string> drawings;
  std::vector<std::string> others;
};
DroppedFiles sortDropped(const std::vector<std::string>& paths);

}  // namespace tarn::host
