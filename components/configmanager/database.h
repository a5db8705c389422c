// The configuration database: keys and texts in one table of an SQLite file.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/result.h"

struct sqlite3;

namespace kel {

/// One connection, for one thread at a time. Waits up to two seconds for another writer.
class ConfigDatabase {
 public:
  ConfigDatabase();
  ~ConfigDatabase();
  ConfigDatabase(const ConfigDatabase&) = delete;
  ConfigDatabase& operator=(const ConfigDatabase&) = delete;

  /// Opens a database that is there (an empty file is an empty one) and checks it. Paths are UTF-8.
  tarn::Status open(const std::string& path);
  bool isOpen() const { return database_ != nullptr; }

  /// Nothing when the key is not there.
  tarn::Result<std::optional<std::string>> read(const std::string& key);
  /// Makes the table when it is missing.
  tarn::Status write(const std::string& key, const std::string& value);
  /// True when there was such a key.
  tarn::Result<bool> remove(const std::string& key);

 private:
  struct Close {
    void operator()(sqlite3* database) const;
  };
  tarn::Status failure(const std::string& what) const;

  std::string path_;
  std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace kel
