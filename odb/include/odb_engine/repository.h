// SPDX-License-Identifier: BSD-3-Clause
// RepositoryOf and its iterator: objects by name. Order of iteration: by name, bytewise, except
// steps, which keep the order of the analysis. Copies of a repository share its contents, and
// references to its objects stay valid while objects are added.
#pragma once

#include <nex_Exception.h>
#include <odb_engine/sequence.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace odbs {

[[noreturn]] void throwNoMember(const odb_String& key);

// The contents of a repository: entries in iteration order.
template <class T>
class RepositoryItems {
 public:
  struct Entry {
    odb_String key;
    T value;
  };

  explicit RepositoryItems(bool byName = true) : byName_(byName) {}

  int size() const { return static_cast<int>(entries_.size()); }
  Entry& at(int i) const {
    if (i < 0 || i >= size()) throwBadIndex(i, size());
    return *entries_[static_cast<std::size_t>(i)];
  }
  // The entry of that name, or null.
  Entry* find(const odb_String& key) const {
    if (byName_) {
      auto at = lowerBound(key);
      return at != entries_.end() && (*at)->key == key ? at->get() : nullptr;
    }
    for (const auto& entry : entries_) {
      if (entry->key == key) return entry.get();
    }
    return nullptr;
  }
  // Adds or replaces the object of that name. Without name order it goes to the end, or before
  // entry `place` when that is not negative.
  T& add(const odb_String& key, const T& value, int place = -1) {
    if (Entry* old = find(key)) {
      old->value = value;
      return old->value;
    }
    auto at = byName_ ? lowerBound(key) : place < 0 ? entries_.end() : entries_.begin() + place;
    return (*entries_.insert(at, std::unique_ptr<Entry>(new Entry{key, value})))->value;
  }
  void clear() { entries_.clear(); }

 private:
  using Entries = std::vector<std::unique_ptr<Entry>>;
  typename Entries::const_iterator lowerBound(const odb_String& key) const {
    return std::lower_bound(
        entries_.begin(), entries_.end(), key,
        [](const std::unique_ptr<Entry>& entry, const odb_String& k) { return entry->key < k; });
  }

  Entries entries_;
  bool byName_;
};

template <class T>
class RepositoryOf {
 public:
  RepositoryOf() : items_(std::make_shared<RepositoryItems<T>>()) {}
  explicit RepositoryOf(std::shared_ptr<RepositoryItems<T>> items) : items_(std::move(items)) {}

  // The object of that name. Throws odb_Exception when there is none: call isMember first.
  T& operator[](const odb_String& key) { return need(key); }
  const T& operator[](const odb_String& key) const { return need(key); }
  T& operator[](const char* key) { return need(key); }
  const T& operator[](const char* key) const { return need(key); }
  T& get(const odb_String& key) { return need(key); }
  const T& get(const odb_String& key) const { return need(key); }
  const T& constGet(const odb_String& key) const { return need(key); }

  // The object at an index of the iteration order, counted from 0. Throws odb_Exception outside.
  T& operator[](int i) { return items_->at(i).value; }
  const T& operator[](int i) const { return items_->at(i).value; }

  bool isMember(const odb_String& key) const { return items_->find(key) != nullptr; }
  int size() const { return items_->size(); }

  // For the library itself.
  RepositoryItems<T>& engineItems() const { return *items_; }
  const std::shared_ptr<RepositoryItems<T>>& engineShared() const { return items_; }

 private:
  T& need(const odb_String& key) const {
    auto* entry = items_->find(key);
    if (!entry) throwNoMember(key);
    return entry->value;
  }

  std::shared_ptr<RepositoryItems<T>> items_;
};

// Walks a repository: for (it.first(); !it.isDone(); it.next()). A fresh iterator stands on the
// first object. currentKey and currentValue throw odb_Exception at the end.
template <class T>
class RepositoryIterator {
 public:
  explicit RepositoryIterator(const RepositoryOf<T>& repository)
      : items_(repository.engineShared()) {}

  void first() { at_ = 0; }
  void next() { ++at_; }
  bool isDone() const { return at_ >= items_->size(); }
  const odb_String& currentKey() const { return items_->at(at_).key; }
  T& currentValue() const { return items_->at(at_).value; }

 private:
  std::shared_ptr<RepositoryItems<T>> items_;
  int at_ = 0;
};

}  // namespace odbs

// Declares the repository class NAME of TYPE and its iterator NAMEIT.
#define ODBS_REPOSITORY(NAME, TYPE)                        \
  class NAME : public odbs::RepositoryOf<TYPE> {           \
   public:                                                 \
    using odbs::RepositoryOf<TYPE>::RepositoryOf;          \
  };                                                       \
  class NAME##IT : public odbs::RepositoryIterator<TYPE> { \
   public:                                                 \
    NAME##IT(const odbs::RepositoryOf<TYPE>& repository)   \
        : odbs::RepositoryIterator<TYPE>(repository) {}    \
  }
