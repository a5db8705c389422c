#include "components/configmanager/database.h"

#include <sqlite3.h>

#include "base/file.h"

namespace kel {
namespace {

constexpr int kBusyMilliseconds = 2000;

struct Finalize {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

Statement prepare(sqlite3* database, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, sql, -1, &statement, nullptr);
  return Statement(statement);
}

void bindText(const Statement& statement, int index, const std::string& text) {
  sqlite3_bind_text(statement.get(), index, text.data(), static_cast<int>(text.size()),
                    SQLITE_TRANSIENT);
}

std::string textAt(const Statement& statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column));
  const int size = sqlite3_column_bytes(statement.get(), column);
  return text ? std::string(text, static_cast<size_t>(size)) : std::string();
}

/// What a whole statement without results came to.
bool run(sqlite3* database, const char* sql) {
  return sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

}  // namespace

void ConfigDatabase::Close::operator()(sqlite3* database) const {
  sqlite3_close(database);
}

ConfigDatabase::ConfigDatabase() = default;
ConfigDatabase::~ConfigDatabase() = default;

tarn::Status ConfigDatabase::failure(const std::string& what) const {
  return tarn::Status::error(path_ + ": " + what + ": " + sqlite3_errmsg(database_.get()));
}

tarn::Status ConfigDatabase::open(const std::string& path) {
  path_ = path;
  database_.reset();
  if (tarn::fileKind(path) == tarn::FileKind::kMissing) {
    return tarn::Status::error(path + ": the configuration database is missing");
  }
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr);
  database_.reset(database);
  tarn::Status status;
  if (code != SQLITE_OK) {
    status = failure("the configuration database cannot be opened");
  } else {
    sqlite3_busy_timeout(database, kBusyMilliseconds);
    const Statement check = prepare(database, "PRAGMA quick_check(1)");
    if (!check || sqlite3_step(check.get()) != SQLITE_ROW) {
      status = failure("the configuration database cannot be read");
    } else if (textAt(check, 0) != "ok") {
      status = tarn::Status::error(path +
                                   ": the configuration database is damaged: " + textAt(check, 0));
    }
  }
  if (!status) database_.reset();
  return status;
}

tarn::Result<std::optional<std::string>> ConfigDatabase::read(const std::string& key) {
  const Statement table = prepare(
      database_.get(), "SELECT 1 FROM sqlite_master WHERE type='table' AND name='globaldefines'");
  const int there = table ? sqlite3_step(table.get()) : SQLITE_ERROR;
  if (there == SQLITE_DONE) return std::optional<std::string>();
  const Statement query =
      prepare(database_.get(), "SELECT value FROM globaldefines WHERE key = ?1");
  if (there != SQLITE_ROW || !query) return failure("\"" + key + "\" cannot be read");
  bindText(query, 1, key);
  const int code = sqlite3_step(query.get());
  if (code == SQLITE_DONE) return std::optional<std::string>();
  if (code != SQLITE_ROW) return failure("\"" + key + "\" cannot be read");
  if (sqlite3_column_type(query.get(), 0) == SQLITE_NULL) return std::optional<std::string>();
  return std::optional<std::string>(textAt(query, 0));
}

tarn::Status ConfigDatabase::write(const std::string& key, const std::string& value) {
  const std::string what = "\"" + key + "\" cannot be stored";
  if (!run(database_.get(),
           "CREATE TABLE IF NOT EXISTS globaldefines(key TEXT PRIMARY KEY, value TEXT)")) {
    return failure(what);
  }
  const Statement statement =
      prepare(database_.get(), "INSERT OR REPLACE INTO globaldefines(key, value) VALUES(?1, ?2)");
  if (!statement) return failure(what);
  bindText(statement, 1, key);
  bindText(statement, 2, value);
  return sqlite3_step(statement.get()) == SQLITE_DONE ? tarn::Status::ok() : failure(what);
}

tarn::Result<bool> ConfigDatabase::remove(const std::string& key) {
  const tarn::Result<std::optional<std::string>> old = read(key);
  if (!old) return old.status();
  if (!old.value()) return false;
  const Statement statement = prepare(database_.get(), "DELETE FROM globaldefines WHERE key = ?1");
  const std::string what = "\"" + key + "\" cannot be removed";
  if (!statement) return failure(what);
  bindText(statement, 1, key);
  if (sqlite3_step(statement.get()) != SQLITE_DONE) return failure(what);
  return sqlite3_changes(database_.get()) > 0;
}

}  // namespace kel
