// Connects a drawing's database to its picture.
#pragma once

#include <memory>

namespace tarn::host {

class HostApp;
class HostDocument;

/// Lives as long as the document: entities that are appended, changed or erased are drawn again or
/// taken out of the picture.
class DatabaseWatch {
 public:
  virtual ~DatabaseWatch() = default;
};

std::unique_ptr<DatabaseWatch> watchDatabase(HostApp& app, HostDocument& document);

}  // namespace tarn::host
