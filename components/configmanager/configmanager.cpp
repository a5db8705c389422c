// The configuration manager over tarnconfig.db. What goes wrong is said once; the values are then
// null and work goes on.
#include <mutex>
#include <string>

#include "base/path.h"
#include "components/configmanager/database.h"
#include "inc/iconfigmanager.h"
#include "inc/iuserinterface.h"
#include "inc/kcore.h"
#include "inc/kplugin.h"

namespace kel {
namespace {

constexpr const char* kSource = "components/configmanager";

class ConfigManager final : public Implements<ConfigManager, IConfigManager> {
 public:
  static constexpr const char* kName = "configmanager.ConfigManager";

  ConfigManager() : interface_("N", kSource, __LINE__) {
    if (interface_.isNull()) return;
    const std::string folder = interface_->folder(IUserInterface::Folder::kConfiguration).str();
    path_ = tarn::joinPath(folder, "tarnconfig.db");
    report(database_.open(path_));
  }

  DString databasePath() override { return path_; }
  bool isOpen() override { return database_.isOpen(); }

  bool contains(const DString& key) override { return !getValue(key).isNull(); }

  bool removeValue(const DString& key) override {
    if (!database_.isOpen()) return false;
    const tarn::Result<bool> removed = database_.remove(key.str());
    report(removed.status());
    return removed && removed.value();
  }

  Variant getValue(const DString& key) override {
    if (!database_.isOpen()) return {};
    auto value = database_.read(key.str());
    report(value.status());
    if (!value || !value.value()) return {};
    return Variant(DString(*value.take()));
  }

  bool setValue(const DString& key, const Variant& value) override {
    if (!database_.isOpen()) {
      report(tarn::Status::error(path_ + ": \"" + key.str() +
                                 "\" cannot be stored: the configuration database is not open"));
      return false;
    }
    const tarn::Status status = database_.write(key.str(), value.toString().str());
    report(status);
    return status.isOk();
  }

 private:
  /// A database is opened many times in a session: the same sentence is printed once in a row.
  void report(const tarn::Status& status) {
    if (status) return;
    static std::mutex mutex;
    static std::string last;
    const std::lock_guard<std::mutex> lock(mutex);
    Core::log(status.message().c_str());
    if (last == status.message() || interface_.isNull()) return;
    last = status.message();
    interface_->message(status.message());
  }

  Object<IUserInterface> interface_;
  std::string path_;
  ConfigDatabase database_;
};

}  // namespace
}  // namespace kel

extern "C" KEL_PLUGIN_API void kelRegisterPlugin() {
  kel::ConfigManager::registerSelf();
}
