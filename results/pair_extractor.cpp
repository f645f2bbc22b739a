// SPDX-License-Identifier: BSD-3-Clause
// Layers and section points of a pair, and the walk over the blocks that hold them.
#include "results/pair_extractor.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "lookup/section_layups.h"
#include "results/block_writer.h"
#include "results/selected_field.h"
#include "server/core/entity_records.h"

namespace odbs {

namespace {

constexpr int kInnermost = -1;
constexpr int kOutermost = -2;
constexpr int kAllPoints = -3;
constexpr int kMiddle = 0;

// The number that values without a section point carry.
constexpr int kNoSectionPoint = -1;

using Points = std::vector<int>;

void append(Points& points, const Points& more) {
  points.insert(points.end(), more.begin(), more.end());
}

Points wholeSection(const SectionLayup& layup) {
  return layup.points.empty() ? Points{kNoSectionPoint} : layup.points;
}

// The points of the layers for which `isMeant` says so.
template <typename IsMeant>
Points pointsOfLayers(const SectionLayup& layup, IsMeant isMeant) {
  Points points;
  for (const LayupLayer& layer : layup.layers) {
    if (isMeant(layer)) append(points, layer.points);
  }
  return points;
}

// The points that the item's layer has in a layup, in order; none where it has no such layer.
Points pointsOfLayer(const SectionLayup& layup, const PairItem& item, bool byName) {
  if (!byName) {
    if (item.number == 0) return wholeSection(layup);
    return pointsOfLayers(layup, [&](const auto& layer) { return layer.number == item.number; });
  }
  // Layers without a name must not answer to an empty one.
  if (item.name.empty()) return {};
  Points points = pointsOfLayers(layup, [&](const auto& layer) { return layer.ply == item.name; });
  if (points.empty()) {
    points = pointsOfLayers(layup, [&](const auto& layer) { return layer.material == item.name; });
  }
  if (points.empty() && (layup.isNamed(item.name) || layup.material == item.name)) {
    points = wholeSection(layup);
  }
  return points;
}

// What the code picks of the points of a layer. Of an even number of points the inner one of the
// two in the middle is the middle.
Points picked(const Points& points, int code) {
  if (points.empty() || code == kAllPoints) return points;
  if (code == kInnermost) return {points.front()};
  if (code == kOutermost) return {points.back()};
  if (code == kMiddle) return {points[(points.size() - 1) / 2]};
  const auto nth = static_cast<std::size_t>(code);
  return nth <= points.size() ? Points{points[nth - 1]} : Points{};
}

class PairWalk {
 public:
  PairWalk(odb_Odb& odb, int outputFd, const PairExtraction& request, bool complex)
      : outputFd_(outputFd),
        layups_(sectionLayupsOf(odb)),
        writer_(odb, outputFd, complex, request.sendOrientations, request.selected) {
    for (const PairItem* item : {&request.first, &request.second}) {
      bool known = !request.byName;
      std::vector<Points> byLayup;
      for (const SectionLayup& layup : layups_.all()) {
        const Points points = pointsOfLayer(layup, *item, request.byName);
        known |= !points.empty();
        byLayup.push_back(picked(points, item->code));
      }
      pointsOfItems_.push_back(std::move(byLayup));
      allKnown_ &= known;
    }
  }

  // False when an item has a name that no layup knows.
  bool allKnown() const { return allKnown_; }

  void run(const odb_FieldOutput& field) {
    forEachBlock(field, [this](const odb_FieldBulkData& block) { sendBlock(block); });
    flushOutput(outputFd_);
  }

 private:
  void sendBlock(const odb_FieldBulkData& block) {
    if (block.position() == odb_Enum::NODAL) return;  // nodes have no layers
    const int number = block.sectionPoint().number();
    int field = 0;
    for (const std::vector<Points>& byLayup : pointsOfItems_) {
      ++field;
      // By layup index: does the item pick the block's point there?
      std::vector<char> isPicked;
      for (const Points& points : byLayup) {
        isPicked.push_back(std::find(points.begin(), points.end(), number) != points.end());
      }
      if (std::find(isPicked.begin(), isPicked.end(), 1) == isPicked.end()) continue;
      const LabelTable& layupOf = layups_.ofElements(block.instance());
      writer_.send(block, field, Headers::kWithValues, [&](int element) {
        const int layup = layupOf.find(element);
        return layup >= 0 && isPicked[static_cast<std::size_t>(layup)] != 0;
      });
    }
  }

  int outputFd_;
  SectionLayups& layups_;
  std::vector<std::vector<Points>> pointsOfItems_;  // of each item by layup index
  bool allKnown_ = true;
  BlockWriter writer_;
};

}  // namespace

void extractPair(odb_Odb& odb, int outputFd, const PairExtraction& request) {
  sendTitleAndKind(outputFd, odb);
  odb_FieldOutput field;
  if (!findField(odb, *request.selection, field)) return;
  PairWalk walk(odb, outputFd, request, field.isComplex());
  if (walk.allKnown()) walk.run(atPosition(field, request.selection->position));
}

}  // namespace odbs
