// Framework objects: the base interface, the identifier of an interface, the owning handle.
#pragma once

#include <cstdint>
#include <utility>

#include "inc/kelapi.h"

namespace kel {

/// Identifier of an interface name: value = value * 33 + byte (as a signed 8-bit number), from 0,
/// modulo 2^32.
constexpr uint32_t interfaceIdOf(const char* name) {
  uint32_t value = 0;
  for (; *name; ++name) {
    value =
        value * 33U + static_cast<uint32_t>(static_cast<int32_t>(static_cast<signed char>(*name)));
  }
  return value;
}

/// Gives an interface its two static accessors: its name, and its identifier (computed at first
/// use).
#define KEL_INTERFACE(Name)                                 \
  static const char* interfaceName() {                      \
    return #Name;                                           \
  }                                                         \
  static uint32_t interfaceId() {                           \
    static const uint32_t id = ::kel::interfaceIdOf(#Name); \
    return id;                                              \
  }

/// Base of every framework interface. Objects are counted: a new one has a count of one.
class IObject {
 public:
  KEL_INTERFACE(IObject)

  /// Sets `out` to this object under another of its interfaces and counts one more; false when the
  /// object has no such interface.
  virtual bool queryInterface(uint32_t id, void** out) = 0;
  /// Name of the implementation, for diagnostics.
  virtual const char* implementationName() const = 0;
  /// Counts one more owner.
  virtual void retain() = 0;
  /// Ends one owner's ownership; the last one destroys the object.
  virtual void release() = 0;

 protected:
  ~IObject() = default;
};

/// Makes an object of interface `interfaceId` from the implementation registered under `className`.
/// `out` stays as it is when there is none. The caller owns one count.
extern "C" KEL_API void createObject(const char* className, uint32_t interfaceId, void** out);

/// Reports a framework assertion: `message` with the place that asked.
KEL_API void kelAssert(const char* message, const char* sourceFile, int line);

/// Owns one count of a framework object, or nothing. Moves; `share` makes a second owner.
template <typename T>
class Object {
 public:
  Object() = default;

  /// Asks the factory for an object; stays empty, after a kelAssert, when there is none.
  Object(const char* className, const char* sourceFile, int line) {
    void* made = nullptr;
    createObject(className, T::interfaceId(), &made);
    pointer_ = static_cast<T*>(made);
    if (!pointer_) kelAssert(T::interfaceName(), sourceFile, line);
  }

  /// Takes over a count that the caller owns.
  static Object adopt(T* pointer) {
    Object handle;
    handle.pointer_ = pointer;
    return handle;
  }

  Object(Object&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  Object& operator=(Object&& other) noexcept {
    if (this != &other) {
      reset();
      pointer_ = std::exchange(other.pointer_, nullptr);
    }
    return *this;
  }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  ~Object() { reset(); }

  bool isNull() const { return pointer_ == nullptr; }
  /// Also true for a handle that is absent itself.
  static bool isNull(const Object* handle) { return !handle || handle->isNull(); }

  /// The raw interface pointer, not checked.
  T* operator->() const { return pointer_; }
  T* get() const { return pointer_; }

  /// A second handle with a count of its own.
  Object share() const {
    if (pointer_) pointer_->retain();
    return adopt(pointer_);
  }

  void reset() {
    if (pointer_) pointer_->release();
    pointer_ = nullptr;
  }

 private:
  T* pointer_ = nullptr;
};

}  // namespace kel
