// SPDX-License-Identifier: BSD-3-Clause
// Handle: what model and result objects are. A handle is one pointer to data that the database
// owns; copies share the data. A default-constructed handle refers to nothing, and using it throws
// odb_Exception. Handles are invalid once their database is closed.
#pragma once

#include <nex_Exception.h>

namespace odbs {

[[noreturn]] void throwEmptyHandle();

template <class Data>
class Handle {
 public:
  Handle() = default;
  explicit Handle(Data* data) : data_(data) {}

  // For the library itself: the shared data, null for a default-constructed handle.
  Data* engineData() const { return data_; }

  // Same object, not same content.
  friend bool operator==(const Handle& a, const Handle& b) { return a.data_ == b.data_; }
  friend bool operator!=(const Handle& a, const Handle& b) { return a.data_ != b.data_; }

 protected:
  Data& need() const {
    if (!data_) throwEmptyHandle();
    return *data_;
  }
  Data* data_ = nullptr;
};

}  // namespace odbs
