// A growing array with the host's names over std::vector.
#pragma once

#include <algorithm>
#include <cassert>
#include <utility>
#include <vector>

#include "adesk.h"

/// Indexes are int; a bad index is the caller's error (checked in debug builds).
template <typename T>
class AcArray {
 public:
  explicit AcArray(int initPhysicalLength = 0, int initGrowLength = 8)
      : growLength_(initGrowLength) {
    items_.reserve(static_cast<size_t>(std::max(0, initPhysicalLength)));
  }

  int length() const { return static_cast<int>(items_.size()); }
  int logicalLength() const { return length(); }
  int physicalLength() const { return static_cast<int>(items_.capacity()); }
  int growLength() const { return growLength_; }
  bool isEmpty() const { return items_.empty(); }

  const T& at(int index) const { return items_[checked(index)]; }
  T& at(int index) { return items_[checked(index)]; }
  const T& operator[](int index) const { return at(index); }
  T& operator[](int index) { return at(index); }
  const T& first() const { return at(0); }
  T& first() { return at(0); }
  const T& last() const { return at(length() - 1); }
  T& last() { return at(length() - 1); }
  const T* asArrayPtr() const { return items_.data(); }
  T* asArrayPtr() { return items_.data(); }
  T* begin() { return items_.data(); }
  T* end() { return items_.data() + items_.size(); }
  const T* begin() const { return items_.data(); }
  const T* end() const { return items_.data() + items_.size(); }

  /// Index of the new element.
  int append(const T& value) {
    items_.push_back(value);
    return length() - 1;
  }
  AcArray& append(const AcArray& other) {
    const std::vector<T> added = other.items_;
    items_.insert(items_.end(), added.begin(), added.end());
    return *this;
  }
  AcArray& setAt(int index, const T& value) {
    at(index) = value;
    return *this;
  }
  AcArray& setAll(const T& value) {
    std::fill(items_.begin(), items_.end(), value);
    return *this;
  }
  AcArray& insertAt(int index, const T& value) {
    assert(index >= 0 && index <= length());
    items_.insert(items_.begin() + index, value);
    return *this;
  }
  AcArray& removeAt(int index) {
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(checked(index)));
    return *this;
  }
  /// Removes the first element equal to `value`; false when there is none.
  bool remove(const T& value) {
    const int index = find(value);
    if (index < 0) return false;
    removeAt(index);
    return true;
  }
  AcArray& removeFirst() { return removeAt(0); }
  AcArray& removeLast() { return removeAt(length() - 1); }
  AcArray& removeAll() {
    items_.clear();
    return *this;
  }

  bool contains(const T& value, int start = 0) const { return find(value, start) >= 0; }
  /// Index of the first element from `start` on that equals `value`, or -1.
  int find(const T& value, int start = 0) const {
    for (int i = std::max(0, start); i < length(); ++i) {
      if (items_[static_cast<size_t>(i)] == value) return i;
    }
    return -1;
  }
  bool find(const T& value, int& foundAt, int start) const {
    const int index = find(value, start);
    if (index < 0) return false;
    foundAt = index;
    return true;
  }

  AcArray& setLogicalLength(int count) {
    items_.resize(static_cast<size_t>(std::max(0, count)));
    return *this;
  }
  AcArray& setPhysicalLength(int count) {
    const size_t wanted = static_cast<size_t>(std::max(0, count));
    if (wanted < items_.size()) items_.resize(wanted);
    items_.reserve(wanted);
    return *this;
  }
  AcArray& setGrowLength(int count) {
    growLength_ = count;
    return *this;
  }
  AcArray& reverse() {
    std::reverse(items_.begin(), items_.end());
    return *this;
  }
  AcArray& swap(int a, int b) {
    std::swap(at(a), at(b));
    return *this;
  }
  bool operator==(const AcArray& other) const { return items_ == other.items_; }

 private:
  size_t checked(int index) const {
    assert(index >= 0 && index < length());
    return static_cast<size_t>(index);
  }

  std::vector<T> items_;
  int growLength_;
};
