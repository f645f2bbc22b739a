// SPDX-License-Identifier: BSD-3-Clause
// RecordSequence: nodes or elements as a view. A record is a pair of table and index; a sequence is
// the whole of a table, a selection of one table by indices, or a list of records (selections from
// several tables, and lists that callers build). Walking a const sequence makes records on the fly,
// without allocation; a non-const one must hand out references, so it keeps the records it handed
// out, block by block.
#pragma once

#include <odb_engine/sequence.h>

#include <deque>
#include <memory>
#include <vector>

namespace odbs {

template <class Record, class Table>
class RecordSequence {
 public:
  RecordSequence() = default;
  // An empty list; `n` is only a hint.
  explicit RecordSequence(int) {}
  // All records of `table`, also those it gets later.
  explicit RecordSequence(const Table* table) : table_(table) {}
  // The records of `table` at `indices`; the array stays with the caller.
  RecordSequence(const Table* table, const int* indices, int n)
      : table_(table), indices_(indices), n_(n) {}

  RecordSequence(const RecordSequence& other)
      : table_(other.table_), indices_(other.indices_), n_(other.n_), own_(other.own_) {}
  RecordSequence& operator=(const RecordSequence& other) {
    if (this != &other) {
      table_ = other.table_;
      indices_ = other.indices_;
      n_ = other.n_;
      own_ = other.own_;
      blocks_.clear();
    }
    return *this;
  }

  int size() const {
    if (!table_) return static_cast<int>(own_.size());
    return indices_ ? n_ : table_->n;
  }

  // Item `i`, counted from 0. Throws odb_Exception outside the sequence.
  Record operator[](int i) const {
    if (static_cast<unsigned>(i) >= static_cast<unsigned>(size())) throwBadIndex(i, size());
    if (!table_) return own_[static_cast<std::size_t>(i)];
    return Record(table_, indices_ ? indices_[i] : i);
  }
  // The same as a reference, valid as long as this sequence object.
  Record& operator[](int i) {
    if (static_cast<unsigned>(i) >= static_cast<unsigned>(size())) throwBadIndex(i, size());
    if (!table_) return own_[static_cast<std::size_t>(i)];
    return reference(i);
  }
  Record& get(int i) { return (*this)[i]; }
  Record get(int i) const { return (*this)[i]; }
  Record constGet(int i) const { return (*this)[i]; }

  // Adds a record at the end; a view becomes an independent list first.
  void append(const Record& record) {
    if (table_) {
      std::deque<Record> list;
      for (int i = 0, n = size(); i < n; ++i) {
        list.push_back(Record(table_, indices_ ? indices_[i] : i));
      }
      own_.swap(list);
      table_ = nullptr;
    }
    own_.push_back(record);
  }

  bool isMember(const Record& record) const {
    for (int i = 0, n = size(); i < n; ++i) {
      if ((*this)[i] == record) return true;
    }
    return false;
  }

  // For the library itself: the table and indices of a view, null for a list.
  const Table* engineTable() const { return table_; }
  const int* engineIndices() const { return indices_; }

 private:
  static constexpr int kBlock = 1024;

  Record& reference(int i) {
    const std::size_t block = static_cast<std::size_t>(i / kBlock);
    if (block >= blocks_.size()) blocks_.resize(block + 1);
    if (!blocks_[block]) {
      const int first = i / kBlock * kBlock;
      const int last = indices_ ? std::min(first + kBlock, n_) : first + kBlock;
      std::unique_ptr<std::vector<Record>> records(new std::vector<Record>());
      records->reserve(static_cast<std::size_t>(last - first));
      for (int j = first; j < last; ++j) {
        records->push_back(Record(table_, indices_ ? indices_[j] : j));
      }
      blocks_[block] = std::move(records);
    }
    return (*blocks_[block])[static_cast<std::size_t>(i % kBlock)];
  }

  const Table* table_ = nullptr;
  const int* indices_ = nullptr;
  int n_ = 0;
  std::deque<Record> own_;
  std::vector<std::unique_ptr<std::vector<Record>>> blocks_;
};

}  // namespace odbs
