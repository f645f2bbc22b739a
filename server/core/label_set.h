// SPDX-License-Identifier: BSD-3-Clause
// A set of labels as one bit for each label, in pages that exist only where labels are. Asking for
// a label takes two array accesses, whatever the labels; that is what loops over millions of values
// need.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace odbs {

class LabelSet {
 public:
  // Returns false when the label was there already.
  bool add(int label) {
    const auto bits = static_cast<std::uint32_t>(label);
    const std::size_t page = bits >> kPageBits;
    if (page >= pages_.size()) pages_.resize(page + 1, 0);
    if (pages_[page] == 0) {
      pages_[page] = static_cast<std::uint32_t>(words_.size() / kPageWords);
      words_.resize(words_.size() + kPageWords, 0);
    }
    std::uint64_t& word = words_[wordOf(page, bits)];
    const std::uint64_t bit = std::uint64_t{1} << (bits & 63);
    if (word & bit) return false;
    word |= bit;
    ++size_;
    return true;
  }

  // Adds all labels of another set.
  void add(const LabelSet& other) {
    for (std::size_t page = 0; page < other.pages_.size(); ++page) {
      if (other.pages_[page] == 0) continue;
      for (std::uint32_t i = 0; i < 1u << kPageBits; ++i) {
        const auto label = static_cast<int>(static_cast<std::uint32_t>(page << kPageBits) + i);
        if (other.has(label)) add(label);
      }
    }
  }

  bool has(int label) const {
    const auto bits = static_cast<std::uint32_t>(label);
    const std::size_t page = bits >> kPageBits;
    return page < pages_.size() && (words_[wordOf(page, bits)] >> (bits & 63) & 1) != 0;
  }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }

 private:
  static constexpr unsigned kPageBits = 12;
  static constexpr std::size_t kPageWords = (std::size_t{1} << kPageBits) / 64;

  std::size_t wordOf(std::size_t page, std::uint32_t bits) const {
    return pages_[page] * kPageWords + ((bits >> 6) & (kPageWords - 1));
  }

  std::vector<std::uint32_t> pages_;  // by label / 4096; page 0 is empty and shared
  std::vector<std::uint64_t> words_ = std::vector<std::uint64_t>(kPageWords, 0);
  std::size_t size_ = 0;
};

}  // namespace odbs
