// SPDX-License-Identifier: BSD-3-Clause
// The tables of a deck: adding, finding, sorting.
#include <algorithm>
#include <numeric>

#include "importer/deck/deck.h"

namespace odbs::importer {

namespace {

// Positions 0 .. n-1 in ascending order of their labels, equal labels in order of position.
std::vector<std::uint32_t> ascendingOrder(const std::vector<std::int32_t>& labels) {
  std::vector<std::uint32_t> order(labels.size());
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return labels[a] < labels[b]; });
  return order;
}

bool strictlyAscending(const std::vector<std::int32_t>& labels) {
  return std::adjacent_find(labels.begin(), labels.end(),
                            [](std::int32_t a, std::int32_t b) { return a >= b; }) == labels.end();
}

template <typename T>
std::vector<T> permuted(const std::vector<T>& values, const std::vector<std::uint32_t>& order) {
  std::vector<T> result;
  result.reserve(values.size());
  for (const std::uint32_t from : order) result.push_back(values[from]);
  return result;
}

void sortBlock(ElementBlock& block) {
  if (strictlyAscending(block.labels)) return;
  const auto order = ascendingOrder(block.labels);
  ElementBlock sorted;
  sorted.nodes.reserve(block.nodes.size());
  for (const std::uint32_t from : order) {
    const auto first = block.offsets[from], last = block.offsets[from + 1];
    sorted.nodes.insert(sorted.nodes.end(), block.nodes.begin() + first,
                        block.nodes.begin() + last);
    if (!block.owners.empty()) {
      sorted.owners.insert(sorted.owners.end(), block.owners.begin() + first,
                           block.owners.begin() + last);
    }
    sorted.offsets.push_back(static_cast<std::uint32_t>(sorted.nodes.size()));
  }
  sorted.type = block.type;
  sorted.labels = permuted(block.labels, order);
  sorted.places = permuted(block.places, order);
  block = std::move(sorted);
}

}  // namespace

void DeckNodeTable::add(std::int32_t label, const double* coordinates) {
  if (indexed_) indexOf_[label] = static_cast<std::int64_t>(labels.size());
  labels.push_back(label);
  xyz.insert(xyz.end(), coordinates, coordinates + 3);
}

std::int64_t DeckNodeTable::find(std::int32_t label) {
  if (!indexed_) {
    indexOf_.reserve(labels.size());
    for (std::size_t i = 0; i < labels.size(); ++i) {
      indexOf_[labels[i]] = static_cast<std::int64_t>(i);
    }
    indexed_ = true;
  }
  const auto found = indexOf_.find(label);
  return found == indexOf_.end() ? -1 : found->second;
}

void DeckNodeTable::finish() {
  indexOf_.clear();
  indexed_ = false;
  if (strictlyAscending(labels)) return;
  const auto order = ascendingOrder(labels);
  std::vector<std::int32_t> sortedLabels;
  std::vector<double> sortedXyz;
  sortedLabels.reserve(labels.size());
  sortedXyz.reserve(xyz.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i + 1 < order.size() && labels[order[i]] == labels[order[i + 1]]) continue;
    sortedLabels.push_back(labels[order[i]]);
    const double* const from = &xyz[std::size_t{3} * order[i]];
    sortedXyz.insert(sortedXyz.end(), from, from + 3);
  }
  labels.swap(sortedLabels);
  xyz.swap(sortedXyz);
}

std::size_t ElementTable::blockOf(const std::string& type) {
  const auto [at, isNew] = blockOfType_.emplace(type, blocks.size());
  if (isNew) {
    blocks.emplace_back();
    blocks.back().type = type;
  }
  return at->second;
}

void ElementTable::add(std::size_t at, std::int32_t label, const std::int32_t* nodes,
                       const std::int32_t* owners, std::size_t nNodes, Place place) {
  ElementBlock& block = blocks[at];
  if (indexed_) {
    indexOf_[label] = {static_cast<std::int32_t>(at),
                       static_cast<std::uint32_t>(block.labels.size())};
  }
  block.labels.push_back(label);
  block.nodes.insert(block.nodes.end(), nodes, nodes + nNodes);
  if (owners) block.owners.insert(block.owners.end(), owners, owners + nNodes);
  block.offsets.push_back(static_cast<std::uint32_t>(block.nodes.size()));
  block.places.push_back(place);
}

ElementTable::Position ElementTable::find(std::int32_t label) {
  if (!indexed_) {
    indexOf_.reserve(size());
    for (std::size_t b = 0; b < blocks.size(); ++b) {
      for (std::size_t i = 0; i < blocks[b].labels.size(); ++i) {
        indexOf_[blocks[b].labels[i]] = {static_cast<std::int32_t>(b),
                                         static_cast<std::uint32_t>(i)};
      }
    }
    indexed_ = true;
  }
  const auto found = indexOf_.find(label);
  return found == indexOf_.end() ? Position() : found->second;
}

std::size_t ElementTable::size() const {
  std::size_t n = 0;
  for (const ElementBlock& block : blocks) n += block.labels.size();
  return n;
}

std::optional<std::array<Place, 2>> ElementTable::finish() {
  indexOf_.clear();
  indexed_ = false;
  std::vector<std::pair<std::int32_t, Place>> all;
  all.reserve(size());
  for (ElementBlock& block : blocks) {
    sortBlock(block);
    for (std::size_t i = 0; i < block.labels.size(); ++i) {
      all.emplace_back(block.labels[i], block.places[i]);
    }
  }
  if (!std::is_sorted(all.begin(), all.end())) std::sort(all.begin(), all.end());
  const auto twice = std::adjacent_find(
      all.begin(), all.end(), [](const auto& a, const auto& b) { return a.first == b.first; });
  if (twice == all.end()) return std::nullopt;
  return std::array<Place, 2>{twice->second, (twice + 1)->second};
}

void Scope::releaseGeometry() {
  std::vector<double>().swap(nodes.xyz);
  for (ElementBlock& block : elements.blocks) {
    block.offsets.assign(1, 0);
    block.offsets.shrink_to_fit();
    std::vector<std::int32_t>().swap(block.nodes);
    std::vector<std::int32_t>().swap(block.owners);
  }
}

Members& Set::of(std::int32_t owner) {
  for (Members& entry : members) {
    if (entry.owner == owner) return entry;
  }
  members.emplace_back();
  members.back().owner = owner;
  return members.back();
}

void Set::add(std::int32_t owner, Range range) {
  std::vector<Range>& ranges = of(owner).ranges;
  if (!ranges.empty() && range.step == 1 && ranges.back().step == 1 &&
      ranges.back().last == range.first - 1) {
    ranges.back().last = range.last;
  } else {
    ranges.push_back(range);
  }
}

std::size_t Set::nRanges() const {
  std::size_t n = 0;
  for (const Members& entry : members) n += entry.ranges.size();
  return n;
}

void Set::compact() {
  if (unsorted) return;
  for (Members& entry : members) {
    auto& ranges = entry.ranges;
    for (Range& range : ranges) {
      if (range.first == range.last) range.step = 1;
    }
    std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) {
      return std::tie(a.first, a.last, a.step) < std::tie(b.first, b.last, b.step);
    });
    std::size_t kept = 0;
    for (const Range& range : ranges) {
      if (kept > 0) {
        Range& last = ranges[kept - 1];
        const bool same =
            last.first == range.first && last.last == range.last && last.step == range.step;
        const bool joins =
            last.step == 1 && range.step == 1 && range.first <= std::int64_t{last.last} + 1;
        if (joins) last.last = std::max(last.last, range.last);
        if (same || joins) continue;
      }
      ranges[kept++] = range;
    }
    ranges.resize(kept);
  }
}

Set& SetTable::at(const std::string& name) {
  const auto [at, isNew] = indexOf.emplace(name, sets.size());
  if (isNew) {
    sets.emplace_back();
    sets.back().name = name;
  }
  return sets[at->second];
}

const Set* SetTable::find(const std::string& name) const {
  const auto found = indexOf.find(name);
  return found == indexOf.end() ? nullptr : &sets[found->second];
}

}  // namespace odbs::importer
