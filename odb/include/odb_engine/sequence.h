// SPDX-License-Identifier: BSD-3-Clause
// SequenceOf: the growing list of the sequences that hold their items themselves. Indices count
// from 0; an index outside the list throws odb_Exception. Copies are independent lists (of handles,
// where items are handles).
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace odbs {

[[noreturn]] void throwBadIndex(int index, int n);

template <class T, class Store = std::vector<T>>
class SequenceOf {
 public:
  SequenceOf() = default;
  // Room for `n` items; the list itself stays empty.
  explicit SequenceOf(int n) { reserve(items_, n); }

  int size() const { return static_cast<int>(items_.size()); }
  int Length() const { return size(); }

  T& operator[](int i) { return items_[checked(i)]; }
  const T& operator[](int i) const { return items_[checked(i)]; }
  T& get(int i) { return items_[checked(i)]; }
  const T& get(int i) const { return items_[checked(i)]; }
  const T& constGet(int i) const { return items_[checked(i)]; }

  void append(const T& item) { items_.push_back(item); }
  void Append(const T& item) { items_.push_back(item); }

  // True when an item equals `item`.
  bool isMember(const T& item) const {
    return std::find(items_.begin(), items_.end(), item) != items_.end();
  }

  // For the library itself.
  Store& engineItems() { return items_; }
  const Store& engineItems() const { return items_; }

 protected:
  std::size_t checked(int i) const {
    if (i < 0 || static_cast<std::size_t>(i) >= items_.size()) throwBadIndex(i, size());
    return static_cast<std::size_t>(i);
  }

 private:
  template <class S>
  static auto reserve(S& items, int n) -> decltype(items.reserve(1)) {
    if (n > 0) items.reserve(static_cast<std::size_t>(n));
  }
  static void reserve(...) {}

  Store items_;
};

}  // namespace odbs
