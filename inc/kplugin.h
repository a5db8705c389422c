// How implementations reach the factory: registered by name and interface, by plug-ins or in place.
#pragma once

#include <atomic>
#include <cstdint>

#include "inc/kelapi.h"
#include "inc/kobject.h"

namespace kel {

/// Makes one object with a count of one, or returns null.
using Creator = void* (*)();

/// Registers an implementation; a second registration of the same pair replaces the first. The
/// class name under which callers ask is "N".
KEL_API void registerImplementation(const char* className, uint32_t interfaceId, Creator creator);
/// Takes a registration out again; unknown pairs are ignored.
KEL_API void unregisterImplementation(const char* className, uint32_t interfaceId);

/// The one symbol that a plug-in exports; called once after it was loaded.
#define KEL_PLUGIN_ENTRY_NAME "kelRegisterPlugin"
using PluginEntry = void (*)();

/// Implements the four operations of IObject for class `Derived` over interface `I`.
template <typename Derived, typename I>
class Implements : public I {
 public:
  bool queryInterface(uint32_t id, void** out) override {
    if (id == I::interfaceId()) {
      *out = static_cast<I*>(this);
    } else if (id == IObject::interfaceId()) {
      *out = static_cast<IObject*>(this);
    } else {
      return false;
    }
    retain();
    return true;
  }
  const char* implementationName() const override { return Derived::kName; }
  void retain() override { ++count_; }
  void release() override {
    if (--count_ == 0) delete static_cast<Derived*>(this);
  }

  static void* create() { return static_cast<I*>(new Derived()); }
  static void registerSelf() { registerImplementation("N", I::interfaceId(), &create); }

 protected:
  Implements() = default;
  ~Implements() = default;

 private:
  std::atomic<int> count_{1};
};

}  // namespace kel
